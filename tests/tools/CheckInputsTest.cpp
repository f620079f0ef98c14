// The inputs of tessary-check besides the files: the dictionaries it
// finds and reads, and the mandatory-items file.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tools/DictionaryFiles.hpp"
#include "tools/MandatoryItems.hpp"

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

TEST(MandatoryItems, SectionsDecideTheListsAnItemGoesTo) {
    std::istringstream file(
        "# mandatory items\r\n"
        "_dropped_before_any_section\n"
        "data_crystal\n"
        "  _cell_length_a   with a remark\n"
        "data_all\n"
        "\t_publ_section_title\n"
        "data_publication\n"
        "_journal_name_full\n"
        "something else\n"
        "data_other\n"
        "_dropped_under_an_unknown_section\n"
        "data_Crystal\n"  // headers are case-sensitive
        "_dropped_too\n"
        "data_crystal\n"
        "_cell_length_a\n");
    MandatoryItems items = MandatoryItems::read(file);
    EXPECT_EQ(items.crystal, (Names{"_cell_length_a", "_publ_section_title", "_cell_length_a"}));
    EXPECT_EQ(items.publication, (Names{"_publ_section_title", "_journal_name_full"}));
}

class DictionaryDirectory : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = fs::temp_directory_path() / ("tessary-dictionaries-" + std::to_string(::getpid()));
        fs::create_directories(dir_ / "more");
    }
    void TearDown() override { fs::remove_all(dir_); }
    std::string write(const std::string& name, const std::string& text) {
        std::ofstream(dir_ / name) << text;
        return (dir_ / name).string();
    }
    fs::path dir_;
};

TEST_F(DictionaryDirectory, TheEnvironmentNamesDirectoriesAndFilesBeforeTheCommandLine) {
    std::string b = write("b.dic", "");
    std::string a = write("A.DIC", "");
    write("notes.txt", "");
    std::string single = write("more/single.dic", "");
    std::string list = dir_.string() + "::" + single + ":";
    EXPECT_EQ(DictionaryFiles::resolve(list.c_str(), {"named.dic"}), (Names{a, b, single, "named.dic"}));
    EXPECT_EQ(DictionaryFiles::resolve(nullptr, {"named.dic"}), Names{"named.dic"});
}

TEST_F(DictionaryDirectory, DictionariesWithErrorsAreReportedAndLeftOut) {
    std::string good = std::string(TESSARY_SOURCE_DIR) + "/tests/data/tessary_test.dic";
    std::string bad = write("bad.dic", "data_x\n_name '_x'\n_type vector\n");
    std::ostringstream problems;
    bool ok = true;
    THandle<CifDictionaryPool> pool =
        DictionaryFiles::load({good, bad, (dir_ / "missing.dic").string()}, problems, ok);
    EXPECT_FALSE(ok);
    EXPECT_EQ(pool->size(), 1u);
    EXPECT_TRUE(pool->is_defined("_cell_length_a"));
    EXPECT_NE(problems.str().find("errors loading dictionary " + bad + "\n  Error: Line 3 : "),
              std::string::npos)
        << problems.str();
    EXPECT_NE(problems.str().find("cannot read dictionary "), std::string::npos);
}

}  // namespace
