// SPDX-License-Identifier: MIT
// The messages of a read or check in the order produced, counted by kind.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "cif/CifError.hpp"

// The messages of a read or check, in the order produced (text order for a
// read).
class CifErrorContainer {
public:
    using const_iterator = std::vector<CifError>::const_iterator;

    CifErrorContainer() = default;
    virtual ~CifErrorContainer() = default;

    void add(const CifError& error) { errors_.push_back(error); }
    void add(CifError&& error) { errors_.push_back(std::move(error)); }
    bool empty() const { return errors_.empty(); }
    std::size_t size() const { return errors_.size(); }
    const_iterator begin() const { return errors_.begin(); }
    const_iterator end() const { return errors_.end(); }
    const CifError& operator[](std::size_t n) const { return errors_[n]; }
    void clear() { errors_.clear(); }
    // The messages moved out, leaving none (for a caller that keeps them
    // and drops the document).
    std::vector<CifError> take() { return std::exchange(errors_, {}); }

    // How many messages have this type (0 remark, 1 warning, 2 error).
    int errors_of_type(CifError::ErrorType type) const;

private:
    std::vector<CifError> errors_;
};
