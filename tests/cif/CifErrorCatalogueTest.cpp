// SPDX-License-Identifier: MIT
// The error catalogue: every code complete, fixed roles, messages, docs/errors.md in step.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>

#include "cif/CifCharacters.hpp"
#include "cif/CifErrorCatalogue.hpp"
#include "cif/CifNamePool.hpp"
#include "cif/CifNames.hpp"
#include "tests/cif/CifTestSupport.hpp"

namespace {

TEST(CifErrorCatalogue, EveryCodeHasAKindAMessageAndAnExplanation) {
    for (int code = CifErrorCatalogue::first_code; code <= CifErrorCatalogue::last_code; ++code) {
        const CifErrorCatalogueEntry* entry = CifErrorCatalogue::find(code);
        ASSERT_NE(entry, nullptr) << code;
        EXPECT_EQ(entry->code, code);
        EXPECT_TRUE(entry->kind >= 0 && entry->kind <= 2) << code;
        EXPECT_GT(std::string(entry->message).size(), 3u) << code;
        EXPECT_GT(std::string(entry->explanation).size(), 20u) << code;
    }
    EXPECT_EQ(CifErrorCatalogue::find(299), nullptr);
    EXPECT_EQ(CifErrorCatalogue::find(385), nullptr);
    EXPECT_EQ(CifErrorCatalogue::entries().size(), 85u);
}

TEST(CifErrorCatalogue, CodesTheEditorTreatsSpeciallyHaveTheirFixedRoles) {
    EXPECT_EQ(std::string(CifErrorCatalogue::find(300)->message), "(warnings omitted)");
    EXPECT_EQ(CifErrorCatalogue::find(300)->kind, 1);
    EXPECT_EQ(CifErrorCatalogue::find(303)->kind, 0);
    EXPECT_EQ(CifErrorCatalogue::find(304)->kind, 0);
    EXPECT_EQ(CifErrorCatalogue::find(320)->kind, 1);
    CifError error(CifError::undefined_data_name, 12, "_geom_extra_table_head_a");
    EXPECT_EQ(error.type(), CifError::warning);
    EXPECT_EQ(error.complete_message(),
              "Warning: Line 12 : Created non-standard data item _geom_extra_table_head_a");
}

TEST(CifErrorCatalogue, MessagesFillInTextAndDetail) {
    CifError error(CifError::duplicate_data_name, 9, "_cell_length_a", "4");
    EXPECT_EQ(error.message(), "Duplicate data name _cell_length_a, first at line: 4");
    EXPECT_EQ(error.complete_message(),
              "Error: Line 9 : Duplicate data name _cell_length_a, first at line: 4");
    EXPECT_EQ(CifError(CifError::byte_order_mark, 1).complete_message(),
              "Remark: Line 1 : Byte-order mark ignored");
    CifError unknown(static_cast<CifError::ErrorID>(999), 3, "odd");
    EXPECT_EQ(unknown.type(), CifError::information);
    EXPECT_EQ(unknown.complete_message(), "Information: Line 3 : Message 999: odd");
    CifError ranked(CifError::line_too_long, CifError::error, 2, "", "80");
    EXPECT_EQ(ranked.type(), CifError::error);
}

// The split messages the report prints from give, put together, what
// format() gives, for every code; codes outside the catalogue have none.
TEST(CifErrorCatalogue, SplitMessagesPutTogetherAreTheFormattedOnes) {
    for (const CifErrorCatalogueEntry& entry : CifErrorCatalogue::entries()) {
        const CifErrorMessageRuns* split = CifErrorCatalogue::runs(entry.code);
        ASSERT_NE(split, nullptr) << entry.code;
        const std::string text = "<text>", detail = "<detail>";
        std::string joined(split->runs[0]);
        for (int gap = 0; gap < 2 && split->fills[gap] != 0; ++gap) {
            joined += split->fills[gap] == 1 ? text : detail;
            joined += split->runs[gap + 1];
        }
        EXPECT_EQ(joined, CifErrorCatalogue::format(entry.code, text, detail)) << entry.code;
        EXPECT_EQ(split->size, split->runs[0].size() + split->runs[1].size() + split->runs[2].size());
        std::string appended = "kept: ";
        CifErrorCatalogue::append_format(appended, entry.code, text, detail);
        EXPECT_EQ(appended, "kept: " + joined);
    }
    for (const int outside : {0, 299, 385, 999})
        EXPECT_EQ(CifErrorCatalogue::runs(outside), nullptr) << outside;
}

TEST(CifErrorCatalogue, ContainerCountsEachType) {
    CifErrorContainer container;
    EXPECT_TRUE(container.empty());
    container.add(CifError(CifError::line_too_long, 1, "", "80"));
    container.add(CifError(CifError::unterminated_text_field, 2));
    container.add(CifError(CifError::line_too_long, 3, "", "80"));
    EXPECT_EQ(container.errors_of_type(CifError::warning), 2);
    EXPECT_EQ(container.errors_of_type(CifError::error), 1);
    EXPECT_EQ(container.errors_of_type(CifError::remark), 0);
    EXPECT_EQ((container.begin() + 1)->line(), 2);
}

TEST(CifError, MessagesKeepTheirTextsThroughCopiesAndMovesOntoAnyOther) {
    // A message may refer to a name the process keeps, own its text, or
    // have none; moves leave empty texts alone. Each onto each, every way.
    const std::string kept_name = "_cell_measurement_temperature";
    const CifKeptName* kept = CifNamePool::find_shared(kept_name, cif_name_hash(kept_name));
    ASSERT_NE(kept, nullptr);
    const CifError originals[] = {
        CifError(CifError::obsolete_data_name, 3, *kept, "_cell_measurement_temperature_new"),
        CifError(CifError::undefined_data_name, 4, "_a_name_of_its_own_beyond_a_short_one", ""),
        CifError(CifError::undefined_data_name, 5, "_short", "; did you mean _shirt?"),
        CifError(CifError::no_data_blocks, 1),
    };
    auto same = [](const CifError& a, const CifError& b) {
        return a.id() == b.id() && a.type() == b.type() && a.line() == b.line() && a.text() == b.text() &&
               a.detail() == b.detail();
    };
    EXPECT_EQ(originals[0].text(), kept_name);
    EXPECT_EQ(originals[0].message(),
              "Data name _cell_measurement_temperature is obsolete; use _cell_measurement_temperature_new");
    for (const CifError& source : originals) {
        for (const CifError& target : originals) {
            CifError copied = target;
            copied = source;
            EXPECT_TRUE(same(copied, source)) << source.line() << " copied onto " << target.line();
            CifError moved = target;
            CifError from = source;
            moved = std::move(from);
            EXPECT_TRUE(same(moved, source)) << source.line() << " moved onto " << target.line();
            CifError made(std::move(moved));
            EXPECT_TRUE(same(made, source)) << source.line() << " moved into a new one";
        }
    }
}

TEST(CifErrorCatalogue, TheDocumentationListsEveryCodeAsTheLibraryDoes) {
    std::ifstream file(std::string(TESSARY_SOURCE_DIR) + "/docs/errors.md");
    ASSERT_TRUE(file) << "docs/errors.md is missing";
    std::string line;
    int rows = 0;
    while (std::getline(file, line)) {
        int code = 0;
        if (std::sscanf(line.c_str(), "| %d |", &code) != 1) continue;
        const CifErrorCatalogueEntry* entry = CifErrorCatalogue::find(code);
        ASSERT_NE(entry, nullptr) << line;
        std::string kind = std::to_string(entry->kind) + (entry->kind == 0   ? " remark"
                                                          : entry->kind == 1 ? " warning"
                                                                             : " error");
        EXPECT_NE(line.find("| " + kind + " |"), std::string::npos) << line;
        std::string message = entry->message;
        EXPECT_NE(line.find("| " + message + " |"), std::string::npos) << line;
        EXPECT_NE(line.find(std::string("`") + entry->name + "`"), std::string::npos) << line;
        ++rows;
    }
    EXPECT_EQ(rows, 85);
}

TEST(CifCharacters, TheReaderRejectsExactlyTheCharactersTheHighlighterMarks) {
    for (int byte = 0; byte < 256; ++byte) {
        unsigned char c = static_cast<unsigned char>(byte);
        if (c == '\n' || c == '\r') continue;  // line ends
        std::string text = "data_a\n_a x";
        text += static_cast<char>(c);
        text += "y\n";
        THandle<Cif> cif = cif_test::read(text);
        bool reported =
            !cif->errors()->empty() && cif->errors()->begin()->id() == CifError::invalid_character;
        EXPECT_EQ(reported, is_bad_nonprinting_char(c) || is_bad_printing_char(c)) << byte;
    }
    EXPECT_FALSE(is_bad_nonprinting_char('\t'));
    EXPECT_TRUE(is_bad_nonprinting_char(0x0B));
    EXPECT_TRUE(is_bad_nonprinting_char(127));
    EXPECT_TRUE(is_bad_printing_char(0xE9));
    EXPECT_FALSE(is_bad_printing_char('~'));
}

}  // namespace
