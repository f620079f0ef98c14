// SPDX-License-Identifier: MIT
// An operator list as written, its operations and its tabulated group, found once per process.
#include "cif/SpacegroupOperators.hpp"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <functional>
#include <gemmi/symmetry.hpp>
#include <limits>
#include <optional>
#include <stdexcept>
#include <unordered_map>

#include "cif/CifTextStore.hpp"
#include "cif/Spacegroup.hpp"
#include "cif/SpacegroupTriplet.hpp"

namespace {

std::unique_ptr<gemmi::GroupOps> from_triplets(const std::vector<gemmi::Op>& ops) {
    if (ops.empty()) return nullptr;
    auto group = std::make_unique<gemmi::GroupOps>(gemmi::split_centering_vectors(ops));
    if (group->cen_ops.empty()) group->cen_ops.push_back({0, 0, 0});
    // Kept for the process: without the room the lists grew into.
    group->sym_ops.shrink_to_fit();
    group->cen_ops.shrink_to_fit();
    return group;
}

bool quoted(std::string_view text) {
    return text.size() >= 2 && (text.front() == '\'' || text.front() == '"') && text.back() == text.front();
}

struct Lists {
    std::mutex mutex;
    // Under a hash of the texts; the texts themselves tell entries apart.
    std::unordered_multimap<std::uint64_t, std::shared_ptr<const SpacegroupOperators>> entries;
    std::atomic<std::size_t> lookups{0}, misses{0};
};

// The bytes of a text of 1 to 8 bytes as one word, read without a loop:
// two overlapping halves, or three bytes of a short one.
std::uint64_t short_word(const char* p, std::size_t size) {
    if (size >= 4) {
        std::uint32_t first, last;
        std::memcpy(&first, p, 4);
        std::memcpy(&last, p + size - 4, 4);
        return (std::uint64_t(first) << 32) | last;
    }
    return (std::uint64_t(static_cast<unsigned char>(p[0])) << 16) |
           (std::uint64_t(static_cast<unsigned char>(p[size >> 1])) << 8) |
           static_cast<unsigned char>(p[size - 1]);
}

std::uint64_t word_at(const char* p) {
    std::uint64_t word;
    std::memcpy(&word, p, 8);
    return word;
}

// One text as one word: its length and, for a text of more than eight
// bytes, its first, middle and last eight (every byte of a text of up to
// 24, as triplets mostly are), mixed.
std::uint64_t word_of(std::string_view text) {
    const char* p = text.data();
    const std::size_t size = text.size();
    std::uint64_t word = size;
    if (size > 8) {
        word ^= word_at(p) * 0x9E3779B97F4A7C15ull;
        word ^= word_at(p + size / 2 - 4) * 0xC2B2AE3D27D4EB4Full;
        word ^= word_at(p + size - 8) * 0xC4CEB9FE1A85EC53ull;
    } else if (size > 0) {
        word ^= short_word(p, size) * 0xC4CEB9FE1A85EC53ull;
    }
    return word;
}

// A hash of the texts in order, one mixing step a text. Lists that differ
// only inside a longer text share a hash and are told apart by their texts.
std::uint64_t hash_of(const std::vector<std::string_view>& texts) {
    std::uint64_t hash = texts.size() * 0x9E3779B97F4A7C15ull;
    for (std::string_view text : texts) {
        hash = (hash ^ word_of(text)) * 0xFF51AFD7ED558CCDull;
        hash ^= hash >> 32;
    }
    return hash;
}

// Whether size bytes at a and at b are the same, a word at a time: the
// texts are short, too short for a call of memcmp to pay.
bool same_bytes(const char* a, const char* b, std::size_t size) {
    if (size >= 8) {
        if (size <= 16)  // most triplets: two words, overlapping
            return ((word_at(a) ^ word_at(b)) | (word_at(a + size - 8) ^ word_at(b + size - 8))) == 0;
        for (std::size_t at = 0; at + 8 < size; at += 8)
            if (word_at(a + at) != word_at(b + at)) return false;
        return word_at(a + size - 8) == word_at(b + size - 8);
    }
    if (size >= 4) {  // two halves, overlapping
        std::uint32_t a_first, b_first, a_last, b_last;
        std::memcpy(&a_first, a, 4);
        std::memcpy(&b_first, b, 4);
        std::memcpy(&a_last, a + size - 4, 4);
        std::memcpy(&b_last, b + size - 4, 4);
        return a_first == b_first && a_last == b_last;
    }
    for (std::size_t at = 0; at < size; ++at)
        if (a[at] != b[at]) return false;
    return true;
}

Lists& lists() {
    static Lists instance;
    return instance;
}

// The operations of the texts (blanks around each trimmed), or nothing
// when one cannot be read. Nothing is kept: a list reads its triplets when
// its operations and its group are first asked for, and a store of every
// triplet the process read would raise a run's peak memory by a third.
std::optional<std::vector<gemmi::Op>> read_all(const std::vector<std::string_view>& texts) {
    std::vector<gemmi::Op> ops;
    ops.reserve(texts.size());
    try {
        for (std::string_view text : texts) ops.push_back(SpacegroupOperators::read_triplet(text));
    } catch (const std::exception&) {
        return std::nullopt;
    }
    return ops;
}

std::string_view trimmed_view(std::string_view text) {
    auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    std::size_t first = 0, last = text.size();
    while (first < last && blank(text[first])) ++first;
    while (last > first && blank(text[last - 1])) --last;
    return text.substr(first, last - first);
}

}  // namespace

gemmi::GroupOps SpacegroupOperators::read_hall(const std::string& hall) {
    // The parts as the reading takes them: blanks (space, tab, "_") between
    // them, a change of basis in brackets at the end. The axis a part
    // leaves out follows from its place and the part before it.
    auto blank = [](char c) { return c == ' ' || c == '\t' || c == '_'; };
    const std::string_view text(hall.c_str());  // the reading stops at a NUL
    std::size_t at = 0;
    while (at < text.size() && blank(text[at])) ++at;
    if (at < text.size() && text[at] == '-') ++at;
    while (at < text.size() && blank(text[at])) ++at;
    if (at < text.size()) ++at;  // the lattice
    int place = 0;
    int previous = 0;
    for (;;) {
        while (at < text.size() && blank(text[at])) ++at;
        if (at >= text.size() || text[at] == '(') break;
        std::size_t end = at;
        while (end < text.size() && !blank(text[end])) ++end;
        const std::string_view part(text.data() + at, end - at);
        at = end;
        ++place;
        // A lone "1" followed by a space or the end is passed over unread.
        if (part == "1" && (end == text.size() || text[end] == ' ')) continue;
        const std::size_t order_at = part[0] == '-' ? 1 : 0;
        if (order_at >= part.size() || part[order_at] < '1' || part[order_at] > '6') break;  // refused below
        const int order = part[order_at] - '0';
        bool subscript = false, principal = false, diagonal = false;
        for (char c : part.substr(order_at + 1)) {
            subscript = subscript || (c >= '1' && c <= '5');
            principal = principal || c == 'x' || c == 'y' || c == 'z';
            diagonal = diagonal || c == '\'' || c == '"' || c == '*';
        }
        if (!principal && !diagonal)
            principal = place == 1 || (place == 2 && order == 2 && (previous == 2 || previous == 4));
        if (subscript && !principal) throw std::invalid_argument("screw without an axis in Hall symbol");
        previous = order;
    }
    // A change of basis written as x, y, z goes through the guarded reading
    // of such operators first (numbers beyond the integers, singular).
    if (at < text.size() && text[at] == '(') {
        const std::size_t close = text.find(')', at);
        const std::string_view basis =
            text.substr(at + 1, close == std::string_view::npos ? 0 : close - at - 1);
        if (basis.find(',') != std::string_view::npos) read_triplet(std::string(basis));
    }
    return gemmi::symops_from_hall(hall.c_str());
}

gemmi::Op SpacegroupOperators::read_triplet(std::string_view text) {
    gemmi::Op op;
    if (spacegroup_read_common_triplet(text, op)) return op;
    const std::string triplet(text);
    // Every number of the text times the denominator of the operations, all
    // added up, must stay an int: the reading adds them in ints.
    constexpr long long most = std::numeric_limits<int>::max() / 2;
    long long sum = 0;
    for (std::size_t i = 0; i < triplet.size();) {
        if (triplet[i] < '0' || triplet[i] > '9') {
            ++i;
            continue;
        }
        long long value = 0;
        for (; i < triplet.size() && triplet[i] >= '0' && triplet[i] <= '9'; ++i)
            value = std::min(value * 10 + (triplet[i] - '0'), most);
        sum = std::min(sum + value * gemmi::Op::DEN, most);
    }
    if (sum >= most) throw std::runtime_error("numbers out of range");
    op = gemmi::parse_triplet(triplet);
    // A determinant of entries up to 700 stays within an int.
    for (const auto& row : op.rot) {
        for (int entry : row) {
            if (entry > 700 || entry < -700) throw std::runtime_error("factors out of range");
        }
    }
    if (op.det_rot() == 0) throw std::runtime_error("singular operator");
    return op.wrap();
}

SpacegroupOperators::SpacegroupOperators(const std::vector<std::string_view>& texts) {
    std::size_t size = 0;
    for (std::string_view text : texts) size += sizeof(std::uint32_t) + text.size();
    texts_.reserve(size);
    count_ = texts.size();
    for (std::string_view text : texts) {
        const auto length = static_cast<std::uint32_t>(text.size());
        texts_.append(reinterpret_cast<const char*>(&length), sizeof length);
        texts_ += text;
        quoted_ = quoted_ || quoted(trimmed_view(text));
    }
}

bool SpacegroupOperators::holds(const std::vector<std::string_view>& texts) const {
    const std::string_view kept = texts_;
    std::size_t at = 0;
    for (std::string_view text : texts) {
        std::uint32_t length = 0;
        if (kept.size() - at < sizeof length) return false;
        std::memcpy(&length, kept.data() + at, sizeof length);
        at += sizeof length;
        if (kept.size() - at < length || length != text.size() ||
            !same_bytes(kept.data() + at, text.data(), length))
            return false;
        at += length;
    }
    return at == kept.size();
}

bool SpacegroupOperators::holds(const CifTextStore& store, const CifValueRef* values,
                                std::size_t count) const {
    // As many values as texts kept: each length read below lies within them.
    if (count != count_) return false;
    const char* kept = texts_.data();
    const char* const text = store.text().data();
    for (std::size_t n = 0; n < count; ++n) {
        const CifValueRef value = values[n];
        std::uint32_t length;
        std::memcpy(&length, kept, sizeof length);
        kept += sizeof length;
        const char* bytes;
        if (value.added()) {
            const std::string_view added = store.view(value);
            if (added.size() != length) return false;
            bytes = added.data();
        } else {
            if (value.length() != length) return false;
            bytes = text + value.offset;
        }
        if (!same_bytes(kept, bytes, length)) return false;
        kept += length;
    }
    return true;
}

std::vector<std::string> SpacegroupOperators::texts() const {
    std::vector<std::string> result;
    for (std::size_t at = 0; at < texts_.size();) {
        std::uint32_t length = 0;
        std::memcpy(&length, texts_.data() + at, sizeof length);
        at += sizeof length;
        result.emplace_back(texts_, at, length);
        at += length;
    }
    return result;
}

SpacegroupOperators::~SpacegroupOperators() = default;

std::shared_ptr<const SpacegroupOperators> SpacegroupOperators::of(
    const std::vector<std::string_view>& texts) {
    const std::uint64_t hash = hash_of(texts);
    Lists& all = lists();
    ++all.lookups;
    std::lock_guard<std::mutex> lock(all.mutex);
    auto [first, last] = all.entries.equal_range(hash);
    for (auto found = first; found != last; ++found)
        if (found->second->holds(texts)) return found->second;
    ++all.misses;
    // The cache starts afresh when it has grown large; entries in use live on.
    if (all.entries.size() >= 4096) all.entries.clear();
    auto entry = std::make_shared<const SpacegroupOperators>(texts);
    all.entries.emplace(hash, entry);
    return entry;
}

std::optional<std::vector<gemmi::Op>> SpacegroupOperators::triplets() const {
    std::vector<std::string_view> texts;
    for (std::size_t at = 0; at < texts_.size();) {
        std::uint32_t length = 0;
        std::memcpy(&length, texts_.data() + at, sizeof length);
        at += sizeof length;
        texts.push_back(trimmed_view(std::string_view(texts_).substr(at, length)));
        at += length;
    }
    return read_all(texts);
}

const gemmi::GroupOps* SpacegroupOperators::operations() const {
    std::call_once(operations_once_, [this] {
        if (const std::optional<std::vector<gemmi::Op>> ops = triplets()) operations_ = from_triplets(*ops);
    });
    return operations_.get();
}

const SpacegroupCache::Group& SpacegroupOperators::group(int number) const {
    std::call_once(group_once_, [this, number] {
        // Without quotes both readings read the same triplets: read once
        // for both when the operations are not made yet.
        if (quoted_) {
            group_ = Spacegroup::from_operators(texts(), number);
        } else if (const std::optional<std::vector<gemmi::Op>> ops = triplets()) {
            std::call_once(operations_once_, [this, &ops] { operations_ = from_triplets(*ops); });
            group_ = Spacegroup::from_operations(*ops, number);
        } else {
            std::call_once(operations_once_, [] {});  // none: one cannot be read
            group_ = Spacegroup::unreadable();
        }
    });
    return group_;
}

std::size_t SpacegroupOperators::lookups() { return lists().lookups; }

std::size_t SpacegroupOperators::misses() { return lists().misses; }
