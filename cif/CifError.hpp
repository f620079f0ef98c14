// SPDX-License-Identifier: MIT
// One message of reading or checking a CIF: its code, line, text and detail.
#pragma once

#include <string>

struct CifKeptName;

// One message produced by reading or checking a CIF: a code from the error
// catalogue, the 1-based line it refers to, the data name or token it is
// about (text) and an optional detail that the catalogue's message shows.
class CifError {
public:
    // Codes 300-384; CifErrorCatalogue gives each its kind, message and
    // explanation, and docs/errors.md lists them.
    enum ErrorID : int {
        warnings_omitted = 300,
        input_unreadable = 301,
        invalid_character = 302,
        calculated_value_differs = 303,
        count_mismatch = 304,
        unterminated_quoted_string = 305,
        unterminated_text_field = 306,
        loop_values_incomplete = 307,
        loop_without_values = 308,
        data_name_without_value = 309,
        value_without_data_name = 310,
        data_outside_block = 311,
        duplicate_data_name = 312,
        duplicate_block_name = 313,
        reserved_word_global = 314,
        reserved_word_stop = 315,
        save_frame_not_allowed = 316,
        loop_without_names = 317,
        line_too_long = 318,
        data_name_too_long = 319,
        undefined_data_name = 320,
        block_name_too_long = 321,
        block_without_name = 322,
        no_data_blocks = 323,
        wrong_value_type = 324,
        value_out_of_range = 325,
        value_not_enumerated = 326,
        item_must_be_looped = 327,
        item_must_not_be_looped = 328,
        loop_mixes_categories = 329,
        reserved_first_character = 330,
        nesting_too_deep = 331,
        token_too_long = 332,
        invalid_utf8 = 333,
        unterminated_list = 334,
        unterminated_table = 335,
        table_key_not_quoted = 336,
        unexpected_closing_bracket = 337,
        missing_white_space = 338,
        unknown_cif_version = 339,
        no_final_line_end = 340,
        end_of_file_marker = 341,
        byte_order_mark = 342,
        uncertainty_not_allowed = 343,
        table_entry_without_value = 344,
        unterminated_save_frame = 345,
        definition_without_name = 346,
        mandatory_item_missing = 347,
        dictionary_unknown_type = 348,
        dictionary_bad_range = 349,
        dictionary_duplicate_definition = 350,
        dictionary_undefined_related_item = 351,
        dictionary_undefined_category = 352,
        not_a_dictionary = 353,
        number_unreadable = 354,
        uncertainty_unreadable = 355,
        obsolete_data_name = 356,
        required_item_missing = 357,
        loop_key_missing = 358,
        duplicate_key_value = 359,
        parent_value_missing = 360,
        space_group_unknown = 361,
        symmetry_disagrees = 362,
        nested_save_frame = 363,
        defined_by_several_dictionaries = 364,
        internal_error = 365,
        too_many_messages = 366,
        obsolete_beside_replacement = 367,
        loop_values_shifted = 368,
        composite_key_not_unique = 369,
        cell_volume_differs = 370,
        cell_contents_differ = 371,
        formula_weight_differs = 372,
        density_differs = 373,
        moiety_formula_differs = 374,
        absorption_coefficient_differs = 375,
        transmission_inconsistent = 376,
        reflections_incomplete = 377,
        data_to_parameter_ratio_low = 378,
        shift_too_large = 379,
        r_factor_high = 380,
        residual_density_implausible = 381,
        absolute_structure_unsettled = 382,
        space_group_items_disagree = 383,
        publication_item_missing = 384,
    };

    // 0 remark, 1 warning, 2 error; any other value is information.
    enum ErrorType : int { remark = 0, warning = 1, error = 2, information = 3 };

    // The type comes from the catalogue (information for unknown codes).
    CifError(ErrorID id, int line, std::string text = {}, std::string detail = {});
    // The same with an explicit type, for callers that rank a code otherwise.
    CifError(ErrorID id, ErrorType type, int line, std::string text = {}, std::string detail = {});
    // The first with a data name the process keeps for its whole life
    // (CifNamePool) as the text, which the message then refers to rather
    // than copies: most messages are about such a name.
    CifError(ErrorID id, int line, const CifKeptName& kept_text, std::string detail = {});
    CifError(const CifError&) = default;
    CifError& operator=(const CifError&) = default;
    // Moves leave empty texts where they are: a moved empty string still
    // copies its buffer, and messages are moved several times (sorted).
    CifError(CifError&& other) noexcept
        : id_(other.id_), type_(other.type_), line_(other.line_), kept_text_(other.kept_text_) {
        if (!other.text_.empty()) text_ = std::move(other.text_);
        if (!other.detail_.empty()) detail_ = std::move(other.detail_);
    }
    CifError& operator=(CifError&& other) noexcept {
        id_ = other.id_;
        type_ = other.type_;
        line_ = other.line_;
        kept_text_ = other.kept_text_;
        if (!other.text_.empty() || !text_.empty()) text_ = std::move(other.text_);
        if (!other.detail_.empty() || !detail_.empty()) detail_ = std::move(other.detail_);
        return *this;
    }

    ErrorID id() const { return id_; }
    ErrorType type() const { return type_; }
    int line() const { return line_; }
    void set_line(int line) { line_ = line; }
    const std::string& text() const { return kept_text_ != nullptr ? *kept_text_ : text_; }
    const std::string& detail() const { return detail_; }

    // The short text for the error list, e.g. "Created non-standard data item _x".
    std::string message() const;
    // "Error: Line 12 : " + message() (Warning, Remark, Information likewise).
    std::string complete_message() const;

    // "Error", "Warning", "Remark" or "Information".
    static const char* type_name(ErrorType type);

private:
    ErrorID id_;
    ErrorType type_;
    int line_;
    std::string text_;
    std::string detail_;
    const std::string* kept_text_ = nullptr;  // in place of text_ when set
};
