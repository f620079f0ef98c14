// SPDX-License-Identifier: MIT
// Reads CIF files in one process with the CIF library, gemmi or a line count.
//
// read_files reads CIF files one after the other in one process, the way a
// checker meets them, so that whole processes can be timed side by side.
//
//   read_files lines FILE...            read each file and count its lines (the floor)
//   read_files words FILE...            read each file and count its words between white space
//   read_files ours [--frames] FILE...  the CIF library's reader into its model
//   read_files gemmi FILE...            gemmi's CIF reader into its document
//   read_files write-refln FILE ROWS    a reflection loop of ROWS rows, 6 columns
//   read_files write-text FILE BLOCKS   blocks of 11 text fields each
//   read_files write-empty FILE BLOCKS  empty data blocks, one heading a line
//
// Each reading mode prints one line of counts, so that runs can be compared.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <gemmi/cif.hpp>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "../common/ReflectionRows.hpp"
#include "cif/Cif.hpp"
#include "cif/CifFileText.hpp"

namespace {

std::size_t count_lines(const std::string& file) {
    std::FILE* stream = std::fopen(file.c_str(), "rb");
    if (stream == nullptr) return 0;
    std::fseek(stream, 0, SEEK_END);
    long size = std::ftell(stream);
    std::fseek(stream, 0, SEEK_SET);
    std::string text(static_cast<std::size_t>(std::max(size, 0L)), '\0');
    std::size_t got = std::fread(text.data(), 1, text.size(), stream);
    std::fclose(stream);
    std::size_t lines = 0;
    const char* p = text.data();
    const char* end = p + got;
    while ((p = static_cast<const char*>(std::memchr(p, '\n', static_cast<std::size_t>(end - p)))) !=
           nullptr) {
        ++lines;
        ++p;
    }
    return lines;
}

// A plain white-space tokenizer, the yardstick of the reader's loop of plain
// values: the words of the file, a word being bytes between blanks, TABs and
// line ends, counted a byte at a time without a branch.
std::size_t count_words(const std::string& file) {
    std::string text;
    cif_read_file(file, text, std::size_t(1) << 30);
    unsigned char space[256] = {};
    for (unsigned char c : {' ', '\t', '\n', '\r'}) space[c] = 1;
    std::size_t words = 0;
    unsigned between = 1;
    for (const char c : text) {
        const unsigned blank = space[static_cast<unsigned char>(c)];
        words += between & (blank ^ 1u);
        between = blank;
    }
    return words;
}

std::size_t count_values(const CifDataBlock& block) {
    // Counted without making the items the block keeps as records.
    std::size_t values = block.value_count();
    for (const THandle<CifDataBlock>& frame : block.save_frames()) values += count_values(*frame);
    return values;
}

std::size_t count_values(const gemmi::cif::Block& block) {
    std::size_t values = 0;
    for (const gemmi::cif::Item& item : block.items) {
        if (item.type == gemmi::cif::ItemType::Pair) values += 1;
        if (item.type == gemmi::cif::ItemType::Loop) values += item.loop.values.size();
        if (item.type == gemmi::cif::ItemType::Frame) values += count_values(item.frame);
    }
    return values;
}

void write_refln(const std::string& path, long rows) {
    std::ofstream out(path, std::ios::binary);
    out << "data_r1abcsf\n_cell.entry_id 1ABC\n_cell.length_a 61.2\n_cell.length_b 75.4\n_cell.length_c "
           "98.1\nloop_\n_refln.index_h\n_refln.index_k\n_refln.index_l\n_refln.F_meas_au\n"
           "_refln.F_meas_sigma_au\n_refln.status\n";
    ReflectionRows generated;
    std::string chunk;
    for (long r = 0; r < rows; ++r) {
        chunk += generated.next();
        if (chunk.size() > (1 << 20)) {
            out << chunk;
            chunk.clear();
        }
    }
    out << chunk;
}

void write_text(const std::string& path, long blocks) {
    std::ofstream out(path, std::ios::binary);
    const char* prose =
        "The structure was solved by direct methods and refined by full-matrix\n"
        "least squares on F^2^. Hydrogen atoms were placed in calculated positions\n"
        "and refined with a riding model; 'quotes' and \"quotes\" appear here.\n";
    for (long b = 0; b < blocks; ++b) {
        out << "data_block" << b << "\n_publ_section_title\n;\nA report on compound " << b << "\n;\n";
        for (int i = 0; i < 10; ++i) out << "_publ_section_part_" << i << "\n;\n" << prose << ";\n";
        out << "_publ_contact_author_name 'A. N. Author'\n_journal_year 2024\n";
    }
}

void write_empty(const std::string& path, long blocks) {
    std::ofstream out(path, std::ios::binary);
    std::string chunk;
    for (long b = 0; b < blocks; ++b) {
        chunk.append("data_b").append(std::to_string(b)).append("\n");
        if (chunk.size() > (1 << 20)) {
            out << chunk;
            chunk.clear();
        }
    }
    out << chunk;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> args(argv + 1, argv + argc);
    if (args.size() == 3 && args[0] == "write-refln") {
        write_refln(args[1], std::atol(args[2].c_str()));
        return 0;
    }
    if (args.size() == 3 && args[0] == "write-empty") {
        write_empty(args[1], std::atol(args[2].c_str()));
        return 0;
    }
    if (args.size() == 3 && args[0] == "write-text") {
        write_text(args[1], std::atol(args[2].c_str()));
        return 0;
    }
    if (args.size() < 2) {
        std::fprintf(stderr, "usage: read_files lines|words|ours [--frames]|gemmi FILE...\n");
        return 2;
    }
    const std::string mode = args[0];
    std::size_t first = 1;
    CifParserSettings settings;
    settings.line_length = 0;  // no style warnings: the reading itself is measured
    if (args[1] == "--frames") {
        settings.allow_save_frames = true;
        ++first;
    }
    std::size_t count = 0;
    std::size_t errors = 0;
    // The last document of either reader is not freed: the process ends
    // with it, as a checker does (each earlier one is freed before the next).
    THandle<Cif> last_ours;
    std::unique_ptr<gemmi::cif::Document> last_gemmi;
    for (std::size_t i = first; i < args.size(); ++i) {
        if (mode == "lines") {
            count += count_lines(args[i]);
        } else if (mode == "words") {
            count += count_words(args[i]);
        } else if (mode == "ours") {
            // The file's bytes as tessary-check gets them: one read.
            std::string text;
            cif_read_file(args[i], text, std::size_t(1) << 30);
            THandle<Cif> cif(new Cif());
            cif->read_text(std::move(text), settings);
            for (const THandle<CifDataBlock>& block : cif->blocks().filled()) count += count_values(*block);
            errors += static_cast<std::size_t>(cif->errors()->errors_of_type(CifError::error));
            if (i + 1 == args.size()) last_ours = cif;
        } else if (mode == "gemmi") {
            try {
                auto document = std::make_unique<gemmi::cif::Document>(gemmi::cif::read_file(args[i]));
                for (const gemmi::cif::Block& block : document->blocks) count += count_values(block);
                if (i + 1 == args.size()) last_gemmi = std::move(document);
            } catch (const std::exception&) {
                ++errors;
            }
        } else {
            std::fprintf(stderr, "unknown mode %s\n", mode.c_str());
            return 2;
        }
    }
    std::printf("%s: %zu files, %zu %s, %zu with errors\n", mode.c_str(), args.size() - first, count,
                mode == "lines"   ? "lines"
                : mode == "words" ? "words"
                                  : "values",
                errors);
    std::fflush(stdout);
    std::_Exit(0);
}
