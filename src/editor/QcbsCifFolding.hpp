// SPDX-License-Identifier: GPL-3.0-or-later
// Where loops, save frames and text fields begin and end, line by line, for folding.
#pragma once

#include <QStringView>

// Where loops, save frames and text fields begin and end, line by line, so
// that the editor can fold them. Free of any widget: from a line's text and
// the context the line above left, it gives the line's fold depth, whether a
// fold begins on it, and the context for the line below.
//
// A loop begins at a line starting with "loop_" and runs over its names and
// the values after them; it ends before a line that starts with a data name
// once values have come, or with another loop_, a block or frame heading. A
// save frame runs from "save_name" to the closing "save_". A text field runs
// from its opening ";" line to its closing one. Keywords count in any case,
// as the reader takes them. Blank and comment lines belong to whatever is open.
class QcbsCifFolding {
public:
    // What the lines above left open, as a small number that the editor keeps
    // per line beside the highlighter's state.
    static constexpr int NoContext = 0;

    struct Line {
        int depth = 0;            // how many folds hold the line (0 at a block's top level)
        bool header = false;      // a fold begins on this line
        bool blank = false;       // white space only
        int context = NoContext;  // for the next line
    };

    // `inTextField` and `endsInTextField`: whether a text field is open before
    // and after the line (the highlighter's states say so).
    static Line fold(QStringView line, int context, bool inTextField, bool endsInTextField);

    // The context's bits within the editor's line state (above the
    // highlighter's own, which use the low ten bits).
    static constexpr int StateShift = 12;
    static constexpr int StateMask = 0x7 << StateShift;

private:
    enum Loop { NoLoop = 0, LoopNames = 1, LoopValues = 2 };
    static constexpr int LoopMask = 0x3;
    static constexpr int FrameFlag = 0x4;
};
