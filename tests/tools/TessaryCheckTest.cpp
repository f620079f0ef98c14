// SPDX-License-Identifier: MIT
// tessary-check run as a program on files written by the tests.
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;

class CheckFiles : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("tessary-check-test-" + std::to_string(::getpid()));
        fs::create_directories(dir_);
        ::unsetenv("TESSARY_DICTIONARIES");  // dictionaries come from the command line unless a test says
        write("clean.cif", "data_a\n_cell_length_a 5.0\nloop_\n_x\n1\n2\n");
        write("broken.cif", "data_b\n_a 1\n_b 'open\nloop_\n_x\n_y\n1 2 3\n");
    }
    void TearDown() override { fs::remove_all(dir_); }

    std::string write(const std::string& name, const std::string& text) {
        std::ofstream(dir_ / name, std::ios::binary) << text;
        return path(name);
    }
    std::string path(const std::string& name) const { return (dir_ / name).string(); }
    static std::string read(const std::string& file) {
        std::stringstream text;
        text << std::ifstream(file).rdbuf();
        return text.str();
    }
    // Runs tessary-check; returns its exit status and keeps its output.
    int run(const std::string& arguments) {
        const std::string command = std::string(TESSARY_CHECK_BINARY) + " " + arguments + " >" +
                                    path("stdout.txt") + " 2>" + path("stderr.txt");
        const int status = std::system(command.c_str());
        out = read(path("stdout.txt"));
        err = read(path("stderr.txt"));
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    fs::path dir_;
    std::string out, err;
};

TEST_F(CheckFiles, CleanFilesPassWithASummaryAndBrokenOnesGiveOneLinePerMessageInTextOrder) {
    EXPECT_EQ(run(path("clean.cif")), 0);
    EXPECT_EQ(out, path("clean.cif") + ": 0 errors, 0 warnings, 0 remarks\n");
    EXPECT_EQ(err, "");
    const std::string b = path("broken.cif");
    EXPECT_EQ(run(path("clean.cif") + " " + b), 1);
    EXPECT_EQ(
        out,
        path("clean.cif") + ": 0 errors, 0 warnings, 0 remarks\n" + b +
            ":3: error [305]: Quoted string not terminated: 'open\n" + b +
            ":4: error [307]: Number of values in the loop of _x is not a multiple of its 2 data names\n" +
            b + ": 2 errors, 0 warnings, 0 remarks\n");
    // The same as one JSON document.
    EXPECT_EQ(run("--json " + b), 1);
    EXPECT_EQ(out.front(), '{');
    EXPECT_NE(out.find("\"code\": 307"), std::string::npos) << out;
}

TEST_F(CheckFiles, UnreadableFilesAreReportedAndTheOthersStillChecked) {
    EXPECT_EQ(run(path("missing.cif") + " " + path("broken.cif")), 2);
    EXPECT_EQ(err.rfind(path("missing.cif") + ": cannot read: ", 0), 0u) << err;
    EXPECT_NE(out.find(path("broken.cif") + ": 2 errors"), std::string::npos) << out;
    // A device that never ends is read only so far.
    EXPECT_EQ(run("/dev/zero " + path("clean.cif")), 2);
    EXPECT_EQ(err,
              "/dev/zero: cannot read: not a regular file, and longer than 256 MB: stopped reading (save "
              "it to a file to check it)\n");
    EXPECT_NE(out.find(path("clean.cif") + ": 0 errors"), std::string::npos) << out;
    EXPECT_EQ(run("--line-length"), 2);
    EXPECT_NE(err.find("Usage: tessary-check"), std::string::npos);
}

TEST_F(CheckFiles, ControlCharactersInDataNamesReachTheTerminalEscaped) {
    // A data name that clears the screen and one that sets the window title.
    const std::string file = write("hostile.cif", "data_h\n_a\x1b[2J 1\n_a\x1b[2J 2\n_t\x1b]0;x\x07 3\n");
    EXPECT_EQ(run(file), 1);
    EXPECT_EQ(out.find('\x1b'), std::string::npos) << out;
    EXPECT_EQ(out.find('\x07'), std::string::npos) << out;
    EXPECT_NE(out.find(":3: error [312]: Duplicate data name _a\\u001b[2J, first at line: 2\n"),
              std::string::npos)
        << out;
}

TEST_F(CheckFiles, ParallelChecksPrintInTheOrderGiven) {
    std::string files;
    for (int i = 0; i < 40; ++i) {
        // Built piece by piece: GCC 12 at -O3 takes "text" + std::string
        // here for an overlapping copy (-Wrestrict, a known false alarm).
        std::string text = "data_x\n_a ";
        if (i % 3 == 0)
            text += "'open";
        else
            text.append(static_cast<std::size_t>(i) * 3, 'v');
        text += '\n';
        std::string name = std::to_string(i);
        name.insert(name.begin(), 'f');
        name += ".cif";
        files += ' ';
        files += write(name, text);
    }
    EXPECT_EQ(run("--line-length 40" + files), 1);
    const std::string serial = out;
    EXPECT_EQ(run("-j 4 --line-length 40" + files), 1);
    EXPECT_EQ(out, serial);
    EXPECT_NE(serial.find(":2: warning [318]: Line is longer than 40 characters"), std::string::npos);
}

TEST_F(CheckFiles, DictionariesCheckNamesAndValuesOnTheLinesOfTheValues) {
    const std::string s = write("sites.cif",
                                "data_s\n_cell_length_a 5.0(1)\n_cell_lenght_b 5.0\nloop_\n_atom_site_label\n"
                                "_atom_site_fract_x\nC1 0.1\nC2 0.2x\n");
    const std::string expected =
        s +
        ":3: warning [320]: Created non-standard data item _cell_lenght_b; did you mean "
        "_cell_length_b?\n" +
        s + ":8: error [354]: Value of _atom_site_fract_x is not a number\n" + s +
        ": 1 error, 1 warning, 0 remarks\n";
    EXPECT_EQ(run("-d " + std::string(TESSARY_SOURCE_DIR) + "/tests/data/tessary_test.dic " + s), 1);
    EXPECT_EQ(out, expected) << err;
    // The same dictionary through the environment, as a directory of *.dic files.
    ::setenv("TESSARY_DICTIONARIES", (std::string(TESSARY_SOURCE_DIR) + "/tests/data").c_str(), 1);
    EXPECT_EQ(run(s), 1);
    ::unsetenv("TESSARY_DICTIONARIES");
    EXPECT_EQ(out, expected);
    // Without a dictionary only the syntax is checked.
    EXPECT_EQ(run(s), 0);
    // A dictionary that cannot be used stops the check.
    write("bad.dic", "data_x\n_name '_x'\n_type vector\n");
    EXPECT_EQ(run("-d " + path("bad.dic") + " " + s), 2);
    EXPECT_EQ(out, "");
    EXPECT_NE(err.find("errors loading dictionary " + path("bad.dic") + "\n  Error: Line 3 : "),
              std::string::npos)
        << err;
    EXPECT_EQ(run("-d " + path("missing.dic") + " " + s), 2);
    EXPECT_NE(err.find("cannot read dictionary " + path("missing.dic")), std::string::npos) << err;
}

TEST_F(CheckFiles, MandatoryItemsAndConsistencyChecksCanBeAskedForAndSwitchedOff) {
    write("items.txt", "data_all\n_cell_volume\n");
    const std::string c =
        write("cell.cif",
              "data_c\n_cell_length_a 5\n_cell_length_b 5\n_cell_length_c 5\n_cell_angle_alpha 90\n"
              "_cell_angle_beta 90\n_cell_angle_gamma 90\n_symmetry_cell_setting tetragonal\n"
              "_cell_formula_units_Z 2\n");
    EXPECT_EQ(run("--mandatory " + path("items.txt") + " " + c), 0);
    EXPECT_EQ(out, c + ":1: warning [347]: Mandatory data item _cell_volume is missing\n" + c +
                       ": 0 errors, 1 warning, 0 remarks\n");
    EXPECT_EQ(run("--mandatory " + path("nothing.txt") + " " + c), 2);
    write("cell.cif",
          "data_c\n_cell_length_a 5.000\n_cell_length_b 5.000\n_cell_length_c 5.000\n_cell_angle_alpha 90\n"
          "_cell_angle_beta 90\n_cell_angle_gamma 90\n_cell_volume 125.11\n");
    EXPECT_EQ(run(c), 0);
    EXPECT_NE(out.find(c + ":8: remark [303]: Value of _cell_volume differs"), std::string::npos) << out;
    // Off by more than 0.1 %, it is an error of its own.
    write("cell.cif",
          "data_c\n_cell_length_a 5.000\n_cell_length_b 5.000\n_cell_length_c 5.000\n_cell_angle_alpha 90\n"
          "_cell_angle_beta 90\n_cell_angle_gamma 90\n_cell_volume 130\n");
    EXPECT_EQ(run(c), 1);
    EXPECT_NE(out.find(c + ":8: error [370]: Value of _cell_volume does not follow from the cell (130; "),
              std::string::npos)
        << out;
    EXPECT_EQ(run("--no-consistency " + c), 0);
    EXPECT_EQ(out, c + ": 0 errors, 0 warnings, 0 remarks\n");
}

// What a terminal shows until the text holds `until` (or nothing more comes
// within the time, or the program is gone).
std::string read_terminal(int terminal, const std::string& until, int milliseconds) {
    std::string shown;
    char buffer[4096];
    while (shown.find(until) == std::string::npos) {
        pollfd wanted{terminal, POLLIN, 0};
        if (::poll(&wanted, 1, milliseconds) <= 0) break;
        ssize_t n = ::read(terminal, buffer, sizeof buffer);
        if (n <= 0) break;
        shown.append(buffer, static_cast<std::size_t>(n));
    }
    return shown;
}

TEST_F(CheckFiles, EachFileIsOnTheTerminalBeforeTheNextIsRead) {
    // The second file is a pipe whose text comes only after the first
    // file's summary has been seen.
    for (const std::string jobs : {"1", "2"}) {
        const std::string later = path("later" + jobs + ".cif");
        ASSERT_EQ(::mkfifo(later.c_str(), 0600), 0);
        const std::string first = path("clean.cif");
        int terminal = -1;
        pid_t child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
        ASSERT_GE(child, 0);
        if (child == 0) {
            ::execl(TESSARY_CHECK_BINARY, TESSARY_CHECK_BINARY, "-j", jobs.c_str(), first.c_str(),
                    later.c_str(), static_cast<char*>(nullptr));
            ::_exit(127);
        }
        std::string shown = read_terminal(terminal, "remarks", 10000);
        EXPECT_NE(shown.find(first + ": 0 errors, 0 warnings, 0 remarks"), std::string::npos)
            << "-j " << jobs << ": " << shown;
        std::ofstream(later) << "data_later\n_a 1\n";  // lets the program go on in any case
        const std::string summary = later + ": 0 errors, 0 warnings, 0 remarks";
        shown += read_terminal(terminal, summary, 10000);
        EXPECT_NE(shown.find(summary), std::string::npos) << shown;
        int status = 0;
        ::waitpid(child, &status, 0);
        ::close(terminal);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << jobs;
    }
}

}  // namespace
