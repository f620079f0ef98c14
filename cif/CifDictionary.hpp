#pragma once

#include <string>

// A source of data-name definitions that documents are checked against.
// Data names are compared without regard to case. Concrete dictionaries
// (one file read into memory) and pools of several dictionaries derive
// from it; further queries (categories, types, enumerations) are added
// here as virtual members with the dictionaries that answer them.
class CifDictionary {
public:
    virtual ~CifDictionary() = default;

    // Whether the dictionary defines the data name (with its leading
    // underscore), compared without regard to case.
    virtual bool is_defined(const std::string& data_name) const = 0;

    // The code of the first problem of the value for the data name (0 when
    // acceptable); a looped value is checked as one entry of a column. A
    // dictionary that does not check values accepts every value.
    virtual int check_value(const std::string& data_name, const std::string& value, bool looped) const {
        (void)data_name;
        (void)value;
        (void)looped;
        return 0;
    }
};
