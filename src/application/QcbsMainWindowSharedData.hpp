// SPDX-License-Identifier: GPL-3.0-or-later
// The data every main window shares: options, dictionaries, styles, mandatory names, help.
#pragma once

#include <QFileInfo>
#include <QString>
#include <QStringList>
#include <string>
#include <vector>

#include "cif/CifParserSettings.hpp"
#include "cif/CifWriteSettings.hpp"
#include "dictionaries/QcbsDictionaryLoader.hpp"
#include "dictionaries/QcbsDictionarySettings.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "support/THandle.hpp"

// The data every main window shares: options that hold for every document,
// the reader's and printer's line length, the dictionary loader and settings,
// the text styles, the mandatory data names and where the help documentation
// is. Made once, before the first window; each window holds it through a
// THandle, so it lives as long as the last window.
class QcbsMainWindowSharedData {
public:
    // `programFile` is the program's own file; its directory (as given, not
    // made absolute) is the base of the browser-script and documentation
    // searches, which run here.
    explicit QcbsMainWindowSharedData(const QFileInfo& programFile);
    ~QcbsMainWindowSharedData();
    QcbsMainWindowSharedData(const QcbsMainWindowSharedData&) = delete;
    QcbsMainWindowSharedData& operator=(const QcbsMainWindowSharedData&) = delete;

    const QString& programDirectory() const { return programDirectory_; }
    // Where "tessary.html" was found; empty when it was not.
    const QString& documentationDirectory() const { return documentationDirectory_; }
    // The directories every help browser searches (QTextBrowser::setSearchPaths).
    const QStringList& helpSearchPaths() const { return helpSearchPaths_; }
    // The directories searched for "tessary.html", in order, normalised.
    const QStringList& documentationCandidates() const { return documentationCandidates_; }
    // What the help action reports when no documentation was found; empty
    // when it was.
    const QString& missingDocumentationMessage() const { return missingDocumentationMessage_; }

    bool lineNumbers() const { return lineNumbers_; }
    void setLineNumbers(bool on) { lineNumbers_ = on; }
    bool saveBackup() const { return saveBackup_; }
    void setSaveBackup(bool on) { saveBackup_ = on; }
    bool consistencyChecks() const { return consistencyChecks_; }
    void setConsistencyChecks(bool on) { consistencyChecks_ = on; }

    // How every check reads a text and every print writes one. Only the
    // line-length limits come from the settings: one setting ("line length
    // limit") feeds both, and the reader's copy is saved.
    const CifParserSettings& parserSettings() const { return parserSettings_; }
    CifParserSettings& parserSettings() { return parserSettings_; }
    const CifWriteSettings& writeSettings() const { return writeSettings_; }
    CifWriteSettings& writeSettings() { return writeSettings_; }
    int parserLineLength() const { return parserSettings_.line_length; }
    void setParserLineLength(int length) { parserSettings_.line_length = length; }
    int writeLineLength() const { return writeSettings_.line_length; }
    void setWriteLineLength(int length) { writeSettings_.line_length = length; }

    THandle<QcbsDictionaryLoader> dictionaryLoader() const { return dictionaryLoader_; }
    THandle<QcbsDictionarySettings> dictionarySettings() const { return dictionarySettings_; }
    THandle<QcbsFontStyleSettings> fontStyles() const { return fontStyles_; }

    // Data names required of publication and of crystal blocks.
    std::vector<std::string>& mandatoryPublicationItems() { return mandatoryPublicationItems_; }
    const std::vector<std::string>& mandatoryPublicationItems() const { return mandatoryPublicationItems_; }
    std::vector<std::string>& mandatoryCrystalItems() { return mandatoryCrystalItems_; }
    const std::vector<std::string>& mandatoryCrystalItems() const { return mandatoryCrystalItems_; }

    // The CIF library's default line length of its reader and printer.
    static constexpr int DefaultLineLength = CifParserSettings().line_length;

private:
    void findBrowserScript();
    void findDocumentation();

    QString programDirectory_;
    QString documentationDirectory_;
    bool lineNumbers_ = false;
    bool saveBackup_ = false;
    bool consistencyChecks_ = true;
    CifParserSettings parserSettings_;
    CifWriteSettings writeSettings_;
    THandle<QcbsDictionaryLoader> dictionaryLoader_;
    THandle<QcbsDictionarySettings> dictionarySettings_;
    THandle<QcbsFontStyleSettings> fontStyles_;
    std::vector<std::string> mandatoryPublicationItems_;
    std::vector<std::string> mandatoryCrystalItems_;

    QStringList helpSearchPaths_;
    QStringList documentationCandidates_;
    QString missingDocumentationMessage_;
};
