// SPDX-License-Identifier: GPL-3.0-or-later
// The program's name, versions and directories, and small text utilities.
#pragma once

#include <QString>
#include <string>

// The program's name, versions and directories.
std::string programName();
QString programQName();
std::string TessaryVersion();
std::string TessaryDate();
std::string coreCIFVersion();
std::string coreCIFDate();
std::string TessaryURL();
std::string tessaryDir();
QString tessaryDirQString();
std::string tessaryTempDir();
QString tessaryTempDirQString();
std::string tessaryPrefsDir();
QString tessaryPrefsDirQString();
std::string CurrentDate();
std::string makeTempFilename(std::string name);

// Text utilities.

// Reduces a path to " " + its last component (after the last "/" or "\");
// a text without a separator is left alone. The leading blank is intended:
// determineLinkType relies on it.
void simplify_path(QString& path);

// The kind of an internal hyperlink: 0 "EDIT_", 1 "ERROR_", 2 "INFO_",
// 3 "LOOP_" when that prefix starts at index 0 or 1 of the simplified link,
// otherwise 4.
int determineLinkType(const QString& link);

// The data name a link is about (from its first "_"), or a null string for a
// link of kind 4.
QString removeSpecialStringFromLink(const QString& link);

// "#rrggbb" in lower-case hexadecimal; components are not clamped.
std::string rgbToWebHex(int r, int g, int b);

// Escapes regular-expression characters. The input is read at the result's
// index, so an escape shifts what later characters are tested against.
QString toLiteral(const QString& text);

// Removes one leading line feed; tells whether it did.
bool removeNewLineAtStart(QString& text);

void ToLowerCase(std::string& text);
