// SPDX-License-Identifier: MIT
// The space groups already found, keyed by the operator lists or symbols that gave them.
#include "cif/SpacegroupCache.hpp"

bool SpacegroupCache::cached(const std::string& key, Group& group) {
    std::lock_guard<std::mutex> lock(mutex_);
    auto found = groups_.find(key);
    if (found == groups_.end()) {
        ++misses_;
        return false;
    }
    ++hits_;
    group = found->second;
    return true;
}

void SpacegroupCache::keep(const std::string& key, const Group& group) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (groups_.size() >= capacity_) groups_.clear();
    groups_.emplace(key, group);
}

std::size_t SpacegroupCache::hits() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return hits_;
}

std::size_t SpacegroupCache::misses() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return misses_;
}

SpacegroupCache& SpacegroupCache::by_operators() {
    static SpacegroupCache cache;
    return cache;
}

SpacegroupCache& SpacegroupCache::by_name() {
    static SpacegroupCache cache;
    return cache;
}
