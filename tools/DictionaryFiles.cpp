// SPDX-License-Identifier: MIT
// The dictionaries tessary-check uses: those of TESSARY_DICTIONARIES, then the command line's.
#include "tools/DictionaryFiles.hpp"

#include <algorithm>
#include <filesystem>

#include "cif/CifNames.hpp"

std::vector<std::string> DictionaryFiles::resolve(const char* environment,
                                                  const std::vector<std::string>& named) {
    namespace fs = std::filesystem;
    std::vector<std::string> files;
    std::string list = environment == nullptr ? std::string() : environment;
    std::size_t start = 0;
    while (start <= list.size()) {
        std::size_t stop = list.find(':', start);
        if (stop == std::string::npos) stop = list.size();
        std::string entry = list.substr(start, stop - start);
        start = stop + 1;
        if (entry.empty()) continue;
        std::error_code error;
        if (!fs::is_directory(entry, error)) {
            files.push_back(entry);
            continue;
        }
        std::vector<std::string> found;
        for (const fs::directory_entry& file : fs::directory_iterator(entry, error)) {
            if (file.is_regular_file(error) && cif_lowercase(file.path().extension().string()) == ".dic")
                found.push_back(file.path().string());
        }
        std::sort(found.begin(), found.end(), [](const std::string& a, const std::string& b) {
            return cif_lowercase(a) < cif_lowercase(b);
        });
        files.insert(files.end(), found.begin(), found.end());
    }
    files.insert(files.end(), named.begin(), named.end());
    return files;
}

THandle<CifDictionaryPool> DictionaryFiles::load(const std::vector<std::string>& files,
                                                 std::ostream& problems, bool& ok) {
    namespace fs = std::filesystem;
    ok = true;
    THandle<CifDictionaryPool> pool(new CifDictionaryPool());
    // A DDLm dictionary's imports may stand beside any of the dictionaries named.
    std::vector<std::string> directories;
    for (const std::string& file : files) {
        const std::string directory = fs::path(file).parent_path().string();
        if (std::find(directories.begin(), directories.end(), directory) == directories.end())
            directories.push_back(directory);
    }
    for (const std::string& file : files) {
        std::error_code error;
        if (!fs::is_regular_file(file, error)) {
            problems << "tessary-check: cannot read dictionary " << file << '\n';
            ok = false;
            continue;
        }
        THandle<CifConcreteDictionary> dictionary(new CifConcreteDictionary());
        THandle<CifErrorContainer> errors(new CifErrorContainer());
        dictionary->set_import_directories(directories);
        // Checking needs no explanations of the items (most of a dictionary's memory).
        dictionary->set_explanations_kept(false);
        dictionary->read_file(file, errors, nullptr);
        if (!errors->empty()) {
            problems << "tessary-check: errors loading dictionary " << file << '\n';
            for (const CifError& error : *errors) problems << "  " << error.complete_message() << '\n';
            ok = false;
            continue;
        }
        // The attribute dictionary of DDLm itself lies beside the core dictionary; nothing is checked against
        // it.
        if (dictionary->descriptor().defines_data_names()) pool->insert(dictionary);
    }
    return pool;
}
