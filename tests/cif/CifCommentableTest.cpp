// SPDX-License-Identifier: MIT
// Comments of every kind kept apart in their packed storage through edits, copies and moves.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <utility>

#include "cif/CifCommentable.hpp"

namespace {

using Kinds = std::array<std::string, 4>;

Kinds held(const CifCommentable& object) {
    Kinds kinds;
    for (int i = 0; i < 4; ++i) kinds[i] = object.comments(static_cast<CifCommentable::CommentType>(i));
    return kinds;
}

TEST(CifCommentable, EachKindKeepsItsOwnTextWhateverTheOthersHold) {
    struct Step {
        int kind;
        bool append;
        const char* text;
        Kinds expected;
    };
    // One object through a run of edits: each step may move the others'
    // texts within the packed record, and must never change them.
    const Step steps[] = {
        {0, true, "#", {"#", "", "", ""}},  // the shared lone "#"
        {3, true, "# trailing", {"#", "", "", "# trailing"}},
        {0, true, "#", {"#\n#", "", "", "# trailing"}},
        {1, false, "# inner", {"#\n#", "# inner", "", "# trailing"}},
        {2, true, "", {"#\n#", "# inner", "", "# trailing"}},
        {2, true, "# end", {"#\n#", "# inner", "# end", "# trailing"}},
        {0, false, "", {"", "# inner", "# end", "# trailing"}},
        {0, false, "#", {"#", "# inner", "# end", "# trailing"}},  // a lone "#" among others
        {1, false, "", {"#", "", "# end", "# trailing"}},
        {3, false, "", {"#", "", "# end", ""}},
        {2, false, "", {"#", "", "", ""}},
        {0, true, "# more", {"#\n# more", "", "", ""}},
        {1, true, "#", {"#\n# more", "#", "", ""}},  // "#" of another kind is no lone preceding "#"
        {0, false, "", {"", "#", "", ""}},
        {1, false, "", {"", "", "", ""}},
    };
    CifCommentable object;
    EXPECT_FALSE(object.has_comments());
    for (const Step& step : steps) {
        const auto kind = static_cast<CifCommentable::CommentType>(step.kind);
        if (step.append) {
            object.append_comments(step.text, kind);
        } else {
            object.set_comments(step.text, kind);
        }
        EXPECT_EQ(held(object), step.expected) << step.kind << " " << step.text;
        bool any = false;
        for (const std::string& text : step.expected) any = any || !text.empty();
        EXPECT_EQ(object.has_comments(), any) << step.kind << " " << step.text;
    }
    // Kinds out of range are ignored.
    object.set_comments("# x", static_cast<CifCommentable::CommentType>(4));
    object.append_comments("# x", static_cast<CifCommentable::CommentType>(-1));
    EXPECT_FALSE(object.has_comments());
    EXPECT_EQ(object.comments(static_cast<CifCommentable::CommentType>(7)), "");
}

TEST(CifCommentable, CopiesAndMovesKeepTheTextAndStayApart) {
    for (const char* text : {"#", "# a comment\n# of two lines", ""}) {
        CifCommentable original;
        original.append_comments(text);
        original.append_comments("# t", CifCommentable::trailing_comment);
        const Kinds before = held(original);

        CifCommentable copy(original);
        EXPECT_EQ(held(copy), before);
        copy.append_comments("# only in the copy");
        EXPECT_EQ(held(original), before) << text;

        CifCommentable assigned;
        assigned.set_comments("# replaced", CifCommentable::inner_comment);
        assigned = original;
        EXPECT_EQ(held(assigned), before);
        const CifCommentable& same = assigned;
        assigned = same;  // assigned to itself: kept
        EXPECT_EQ(held(assigned), before);

        CifCommentable moved(std::move(assigned));
        EXPECT_EQ(held(moved), before);
        CifCommentable target;
        target.append_comments("#");
        target = std::move(moved);
        EXPECT_EQ(held(target), before);
        original = CifCommentable();
        EXPECT_FALSE(original.has_comments());
        EXPECT_EQ(held(target), before) << text;
    }
}

}  // namespace
