// SPDX-License-Identifier: MIT
// The comment text that blocks and data items carry.
#include "cif/CifCommentable.hpp"

CifCommentable::CifCommentable(const CifCommentable& other)
    : comments_(other.comments_ ? std::make_unique<std::array<std::string, 4>>(*other.comments_) : nullptr) {}

CifCommentable& CifCommentable::operator=(const CifCommentable& other) {
    if (this != &other) {
        comments_ =
            other.comments_ ? std::make_unique<std::array<std::string, 4>>(*other.comments_) : nullptr;
    }
    return *this;
}

std::string CifCommentable::comments(CommentType type) const {
    if (!comments_ || type < 0 || type > 3) return std::string();
    return (*comments_)[type];
}

void CifCommentable::set_comments(const std::string& text, CommentType type) {
    if (type < 0 || type > 3) return;
    if (!comments_) {
        if (text.empty()) return;
        comments_ = std::make_unique<std::array<std::string, 4>>();
    }
    (*comments_)[type] = text;
}

void CifCommentable::append_comments(const std::string& text, CommentType type) {
    if (text.empty() || type < 0 || type > 3) return;
    if (!comments_) comments_ = std::make_unique<std::array<std::string, 4>>();
    std::string& held = (*comments_)[type];
    if (!held.empty()) held += '\n';
    held += text;
}

bool CifCommentable::has_comments() const {
    if (!comments_) return false;
    for (const std::string& text : *comments_) {
        if (!text.empty()) return true;
    }
    return false;
}
