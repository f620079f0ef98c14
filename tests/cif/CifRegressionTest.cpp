// SPDX-License-Identifier: MIT
// Stored inputs that once broke the reader or sit on its edges, each read and printed safely.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/cif/CifTestSupport.hpp"

namespace {

namespace fs = std::filesystem;

// Inputs that once broke the reader (found by the fuzzer or by hand) or that
// sit on the edge of its recovery rules: each must read without a crash,
// with every message on a line of the text, and print to text that reads
// back the same when it had no errors.
TEST(CifRegression, EveryStoredInputReadsAndPrintsSafely) {
    fs::path dir = fs::path(TESSARY_SOURCE_DIR) / "tests" / "cif" / "regressions";
    int files = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(dir)) {
        if (!entry.is_regular_file()) continue;
        ++files;
        std::ifstream stream(entry.path(), std::ios::binary);
        std::stringstream bytes;
        bytes << stream.rdbuf();
        for (bool frames : {false, true}) {
            CifParserSettings settings;
            settings.allow_save_frames = frames;
            THandle<Cif> cif = cif_test::read(bytes.str(), settings);
            for (const CifError& error : *cif->errors()) {
                EXPECT_GE(error.line(), 1) << entry.path();
                EXPECT_LE(error.line(), std::max(cif->line_count(), 1))
                    << entry.path() << " " << error.complete_message();
            }
            CifWriteSettings write;
            write.cif_version = cif->version();
            std::ostringstream printed;
            cif->print(printed, write);
            if (cif->errors()->errors_of_type(CifError::error) > 0) continue;
            THandle<Cif> again = cif_test::read(printed.str(), settings);
            EXPECT_TRUE(cif_test::same_document(*cif, *again)) << entry.path();
        }
    }
    EXPECT_GT(files, 0);
}

}  // namespace
