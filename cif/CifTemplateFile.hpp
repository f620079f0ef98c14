// SPDX-License-Identifier: MIT
// A CIF or template file read to take items from, or why it cannot serve.
#pragma once

#include <string>
#include <vector>

#include "cif/Cif.hpp"
#include "cif/CifDataBlock.hpp"
#include "cif/CifParserSettings.hpp"
#include "support/THandle.hpp"

// A CIF or template file read to take items and loops from. Its text is
// UTF-8 once read (a file that is not valid UTF-8 is taken as Latin-1), so
// that its values meet a document's text in one encoding. A file that is
// missing, unreadable, not text, without a data block or with errors as
// CIF does not serve: problem() says why, in words for the user.
class CifTemplateFile {
public:
    static CifTemplateFile read(const std::string& path,
                                const CifParserSettings& settings = CifParserSettings());
    // The same for text already in memory; name stands for the file in messages.
    static CifTemplateFile from_text(std::string text, const std::string& name,
                                     const CifParserSettings& settings = CifParserSettings());

    bool ok() const { return problem_.empty(); }
    const std::string& problem() const { return problem_; }
    // The blocks' names in file order (empty when the file does not serve).
    std::vector<std::string> block_names() const;
    // The block of that name (case ignored), null when absent.
    THandle<CifDataBlock> block(const std::string& name) const;

private:
    THandle<Cif> cif_;
    std::string problem_;
};
