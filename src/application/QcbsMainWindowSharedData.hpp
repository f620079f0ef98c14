// SPDX-License-Identifier: GPL-3.0-or-later
// The data every main window shares: options, dictionaries, styles, mandatory names, help.
#pragma once

#include <QFileInfo>
#include <QString>
#include <QStringList>
#include <memory>
#include <string>
#include <vector>

#include "base/QcbsProgramOptions.hpp"
#include "cif/CifParserSettings.hpp"
#include "cif/CifWriteSettings.hpp"
#include "dictionaries/QcbsDictionaryLoader.hpp"
#include "dictionaries/QcbsDictionarySettings.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "support/THandle.hpp"

// The data every main window shares: the program's options, the dictionary
// loader and settings,
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

    // The program's options, shared by every window; changed() tells them
    // when the preferences change.
    QcbsProgramOptions* options() const { return options_.get(); }
    const QcbsOptions& optionValues() const { return options_->values(); }
    bool lineNumbers() const { return optionValues().line_numbers; }
    bool saveBackup() const { return optionValues().save_backup; }
    bool consistencyChecks() const { return optionValues().consistency_checks; }

    // How every check reads a text and every print writes one: the library's
    // defaults with the line-length limit of the options.
    CifParserSettings parserSettings() const;
    CifWriteSettings writeSettings() const;

    THandle<QcbsDictionaryLoader> dictionaryLoader() const { return dictionaryLoader_; }
    THandle<QcbsDictionarySettings> dictionarySettings() const { return dictionarySettings_; }
    THandle<QcbsFontStyleSettings> fontStyles() const { return fontStyles_; }

    // Data names required of publication and of crystal blocks.
    std::vector<std::string>& mandatoryPublicationItems() { return mandatoryPublicationItems_; }
    const std::vector<std::string>& mandatoryPublicationItems() const { return mandatoryPublicationItems_; }
    std::vector<std::string>& mandatoryCrystalItems() { return mandatoryCrystalItems_; }
    const std::vector<std::string>& mandatoryCrystalItems() const { return mandatoryCrystalItems_; }

private:
    void findBrowserScript();
    void findDocumentation();

    QString programDirectory_;
    QString documentationDirectory_;
    std::unique_ptr<QcbsProgramOptions> options_;
    THandle<QcbsDictionaryLoader> dictionaryLoader_;
    THandle<QcbsDictionarySettings> dictionarySettings_;
    THandle<QcbsFontStyleSettings> fontStyles_;
    std::vector<std::string> mandatoryPublicationItems_;
    std::vector<std::string> mandatoryCrystalItems_;

    QStringList helpSearchPaths_;
    QStringList documentationCandidates_;
    QString missingDocumentationMessage_;
};
