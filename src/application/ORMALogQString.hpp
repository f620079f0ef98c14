#pragma once

#include <QString>
#include <ostream>

// Lets QString values be streamed into log lines (as UTF-8).
inline std::ostream& operator<<(std::ostream& out, const QString& text) { return out << text.toStdString(); }
