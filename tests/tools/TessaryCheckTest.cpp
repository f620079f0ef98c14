#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace {

namespace fs = std::filesystem;

// A directory of test files that is removed afterwards.
class CheckFiles : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("tessary-check-test-" + std::to_string(::getpid()));
        fs::create_directories(dir_);
        // Dictionaries come only from the command line in these tests.
        ::unsetenv("TESSARY_DICTIONARIES");
        write("clean.cif", "data_a\n_cell_length_a 5.0\nloop_\n_x\n1\n2\n");
        write("broken.cif", "data_b\n_a 1\n_b 'open\nloop_\n_x\n_y\n1 2 3\n");
    }
    void TearDown() override { fs::remove_all(dir_); }

    void write(const std::string& name, const std::string& text) {
        std::ofstream(dir_ / name, std::ios::binary) << text;
    }
    std::string path(const std::string& name) const { return (dir_ / name).string(); }

    // Runs tessary-check; returns its exit status and fills the output.
    int run(const std::string& arguments, std::string& out, std::string& err) const {
        std::string out_file = path("stdout.txt");
        std::string err_file = path("stderr.txt");
        std::string command =
            std::string(TESSARY_CHECK_BINARY) + " " + arguments + " >" + out_file + " 2>" + err_file;
        int status = std::system(command.c_str());
        std::ifstream o(out_file), e(err_file);
        std::stringstream os, es;
        os << o.rdbuf();
        es << e.rdbuf();
        out = os.str();
        err = es.str();
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    fs::path dir_;
};

TEST_F(CheckFiles, CleanFilesPassSilentlyWithASummary) {
    std::string out, err;
    EXPECT_EQ(run(path("clean.cif"), out, err), 0);
    EXPECT_EQ(out, path("clean.cif") + ": 0 errors, 0 warnings, 0 remarks\n");
    EXPECT_TRUE(err.empty());
}

TEST_F(CheckFiles, BrokenFilesGiveOneLinePerMessageInTextOrder) {
    std::string out, err;
    EXPECT_EQ(run(path("clean.cif") + " " + path("broken.cif"), out, err), 1);
    std::string b = path("broken.cif");
    EXPECT_EQ(
        out,
        path("clean.cif") + ": 0 errors, 0 warnings, 0 remarks\n" + b +
            ":3: error [305]: Quoted string not terminated: 'open\n" + b +
            ":4: error [307]: Number of values in the loop of _x is not a multiple of its 2 data names\n" +
            b + ": 2 errors, 0 warnings, 0 remarks\n");
}

TEST_F(CheckFiles, UnreadableFilesAreReportedAndTheOthersStillChecked) {
    std::string out, err;
    EXPECT_EQ(run(path("missing.cif") + " " + path("broken.cif"), out, err), 2);
    EXPECT_NE(err.find(path("missing.cif") + ": cannot read: "), std::string::npos) << err;
    EXPECT_NE(out.find(path("broken.cif") + ": 2 errors"), std::string::npos) << out;
    EXPECT_EQ(run("--line-length", out, err), 2);
    EXPECT_NE(err.find("Usage: tessary-check"), std::string::npos);
}

TEST_F(CheckFiles, ParallelChecksPrintInTheOrderGiven) {
    std::string files;
    for (int i = 0; i < 40; ++i) {
        std::string name = "f" + std::to_string(i) + ".cif";
        write(name, i % 3 == 0 ? "data_x\n_a 'open\n" : "data_x\n_a " + std::string(i * 3, 'v') + "\n");
        files += " " + path(name);
    }
    std::string serial, parallel, err;
    EXPECT_EQ(run("--line-length 40" + files, serial, err), 1);
    EXPECT_EQ(run("-j 4 --line-length 40" + files, parallel, err), 1);
    EXPECT_EQ(serial, parallel);
    EXPECT_NE(serial.find(":2: warning [318]: Line is longer than 40 characters"), std::string::npos);
}

TEST_F(CheckFiles, JsonReportsTheSameCounts) {
    std::string out, err;
    EXPECT_EQ(run("--json " + path("broken.cif") + " " + path("clean.cif"), out, err), 1);
    EXPECT_EQ(out.front(), '{');
    EXPECT_NE(out.find("\"code\": 305"), std::string::npos);
    EXPECT_NE(out.find("\"errors\": 2, \"warnings\": 0, \"remarks\": 0, \"unreadable\": 0}"),
              std::string::npos)
        << out;
}

TEST_F(CheckFiles, DictionariesCheckNamesAndValuesOnTheLinesOfTheValues) {
    const std::string dictionary = std::string(TESSARY_SOURCE_DIR) + "/tests/data/tessary_test.dic";
    write("sites.cif",
          "data_s\n_cell_length_a 5.0(1)\n_cell_lenght_b 5.0\nloop_\n_atom_site_label\n_atom_site_fract_x\n"
          "C1 0.1\nC2 0.2x\n");
    std::string out, err;
    EXPECT_EQ(run("-d " + dictionary + " " + path("sites.cif"), out, err), 1);
    std::string s = path("sites.cif");
    EXPECT_EQ(out, s + ":3: warning [320]: Created non-standard data item _cell_lenght_b\n" + s +
                       ":8: error [354]: Value of _atom_site_fract_x is not a number\n" + s +
                       ": 1 error, 1 warning, 0 remarks\n")
        << err;
    // The same dictionary through the environment, as a directory of *.dic files.
    ::setenv("TESSARY_DICTIONARIES", (std::string(TESSARY_SOURCE_DIR) + "/tests/data").c_str(), 1);
    std::string again;
    EXPECT_EQ(run(path("sites.cif"), again, err), 1);
    ::unsetenv("TESSARY_DICTIONARIES");
    EXPECT_EQ(again, out);
    // Without a dictionary only the syntax is checked.
    EXPECT_EQ(run(path("sites.cif"), out, err), 0);
}

TEST_F(CheckFiles, ADictionaryThatCannotBeUsedStopsTheCheck) {
    write("bad.dic", "data_x\n_name '_x'\n_type vector\n");
    std::string out, err;
    EXPECT_EQ(run("-d " + path("bad.dic") + " " + path("clean.cif"), out, err), 2);
    EXPECT_TRUE(out.empty());
    EXPECT_NE(err.find("errors loading dictionary " + path("bad.dic")), std::string::npos) << err;
}

TEST_F(CheckFiles, MandatoryItemsAndConsistencyChecksCanBeAskedForAndSwitchedOff) {
    write("items.txt", "data_all\n_cell_volume\n");
    write("cell.cif",
          "data_c\n_cell_length_a 5\n_cell_length_b 5\n_cell_length_c 5\n_cell_angle_alpha 90\n"
          "_cell_angle_beta 90\n_cell_angle_gamma 90\n_symmetry_cell_setting tetragonal\n"
          "_cell_formula_units_Z 2\n");
    std::string out, err;
    EXPECT_EQ(run("--mandatory " + path("items.txt") + " " + path("cell.cif"), out, err), 0);
    std::string c = path("cell.cif");
    EXPECT_EQ(out, c + ":1: warning [347]: Mandatory data item _cell_volume is missing\n" + c +
                       ": 0 errors, 1 warning, 0 remarks\n");
    write("cell.cif",
          "data_c\n_cell_length_a 5.000\n_cell_length_b 5.000\n_cell_length_c 5.000\n_cell_angle_alpha 90\n"
          "_cell_angle_beta 90\n_cell_angle_gamma 90\n_cell_volume 130\n");
    EXPECT_EQ(run(path("cell.cif"), out, err), 0);
    EXPECT_NE(out.find(c + ":8: remark [303]: Value of _cell_volume differs"), std::string::npos) << out;
    EXPECT_EQ(run("--no-consistency " + path("cell.cif"), out, err), 0);
    EXPECT_EQ(out, c + ": 0 errors, 0 warnings, 0 remarks\n");
    EXPECT_EQ(run("--mandatory " + path("nothing.txt") + " " + path("cell.cif"), out, err), 2);
}

}  // namespace
