// SPDX-License-Identifier: MIT
// The comment text that blocks and data items carry.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// A part of a document that carries comment text: blocks and data items.
// Comments are kept as the lines read, each with its leading "#", joined by
// line ends; text set without a leading "#" is given one when printed.
class CifCommentable {
public:
    enum CommentType {
        preceding_comment = 0,  // the comment lines before the object (the default kind)
        inner_comment = 1,      // comment lines among the rows of a loop, kept on its first column
        following_comment = 2,  // the comment lines after a block's last item
        trailing_comment = 3,   // a comment after the value on the value's own line
    };

    CifCommentable() = default;
    CifCommentable(const CifCommentable& other);
    CifCommentable(CifCommentable&& other) noexcept;
    CifCommentable& operator=(const CifCommentable& other);
    CifCommentable& operator=(CifCommentable&& other) noexcept;
    // Not virtual: nothing is deleted through this base, and items and
    // blocks are many, so they carry no table of virtual functions.
    ~CifCommentable();

    std::string comments(CommentType type = preceding_comment) const;
    void set_comments(std::string_view text, CommentType type = preceding_comment);
    // Adds lines after those already held (the reader gathers them so).
    void append_comments(std::string_view text, CommentType type = preceding_comment);
    bool has_comments() const { return packed_ != nullptr; }

private:
    // The four kinds in one allocation sized to what they hold: four 32-bit
    // lengths, then the texts one after another. Null while all are empty;
    // the commonest comment (a lone "#" before the object) is one shared
    // constant, not an allocation per object.
    std::string_view part(int type) const;
    void replace(int type, std::string_view first, std::string_view second);
    void release();

    const std::uint32_t* packed_ = nullptr;
};
