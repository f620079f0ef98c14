// SPDX-License-Identifier: MIT
// Fills a concrete dictionary from DDLm text, with the definitions it imports.
#include "cif/CifDdlmReader.hpp"

#include <cstdlib>

#include "cif/Cif.hpp"
#include "cif/CifCompoundValue.hpp"
#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifDictionaryAttributes.hpp"
#include "cif/CifDictionaryText.hpp"
#include "cif/CifNames.hpp"

namespace {

using Contents = CifItemDefinition::Contents;
using Container = CifItemDefinition::Container;

// How deep imports may nest (a template that imports a template ...).
constexpr int max_import_depth = 8;

Contents contents_of(std::string_view text) {
    struct Entry {
        const char* name;
        Contents contents;
    };
    static constexpr Entry table[] = {
        {"real", Contents::real},   {"integer", Contents::integer}, {"count", Contents::count},
        {"index", Contents::count}, {"word", Contents::word},       {"code", Contents::code},
        {"name", Contents::word},   {"tag", Contents::word},        {"uri", Contents::word},
        {"iri", Contents::word},    {"date", Contents::date},       {"datetime", Contents::date_time},
        {"symop", Contents::symop},
    };
    for (const Entry& entry : table) {
        if (cif_iequals(text, entry.name)) return entry.contents;
    }
    return Contents::any;  // Text, Complex, Implied, ByReference, Version, ...
}

Container container_of(std::string_view text) {
    if (cif_iequals(text, "List")) return Container::list;
    if (cif_iequals(text, "Matrix")) return Container::matrix;
    if (cif_iequals(text, "Array")) return Container::array;
    if (cif_iequals(text, "Table")) return Container::table;
    return Container::single;
}

// "[3,3]" or "[3]" -> 3, 3 or 3; anything else gives no sizes.
std::vector<std::size_t> dimension_of(std::string_view text) {
    std::vector<std::size_t> sizes;
    std::size_t value = 0;
    bool digits = false;
    for (char c : text) {
        if (c >= '0' && c <= '9') {
            value = value * 10 + static_cast<std::size_t>(c - '0');
            digits = true;
        } else if (c == ',' || c == ']') {
            if (digits) sizes.push_back(value);
            value = 0;
            digits = false;
        }
    }
    return sizes;
}

}  // namespace

CifDdlmReader::CifDdlmReader(CifConcreteDictionary& dictionary, THandle<CifErrorContainer> errors,
                             std::ostream* log, std::vector<std::string> directories)
    : dictionary_(dictionary), errors_(errors), log_(log), imports_(std::move(directories)) {}

void CifDdlmReader::error(int code, int line, std::string text, std::string detail) {
    if (errors_.is_null()) return;
    errors_->add(CifError(static_cast<CifError::ErrorID>(code), line, std::move(text), std::move(detail)));
}

void CifDdlmReader::read(std::string text, const std::string& directory) {
    Cif cif;
    cif_read_dictionary_text(cif, std::move(text), errors_, log_);
    if (!cif.blocks().empty()) {
        const CifDataBlock& head = *cif.blocks().front();
        CifDictionaryAttributes attributes(head);
        dictionary_.descriptor_.name = attributes.value("_dictionary.title");
        if (dictionary_.descriptor_.name.empty()) dictionary_.descriptor_.name = head.name();
        dictionary_.descriptor_.version = attributes.value("_dictionary.version");
        dictionary_.descriptor_.date = attributes.value("_dictionary.date");
        dictionary_.descriptor_.dictionary_class = attributes.value("_dictionary.class");
    }
    for (const THandle<CifDataBlock>& block : cif.blocks()) read_frames(*block, directory);
    if (dictionary_.definitions_.empty()) error(CifError::not_a_dictionary, 1);
    finish();
    if (log_ != nullptr) {
        *log_ << "Read dictionary " << dictionary_.descriptor_.text() << ": "
              << dictionary_.definitions_.size() << " definitions in " << dictionary_.categories_.size()
              << " categories\n";
    }
}

void CifDdlmReader::read_frames(const CifDataBlock& block, const std::string& directory) {
    dictionary_.definitions_.reserve(dictionary_.definitions_.size() + block.save_frames().size());
    for (const THandle<CifDataBlock>& frame : block.save_frames()) read_frame(*frame, directory);
}

void CifDdlmReader::read_frame(const CifDataBlock& frame, const std::string& directory) {
    Layers layers{&frame};
    gather(frame, directory, layers, 0);
    CifDictionaryAttributes attributes(layers);
    std::string id = attributes.value("_definition.id");
    if (id.empty()) id = frame.name();
    if (!cif_iequals(attributes.value("_definition.scope"), "Category")) {
        read_item(layers, id, frame.line());
        return;
    }
    const std::string key = cif_lowercase(id);
    if (category_index_.count(key) != 0) {
        error(CifError::dictionary_duplicate_definition, frame.line(), id);
        return;
    }
    category_index_.emplace(key, categories_.size());
    categories_.push_back({id, cif_lowercase(attributes.value("_name.category_id")),
                           attributes.value("_definition.class"), attributes.values("_category_key.name")});
    CifItemDefinition overview;
    overview.name = id;
    overview.category = "category_overview";
    overview.type = CifItemDefinition::Type::null;
    overview.type_text = "null";
    if (dictionary_.explanations_kept_) {
        CifItemDefinition::Notes notes;
        notes.definition = attributes.value("_description.text");
        overview.set_notes(std::move(notes));
    }
    overview.line = frame.line();
    dictionary_.add_definition(std::move(overview), errors_);
}

void CifDdlmReader::gather(const CifDataBlock& frame, const std::string& directory, Layers& layers,
                           int depth) {
    THandle<CifDataItem> imports = frame.find("_import.get");
    if (imports.is_null() || depth > max_import_depth) return;
    for (std::size_t n = 0; n < imports->size(); ++n) {
        CifCompoundValue value;
        if (!CifCompoundValue::parse(imports->value_view(n), value)) {
            error(CifError::dictionary_bad_range, imports->line(), frame.name(),
                  std::string(imports->value_view(n)));
            continue;
        }
        // A list of tables, or one table alone.
        std::vector<const CifCompoundValue*> specs;
        if (value.kind == CifCompoundValue::Kind::table) specs.push_back(&value);
        for (const CifCompoundValue& entry : value.entries) {
            if (value.kind == CifCompoundValue::Kind::list && entry.kind == CifCompoundValue::Kind::table)
                specs.push_back(&entry);
        }
        for (const CifCompoundValue* spec : specs) {
            auto text_of = [spec](const char* key, const char* fallback) {
                const CifCompoundValue* found = spec->find(key);
                return found == nullptr ? std::string(fallback) : found->text;
            };
            const std::string file_name = text_of("file", "");
            const std::string save = text_of("save", "");
            const bool full = cif_iequals(text_of("mode", "Contents"), "Full");
            const bool replace = cif_iequals(text_of("dupl", "Exit"), "Replace");
            const bool quiet = cif_iequals(text_of("miss", "Exit"), "Ignore");
            std::string problem;
            CifDdlmImports::File* file = imports_.find(file_name, directory, problem);
            if (file == nullptr) {
                if (!quiet)
                    error(CifError::dictionary_undefined_related_item, imports->line(), frame.name(),
                          problem);
                continue;
            }
            if (full) {
                import_full(*file);
                continue;
            }
            auto target = file->frames.find(cif_lowercase(save));
            if (target == file->frames.end()) {
                if (!quiet)
                    error(CifError::dictionary_undefined_related_item, imports->line(), frame.name(),
                          "frame " + save + " of " + file_name);
                continue;
            }
            Layers imported{target->second};
            gather(*target->second, file->directory, imported, depth + 1);
            layers.insert(replace ? layers.begin() : layers.end(), imported.begin(), imported.end());
        }
    }
}

void CifDdlmReader::import_full(CifDdlmImports::File& file) {
    if (file.fully_imported) return;
    file.fully_imported = true;
    for (const THandle<CifDataBlock>& block : file.cif->blocks()) read_frames(*block, file.directory);
}

void CifDdlmReader::read_item(const Layers& layers, const std::string& name, int line) {
    CifDictionaryAttributes attributes(layers);
    CifItemDefinition definition;
    definition.name = name;
    definition.line = line;
    definition.category = cif_lowercase(attributes.value("_name.category_id"));
    definition.type_text = attributes.value("_type.contents");
    definition.contents = contents_of(definition.type_text);
    definition.container = container_of(attributes.value("_type.container"));
    definition.dimension = dimension_of(attributes.value("_type.dimension"));
    const bool numeric = definition.contents == Contents::real || definition.contents == Contents::integer ||
                         definition.contents == Contents::count;
    definition.type = numeric && definition.container == Container::single
                          ? CifItemDefinition::Type::numb
                          : CifItemDefinition::Type::char_text;
    const std::string purpose = attributes.value("_type.purpose");
    if (cif_iequals(purpose, "Measurand")) definition.uncertainty = CifItemDefinition::Uncertainty::allowed;

    std::vector<std::string> states = attributes.values("_enumeration_set.state");
    // What only explains the item is not even read when it is not kept.
    const bool explained = dictionary_.explanations_kept_;
    std::vector<std::string> details =
        explained ? attributes.values("_enumeration_set.detail") : std::vector<std::string>();
    for (std::size_t i = 0; i < states.size(); ++i)
        definition.enumerations.push_back(
            {states[i], explained && i < details.size() ? details[i] : std::string()});
    CifItemDefinition::Notes notes;
    notes.enumeration_default = attributes.value("_enumeration.default");
    definition.range_text = attributes.value("_enumeration.range");
    if (!definition.range_text.empty()) {
        if (CifDictionaryAttributes::read_range(definition.range_text, numeric, definition)) {
            definition.has_range = true;
        } else {
            error(CifError::dictionary_bad_range, line, name, definition.range_text);
        }
    }
    if (definition.contents == Contents::count && !definition.has_range) {
        definition.has_range = definition.has_minimum = true;
        definition.minimum = 0.0;
        definition.range_text = "0:";
    }

    if (explained) {
        notes.units = attributes.value("_units.code");
        notes.definition = attributes.value("_description.text");
        std::vector<std::string> cases = attributes.values("_description_example.case");
        std::vector<std::string> case_details = attributes.values("_description_example.detail");
        for (std::size_t i = 0; i < cases.size(); ++i)
            notes.examples.push_back({cases[i], i < case_details.size() ? case_details[i] : std::string()});
    }
    for (const std::string& alias : attributes.values("_alias.definition_id"))
        if (!cif_iequals(alias, name)) definition.aliases.push_back(alias);
    for (const std::string& by : attributes.values("_definition_replaced.by"))
        if (by != "." && by != "?") definition.related.push_back({by, "replace"});
    // An SU names its measurand the same way, but only a link is a parent.
    const std::string linked = attributes.value("_name.linked_item_id");
    if (!linked.empty() && cif_iequals(purpose, "Link")) definition.list_link_parent.push_back(linked);
    if (!notes.enumeration_default.empty() || cif_iequals(attributes.value("_method.purpose"), "Evaluation"))
        derivable_.insert(cif_lowercase(name));
    if (explained) definition.set_notes(std::move(notes));
    dictionary_.add_definition(std::move(definition), errors_);
}

std::string CifDdlmReader::outermost_loop(std::size_t category) const {
    std::size_t at = category;
    for (int depth = 0; depth < 16; ++depth) {
        auto parent = category_index_.find(categories_[at].parent);
        if (parent == category_index_.end() ||
            !cif_iequals(categories_[parent->second].definition_class, "Loop"))
            break;
        at = parent->second;
    }
    return cif_lowercase(categories_[at].name);
}

void CifDdlmReader::finish() {
    std::vector<CifItemDefinition>& definitions = dictionary_.definitions_;
    for (CifItemDefinition& definition : definitions) {
        if (definition.is_category_overview()) continue;
        auto found = category_index_.find(definition.category);
        if (found == category_index_.end()) {
            definition.list = CifItemDefinition::List::both;
            if (log_ != nullptr && !definition.category.empty())
                *log_ << "Remark: Line " << definition.line << " : category " << definition.category << " of "
                      << definition.name << " has no definition\n";
            continue;
        }
        const Category& category = categories_[found->second];
        if (cif_iequals(category.definition_class, "Loop")) {
            definition.list = CifItemDefinition::List::both;
            definition.category_keys = category.keys;
            definition.loop_category = outermost_loop(found->second);
            if (definition.loop_category == definition.category) definition.loop_category.clear();
        } else {
            definition.list = CifItemDefinition::List::no;
        }
    }
    dictionary_.add_aliases();
    // A key a program cannot supply must be in every loop of its category.
    for (const Category& category : categories_) {
        if (!cif_iequals(category.definition_class, "Loop")) continue;
        for (const std::string& key : category.keys) {
            auto found = dictionary_.index_.find(cif_lowercase(key));
            if (found != dictionary_.index_.end() && derivable_.count(cif_lowercase(key)) == 0)
                definitions[found->second].list_mandatory = true;
        }
    }
    // A parent given in a file by an older name is the same parent.
    for (CifItemDefinition& definition : definitions) {
        if (definition.list_link_parent.empty()) continue;
        const CifItemDefinition* parent = dictionary_.definition(definition.list_link_parent.front());
        if (parent == nullptr) continue;
        definition.list_link_parent.front() = parent->name;
        for (const std::string& alias : parent->aliases) definition.list_link_parent.push_back(alias);
    }
    for (const Category& category : categories_) {
        if (cif_iequals(category.definition_class, "Set") || cif_iequals(category.definition_class, "Loop"))
            dictionary_.categories_.push_back(category.name);
    }
    dictionary_.index_members();
}
