// SPDX-License-Identifier: MIT
// The space groups already found, keyed by the operator lists or symbols that gave them.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <unordered_map>

// Finding the group that a list of operators forms means comparing it with
// every tabulated setting, which costs far more than reading a small file;
// files checked together mostly share a few groups. A cache keeps each
// answer under the caller's key (for operators, a normalised list that does
// not depend on their order or written form). Safe to share between threads.
class SpacegroupCache {
public:
    struct Group {
        std::string symbol;  // the suite symbol, or "Unknown"
        int number = 0;
        bool readable = true;  // whether every operator could be read
    };

    explicit SpacegroupCache(std::size_t capacity = 4096) : capacity_(capacity) {}

    // The group under key; on a miss find() gives it and it is kept (the
    // oldest answers are dropped all at once when capacity is reached).
    template <class Find>
    Group lookup(const std::string& key, const Find& find) {
        Group group;
        if (cached(key, group)) return group;
        // Found outside the lock: two threads may both find a new group once.
        group = find();
        keep(key, group);
        return group;
    }

    std::size_t hits() const;
    std::size_t misses() const;

    // The caches of the process that Spacegroup uses: normalised operator
    // lists (sorted, translations wrapped), where the tables are searched
    // (lists as written are SpacegroupOperators' entries).
    static SpacegroupCache& by_operators();
    // Symbols as written and the settings they name.
    static SpacegroupCache& by_name();

private:
    // The group kept under key (counted as a hit or a miss).
    bool cached(const std::string& key, Group& group);
    void keep(const std::string& key, const Group& group);

    mutable std::mutex mutex_;
    std::unordered_map<std::string, Group> groups_;
    std::size_t capacity_;
    std::size_t hits_ = 0;
    std::size_t misses_ = 0;
};
