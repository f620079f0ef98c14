#pragma once

#include <QFileInfo>
#include <QString>
#include <QStringList>
#include <string>
#include <vector>

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

    // The line-length limits of the CIF reader's and printer's settings. One
    // setting ("line length limit") feeds both; the reader's copy is saved.
    int parserLineLength() const { return parserLineLength_; }
    void setParserLineLength(int length) { parserLineLength_ = length; }
    int writeLineLength() const { return writeLineLength_; }
    void setWriteLineLength(int length) { writeLineLength_ = length; }

    THandle<QcbsDictionaryLoader> dictionaryLoader() const { return dictionaryLoader_; }
    THandle<QcbsDictionarySettings> dictionarySettings() const { return dictionarySettings_; }
    THandle<QcbsFontStyleSettings> fontStyles() const { return fontStyles_; }

    // Data names required of publication and of crystal blocks.
    std::vector<std::string>& mandatoryPublicationItems() { return mandatoryPublicationItems_; }
    const std::vector<std::string>& mandatoryPublicationItems() const { return mandatoryPublicationItems_; }
    std::vector<std::string>& mandatoryCrystalItems() { return mandatoryCrystalItems_; }
    const std::vector<std::string>& mandatoryCrystalItems() const { return mandatoryCrystalItems_; }

    // The CIF library's default line length of its reader and printer.
    static constexpr int DefaultLineLength = 80;

private:
    void findBrowserScript();
    void findDocumentation();

    QString programDirectory_;
    QString documentationDirectory_;
    bool lineNumbers_ = false;
    bool saveBackup_ = false;
    bool consistencyChecks_ = true;
    int parserLineLength_ = DefaultLineLength;
    int writeLineLength_ = DefaultLineLength;
    THandle<QcbsDictionaryLoader> dictionaryLoader_;
    THandle<QcbsDictionarySettings> dictionarySettings_;
    THandle<QcbsFontStyleSettings> fontStyles_;
    std::vector<std::string> mandatoryPublicationItems_;
    std::vector<std::string> mandatoryCrystalItems_;

    QStringList helpSearchPaths_;
    QStringList documentationCandidates_;
    QString missingDocumentationMessage_;
};
