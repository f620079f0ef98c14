// SPDX-License-Identifier: MIT
// What identifies a dictionary file: its name, version and date.
#pragma once

#include <string>

// What identifies a dictionary file: its name, version and date as the
// dictionary states them (for DDL1, _dictionary_name, _dictionary_version
// and _dictionary_update of data_on_this_dictionary).
struct CifDictionaryDescriptor {
    std::string name;     // "cif_core.dic"
    std::string version;  // "2.4.5"
    std::string date;     // "2014-11-21"
    // DDLm _dictionary.class: "Instance" for a dictionary of data names,
    // "Reference" for the attribute dictionary of the language itself,
    // "Template" for imported attribute sets; empty for other languages.
    std::string dictionary_class;

    // Whether files are checked against it: not a DDLm reference or template dictionary.
    bool defines_data_names() const {
        return dictionary_class != "Reference" && dictionary_class != "Template";
    }

    // "cif_core.dic 2.4.5 (2014-11-21)"; parts the dictionary lacks are left out.
    std::string text() const;
    // Name and version with nothing between them ("cif_core.dic2.4.5"), the
    // key under which a program may remember whether the dictionary is enabled.
    std::string key() const { return name + version; }
};
