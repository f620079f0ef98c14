// SPDX-License-Identifier: MIT
// Data names kept once for the whole process, shared by the documents that use them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

// A data name as documents keep it, with its hash (cif_name_hash), so that
// indexes and dictionaries need not hash it again.
struct CifKeptName {
    std::string text;
    std::uint64_t hash;
};

// The data names documents use, each spelling kept once for the life of
// the process: the same few thousand names come back in file after file,
// and a document that finds its names here keeps no copies of its own.
// The pool takes only so many names (a file of millions of made-up names
// keeps them in its own store); what it holds is never changed or freed,
// so a name found here may be kept by anyone for as long as they like.
class CifNamePool {
public:
    explicit CifNamePool(std::size_t most_names = std::size_t(1) << 14,
                         std::size_t most_bytes = std::size_t(1) << 20)
        : most_names_(most_names), most_bytes_(most_bytes) {}
    CifNamePool(const CifNamePool&) = delete;
    CifNamePool& operator=(const CifNamePool&) = delete;

    // The pool of the process.
    static CifNamePool& shared();
    // shared().find_or_add(), first asking the names this thread found
    // there lately (without the pool's lock: most names come back in every
    // file).
    static const CifKeptName* find_shared(std::string_view name, std::uint64_t hash);

    // The name spelled exactly so, added when there is room; null when the
    // pool is full and does not have it. hash is cif_name_hash(name).
    const CifKeptName* find_or_add(std::string_view name, std::uint64_t hash);

    std::size_t size() const;

private:
    const std::size_t most_names_, most_bytes_;
    mutable std::mutex mutex_;
    std::deque<CifKeptName> names_;
    std::vector<const CifKeptName*> slots_;  // names_ by hash, at most half full
    std::size_t bytes_ = 0;
};
