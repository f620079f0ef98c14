// SPDX-License-Identifier: GPL-3.0-or-later
// QString values streamed into log lines, and one whole debug line from a QString.
#pragma once

#include <QString>
#include <ostream>

#include "support/ORMALog.hpp"

// Lets QString values be streamed into log lines (as UTF-8).
inline std::ostream& operator<<(std::ostream& out, const QString& text) { return out << text.toStdString(); }

// One whole debug line of the given level, written only when the log wants it.
inline void debugLine(int level, const QString& text) {
    if (!ORMALog::wants(level)) return;
    ORMALog::start_debug_line(level) << text;
    ORMALog::end_debug_line();
}
