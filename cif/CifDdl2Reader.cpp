// SPDX-License-Identifier: MIT
// Fills a concrete dictionary from DDL2 (mmCIF) text: categories, items, types, keys and links.
#include "cif/CifDdl2Reader.hpp"

#include <algorithm>
#include <cstdio>

#include "cif/Cif.hpp"
#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifDictionaryAttributes.hpp"
#include "cif/CifDictionaryText.hpp"
#include "cif/CifNames.hpp"

namespace {

std::string number_text(double value) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%g", value);
    return buffer;
}

using Contents = CifItemDefinition::Contents;
using Type = CifItemDefinition::Type;

// What a type code allows, from its name and primitive code (numb, char,
// uchar: char compared without case). Codes the table does not know take
// any value of their primitive code.
void classify(const std::string& code, const std::string& primitive, Type& type, Contents& contents) {
    const std::string name = cif_lowercase(code);
    const bool numb = cif_iequals(primitive, "numb");
    const bool uchar = cif_iequals(primitive, "uchar");
    type = Type::char_text;
    contents = Contents::any;
    if (numb && (name == "int" || name == "positive_int")) {
        type = Type::numb;
        contents = Contents::integer;
    } else if (numb && name == "float") {
        type = Type::numb;
        contents = Contents::real;
    } else if (name == "code" || name == "ucode" || name == "idname" || name == "name" || name == "uchar1" ||
               name == "uchar3" || name == "asym_id") {
        contents = uchar ? Contents::code : Contents::word;
    } else if (name == "yyyy-mm-dd") {
        contents = Contents::date;
    } else if (name.rfind("yyyy-mm-dd:", 0) == 0) {
        contents = Contents::date_time;
    } else if (name == "symop") {
        contents = Contents::symop;
    }
}

}  // namespace

CifDdl2Reader::CifDdl2Reader(CifConcreteDictionary& dictionary, THandle<CifErrorContainer> errors,
                             std::ostream* log)
    : dictionary_(dictionary), errors_(errors), log_(log) {}

void CifDdl2Reader::read(std::string text) {
    Cif cif;
    cif_read_dictionary_text(cif, std::move(text), errors_, log_);
    for (const THandle<CifDataBlock>& block : cif.blocks()) {
        CifDictionaryAttributes attributes(*block);
        if (dictionary_.descriptor_.name.empty()) {
            dictionary_.descriptor_.name = attributes.value("_dictionary.title");
            dictionary_.descriptor_.version = attributes.value("_dictionary.version");
        }
        read_type_list(*block);
        dictionary_.definitions_.reserve(dictionary_.definitions_.size() + block->save_frames().size());
        for (const THandle<CifDataBlock>& frame : block->save_frames()) {
            if (!frame->find("_category.id").is_null()) {
                read_category(*frame);
            } else if (!frame->find("_item.name").is_null()) {
                read_item(*frame);
            }
        }
    }
    if (dictionary_.definitions_.empty()) {
        if (!errors_.is_null()) errors_->add(CifError(CifError::not_a_dictionary, 1));
    }
    finish();
    if (log_ != nullptr) {
        *log_ << "Read dictionary " << dictionary_.descriptor_.text() << ": "
              << dictionary_.definitions_.size() << " definitions in " << dictionary_.categories_.size()
              << " categories\n";
    }
}

void CifDdl2Reader::read_type_list(const CifDataBlock& block) {
    CifDictionaryAttributes attributes(block);
    const std::vector<std::string> codes = attributes.values("_item_type_list.code");
    const std::vector<std::string> primitives = attributes.values("_item_type_list.primitive_code");
    for (std::size_t i = 0; i < codes.size(); ++i) {
        TypeCode type;
        classify(codes[i], i < primitives.size() ? primitives[i] : std::string(), type.type, type.contents);
        types_[cif_lowercase(codes[i])] = type;
    }
}

void CifDdl2Reader::read_category(const CifDataBlock& frame) {
    CifDictionaryAttributes attributes(frame);
    CifItemDefinition overview;
    overview.name = attributes.value("_category.id");
    overview.category = "category_overview";
    overview.type = Type::null;
    overview.type_text = "null";
    if (dictionary_.explanations_kept_) {
        CifItemDefinition::Notes notes;
        notes.definition = attributes.value("_category.description");
        overview.set_notes(std::move(notes));
    }
    overview.line = frame.line();
    keys_[cif_lowercase(overview.name)] = attributes.values("_category_key.name");
    category_names_.push_back(overview.name);
    dictionary_.add_definition(std::move(overview), errors_);
}

void CifDdl2Reader::read_item(const CifDataBlock& frame) {
    CifDictionaryAttributes attributes(frame);
    const std::vector<std::string> names = attributes.values("_item.name");
    const std::vector<std::string> categories = attributes.values("_item.category_id");
    const std::vector<std::string> mandatory = attributes.values("_item.mandatory_code");
    for (std::size_t i = 0; i < names.size() && i < mandatory.size(); ++i)
        if (cif_iequals(mandatory[i], "yes")) mandatory_.insert(cif_lowercase(names[i]));
    // The frame defines the item it is named after; the other names are
    // items sharing the definition unless they have a frame of their own.
    std::size_t own = 0;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (cif_iequals(names[i], frame.name())) own = i;
    }
    CifItemDefinition definition;
    definition.name = names[own];
    definition.line = frame.line();
    definition.category = own < categories.size() ? cif_lowercase(categories[own]) : std::string();
    if (definition.category.empty()) {
        // _category.item written as _category.item: the category is before the point.
        const std::size_t point = definition.name.find('.');
        if (point != std::string::npos)
            definition.category = cif_lowercase(definition.name.substr(1, point - 1));
    }
    definition.type_text = attributes.value("_item_type.code");
    if (!definition.type_text.empty()) {
        auto type = types_.find(cif_lowercase(definition.type_text));
        if (type == types_.end()) {
            classify(definition.type_text, std::string(), definition.type, definition.contents);
        } else {
            definition.type = type->second.type;
            definition.contents = type->second.contents;
        }
    }
    if (definition.contents == Contents::real)
        definition.uncertainty = CifItemDefinition::Uncertainty::allowed;
    if (cif_iequals(definition.type_text, "positive_int")) {
        definition.has_range = definition.has_minimum = true;
        definition.minimum = 1.0;
        definition.range_text = "1:";
    }
    const std::vector<std::string> values = attributes.values("_item_enumeration.value");
    // What only explains the item is not even read when it is not kept.
    const bool explained = dictionary_.explanations_kept_;
    const std::vector<std::string> details =
        explained ? attributes.values("_item_enumeration.detail") : std::vector<std::string>();
    for (std::size_t i = 0; i < values.size(); ++i)
        definition.enumerations.push_back(
            {values[i], explained && i < details.size() ? details[i] : std::string()});
    CifItemDefinition::Notes notes;
    if (explained) notes.enumeration_default = attributes.value("_item_default.value");
    // Several ranges are read as the one that holds them all.
    const std::vector<std::string> minima = attributes.values("_item_range.minimum");
    const std::vector<std::string> maxima = attributes.values("_item_range.maximum");
    if (!minima.empty() && minima.size() == maxima.size() && definition.type == Type::numb) {
        bool open_low = false, open_high = false;
        double low = 0.0, high = 0.0;
        bool valid = true;
        for (std::size_t i = 0; i < minima.size() && valid; ++i) {
            CifItemDefinition range;
            const std::string low_text = minima[i] == "." ? "" : minima[i];
            const std::string high_text = maxima[i] == "." ? "" : maxima[i];
            valid = CifDictionaryAttributes::read_range(low_text + ":" + high_text, true, range);
            open_low = open_low || !range.has_minimum;
            open_high = open_high || !range.has_maximum;
            if (range.has_minimum && (i == 0 || range.minimum < low)) low = range.minimum;
            if (range.has_maximum && (i == 0 || range.maximum > high)) high = range.maximum;
        }
        if (valid) {
            definition.has_range = true;
            definition.has_minimum = !open_low;
            definition.has_maximum = !open_high;
            definition.minimum = low;
            definition.maximum = high;
            definition.range_text = (open_low ? std::string() : minima.front()) + ":" +
                                    (open_high ? std::string() : maxima.back());
            if (minima.size() > 1) {
                definition.range_text.clear();
                if (!open_low) definition.range_text += number_text(low);
                definition.range_text += ":";
                if (!open_high) definition.range_text += number_text(high);
            }
        } else if (!errors_.is_null()) {
            errors_->add(CifError(CifError::dictionary_bad_range, frame.line(), definition.name));
        }
    }
    if (explained) {
        notes.units = attributes.value("_item_units.code");
        notes.definition = attributes.value("_item_description.description");
        const std::vector<std::string> cases = attributes.values("_item_examples.case");
        const std::vector<std::string> case_details = attributes.values("_item_examples.detail");
        for (std::size_t i = 0; i < cases.size(); ++i)
            notes.examples.push_back({cases[i], i < case_details.size() ? case_details[i] : std::string()});
        definition.set_notes(std::move(notes));
    }
    definition.aliases = attributes.values("_item_aliases.alias_name");
    definition.list = CifItemDefinition::List::both;

    const std::vector<std::string> children = attributes.values("_item_linked.child_name");
    const std::vector<std::string> parents = attributes.values("_item_linked.parent_name");
    for (std::size_t i = 0; i < children.size() && i < parents.size(); ++i)
        links_.emplace_back(children[i], parents[i]);

    const std::size_t index = dictionary_.definitions_.size();
    dictionary_.add_definition(std::move(definition), errors_);
    if (dictionary_.definitions_.size() == index) return;  // a duplicate
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i == own) continue;
        shared_.emplace_back(names[i], index);
        shared_categories_.emplace_back(names[i], i < categories.size() ? cif_lowercase(categories[i]) : "");
    }
}

void CifDdl2Reader::finish() {
    std::vector<CifItemDefinition>& definitions = dictionary_.definitions_;
    // Names defined only inside another item's frame take that definition.
    for (std::size_t i = 0; i < shared_.size(); ++i) {
        const auto& [name, source] = shared_[i];
        if (dictionary_.definition(name) != nullptr) continue;
        CifItemDefinition copy = definitions[source];
        copy.name = name;
        copy.aliases.clear();
        copy.category = shared_categories_[i].second;
        dictionary_.add_definition(std::move(copy), THandle<CifErrorContainer>());
    }
    for (const auto& [child, parent] : links_) {
        auto found = dictionary_.index_.find(cif_lowercase(child));
        if (found == dictionary_.index_.end()) continue;
        std::vector<std::string>& known = definitions[found->second].list_link_parent;
        if (std::find(known.begin(), known.end(), parent) == known.end()) known.push_back(parent);
    }
    for (CifItemDefinition& definition : definitions) {
        if (definition.is_category_overview()) continue;
        auto keys = keys_.find(definition.category);
        if (keys != keys_.end()) definition.category_keys = keys->second;
    }
    // A key item the dictionary makes mandatory must be in every loop of its category.
    for (const auto& [category, keys] : keys_) {
        for (const std::string& key : keys) {
            auto found = dictionary_.index_.find(cif_lowercase(key));
            if (found != dictionary_.index_.end() && mandatory_.count(cif_lowercase(key)) != 0)
                definitions[found->second].list_mandatory = true;
        }
    }
    dictionary_.add_aliases();
    dictionary_.categories_ = category_names_;
    dictionary_.index_members();
}
