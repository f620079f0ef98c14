// SPDX-License-Identifier: MIT
// Builds a document's blocks from its text in one pass, recovering from every problem.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "cif/CifBlockNames.hpp"
#include "cif/CifBlockValidator.hpp"
#include "cif/CifComment.hpp"
#include "cif/CifCommentable.hpp"
#include "cif/CifErrorSink.hpp"
#include "cif/CifLexer.hpp"
#include "cif/CifParserSettings.hpp"
#include "cif/CifToken.hpp"
#include "cif/CifValueRef.hpp"
#include "support/THandle.hpp"

class Cif;
class CifDataBlock;
class CifDataItem;
class CifLineIndex;
class CifLoopChecker;
class CifLoopKeys;
class CifValueReporter;
class CifTextStore;

// Builds a document's blocks from its text: prepares the bytes (line ends,
// byte-order mark, end-of-file character, version code), checks characters
// and line lengths, then reads the tokens in one pass, recovering from
// every problem and recording it with its line.
class CifReader {
public:
    CifReader(Cif& cif, const CifParserSettings& settings);
    ~CifReader();

    void read(std::string text);

private:
    // Grammar: each handler takes the token that starts its construct and
    // returns the first token after it.
    void parse();
    CifToken next();
    CifToken on_data(const CifToken& token);
    CifToken on_name(const CifToken& token);
    // The same for an item kept as a record (records_).
    CifToken on_read_item(CifDataBlock& block, const CifToken& token);
    CifToken on_loop(const CifToken& token);
    CifToken on_save(const CifToken& token);
    CifToken on_stray_value(const CifToken& token);
    CifToken skip_outside_block(const CifToken& token);
    void close_frame(bool terminated, int line);
    void finish_block(bool at_end);

    // Where items go: the open frame, else the block (made from its record
    // now), or null outside every block.
    CifDataBlock* target();
    CifDataBlock& current_block();
    // Whether a comment waiting belongs to the last item (it trails its value).
    bool trails_last_item(const CifComment& comment) const;
    void forget_last_item();
    // Whether a comment waiting goes to what take_comments is given.
    bool comments_for_target() const;
    void take_comments(CifCommentable* target,
                       CifCommentable::CommentType type = CifCommentable::preceding_comment);
    void check_name(std::string_view name, int line, bool block_name);
    // Checks a finished block against the document's dictionary.
    void validate(const CifDataBlock& block);
    // Whether values are checked against a dictionary while reading.
    bool checks_values() const;
    CifValueReporter& reporter();
    // A checker for the values of a loop about to be read (null when values
    // are not checked); columns whose names are taken already are left out.
    std::unique_ptr<CifLoopChecker> loop_checker(const CifDataBlock& block,
                                                 const std::vector<THandle<CifDataItem>>& columns);
    // After a loop is read: one message for values shifted out of their
    // columns (when the last row was short) and the first row a syntax
    // problem among the values damaged, from the messages since first_error.
    std::size_t note_damage(const std::vector<THandle<CifDataItem>>& columns, bool short_row,
                            std::size_t first_error);
    CifValueRef reference(const CifToken& token) const;
    CifValueRef unknown_value();
    // The heading line of the first block read named so, or -1 when there is
    // none; then the block at place `index` of the document's list is it.
    int first_block_line(std::string_view name, std::size_t index);

    Cif& cif_;
    const CifParserSettings& settings_;
    CifErrorSink errors_;
    CifLexer* lexer_ = nullptr;
    THandle<CifTextStore> store_;
    const char* base_ = nullptr;
    int version_ = 1;
    int previous_end_ = 0;  // the line where the token before the current one ended
    // The block being read: its place in the document's list, and its object
    // once made (a block with nothing in it stays a record).
    bool in_block_ = false;
    std::size_t block_index_ = 0;
    THandle<CifDataBlock> block_;
    THandle<CifDataBlock> frame_;
    // Unlooped items stay records in their blocks (CifDataBlock::add_read_item)
    // unless the reader checks each block against the dictionary, which
    // would make them at once.
    bool records_ = false;
    // The unlooped item a trailing comment belongs to: an object, or the
    // place of a record in last_block_ (when last_block_ is not null).
    THandle<CifDataItem> last_item_;
    CifDataBlock* last_block_ = nullptr;
    std::size_t last_position_ = 0;
    int last_item_line_ = 0;
    int stray_value_line_ = 0;
    bool outside_reported_ = false;
    bool unknown_added_ = false;
    CifValueRef unknown_;
    CifBlockNames block_names_;            // the names of the blocks read so far
    std::unique_ptr<CifLineIndex> lines_;  // built when the first block is checked
    std::unique_ptr<CifValueReporter> reporter_;
    std::unordered_set<const CifDataItem*> checked_loops_;  // first columns of loops checked while read
    // First columns of loops -> what reading learnt about them.
    std::unordered_map<const CifDataItem*, CifBlockValidator::LoopNotes> loop_notes_;
    std::unique_ptr<CifLoopKeys> loop_keys_;  // the keys of loops, from the dictionary
    // A loop's columns, their value columns and those kept: emptied for each
    // loop, their room kept for the next.
    CifDataBlock::ItemList loop_columns_;
    std::vector<CifValueColumn*> loop_targets_;
    CifDataBlock::ItemList loop_kept_;
};
