// SPDX-License-Identifier: MIT
// Collects the messages of one read up to a limit, so that non-CIF text cannot fill memory.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cif/CifError.hpp"

// Collects the messages of one read, up to a limit, so that a text that is
// not CIF at all cannot fill memory with messages.
class CifErrorSink {
public:
    explicit CifErrorSink(std::size_t limit) : limit_(limit) {}

    void add(CifError::ErrorID id, int line, std::string text = {}, std::string detail = {}) {
        if (errors_.size() >= limit_) {
            overflowed_ = true;
            return;
        }
        errors_.emplace_back(id, line, std::move(text), std::move(detail));
    }

    // A message whose text is a name the process keeps (see CifError).
    void add(CifError::ErrorID id, int line, const CifKeptName& kept_text, std::string detail) {
        if (errors_.size() >= limit_) {
            overflowed_ = true;
            return;
        }
        errors_.emplace_back(id, line, kept_text, std::move(detail));
    }

    void add(CifError error) {
        if (errors_.size() >= limit_) {
            overflowed_ = true;
            return;
        }
        errors_.push_back(std::move(error));
    }

    // Whether further messages are dropped.
    bool full() const { return errors_.size() >= limit_; }
    std::vector<CifError>& errors() { return errors_; }
    bool overflowed() const { return overflowed_; }

private:
    std::size_t limit_;
    std::vector<CifError> errors_;
    bool overflowed_ = false;
};
