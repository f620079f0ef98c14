// SPDX-License-Identifier: MIT
// The files a DDLm dictionary imports from, each read once and found by name.
#include "cif/CifDdlmImports.hpp"

#include <filesystem>
#include <fstream>

#include "cif/CifNames.hpp"
#include "cif/CifStreamText.hpp"

std::string CifDdlmImports::join(const std::string& directory, const std::string& name) {
    if (directory.empty()) return name;
    return directory.back() == '/' ? directory + name : directory + "/" + name;
}

std::string CifDdlmImports::directory_of(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

CifDdlmImports::File* CifDdlmImports::find(const std::string& name, const std::string& from_directory,
                                           std::string& problem) {
    // A name given as an address is looked for by its last part.
    std::string base = name;
    if (name.find("://") != std::string::npos) base = name.substr(name.find_last_of('/') + 1);
    std::vector<std::string> candidates;
    if (!base.empty() && base.front() == '/') {
        candidates.push_back(base);
    } else {
        candidates.push_back(join(from_directory, base));
        for (const std::string& directory : directories_) candidates.push_back(join(directory, base));
    }
    std::error_code error;
    for (const std::string& candidate : candidates) {
        auto known = files_.find(candidate);
        if (known != files_.end()) return known->second.get();
        if (std::filesystem::is_regular_file(candidate, error)) return read(candidate, problem);
    }
    problem = "file " + name + " not found";
    return nullptr;
}

CifDdlmImports::File* CifDdlmImports::read(const std::string& path, std::string& problem) {
    std::ifstream stream(path, std::ios::binary);
    std::string text;
    if (!stream || !cif_read_stream(stream, text)) {
        problem = "file " + path + " cannot be read";
        return nullptr;
    }
    auto file = std::make_unique<File>();
    file->path = path;
    file->directory = directory_of(path);
    file->cif = THandle<Cif>(new Cif());
    CifParserSettings settings;
    settings.line_length = 0;
    settings.check_data_names = false;
    settings.check_values = false;
    settings.allow_save_frames = true;
    settings.max_name_length = 0;  // dictionaries define names of any length
    file->cif->read_text(std::move(text), settings);
    for (const THandle<CifDataBlock>& block : file->cif->blocks()) {
        for (const THandle<CifDataBlock>& frame : block->save_frames())
            file->frames.emplace(cif_lowercase(frame->name()), frame.get());
    }
    File* result = file.get();
    files_.emplace(path, std::move(file));
    return result;
}
