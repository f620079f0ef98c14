// SPDX-License-Identifier: MIT
// The files a DDLm dictionary imports from, each read once and found by name.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "cif/Cif.hpp"
#include "cif/CifDataBlock.hpp"

// The files a DDLm dictionary imports definitions from (_import.get), each
// read once however often it is named. A file is looked for beside the file
// that names it, then in the dictionary directories, in order.
class CifDdlmImports {
public:
    struct File {
        std::string path;
        std::string directory;
        THandle<Cif> cif;
        // Lower-case frame name -> frame, over every block of the file.
        std::unordered_map<std::string, const CifDataBlock*> frames;
        bool fully_imported = false;  // its definitions already joined the dictionary (Full mode)
    };

    explicit CifDdlmImports(std::vector<std::string> directories) : directories_(std::move(directories)) {}

    // The file of that name, read; null when it is found nowhere or is not
    // CIF (the reason goes to problem).
    File* find(const std::string& name, const std::string& from_directory, std::string& problem);

    // "dir/name", or name alone for an empty directory.
    static std::string join(const std::string& directory, const std::string& name);
    // The directory part of a path ("" for a bare name).
    static std::string directory_of(const std::string& path);

private:
    File* read(const std::string& path, std::string& problem);

    std::vector<std::string> directories_;
    std::unordered_map<std::string, std::unique_ptr<File>> files_;  // by path as found
};
