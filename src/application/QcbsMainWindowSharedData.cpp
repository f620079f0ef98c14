// SPDX-License-Identifier: GPL-3.0-or-later
// The data every main window shares: options, dictionaries, styles, mandatory names, help.
#include "application/QcbsMainWindowSharedData.hpp"

#include <QDir>

#include "application/QtServerApplication.hpp"
#include "base/ORMALogQString.hpp"
#include "dictionaries/QcbsDictionaryLoader.hpp"
#include "dictionaries/QcbsDictionarySettings.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "support/ORMALog.hpp"

QcbsMainWindowSharedData::QcbsMainWindowSharedData(const QFileInfo& programFile)
    : options_(std::make_unique<QcbsProgramOptions>()),
      dictionaryLoader_(nullptr),
      dictionarySettings_(nullptr),
      fontStyles_(nullptr) {
    dictionaryLoader_ = THandle<QcbsDictionaryLoader>(new QcbsDictionaryLoader());
    dictionarySettings_ = THandle<QcbsDictionarySettings>(new QcbsDictionarySettings());
    fontStyles_ =
        THandle<QcbsFontStyleSettings>(new QcbsFontStyleSettings(QcbsFontStyleSettings::FixedWidth));
    programDirectory_ = programFile.path();
    findBrowserScript();
    findDocumentation();
}

QcbsMainWindowSharedData::~QcbsMainWindowSharedData() = default;

CifParserSettings QcbsMainWindowSharedData::parserSettings() const {
    CifParserSettings settings;
    settings.line_length = optionValues().line_length_limit;
    return settings;
}

CifWriteSettings QcbsMainWindowSharedData::writeSettings() const {
    CifWriteSettings settings;
    settings.line_length = optionValues().line_length_limit;
    return settings;
}

void QcbsMainWindowSharedData::findBrowserScript() {
    QtServerApplication::findBrowserScriptPath(
        {programDirectory_ + "/../../bin", programDirectory_ + "/../../velmora/distrib/bin"});
}

void QcbsMainWindowSharedData::findDocumentation() {
    // Beside the program, installed under a prefix (bin/../share/tessary),
    // in a build tree (build/bin/../../docs), then older layouts.
    static const char* const suffixes[] = {"/docs",
                                           "/../share/tessary/docs",
                                           "/../../docs",
                                           "/Documentation/Tessary",
                                           "/../../distrib/docs",
                                           "/../distrib/docs",
                                           "/../Resources/docs"};
    for (const char* suffix : suffixes) {
        const QString path = QDir::cleanPath(programDirectory_ + suffix);
        documentationCandidates_ << path;
        if (ORMALog::wants(1)) {
            ORMALog::start_debug_line(1) << "main - Searching for documentation in: " << path;
            ORMALog::end_debug_line();
        }
        if (QFileInfo::exists(path + "/tessary.html")) {
            if (ORMALog::wants(1)) {
                ORMALog::start_debug_line(1) << "main - Documentation found in: " << path;
                ORMALog::end_debug_line();
            }
            helpSearchPaths_ << path + "/html";
            documentationDirectory_ = path;
            return;
        }
    }
    for (const char* html : {"/html/", "/../html/", "/../../html/", "/../Resources/html/"}) {
        helpSearchPaths_ << programDirectory_ + html;
    }
    missingDocumentationMessage_ = "Could not find the Tessary Help documentation in any of:\n\n";
    for (const QString& path : documentationCandidates_) missingDocumentationMessage_ += path + "\n";
}
