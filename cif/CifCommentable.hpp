// SPDX-License-Identifier: MIT
// The comment text that blocks and data items carry.
#pragma once

#include <array>
#include <memory>
#include <string>

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
    CifCommentable& operator=(const CifCommentable& other);
    virtual ~CifCommentable() = default;

    std::string comments(CommentType type = preceding_comment) const;
    void set_comments(const std::string& text, CommentType type = preceding_comment);
    // Adds lines after those already held (the reader gathers them so).
    void append_comments(const std::string& text, CommentType type = preceding_comment);
    bool has_comments() const;

private:
    std::unique_ptr<std::array<std::string, 4>> comments_;  // absent while all are empty
};
