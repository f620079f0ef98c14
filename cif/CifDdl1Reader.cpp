// SPDX-License-Identifier: MIT
// Fills a concrete dictionary from DDL1 text: its descriptor and one definition per name.
#include "cif/CifDdl1Reader.hpp"

#include <algorithm>
#include <unordered_set>

#include "cif/Cif.hpp"
#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifDdl1Scan.hpp"
#include "cif/CifDictionaryAttributes.hpp"
#include "cif/CifNames.hpp"

namespace {

// The values of an attribute, looped or not ("?" and "." count as absent).
std::vector<std::string> values_of(const CifDataBlock& block, std::string_view tag) {
    std::vector<std::string> result;
    THandle<CifDataItem> item = block.find(tag);
    if (item.is_null()) return result;
    for (std::size_t n = 0; n < item->size(); ++n) result.emplace_back(item->value_view(n));
    return result;
}

std::string value_of(const CifDataBlock& block, std::string_view tag) {
    THandle<CifDataItem> item = block.find(tag);
    if (item.is_null() || !item->has_value()) return std::string();
    std::string_view value = item->value_view(0);
    if (!item->is_quoted(0) && (value == "?" || value == ".")) return std::string();
    return std::string(value);
}

int line_of(const CifDataBlock& block, std::string_view tag) {
    THandle<CifDataItem> item = block.find(tag);
    return item.is_null() || item->line() < 1 ? block.line() : item->line();
}

int line_of(const CifDataBlock& block) { return block.line(); }
std::string name_of(const CifDataBlock& block) { return block.name(); }

// The same for a block of a scanned text.
std::vector<std::string> values_of(const CifDdl1Scan::Block& block, std::string_view tag) {
    std::vector<std::string> result;
    const CifDdl1Scan::Item* item = block.find(tag);
    if (item == nullptr) return result;
    result.reserve(item->value_count);
    for (const CifDdl1Scan::Value& value : block.values(*item)) result.emplace_back(block.text(value));
    return result;
}

std::string value_of(const CifDdl1Scan::Block& block, std::string_view tag) {
    const CifDdl1Scan::Item* item = block.find(tag);
    if (item == nullptr || item->value_count == 0) return std::string();
    const CifDdl1Scan::Value& value = block.values(*item).front();
    const std::string_view text = block.text(value);
    if (!value.quoted && (text == "?" || text == ".")) return std::string();
    return std::string(text);
}

int line_of(const CifDdl1Scan::Block& block, std::string_view tag) {
    const CifDdl1Scan::Item* item = block.find(tag);
    return item == nullptr ? block.line : item->line;
}

int line_of(const CifDdl1Scan::Block& block) { return block.line; }
std::string name_of(const CifDdl1Scan::Block& block) { return std::string(block.name); }

}  // namespace

CifDdl1Reader::CifDdl1Reader(CifConcreteDictionary& dictionary, THandle<CifErrorContainer> errors,
                             std::ostream* log)
    : dictionary_(dictionary), errors_(errors), log_(log) {}

void CifDdl1Reader::error(int code, int line, std::string text, std::string detail) {
    if (errors_.is_null()) return;
    errors_->add(CifError(static_cast<CifError::ErrorID>(code), line + line_offset_, std::move(text),
                          std::move(detail)));
}

namespace {

// Where the pieces of a DDL1 text start: before a data_ heading at the start
// of a line outside text fields, once the piece before holds at least
// `size` bytes; with the number of lines before each.
std::vector<std::pair<std::size_t, int>> piece_starts(std::string_view text, std::size_t size) {
    std::vector<std::pair<std::size_t, int>> starts{{0, 0}};
    bool in_text = false;
    bool headed = false;
    int lines = 0;
    for (std::size_t at = 0; at < text.size(); ++lines) {
        std::size_t end = text.find('\n', at);
        if (end == std::string_view::npos) end = text.size();
        const std::string_view line = text.substr(at, end - at);
        if (!line.empty() && line.front() == ';') {
            in_text = !in_text;
        } else if (!in_text && cif_istarts_with(line, "data_")) {
            if (headed && at - starts.back().first >= size) starts.emplace_back(at, lines);
            headed = true;
        }
        at = end + 1;
    }
    return starts;
}

}  // namespace

void CifDdl1Reader::read(std::string text, std::size_t piece_size) {
    if (piece_size != 0 && read_scanned(text)) {
        std::string().swap(text);
    } else if (piece_size == 0 || !read_in_pieces(text, piece_size)) {
        read_whole(std::move(text));
    } else {
        std::string().swap(text);
        dictionary_.definitions_.shrink_to_fit();
    }
    line_offset_ = 0;
    if (dictionary_.definitions_.empty()) error(CifError::not_a_dictionary, 1);
    build_categories();
    if (log_ != nullptr) {
        *log_ << "Read dictionary " << dictionary_.descriptor_.text() << ": "
              << dictionary_.definitions_.size() << " data names in " << dictionary_.categories_.size()
              << " categories\n";
    }
}

CifParserSettings CifDdl1Reader::settings() {
    CifParserSettings settings;
    settings.line_length = 0;
    settings.check_data_names = false;
    return settings;
}

void CifDdl1Reader::read_whole(std::string text) {
    Cif cif;
    cif.read_text(std::move(text), settings());
    // Only errors of the text make the dictionary unfit; remarks and
    // warnings (a missing final line end, say) go to the log.
    for (const CifError& problem : *cif.errors()) {
        if (problem.type() == CifError::error && !errors_.is_null()) {
            errors_->add(problem);
        } else if (log_ != nullptr) {
            *log_ << problem.complete_message() << '\n';
        }
    }
    // One definition per name (a block may loop several): reserved at once,
    // so that the list is never held twice while it grows (the peak of a
    // checking run that loads the dictionary).
    std::size_t names = 0;
    for (const THandle<CifDataBlock>& block : cif.blocks()) {
        THandle<CifDataItem> name = block->find("_name");
        names += name.is_null() ? 0 : name->size();
    }
    dictionary_.definitions_.reserve(names);
    read_blocks(cif);
}

bool CifDdl1Reader::read_scanned(const std::string& text) {
    CifDdl1Scan scan;
    if (!scan.scan(text)) return false;
    std::size_t names = 0;
    for (const CifDdl1Scan::Block& block : scan.blocks()) {
        const CifDdl1Scan::Item* name = block.find("_name");
        names += name == nullptr ? 0 : name->value_count;
    }
    dictionary_.definitions_.reserve(names);
    dictionary_.index_.reserve(names);
    for (const CifDdl1Scan::Block& block : scan.blocks()) {
        if (cif_iequals(block.name, "on_this_dictionary")) {
            read_descriptor(block);
        } else {
            read_definition(block);
        }
    }
    return true;
}

bool CifDdl1Reader::read_in_pieces(const std::string& text, std::size_t piece_size) {
    // Pieces read alike only where lines end in LF alone and quoted values
    // cannot span lines (CIF 1.1).
    if (text.find('\r') != std::string::npos || cif_istarts_with(text, "#\\#CIF_2")) return false;
    const std::vector<std::pair<std::size_t, int>> starts = piece_starts(text, piece_size);
    if (starts.size() < 2) return false;
    // The dictionary's own errors wait until every piece has read cleanly.
    THandle<CifErrorContainer> errors = errors_;
    if (!errors.is_null()) errors_ = THandle<CifErrorContainer>(new CifErrorContainer());
    std::unordered_set<std::string> block_names;
    bool clean = true;
    for (std::size_t n = 0; clean && n < starts.size(); ++n) {
        const std::size_t end = n + 1 < starts.size() ? starts[n + 1].first : text.size();
        Cif cif;
        cif.read_text(text.substr(starts[n].first, end - starts[n].first), settings());
        clean = cif.errors()->empty();
        for (const THandle<CifDataBlock>& block : cif.blocks())
            clean = clean && block_names.insert(cif_lowercase(block->name())).second;
        if (!clean) break;
        line_offset_ = starts[n].second;
        read_blocks(cif);
    }
    line_offset_ = 0;
    THandle<CifErrorContainer> own = errors_;
    errors_ = errors;
    if (!clean) {
        // The whole text is read again, as one, for its messages.
        dictionary_.descriptor_ = CifDictionaryDescriptor();
        std::vector<CifItemDefinition>().swap(dictionary_.definitions_);
        dictionary_.index_.clear();
        return false;
    }
    if (!errors_.is_null())
        for (const CifError& problem : *own) errors_->add(problem);
    return true;
}

void CifDdl1Reader::read_blocks(const Cif& cif) {
    for (const THandle<CifDataBlock>& block : cif.blocks()) {
        if (cif_iequals(block->name(), "on_this_dictionary")) {
            read_descriptor(*block);
        } else {
            read_definition(*block);
        }
    }
}

template <typename Block>
void CifDdl1Reader::read_descriptor(const Block& block) {
    dictionary_.descriptor_.name = value_of(block, "_dictionary_name");
    dictionary_.descriptor_.version = value_of(block, "_dictionary_version");
    dictionary_.descriptor_.date = value_of(block, "_dictionary_update");
}

template <typename Block>
void CifDdl1Reader::read_definition(const Block& block) {
    std::vector<std::string> names = values_of(block, "_name");
    if (names.empty()) {
        error(CifError::definition_without_name, line_of(block), name_of(block));
        return;
    }
    CifItemDefinition definition;
    definition.line = line_of(block) + line_offset_;
    if (!read_attributes(block, definition)) return;
    for (std::size_t i = 0; i + 1 < names.size(); ++i) {
        CifItemDefinition copy = definition;
        copy.name = std::move(names[i]);
        add_definition(std::move(copy), line_of(block));
    }
    definition.name = std::move(names.back());
    add_definition(std::move(definition), line_of(block));
}

template <typename Block>
bool CifDdl1Reader::read_attributes(const Block& block, CifItemDefinition& definition) {
    std::string label = value_of(block, "_name");
    if (label.empty()) label = name_of(block);
    definition.category = cif_lowercase(value_of(block, "_category"));

    definition.type_text = value_of(block, "_type");
    if (definition.type_text == "numb") {
        definition.type = CifItemDefinition::Type::numb;
    } else if (definition.type_text == "char" || definition.type_text.empty()) {
        definition.type = CifItemDefinition::Type::char_text;
    } else if (definition.type_text == "null") {
        definition.type = CifItemDefinition::Type::null;
    } else {
        error(CifError::dictionary_unknown_type, line_of(block, "_type"), label, definition.type_text);
    }
    for (const std::string& condition : values_of(block, "_type_conditions")) {
        if (cif_iequals(condition, "esd") || cif_iequals(condition, "su"))
            definition.uncertainty = CifItemDefinition::Uncertainty::allowed;
    }

    // What only explains the item is not even read when it is not kept.
    const bool explained = dictionary_.explanations_kept_;
    std::vector<std::string> values = values_of(block, "_enumeration");
    std::vector<std::string> details =
        explained ? values_of(block, "_enumeration_detail") : std::vector<std::string>();
    for (std::size_t i = 0; i < values.size(); ++i) {
        definition.enumerations.push_back(
            {values[i], explained && i < details.size() ? details[i] : std::string()});
    }
    CifItemDefinition::Notes notes;
    if (explained) notes.enumeration_default = value_of(block, "_enumeration_default");

    definition.range_text = value_of(block, "_enumeration_range");
    if (!definition.range_text.empty()) {
        const bool valid = CifDictionaryAttributes::read_range(
            definition.range_text, definition.type == CifItemDefinition::Type::numb, definition);
        if (valid) {
            definition.has_range = true;
        } else {
            error(CifError::dictionary_bad_range, line_of(block, "_enumeration_range"), label,
                  definition.range_text);
        }
    }

    std::string list = value_of(block, "_list");
    if (list.empty() || cif_iequals(list, "no")) {
        definition.list = CifItemDefinition::List::no;
    } else if (cif_iequals(list, "yes")) {
        definition.list = CifItemDefinition::List::yes;
    } else if (cif_iequals(list, "both")) {
        definition.list = CifItemDefinition::List::both;
    } else {
        error(CifError::dictionary_bad_range, line_of(block, "_list"), label, "_list " + list);
    }
    definition.list_reference = values_of(block, "_list_reference");
    definition.list_mandatory = cif_iequals(value_of(block, "_list_mandatory"), "yes");
    definition.list_link_parent = values_of(block, "_list_link_parent");
    if (explained) {
        notes.list_link_child = values_of(block, "_list_link_child");
        notes.units = value_of(block, "_units");
        notes.units_detail = value_of(block, "_units_detail");
        std::vector<std::string> examples = values_of(block, "_example");
        std::vector<std::string> example_details = values_of(block, "_example_detail");
        for (std::size_t i = 0; i < examples.size(); ++i) {
            notes.examples.push_back({examples[i], i < example_details.size() ? example_details[i] : ""});
        }
    }
    std::vector<std::string> related = values_of(block, "_related_item");
    std::vector<std::string> functions = values_of(block, "_related_function");
    for (std::size_t i = 0; i < related.size(); ++i) {
        definition.related.push_back({related[i], i < functions.size() ? functions[i] : ""});
    }
    // The explanation tells whether the codes may run together.
    std::string text = explained || !definition.enumerations.empty() ? value_of(block, "_definition") : "";
    definition.enumeration_concatenated =
        !definition.enumerations.empty() && text.find("concatenated") != std::string::npos &&
        std::all_of(definition.enumerations.begin(), definition.enumerations.end(),
                    [](const CifEnumeration& entry) { return entry.value.size() == 1; });
    if (explained) {
        notes.definition = std::move(text);
        definition.set_notes(std::move(notes));
    }
    return true;
}

void CifDdl1Reader::add_definition(CifItemDefinition&& definition, int line) {
    auto [found, inserted] =
        dictionary_.index_.emplace(cif_lowercase(definition.name), dictionary_.definitions_.size());
    if (!inserted) {
        error(CifError::dictionary_duplicate_definition, line, definition.name,
              std::to_string(dictionary_.definitions_[found->second].line));
        return;
    }
    dictionary_.definitions_.push_back(std::move(definition));
}

void CifDdl1Reader::build_categories() {
    std::vector<CifItemDefinition>& definitions = dictionary_.definitions_;
    std::unordered_set<std::string> known;
    for (const CifItemDefinition& definition : definitions) {
        if (!definition.is_category_overview()) continue;
        dictionary_.categories_.push_back(definition.name);
        known.insert(CifDictionary::plain_category_name(definition.name));
    }
    for (std::size_t i = 0; i < definitions.size(); ++i) {
        const std::string& category = definitions[i].category;
        if (category.empty()) continue;
        dictionary_.members_[category].push_back(i);
        if (!definitions[i].is_category_overview() && known.insert(category).second) {
            dictionary_.categories_.push_back("_" + category + "_[]");
            if (log_ != nullptr)
                *log_ << "Remark: Line " << definitions[i].line << " : category " << category << " of "
                      << definitions[i].name << " has no overview definition\n";
        }
    }
}
