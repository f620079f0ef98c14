// SPDX-License-Identifier: MIT
// Builds a document's blocks from its text in one pass, recovering from every problem.
#include "cif/CifReader.hpp"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <utility>

#include "cif/Cif.hpp"
#include "cif/CifLineIndex.hpp"
#include "cif/CifLoopChecker.hpp"
#include "cif/CifLoopDamage.hpp"
#include "cif/CifLoopKeys.hpp"
#include "cif/CifLoopShift.hpp"
#include "cif/CifNames.hpp"
#include "cif/CifTextCheck.hpp"
#include "cif/CifValueReporter.hpp"

namespace {

// CR LF and lone CR become LF, in place; lines keep their numbers.
void normalise_line_ends(std::string& text) {
    std::size_t first = text.find('\r');
    if (first == std::string::npos) return;
    std::size_t out = first;
    for (std::size_t in = first; in < text.size(); ++in) {
        char c = text[in];
        if (c == '\r') {
            text[out++] = '\n';
            if (in + 1 < text.size() && text[in + 1] == '\n') ++in;
        } else {
            text[out++] = c;
        }
    }
    text.resize(out);
}

int line_of(const std::string& text, std::size_t position) {
    return 1 + static_cast<int>(
                   std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(position), '\n'));
}

bool is_space(char c) { return c == ' ' || c == '\t' || c == '\n'; }

}  // namespace

CifReader::CifReader(Cif& cif, const CifParserSettings& settings)
    : cif_(cif), settings_(settings), errors_(settings.max_messages == 0 ? 1 : settings.max_messages) {}

CifReader::~CifReader() = default;

void CifReader::read(std::string text) {
    CifErrorSink check_errors(settings_.max_messages == 0 ? 1 : settings_.max_messages);

    // Values refer to the text by 32-bit offsets.
    constexpr std::size_t largest = std::numeric_limits<std::uint32_t>::max() - 1;
    if (text.size() > largest) {
        text.resize(largest);
        errors_.add(CifError::input_unreadable, line_of(text, largest), std::string(),
                    "the text is larger than 4 GB; the rest is not read");
    }
    normalise_line_ends(text);

    // A Ctrl-Z followed only by white space is an old end-of-file mark.
    std::size_t tail = text.size();
    while (tail > 0 && (is_space(text[tail - 1]) || text[tail - 1] == '\x1A')) --tail;
    std::size_t mark = text.find('\x1A', tail);
    if (mark != std::string::npos) {
        errors_.add(CifError::end_of_file_marker, line_of(text, mark));
        text.resize(mark);
    }

    std::size_t start = 0;
    bool bom = text.size() >= 3 && text.compare(0, 3, "\xEF\xBB\xBF") == 0;
    if (bom) start = 3;
    if (text.compare(start, 10, "#\\#CIF_2.0") == 0 &&
        (text.size() == start + 10 || is_space(text[start + 10]))) {
        version_ = 2;
    } else if (text.compare(start, 7, "#\\#CIF_") == 0) {
        std::size_t stop = start + 7;
        while (stop < text.size() && !is_space(text[stop])) ++stop;
        std::string code = text.substr(start, stop - start);
        if (code != "#\\#CIF_1.1" && code != "#\\#CIF_1.0")
            errors_.add(CifError::unknown_cif_version, 1, code);
    }
    if (bom && version_ < 2) errors_.add(CifError::byte_order_mark, 1);

    store_ = THandle<CifTextStore>(new CifTextStore(std::move(text)));
    const std::string& stored = store_->text();
    base_ = stored.data();
    cif_.store_ = store_;
    cif_.blocks_.reset(cif_.dictionary_, store_);
    cif_.version_ = version_;
    {
        const THandle<CifDictionary>& dictionary = cif_.dictionary_;
        records_ = settings_.items_as_records && (dictionary.is_null() || !dictionary->has_definitions() ||
                                                  (!settings_.check_data_names && !settings_.check_values));
    }

    // Characters and line lengths are checked as the text is read: the
    // lexer's fast path hands over the windows it classifies.
    CifTextCheck text_check(settings_, version_, check_errors);
    text_check.begin(stored, start);
    CifLexer lexer(stored.data(), stored.data() + stored.size(), stored.data() + start, version_, settings_,
                   errors_);
    lexer.set_text_check(&text_check);
    lexer_ = &lexer;
    parse();
    lexer_ = nullptr;
    text_check.finish();

    int lines = stored.empty() ? 0 : (stored.back() == '\n' ? lexer.line() - 1 : lexer.line());
    cif_.line_count_ = lines;
    // A record's end line follows from the next heading; a made block keeps its own.
    CifBlockList& blocks = cif_.blocks_;
    blocks.set_line_count(lines);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        if (!blocks.made(i)) continue;
        CifDataBlock& block = *blocks[i];
        int end = i + 1 < blocks.size() ? blocks.line(i + 1) - 1 : lines;
        block.set_lines(block.line(), block.last_line(), std::max(end, block.line()));
    }
    if (cif_.blocks_.empty()) errors_.add(CifError::no_data_blocks, 1);
    if (!stored.empty() && stored.back() != '\n') errors_.add(CifError::no_final_line_end, lines);

    // Both lists are in line order but for a few messages reported after
    // the construct they open; a stable sort keeps the order within a line.
    std::vector<CifError> all = std::move(check_errors.errors());
    bool overflowed = check_errors.overflowed() || errors_.overflowed();
    all.insert(all.end(), std::make_move_iterator(errors_.errors().begin()),
               std::make_move_iterator(errors_.errors().end()));
    std::stable_sort(all.begin(), all.end(),
                     [](const CifError& a, const CifError& b) { return a.line() < b.line(); });
    std::size_t limit = std::max<std::size_t>(settings_.max_messages, 1);
    if (all.size() > limit) {
        overflowed = true;
        all.erase(all.begin() + static_cast<std::ptrdiff_t>(limit), all.end());
    }
    THandle<CifErrorContainer> container = cif_.errors_;
    for (CifError& error : all) container->add(std::move(error));
    if (overflowed)
        container->add(CifError(CifError::too_many_messages, all.empty() ? 1 : all.back().line()));
}

CifToken CifReader::next() {
    previous_end_ = lexer_->last_end_line();
    return lexer_->next();
}

void CifReader::parse() {
    CifToken token = next();
    while (token.kind != CifToken::end) {
        switch (token.kind) {
            case CifToken::data:
                token = on_data(token);
                break;
            case CifToken::name:
                token = on_name(token);
                break;
            case CifToken::loop:
                token = on_loop(token);
                break;
            case CifToken::value:
                token = on_stray_value(token);
                break;
            case CifToken::save:
            case CifToken::save_end:
                token = on_save(token);
                break;
            case CifToken::global:
                errors_.add(CifError::reserved_word_global, token.line, "global_");
                token = next();
                break;
            case CifToken::stop:
                errors_.add(CifError::reserved_word_stop, token.line, "stop_");
                token = next();
                break;
            case CifToken::end:
                break;
        }
    }
    previous_end_ = lexer_->last_end_line();
    finish_block(true);
}

CifToken CifReader::on_data(const CifToken& token) {
    std::string name(token.begin, token.length);
    // The block stays a record until something is put in it.
    CifBlockList& blocks = cif_.blocks_;
    const std::size_t index = blocks.size();
    blocks.add_record(static_cast<std::size_t>(token.begin - base_), token.length, token.line);
    // Comments between blocks introduce the next one.
    take_comments(comments_for_target() ? blocks[index].get() : nullptr);
    finish_block(false);
    if (name.empty()) errors_.add(CifError::block_without_name, token.line);
    check_name(name, token.line, true);
    const int first = first_block_line(name, index);
    if (first >= 0 && !name.empty()) {
        errors_.add(CifError::duplicate_block_name, token.line, name, std::to_string(first));
    }
    in_block_ = true;
    block_index_ = index;
    block_ = blocks.made(index) ? blocks[index] : THandle<CifDataBlock>();
    outside_reported_ = false;
    return next();
}

void CifReader::finish_block(bool at_end) {
    close_frame(false, previous_end_);
    if (!in_block_) return;  // comments before the first block go to it
    if (at_end) {
        take_comments(comments_for_target() ? &current_block() : nullptr, CifCommentable::following_comment);
    }
    CifBlockList& blocks = cif_.blocks_;
    blocks.set_last_line(block_index_, std::max(blocks.line(block_index_), previous_end_));
    // A block still a record holds nothing to check.
    if (!block_.is_null()) {
        block_->shrink_to_fit();
        validate(*block_);
    }
    in_block_ = false;
    block_ = THandle<CifDataBlock>();
    forget_last_item();
}

void CifReader::close_frame(bool terminated, int line) {
    if (frame_.is_null()) return;
    if (!terminated) errors_.add(CifError::unterminated_save_frame, frame_->line(), frame_->name());
    frame_->set_lines(frame_->line(), std::max(frame_->line(), line), line);
    frame_->shrink_to_fit();
    frame_ = THandle<CifDataBlock>();
    forget_last_item();
}

CifDataBlock* CifReader::target() {
    if (!frame_.is_null()) return frame_.get();
    if (!in_block_) return nullptr;
    return &current_block();
}

CifDataBlock& CifReader::current_block() {
    if (block_.is_null()) block_ = cif_.blocks_[block_index_];
    return *block_;
}

bool CifReader::trails_last_item(const CifComment& comment) const {
    return comment.trailing && (!last_item_.is_null() || last_block_ != nullptr) &&
           comment.line == last_item_line_;
}

void CifReader::forget_last_item() {
    last_item_ = THandle<CifDataItem>();
    last_block_ = nullptr;
}

bool CifReader::comments_for_target() const {
    const std::vector<CifComment>& comments = lexer_->comments();
    return std::any_of(comments.begin(), comments.end(),
                       [&](const CifComment& comment) { return !trails_last_item(comment); });
}

void CifReader::take_comments(CifCommentable* target, CifCommentable::CommentType type) {
    std::vector<CifComment>& comments = lexer_->comments();
    if (comments.empty()) return;
    // The target's lines are joined first and added once: adding them one
    // by one copies what it holds again for every line.
    std::string_view lone;
    std::string joined;
    for (const CifComment& comment : comments) {
        std::string_view text(comment.begin, comment.length);
        if (trails_last_item(comment)) {
            if (last_block_ != nullptr) {
                last_block_->append_item_comments(last_position_, text, CifCommentable::trailing_comment);
            } else {
                last_item_->append_comments(text, CifCommentable::trailing_comment);
            }
        } else if (target != nullptr && !text.empty()) {
            if (lone.data() == nullptr) {
                lone = text;
                continue;
            }
            if (joined.empty()) {
                // Lines one after the other (a file's header) are one span
                // of the text as they stand: nothing to join.
                const char* end = lone.data() + lone.size();
                if (end + 1 == text.data() && *end == '\n') {
                    lone = std::string_view(lone.data(), lone.size() + 1 + text.size());
                    continue;
                }
                joined.append(lone);
            }
            joined.append(1, '\n').append(text);
        }
    }
    if (lone.data() != nullptr)
        target->append_comments(joined.empty() ? lone : std::string_view(joined), type);
    comments.clear();
}

void CifReader::check_name(std::string_view name, int line, bool block_name) {
    if (version_ >= 2 || settings_.max_name_length <= 0) return;
    if (name.size() <= static_cast<std::size_t>(settings_.max_name_length)) return;
    errors_.add(block_name ? CifError::block_name_too_long : CifError::data_name_too_long, line,
                std::string(name), std::to_string(settings_.max_name_length));
}

CifValueReporter& CifReader::reporter() {
    if (reporter_ == nullptr) {
        lines_ = std::make_unique<CifLineIndex>(store_->text());
        reporter_ = std::make_unique<CifValueReporter>(*cif_.dictionary_, *lines_, errors_);
    }
    return *reporter_;
}

bool CifReader::checks_values() const {
    const THandle<CifDictionary>& dictionary = cif_.dictionary_;
    return settings_.check_values && !dictionary.is_null() && dictionary->has_definitions();
}

void CifReader::validate(const CifDataBlock& block) {
    const THandle<CifDictionary>& dictionary = cif_.dictionary_;
    if (dictionary.is_null() || !dictionary->has_definitions()) return;
    if (!settings_.check_data_names && !settings_.check_values) return;
    // The validator takes the keys and definitions of the loops checked
    // while read from the reader's own, which then lets go of them.
    if (loop_keys_ == nullptr) loop_keys_ = std::make_unique<CifLoopKeys>(*dictionary);
    CifBlockValidator(reporter(), settings_.check_data_names, settings_.check_values, &checked_loops_,
                      &loop_notes_, loop_keys_.get())
        .validate(block);
    loop_keys_->forget();
}

std::unique_ptr<CifLoopChecker> CifReader::loop_checker(const CifDataBlock& block,
                                                        const std::vector<THandle<CifDataItem>>& columns) {
    if (!checks_values()) return nullptr;
    auto checker = std::make_unique<CifLoopChecker>(reporter(), store_->text().data(), store_->text().size());
    checker->reserve(columns.size());
    std::vector<const CifItemDefinition*> definitions;
    definitions.reserve(columns.size());
    // Columns whose name the block or an earlier column has (their hashes
    // ignore case as the names' comparison does, so only equal hashes need it).
    std::vector<char> taken(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::string& name = columns[i]->name();
        const std::uint64_t hash = columns[i]->name_hash();
        definitions.push_back(cif_.dictionary_->definition_hashed(name, hash));
        taken[i] = !block.find_same_name(*columns[i]).is_null();
        for (std::size_t j = 0; j < i && !taken[i]; ++j)
            taken[i] = columns[j]->name_hash() == hash && cif_iequals(columns[j]->name(), name);
        if (!taken[i]) checker->add(*columns[i], definitions[i]);
    }
    // The block's check takes the keys and definitions from here, even of a
    // loop with no column to check while read.
    if (loop_keys_ == nullptr) loop_keys_ = std::make_unique<CifLoopKeys>(*cif_.dictionary_);
    const std::vector<std::vector<std::size_t>>& keys = loop_keys_->remembered_keys(columns, definitions);
    if (checker->empty()) return nullptr;
    for (const std::vector<std::size_t>& key : keys) {
        std::vector<const CifDataItem*> key_columns;
        for (std::size_t i : key) key_columns.push_back(taken[i] ? nullptr : columns[i].get());
        if (std::find(key_columns.begin(), key_columns.end(), nullptr) == key_columns.end())
            checker->watch(CifKeyOrder(std::move(key_columns)));
    }
    return checker;
}

CifValueRef CifReader::reference(const CifToken& token) const {
    CifValueRef ref;
    ref.offset = static_cast<std::uint32_t>(token.begin - base_);
    ref.bits = static_cast<std::uint32_t>(token.length) | token.flags;
    return ref;
}

int CifReader::first_block_line(std::string_view name, std::size_t index) {
    return block_names_.first_line(name, index, cif_.blocks_);
}

CifValueRef CifReader::unknown_value() {
    if (!unknown_added_) {
        unknown_ = store_->add("?");
        unknown_added_ = true;
    }
    return unknown_;
}

CifToken CifReader::skip_outside_block(const CifToken& token) {
    if (!outside_reported_) {
        errors_.add(
            CifError::data_outside_block, token.line,
            token.kind == CifToken::loop ? std::string("loop_") : std::string(token.begin, token.length));
        outside_reported_ = true;
    }
    lexer_->comments().clear();
    CifToken next_token = next();
    while (next_token.kind == CifToken::value || next_token.kind == CifToken::name) next_token = next();
    lexer_->comments().clear();
    return next_token;
}

CifToken CifReader::on_name(const CifToken& token) {
    CifDataBlock* block = target();
    if (block == nullptr) return skip_outside_block(token);
    const std::string_view name(token.begin, token.length);
    check_name(name, token.line, false);
    if (records_) return on_read_item(*block, token);
    THandle<CifDataItem> item = store_->make<CifDataItem>(name, store_, cif_.dictionary_, token.line);
    take_comments(item.get());
    CifToken value = next();
    bool has_value = value.kind == CifToken::value;
    if (has_value) {
        item->values().push_back(reference(value));
    } else {
        errors_.add(CifError::data_name_without_value, token.line, item->name());
    }
    if (block->add_item(item)) {
        last_item_ = item;
        last_block_ = nullptr;
        last_item_line_ = lexer_->last_end_line();
    } else {
        THandle<CifDataItem> existing = block->find(item->name());
        errors_.add(CifError::duplicate_data_name, token.line, item->name(),
                    std::to_string(existing->line()));
        forget_last_item();
    }
    if (!has_value) return value;
    CifToken after = next();
    while (after.kind == CifToken::value) after = on_stray_value(after);
    return after;
}

CifToken CifReader::on_read_item(CifDataBlock& block, const CifToken& token) {
    const std::string_view name(token.begin, token.length);
    CifCommentable comments;
    take_comments(&comments);
    CifToken value = next();
    const bool has_value = value.kind == CifToken::value;
    CifValueRef ref;
    if (has_value) {
        ref = reference(value);
    } else {
        errors_.add(CifError::data_name_without_value, token.line, std::string(name));
    }
    const std::size_t position =
        block.add_read_item(static_cast<std::size_t>(token.begin - base_), token.length, token.line,
                            has_value ? &ref : nullptr, std::move(comments));
    if (position != CifDataBlock::npos) {
        last_item_ = THandle<CifDataItem>();
        last_block_ = &block;
        last_position_ = position;
        last_item_line_ = lexer_->last_end_line();
    } else {
        errors_.add(CifError::duplicate_data_name, token.line, std::string(name),
                    std::to_string(*block.item_line(name)));
        forget_last_item();
    }
    if (!has_value) return value;
    CifToken after = next();
    while (after.kind == CifToken::value) after = on_stray_value(after);
    return after;
}

CifToken CifReader::on_stray_value(const CifToken& token) {
    if (!in_block_) return skip_outside_block(token);
    if (token.line != stray_value_line_) {
        std::string text(token.begin, std::min<std::size_t>(token.length, 40));
        errors_.add(CifError::value_without_data_name, token.line, text);
        stray_value_line_ = token.line;
    }
    return next();
}

CifToken CifReader::on_loop(const CifToken& token) {
    CifDataBlock* block = target();
    if (block == nullptr) return skip_outside_block(token);
    CifCommentable before_loop;
    take_comments(&before_loop);
    std::string loop_comments = before_loop.comments();
    forget_last_item();

    CifDataBlock::ItemList& columns = loop_columns_;
    columns.clear();
    CifToken t = next();
    while (t.kind == CifToken::name) {
        const std::string_view name(t.begin, t.length);
        check_name(name, t.line, false);
        THandle<CifDataItem> item = store_->make<CifDataItem>(name, store_, cif_.dictionary_, t.line);
        if (columns.empty()) item->append_comments(loop_comments);
        take_comments(item.get());
        columns.push_back(item);
        t = next();
    }
    if (columns.empty()) {
        errors_.add(CifError::loop_without_names, token.line, "loop_");
        return t;
    }

    // The values, row by row: the hot path of large files.
    std::vector<CifValueColumn*>& targets = loop_targets_;
    targets.clear();
    for (const THandle<CifDataItem>& item : columns) targets.push_back(&item->values());
    const std::size_t width = targets.size();
    std::size_t column = 0;
    std::size_t count = 0;
    // Values are checked a batch of rows at a time, while their text is
    // still in the cache.
    std::unique_ptr<CifLoopChecker> checker = loop_checker(*block, columns);
    const std::size_t first_error = errors_.errors().size();
    const std::size_t batch = checker == nullptr ? static_cast<std::size_t>(-1) : std::size_t(1) << 15;
    std::size_t checked_rows = 0;
    for (;;) {
        if (t.kind != CifToken::value) break;
        targets[column]->push_back(reference(t));
        if (++column == width) column = 0;
        ++count;
        count += lexer_->read_plain_values(targets.data(), width, column, batch);
        if (checker != nullptr && count / width >= checked_rows + batch / width) {
            checker->check_rows(checked_rows, count / width);
            checked_rows = count / width;
        }
        t = next();
    }
    int last_value_line = previous_end_;

    // Comments among the rows stay with the loop; those after its last row
    // belong to what follows.
    std::vector<CifComment>& comments = lexer_->comments();
    std::size_t inner = 0;
    while (inner < comments.size() && count > 0 && comments[inner].line <= last_value_line) {
        columns.front()->append_comments(std::string(comments[inner].begin, comments[inner].length),
                                         CifCommentable::inner_comment);
        ++inner;
    }
    comments.erase(comments.begin(), comments.begin() + static_cast<std::ptrdiff_t>(inner));

    const std::string& first = columns.front()->name();
    if (count == 0) {
        errors_.add(CifError::loop_without_values, token.line, first);
    } else if (column != 0) {
        errors_.add(CifError::loop_values_incomplete, token.line, first, std::to_string(width));
        for (; column < width; ++column) targets[column]->push_back(unknown_value());
    }

    CifDataBlock::ItemList& kept = loop_kept_;
    kept.clear();
    std::vector<std::string> dropped;
    for (const THandle<CifDataItem>& item : columns) {
        // Found without making the block's records into items.
        std::optional<int> existing = block->item_line(item->name());
        if (!existing) {
            for (const THandle<CifDataItem>& other : kept) {
                if (cif_iequals(other->name(), item->name())) existing = other->line();
            }
        }
        if (existing) {
            errors_.add(CifError::duplicate_data_name, item->line(), item->name(), std::to_string(*existing));
            dropped.push_back(item->name());
            continue;
        }
        kept.push_back(item);
    }
    if (checker != nullptr) {
        checker->check_rows(checked_rows, columns.front()->size());
        if (!kept.empty()) checked_loops_.insert(kept.front().get());
    }
    if (!kept.empty() && checks_values()) {
        std::size_t damaged = note_damage(columns, column != 0, first_error);
        std::vector<CifKeyOrder> sorted_keys;
        if (checker != nullptr) {
            for (const CifKeyOrder& order : checker->orders())
                if (order.proven_unique()) sorted_keys.push_back(order);
        }
        if (damaged < columns.front()->size() || !dropped.empty() || !sorted_keys.empty())
            loop_notes_[kept.front().get()] = {damaged, std::move(dropped), std::move(sorted_keys)};
    }
    if (!kept.empty()) block->add_loop(kept);
    return t;
}

std::size_t CifReader::note_damage(const CifDataBlock::ItemList& columns, bool short_row,
                                   std::size_t first_error) {
    std::vector<CifError>& errors = errors_.errors();
    if (first_error > errors.size()) return columns.front()->size();
    reporter();  // builds the line index
    if (short_row) CifLoopShift::summarise(columns, errors, first_error, *lines_);
    std::vector<int> lines;
    for (std::size_t e = first_error; e < errors.size(); ++e) {
        if (CifLoopDamage::displaces_values(errors[e].id())) lines.push_back(errors[e].line());
    }
    std::sort(lines.begin(), lines.end());
    return CifLoopDamage::first_damaged_row(columns, lines, *lines_);
}

CifToken CifReader::on_save(const CifToken& token) {
    if (!in_block_) return skip_outside_block(token);
    std::string name(token.begin, token.length);
    if (!settings_.allow_save_frames || (token.kind == CifToken::save_end && frame_.is_null())) {
        errors_.add(CifError::save_frame_not_allowed, token.line, "save_" + name);
        return next();
    }
    if (token.kind == CifToken::save_end) {
        take_comments(frame_.get(), CifCommentable::following_comment);
        close_frame(true, token.line);
        return next();
    }
    if (!frame_.is_null()) {
        errors_.add(CifError::nested_save_frame, token.line, name);
        close_frame(true, previous_end_);
    }
    check_name(name, token.line, true);
    frame_ = store_->make<CifDataBlock>(cif_.dictionary_, "data_" + name, token.line, store_);
    current_block().add_save_frame(frame_);
    take_comments(frame_.get());
    forget_last_item();
    return next();
}
