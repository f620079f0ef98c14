// SPDX-License-Identifier: MIT
// An operator list as written, with its operations and tabulated group, worked out once per process.
#include "cif/SpacegroupOperators.hpp"

#include <atomic>
#include <cstdint>
#include <gemmi/symmetry.hpp>
#include <stdexcept>
#include <unordered_map>

#include "cif/Spacegroup.hpp"

namespace {

std::string trimmed(const std::string& text) {
    std::size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return std::string();
    std::size_t last = text.find_last_not_of(" \t\r\n");
    return text.substr(first, last - first + 1);
}

std::unique_ptr<gemmi::GroupOps> from_triplets(const std::vector<std::string>& operators) {
    std::vector<gemmi::Op> ops;
    try {
        for (const std::string& text : operators) {
            gemmi::Op op = gemmi::parse_triplet(trimmed(text));
            if (op.det_rot() == 0) return nullptr;
            ops.push_back(op.wrap());
        }
    } catch (const std::exception&) {
        return nullptr;
    }
    if (ops.empty()) return nullptr;
    auto group = std::make_unique<gemmi::GroupOps>(gemmi::split_centering_vectors(ops));
    if (group->cen_ops.empty()) group->cen_ops.push_back({0, 0, 0});
    return group;
}

struct Lists {
    std::mutex mutex;
    std::unordered_map<std::string, std::shared_ptr<const SpacegroupOperators>> entries;
    std::atomic<std::size_t> lookups{0}, misses{0};
};

Lists& lists() {
    static Lists instance;
    return instance;
}

}  // namespace

SpacegroupOperators::SpacegroupOperators(std::vector<std::string> texts) : texts_(std::move(texts)) {}

SpacegroupOperators::~SpacegroupOperators() = default;

std::shared_ptr<const SpacegroupOperators> SpacegroupOperators::of(
    const std::vector<std::string_view>& texts) {
    // Each text's length in front of it keeps the lists apart.
    std::size_t size = 0;
    for (std::string_view text : texts) size += sizeof(std::uint32_t) + text.size();
    std::string key;
    key.reserve(size);
    for (std::string_view text : texts) {
        const auto length = static_cast<std::uint32_t>(text.size());
        key.append(reinterpret_cast<const char*>(&length), sizeof length);
        key += text;
    }
    Lists& all = lists();
    ++all.lookups;
    std::lock_guard<std::mutex> lock(all.mutex);
    auto found = all.entries.find(key);
    if (found != all.entries.end()) return found->second;
    ++all.misses;
    // The cache starts afresh when it has grown large; entries in use live on.
    if (all.entries.size() >= 4096) all.entries.clear();
    auto entry =
        std::make_shared<const SpacegroupOperators>(std::vector<std::string>(texts.begin(), texts.end()));
    all.entries.emplace(std::move(key), entry);
    return entry;
}

const gemmi::GroupOps* SpacegroupOperators::operations() const {
    std::call_once(operations_once_, [this] { operations_ = from_triplets(texts_); });
    return operations_.get();
}

const SpacegroupCache::Group& SpacegroupOperators::group(int number) const {
    std::call_once(group_once_, [this, number] { group_ = Spacegroup::from_operators(texts_, number); });
    return group_;
}

std::size_t SpacegroupOperators::lookups() { return lists().lookups; }

std::size_t SpacegroupOperators::misses() { return lists().misses; }
