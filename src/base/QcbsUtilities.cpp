// SPDX-License-Identifier: GPL-3.0-or-later
// The program's name, versions and directories, and small text utilities.
#include "base/QcbsUtilities.hpp"

#include <QDate>
#include <QRegularExpression>
#include <algorithm>
#include <cctype>
#include <cstdlib>

namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? std::string(value) : std::string();
}

}  // namespace

std::string programName() { return "Tessary"; }
QString programQName() { return QString::fromStdString(programName()); }
std::string TessaryVersion() { return "1.2"; }
std::string TessaryDate() { return "September 2005"; }
std::string coreCIFVersion() { return "2.3"; }
std::string coreCIFDate() { return "October 2003"; }
std::string TessaryURL() { return "https://tessary.org/"; }

std::string tessaryDir() { return environment("TESSARYDIR"); }
QString tessaryDirQString() { return QString::fromLocal8Bit(tessaryDir()); }
std::string tessaryTempDir() { return environment("TEMP"); }
QString tessaryTempDirQString() { return QString::fromLocal8Bit(tessaryTempDir()); }
std::string tessaryPrefsDir() { return environment("TESSARYPREFS"); }
QString tessaryPrefsDirQString() { return QString::fromLocal8Bit(tessaryPrefsDir()); }

std::string CurrentDate() { return QDate::currentDate().toString(Qt::TextDate).toStdString(); }

std::string makeTempFilename(std::string name) { return "temp_" + name; }

void simplify_path(QString& path) {
    const qsizetype at = std::max(path.lastIndexOf('/'), path.lastIndexOf('\\'));
    if (at < 0) return;
    path = QLatin1Char(' ') + path.mid(at + 1);
}

int determineLinkType(const QString& link) {
    QString reduced = link;
    simplify_path(reduced);
    static const char* const prefixes[] = {"EDIT_", "ERROR_", "INFO_", "LOOP_"};
    for (int kind = 0; kind < 4; ++kind) {
        const qsizetype at = reduced.indexOf(QLatin1String(prefixes[kind]), 0, Qt::CaseSensitive);
        if (at == 0 || at == 1) return kind;
    }
    return 4;
}

QString removeSpecialStringFromLink(const QString& link) {
    if (determineLinkType(link) == 4) return QString();
    return link.mid(link.indexOf('_'));
}

std::string rgbToWebHex(int r, int g, int b) {
    std::string result = "#";
    for (int component : {r, g, b}) {
        if (component < 16) result += '0';
        result += QString::number(component, 16).toStdString();
    }
    return result;
}

QString toLiteral(const QString& text) {
    static const QString special = QStringLiteral("$()*+.?[\\]^{|}");
    QString result = text;
    qsizetype i = 0;
    while (i < result.length()) {
        const QChar c = i < text.length() ? text.at(i) : QChar();
        if (!c.isNull() && special.contains(c)) {
            result.insert(i, QLatin1Char('\\'));
            i += 2;
        } else {
            i += 1;
        }
    }
    return result;
}

bool removeNewLineAtStart(QString& text) {
    static const QRegularExpression newline(QStringLiteral("\\n"));
    const QRegularExpressionMatch match = newline.match(text);
    if (match.hasMatch() && match.capturedStart() == 0) {
        text.remove(0, 1);
        return true;
    }
    return false;
}

void ToLowerCase(std::string& text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
}
