// SPDX-License-Identifier: MIT
// One dictionary file (DDL1, DDLm or DDL2) read into memory: its descriptor and definitions.
#pragma once

#include <atomic>
#include <cstdint>
#include <istream>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "cif/CifDictionary.hpp"
#include "cif/CifDictionaryDescriptor.hpp"
#include "cif/CifDictionaryStore.hpp"
#include "cif/CifErrorContainer.hpp"
#include "cif/CifItemDefinition.hpp"
#include "cif/CifNames.hpp"
#include "support/THandle.hpp"

// One dictionary file read into memory, in whichever definition language
// its content shows: DDL1 (the IUCr core dictionary cif_core.dic 2.x; see
// CifDdl1Reader), DDLm (the core dictionary 3.x, with the files it imports;
// CifDdlmReader) or DDL2 (mmCIF; CifDdl2Reader). All three answer the same
// queries; a DDLm or DDL2 dictionary also answers for the older names of
// its items (aliases).
class CifConcreteDictionary : public CifDictionary {
public:
    CifConcreteDictionary() = default;

    // Reads the dictionary text. Every problem goes into errors with its
    // line (an empty container afterwards means the dictionary is fit for
    // use); remarks that do not make the dictionary unfit (a category
    // without an overview, say) and a summary go to log when it is not
    // null. Earlier contents are dropped. Returns whether errors stayed empty.
    bool read(std::istream& stream, THandle<CifErrorContainer> errors, std::ostream* log = nullptr);
    // The same for a file; a DDLm dictionary's imports are looked for beside
    // it first. A file that cannot be opened is an error (code 301).
    bool read_file(const std::string& path, THandle<CifErrorContainer> errors, std::ostream* log = nullptr);
    // Where the files a DDLm dictionary imports are looked for (after the
    // directory of the file read by read_file), in order.
    void set_import_directories(std::vector<std::string> directories) {
        import_directories_ = std::move(directories);
    }

    // Whether the definitions read keep what only explains an item to a
    // person (CifItemDefinition::drop_explanations): the data-item help
    // needs them, checking does not, and they are most of a dictionary's
    // memory (kept by default; set before reading).
    void set_explanations_kept(bool kept) { explanations_kept_ = kept; }
    bool explanations_kept() const { return explanations_kept_; }

    // The definition language of the text read.
    enum class Language { ddl1, ddlm, ddl2 };
    Language language() const { return language_; }
    // The language a dictionary text is written in, told from its content.
    static Language language_of(std::string_view text);

    // Name, version and date of the dictionary (empty fields when the file
    // does not state them).
    const CifDictionaryDescriptor& descriptor() const { return descriptor_; }

    bool is_defined(const std::string& data_name) const override;
    const CifItemDefinition* definition(const std::string& data_name) const override;
    const CifItemDefinition* definition_hashed(const std::string& data_name,
                                               std::uint64_t name_hash) const override;
    bool has_definitions() const override { return definition_count() > 0; }
    bool has_aliases() const override { return has_aliases_; }
    bool defines_by_definitions() const override { return true; }
    std::string name() const override { return descriptor_.name; }
    std::vector<std::string> categories() const override { return categories_; }
    std::vector<std::string> category_items(const std::string& category) const override;
    std::vector<std::string> data_names() const override;
    std::vector<std::string> mandatory_items(const std::string& category) const override;
    std::vector<SimilarName> similar_names(std::string_view data_name, int max_edits) const override;
    const CifCategoryFacts* category_facts(const std::string& category) const override;

    // Every definition, in the dictionary's order (one per data name), by
    // its place: made when first asked for (see CifDictionaryStore).
    std::size_t definition_count() const { return store_ ? store_->size() : definitions_.size(); }
    const CifItemDefinition& definition_at(std::size_t index) const {
        return store_ ? (*store_)[index] : definitions_[index];
    }
    // How many definitions have been made into objects so far.
    std::size_t definitions_made() const { return store_ ? store_->made() : definitions_.size(); }

private:
    friend class CifDdl1Reader;
    friend class CifDdlmReader;
    friend class CifDdl2Reader;

    bool read_text(std::string text, const std::string& directory, THandle<CifErrorContainer> errors,
                   std::ostream* log);
    // Fills by_length_, the first time a similar name is looked for.
    void index_by_length() const;
    // Files every category with members under facts_, its facts worked out
    // the first time they are asked for.
    void gather_facts();
    // Fills lookup_ from index_ once the reading is done, and lets index_ go.
    void build_lookup();
    // Appends a definition; one of a name already defined is an error (350) and is dropped.
    void add_definition(CifItemDefinition definition, const THandle<CifErrorContainer>& errors);
    // Lets the definitions' aliases find them (a name defined itself keeps its own definition).
    void add_aliases();
    // Files every definition under its category (members_).
    void index_members();

    Language language_ = Language::ddl1;
    std::vector<std::string> import_directories_;
    bool explanations_kept_ = true;
    bool has_aliases_ = false;

    // A definition's data name, from whichever holds the definitions.
    std::string_view name_at(std::size_t index) const {
        return store_ ? store_->name(index) : std::string_view(definitions_[index].name);
    }

    CifDictionaryDescriptor descriptor_;
    // The definitions while the dictionary is read; then packed into store_.
    std::vector<CifItemDefinition> definitions_;
    std::unique_ptr<CifDictionaryStore> store_;
    std::vector<std::string> categories_;
    // Lower-case data name -> index into definitions_ while reading; looked
    // up without regard to case, so a query needs no lower-case copy.
    std::unordered_map<std::string, std::size_t, CifNameHash, CifNameEqual> index_;
    // The same as one flat table (open addressing, twice as many slots as
    // names), which definition() searches once the reading is done (index_
    // is then let go): the checks look names up several times for every
    // item of every file.
    struct Slot {
        static constexpr std::uint32_t free = UINT32_MAX;
        std::uint32_t high = 0;  // the upper half of the name's hash
        std::uint32_t index = free;
        // The name or alias as the store keeps it: where it is in the store's packed text.
        std::uint32_t at = 0;
        std::uint32_t size = 0;
    };
    std::vector<Slot> lookup_;
    // Lower-case plain category name -> indexes of its definitions.
    std::unordered_map<std::string, std::vector<std::size_t>> members_;
    // Name length -> indexes of the definitions of data names that long
    // (category overviews left out), so that a search for similar names
    // looks only at names of about the right length; each with its letter
    // set (cif_letter_set), which rules most of them out without a count.
    struct Sized {
        std::size_t index;
        std::uint64_t letters;
    };
    mutable std::vector<std::vector<Sized>> by_length_;
    // The similar names already found, by bound and lower-case name: files
    // checked one after another lack the same few names. Shared by threads.
    struct SimilarMemo {
        std::once_flag indexed;  // by_length_ filled
        std::mutex mutex;
        std::unordered_map<std::string, std::vector<SimilarName>> answers;
    };
    std::unique_ptr<SimilarMemo> similar_memo_ = std::make_unique<SimilarMemo>();
    std::vector<SimilarName> find_similar_names(std::string_view data_name, int max_edits) const;
    // Lower-case plain category name -> its facts, for every category with
    // members: a check asks for those of a few categories.
    struct LazyFacts {
        std::once_flag worked_out;
        // Set once the facts are there: asked before call_once, which has no
        // quick way of its own for the done case.
        std::atomic<bool> ready{false};
        CifCategoryFacts facts;
    };
    mutable std::unordered_map<std::string, LazyFacts, CifNameHash, CifNameEqual> facts_;
    // The same as one flat table (open addressing, twice as many slots as
    // categories) once gather_facts() has filled facts_, whose entries stay
    // where they are: a check asks for a category's facts for every loop.
    struct FactsSlot {
        std::uint64_t hash = 0;
        const std::string* name = nullptr;
        LazyFacts* facts = nullptr;
    };
    std::vector<FactsSlot> facts_lookup_;
};

// The library's name for a handle of a concrete dictionary.
using HCifConcreteDictionary = THandle<CifConcreteDictionary>;
