// SPDX-License-Identifier: MIT
// The space groups already found, keyed by the operator lists or symbols that gave them.
#include "cif/SpacegroupCache.hpp"

SpacegroupCache::Group SpacegroupCache::lookup(const std::string& key, const std::function<Group()>& find) {
    {
        std::lock_guard<std::mutex> lock(mutex_);
        auto found = groups_.find(key);
        if (found != groups_.end()) {
            ++hits_;
            return found->second;
        }
        ++misses_;
    }
    // Found outside the lock: two threads may both find a new group once.
    Group group = find();
    std::lock_guard<std::mutex> lock(mutex_);
    if (groups_.size() >= capacity_) groups_.clear();
    groups_.emplace(key, group);
    return group;
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
