// SPDX-License-Identifier: MIT
// Reading a file's whole text through the operating system, and what else a name can be.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include "cif/CifFileText.hpp"

namespace {

namespace fs = std::filesystem;

class CifFileText : public ::testing::Test {
protected:
    void SetUp() override {
        directory_ = fs::temp_directory_path() / ("tessary-file-text-" + std::to_string(::getpid()));
        fs::create_directories(directory_);
    }
    void TearDown() override {
        std::error_code ignored;
        fs::remove_all(directory_, ignored);
    }
    std::string write(const std::string& name, const std::string& bytes) const {
        const std::string path = (directory_ / name).string();
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
    fs::path directory_;
};

TEST_F(CifFileText, ReadsEveryByteOfRegularFilesOfAnySize) {
    std::string large(3 * 65536 + 7, 'x');
    for (std::size_t i = 0; i < large.size(); i += 61) large[i] = '\n';
    const std::string cases[] = {std::string(), std::string("data_a\r\n_x 1\n"), std::string("a\0b\xff", 4),
                                 large};
    for (const std::string& bytes : cases) {
        std::string text = "left over";
        EXPECT_EQ(cif_read_file(write("f.cif", bytes), text, 16), CifFileRead::read);
        EXPECT_EQ(text, bytes) << bytes.size();
    }
    // A file whose size says less than it holds (the kernel's own files say
    // none) is read on to its end.
    std::ifstream stream("/proc/self/cmdline", std::ios::binary);
    const std::string expected((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    std::string text;
    ASSERT_FALSE(expected.empty());
    EXPECT_EQ(cif_read_file("/proc/self/cmdline", text, 16), CifFileRead::read);
    EXPECT_EQ(text, expected);
}

TEST_F(CifFileText, TellsDirectoriesAndMissingFilesApartAndReadsDevicesAndPipesUpToTheCap) {
    std::string text;
    EXPECT_EQ(cif_read_file(directory_.string(), text, 16), CifFileRead::directory);
    errno = 0;
    EXPECT_EQ(cif_read_file((directory_ / "absent.cif").string(), text, 16), CifFileRead::not_opened);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(cif_read_file("/dev/null", text, 16), CifFileRead::read);
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(cif_read_file("/dev/zero", text, 100000), CifFileRead::too_long);
    // A named pipe is read once, to its end, as a writer fills it.
    const std::string fifo = (directory_ / "pipe").string();
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    const std::string bytes = "data_a\n_x 1\n" + std::string(70000, '#');
    std::thread writer([&] { std::ofstream(fifo, std::ios::binary) << bytes; });
    EXPECT_EQ(cif_read_file(fifo, text, 1 << 20), CifFileRead::read);
    writer.join();
    EXPECT_EQ(text, bytes);
}

}  // namespace
