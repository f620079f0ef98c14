// SPDX-License-Identifier: MIT
// The command line of tessary-check read into options, and its usage text.
#include "tools/CheckOptions.hpp"

#include <charconv>

namespace {

bool read_number(const std::string& text, int minimum, int& out) {
    int value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < minimum) return false;
    out = value;
    return true;
}

}  // namespace

CheckOptions CheckOptions::parse(const std::vector<std::string_view>& arguments) {
    CheckOptions options;
    options.files.reserve(arguments.size());
    bool only_files = false;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string_view view = arguments[i];
        if (only_files || view == "-" || view.empty() || view[0] != '-') {
            options.files.push_back(view);
            continue;
        }
        const std::string argument(view);
        // "--name=value" and "--name value" are both accepted.
        std::string name = argument;
        std::string value;
        bool has_value = false;
        std::size_t equals = argument.find('=');
        if (argument.rfind("--", 0) == 0 && equals != std::string::npos) {
            name = argument.substr(0, equals);
            value = argument.substr(equals + 1);
            has_value = true;
        } else if (argument.size() > 2 && argument[0] == '-' && (argument[1] == 'j' || argument[1] == 'd')) {
            name = argument.substr(0, 2);
            value = argument.substr(2);
            has_value = true;
        }
        auto take_value = [&]() {
            if (has_value) return true;
            if (i + 1 >= arguments.size()) return false;
            value = std::string(arguments[++i]);
            return true;
        };
        if (name == "--") {
            only_files = true;
        } else if (name == "--json") {
            options.json = true;
        } else if (name == "--help" || name == "-h") {
            options.help = true;
        } else if (name == "--version") {
            options.version = true;
        } else if (name == "--line-length") {
            if (!take_value() || !read_number(value, 0, options.line_length)) {
                options.problem = "--line-length needs a number of characters (0 for no limit of our own)";
            }
        } else if (name == "-j" || name == "--jobs") {
            if (!take_value() || !read_number(value, 1, options.jobs)) {
                options.problem = "-j needs a number of threads, at least 1";
            }
        } else if (name == "-d" || name == "--dictionary") {
            if (!take_value() || value.empty()) {
                options.problem = "-d needs the name of a dictionary file";
            } else {
                options.dictionaries.push_back(value);
            }
        } else if (name == "--mandatory") {
            if (!take_value() || value.empty()) {
                options.problem = "--mandatory needs the name of a mandatory-items file";
            } else {
                options.mandatory_file = value;
            }
        } else if (name == "--no-consistency") {
            options.consistency = false;
        } else {
            options.problem = "unknown option " + argument;
        }
        if (!options.problem.empty()) return options;
    }
    if (options.files.empty() && !options.help && !options.version) options.problem = "no file named";
    return options;
}

const char* CheckOptions::usage() {
    return "Usage: tessary-check [options] FILE...\n"
           "Checks CIF files (CIF 1.1, or CIF 2.0 when a file starts with #\\#CIF_2.0) and prints one line "
           "per\n"
           "message, FILE:LINE: error|warning|remark [CODE]: message, then a summary line per file.\n"
           "A FILE of - reads standard input.\n"
           "\n"
           "Options:\n"
           "  -d FILE, --dictionary FILE\n"
           "                    check data names and values against a dictionary, DDL1, DDLm or DDL2 "
           "(repeatable);\n"
           "                    TESSARY_DICTIONARIES (files or directories of *.dic, separated by :)\n"
           "                    adds dictionaries before these\n"
           "  --mandatory FILE  report the data items a mandatory-items file lists and a file lacks\n"
           "                    (sections data_all, data_publication, data_crystal)\n"
           "  --no-consistency  skip the cross-checks of values (cell volume, density, formula,\n"
           "                    space group, counts, atom labels)\n"
           "  --json            print the messages and counts as JSON\n"
           "  --line-length N   report lines longer than N characters (default 80; 0: only CIF's 2048)\n"
           "  -j N, --jobs N    check N files at a time (default: one per processor core)\n"
           "  -h, --help        print this text\n"
           "  --version         print the version\n"
           "  --                the arguments after it are files, even when they begin with -\n"
           "\n"
           "Exit status: 0 when no file has errors, 1 when any file has errors, 2 on a usage or I/O "
           "problem.\n"
           "The codes are explained in docs/errors.md.\n";
}
