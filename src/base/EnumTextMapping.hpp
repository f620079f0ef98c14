// SPDX-License-Identifier: GPL-3.0-or-later
// A fixed table from an enumeration's values to the texts that name them in settings.
#pragma once

#include <QString>
#include <initializer_list>
#include <map>
#include <utility>
#include <vector>

#include "base/ORMALogQString.hpp"
#include "support/ORMALog.hpp"

// A fixed table from the values of an enumeration to texts. The texts name
// the values in settings keys ("styles/Comment/bold"), so they must never
// change once written by a released program.
template <class E>
class EnumTextMapping {
public:
    EnumTextMapping(std::initializer_list<std::pair<E, QString>> entries) {
        for (const auto& entry : entries) texts_[entry.first] = entry.second;
    }

    // The text of a value. A value without a text is a programming error: it
    // is logged as an internal error and a null text comes back.
    QString text(E value) const {
        const auto found = texts_.find(value);
        if (found != texts_.end()) return found->second;
        ORMALog::start_error_line() << "Internal Error: member " << static_cast<long long>(value)
                                    << " not in EnumTextMapping";
        ORMALog::end_error_line();
        return QString();
    }

    bool contains(E value) const { return texts_.find(value) != texts_.end(); }

    // Replaces the contents of `members` with every value of the table, in
    // ascending order.
    void all_members(std::vector<E>& members) const {
        members.clear();
        members.reserve(texts_.size());
        for (const auto& entry : texts_) members.push_back(entry.first);
    }

    std::size_t size() const { return texts_.size(); }

private:
    std::map<E, QString> texts_;
};
