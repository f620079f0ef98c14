// SPDX-License-Identifier: MIT
// A dictionary's definitions kept packed, each made into an object when first asked for.
#include "cif/CifDictionaryStore.hpp"

#include <cstring>

namespace {

// pack() and unpack() name every field of a definition: a new field must be
// added to both (the size tells when the struct changed).
static_assert(sizeof(CifItemDefinition) == 376, "CifDictionaryStore packs every field of CifItemDefinition");

// Writes a definition's fields one after another at `at`; with a null `at`
// only counts the bytes they take (so that the text is sized once).
class Writer {
public:
    explicit Writer(char* at) : at_(at) {}
    std::size_t written() const { return written_; }
    template <typename T>
    void raw(T value) {
        bytes(&value, sizeof value);
    }
    // A length or count: one byte below 255, else 255 and four bytes.
    void size(std::size_t value) {
        if (value < 255) {
            raw(static_cast<std::uint8_t>(value));
        } else {
            raw(std::uint8_t{255});
            raw(static_cast<std::uint32_t>(value));
        }
    }
    void text(const std::string& value) {
        size(value.size());
        bytes(value.data(), value.size());
    }
    void texts(const std::vector<std::string>& values) {
        size(values.size());
        for (const std::string& value : values) text(value);
    }

private:
    void bytes(const void* from, std::size_t count) {
        if (at_ != nullptr) std::memcpy(at_ + written_, from, count);
        written_ += count;
    }

    char* at_;
    std::size_t written_ = 0;
};

class Reader {
public:
    explicit Reader(const char* at) : at_(at) {}
    template <typename T>
    T raw() {
        T value;
        std::memcpy(&value, at_, sizeof value);
        at_ += sizeof value;
        return value;
    }
    std::size_t size() {
        const auto small = raw<std::uint8_t>();
        return small < 255 ? small : raw<std::uint32_t>();
    }
    std::string_view view() {
        const std::size_t length = size();
        std::string_view value(at_, length);
        at_ += length;
        return value;
    }
    std::string text() { return std::string(view()); }
    std::vector<std::string> texts() {
        std::vector<std::string> values(size());
        for (std::string& value : values) value = text();
        return values;
    }

private:
    const char* at_;
};

void pack(const CifItemDefinition& definition, Writer& put) {
    put.text(definition.name);
    put.texts(definition.aliases);
    put.text(definition.category);
    put.text(definition.type_text);
    put.size(definition.enumerations.size());
    for (const CifEnumeration& entry : definition.enumerations) {
        put.text(entry.value);
        put.text(entry.detail);
    }
    put.text(definition.range_text);
    put.raw(definition.minimum);
    put.raw(definition.maximum);
    put.texts(definition.list_reference);
    put.texts(definition.list_link_parent);
    put.size(definition.dimension.size());
    for (std::size_t size : definition.dimension) put.raw(static_cast<std::uint64_t>(size));
    put.texts(definition.category_keys);
    put.text(definition.loop_category);
    put.size(definition.related.size());
    for (const CifItemDefinition::Related& related : definition.related) {
        put.text(related.name);
        put.text(related.function);
    }
    put.raw(static_cast<std::int32_t>(definition.line));
    put.raw(definition.type);
    put.raw(definition.uncertainty);
    put.raw(definition.enumeration_concatenated);
    put.raw(definition.has_range);
    put.raw(definition.has_minimum);
    put.raw(definition.has_maximum);
    put.raw(definition.list);
    put.raw(definition.list_mandatory);
    put.raw(definition.contents);
    put.raw(definition.container);
}

}  // namespace

CifDictionaryStore::CifDictionaryStore(std::vector<CifItemDefinition> definitions)
    : objects_(new std::atomic<const CifItemDefinition*>[definitions.size()]) {
    starts_.reserve(definitions.size());
    bool any_notes = false;
    for (const CifItemDefinition& definition : definitions)
        any_notes = any_notes || definition.notes_ != nullptr;
    if (any_notes) notes_.reserve(definitions.size());
    // Counted first, then written into a text of the right size.
    Writer count(nullptr);
    for (const CifItemDefinition& definition : definitions) pack(definition, count);
    packed_.resize(count.written());
    Writer put(packed_.data());
    for (std::size_t i = 0; i < definitions.size(); ++i) {
        starts_.push_back(static_cast<std::uint32_t>(put.written()));
        pack(definitions[i], put);
        if (any_notes) notes_.push_back(std::move(definitions[i].notes_));
        objects_[i].store(nullptr, std::memory_order_relaxed);
    }
}

CifDictionaryStore::~CifDictionaryStore() {
    for (std::size_t i = 0; i < size(); ++i) delete objects_[i].load(std::memory_order_relaxed);
}

const CifItemDefinition& CifDictionaryStore::make(std::size_t index) const {
    std::lock_guard<std::mutex> lock(mutex_);
    if (const CifItemDefinition* made = objects_[index].load(std::memory_order_relaxed)) return *made;
    const CifItemDefinition* made = new CifItemDefinition(unpack(index));
    objects_[index].store(made, std::memory_order_release);
    return *made;
}

std::string_view CifDictionaryStore::name(std::size_t index) const {
    return Reader(packed_.data() + starts_[index]).view();
}

std::vector<std::string_view> CifDictionaryStore::names(std::size_t index) const {
    Reader get(packed_.data() + starts_[index]);
    std::vector<std::string_view> result{get.view()};
    for (std::size_t aliases = get.size(); aliases > 0; --aliases) result.push_back(get.view());
    return result;
}

std::string_view CifDictionaryStore::category(std::size_t index) const {
    Reader get(packed_.data() + starts_[index]);
    get.view();
    for (std::size_t aliases = get.size(); aliases > 0; --aliases) get.view();
    return get.view();
}

std::size_t CifDictionaryStore::made() const {
    std::size_t count = 0;
    for (std::size_t i = 0; i < size(); ++i) count += objects_[i].load(std::memory_order_acquire) != nullptr;
    return count;
}

CifItemDefinition CifDictionaryStore::unpack(std::size_t index) const {
    Reader get(packed_.data() + starts_[index]);
    CifItemDefinition definition;
    definition.name = get.text();
    definition.aliases = get.texts();
    definition.category = get.text();
    definition.type_text = get.text();
    definition.enumerations.resize(get.size());
    for (CifEnumeration& entry : definition.enumerations) {
        entry.value = get.text();
        entry.detail = get.text();
    }
    definition.range_text = get.text();
    definition.minimum = get.raw<double>();
    definition.maximum = get.raw<double>();
    definition.list_reference = get.texts();
    definition.list_link_parent = get.texts();
    definition.dimension.resize(get.size());
    for (std::size_t& size : definition.dimension) size = static_cast<std::size_t>(get.raw<std::uint64_t>());
    definition.category_keys = get.texts();
    definition.loop_category = get.text();
    definition.related.resize(get.size());
    for (CifItemDefinition::Related& related : definition.related) {
        related.name = get.text();
        related.function = get.text();
    }
    definition.line = get.raw<std::int32_t>();
    definition.type = get.raw<CifItemDefinition::Type>();
    definition.uncertainty = get.raw<CifItemDefinition::Uncertainty>();
    definition.enumeration_concatenated = get.raw<bool>();
    definition.has_range = get.raw<bool>();
    definition.has_minimum = get.raw<bool>();
    definition.has_maximum = get.raw<bool>();
    definition.list = get.raw<CifItemDefinition::List>();
    definition.list_mandatory = get.raw<bool>();
    definition.contents = get.raw<CifItemDefinition::Contents>();
    definition.container = get.raw<CifItemDefinition::Container>();
    if (!notes_.empty()) definition.notes_ = notes_[index];
    return definition;
}
