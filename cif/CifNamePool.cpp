// SPDX-License-Identifier: MIT
// Data names kept once for the whole process, shared by the documents that use them.
#include "cif/CifNamePool.hpp"

#include "cif/CifNames.hpp"

CifNamePool& CifNamePool::shared() {
    // Never destroyed: documents of other static objects may still hold names at exit.
    static CifNamePool* pool = new CifNamePool;
    return *pool;
}

namespace {

// The names this thread found in the process's pool lately, by hash. The
// pool's names live as long as the process, so these never dangle.
constexpr std::size_t recent_count = 512;
constinit thread_local const CifKeptName* recent[recent_count] = {};

}  // namespace

const CifKeptName* CifNamePool::find_shared(std::string_view name, std::uint64_t hash) {
    const CifKeptName*& seen = recent[(hash >> 32) & (recent_count - 1)];
    if (seen != nullptr && seen->hash == hash && seen->text == name) return seen;
    const CifKeptName* kept = shared().find_or_add(name, hash);
    if (kept != nullptr) seen = kept;
    return kept;
}

const CifKeptName* CifNamePool::find_or_add(std::string_view name, std::uint64_t hash) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (slots_.empty()) slots_.resize(256);
    std::size_t mask = slots_.size() - 1;
    std::size_t i = hash & mask;
    for (; slots_[i] != nullptr; i = (i + 1) & mask) {
        if (slots_[i]->hash == hash && slots_[i]->text == name) return slots_[i];
    }
    if (names_.size() >= most_names_ || bytes_ + name.size() > most_bytes_) return nullptr;
    if ((names_.size() + 1) * 2 > slots_.size()) {
        std::vector<const CifKeptName*> grown(slots_.size() * 2, nullptr);
        mask = grown.size() - 1;
        for (const CifKeptName& kept : names_) {
            std::size_t j = kept.hash & mask;
            while (grown[j] != nullptr) j = (j + 1) & mask;
            grown[j] = &kept;
        }
        slots_.swap(grown);
        for (i = hash & mask; slots_[i] != nullptr;) i = (i + 1) & mask;
    }
    bytes_ += name.size();
    slots_[i] = &names_.emplace_back(CifKeptName{std::string(name), hash});
    return slots_[i];
}

std::size_t CifNamePool::size() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return names_.size();
}
