// SPDX-License-Identifier: GPL-3.0-or-later
// Helpers of the tests of the main window and its documents.
#pragma once

#include <QAbstractButton>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSplitter>
#include <QStandardPaths>
#include <QStatusBar>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidgetItem>
#include <QWizard>
#include <memory>

#include "GuiTestSupport.hpp"
#include "application/QcbsCommandLine.hpp"
#include "application/QcbsMainWindow.hpp"
#include "application/QcbsMainWindowActions.hpp"
#include "document/QcbsCifDocument.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "validation/QcbsErrorListView.hpp"
#include "visualiser/QcbsVisSorter.hpp"
#include "wizards/QcbsWizard.hpp"

// A file of the command line as GoogleTest prints it in a failure.
inline void PrintTo(const QcbsCommandLine::File& file, std::ostream* out) {
    *out << file.path.toStdString() << ':' << file.line;
}

// Shared data as the program in the build tree has it, so that the help
// documentation of the source tree is found.
inline THandle<QcbsMainWindowSharedData> buildTreeSharedData() {
    return THandle<QcbsMainWindowSharedData>(
        new QcbsMainWindowSharedData(QFileInfo(TESSARY_SOURCE_DIR "/build/bin/tessary")));
}

// Changes the program's options as the preferences dialog does: every window hears of it.
template <class Change>
void changeOptions(const QcbsMainWindow& window, Change change) {
    QcbsOptions values = window.options();
    change(values);
    window.sharedData()->options()->setValues(values);
}

inline QAction* windowAction(const QcbsMainWindow& window, QcbsMainWindowActions::Id id) {
    return window.windowActions()->action(id);
}

inline QString statusMessage(const QMainWindow& window) { return window.statusBar()->currentMessage(); }

// The caption as the window manager shows it: "[*]" becomes "*" while the
// window is marked modified and disappears otherwise.
inline QString shownTitle(const QWidget& window) {
    QString title = window.windowTitle();
    return title.replace("[*]", window.isWindowModified() ? "*" : "");
}

// The entries under one heading of the error list, each as "line: message".
inline QStringList entriesUnder(const QcbsErrorListView* list, const QString& heading) {
    QStringList entries;
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* top = list->topLevelItem(i);
        if (top->text(0) != heading) continue;
        for (int j = 0; j < top->childCount(); ++j)
            entries << top->child(j)->text(0).mid(4).trimmed() + ": " + top->child(j)->text(1);
    }
    return entries;
}

// Types each line into the editor, ending it with the Return key.
inline void typeLines(QWidget* editor, const QStringList& lines) {
    for (const QString& line : lines) {
        QTest::keyClicks(editor, line);
        QTest::keyClick(editor, Qt::Key_Return);
    }
}

inline QByteArray readBytes(const QString& name) {
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

// Writes the file, making its directory; gives its name.
inline QString writeBytes(const QString& name, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(name).absolutePath());
    QFile file(name);
    if (file.open(QIODevice::WriteOnly)) file.write(bytes);
    return name;
}

// The text on the pages of a PDF file, each page ended by a form feed, as
// pdftotext (poppler-utils) reads it.
inline bool havePdfToText() { return !QStandardPaths::findExecutable("pdftotext").isEmpty(); }
inline QString pdfText(const QString& pdf) {
    QProcess process;
    process.start(QStandardPaths::findExecutable("pdftotext"), {"-layout", pdf, "-"});
    process.waitForFinished(30000);
    return QString::fromUtf8(process.readAllStandardOutput());
}

// A window's document and editor without the window, as the document tests use them.
struct EditorDocument {
    QcbsRichTextEdit editor{THandle<CifDictionary>(),
                            THandle<QcbsFontStyleSettings>(new QcbsFontStyleSettings())};
    QcbsCifDocument document{&editor};

    // Loads the bytes (or the file) and waits until the text is in.
    bool load(const QByteArray& bytes, const QString& name = "/data/x.cif") {
        QSignalSpy loaded(&editor, &QcbsRichTextEdit::textLoaded);
        document.load(name, bytes);
        return loaded.count() == 1 || loaded.wait(20000);
    }
    bool loadFile(const QString& name) {
        QSignalSpy loaded(&editor, &QcbsRichTextEdit::textLoaded);
        return document.loadFile(name) && (loaded.count() == 1 || loaded.wait(20000));
    }
};

// Opens the file in the window as the user does (asking where there is
// something to ask) and waits until it is read.
inline void openInWindow(QcbsMainWindow& window, const QString& path) {
    window.fileOpen(path, true);
    ASSERT_TRUE(waitUntil([&] { return !window.currentEditor()->isLoading(); }));
    ASSERT_EQ(window.fileName(), path);
}

// Opens the file in the window as a file given on the command line and
// waits until it is read (and, when it is small, checked).
inline void loadAndWait(QcbsMainWindow& window, const QString& path) {
    QSignalSpy loaded(&window, &QcbsMainWindow::documentLoaded);
    ASSERT_TRUE(window.load(path, false, true));
    ASSERT_TRUE(loaded.count() == 1 || loaded.wait(20000));
}

// A main window whose dictionaries are the team's test dictionary alone
// (TESSARY_DICTIONARIES points at a directory holding only it), with its
// own settings and a directory for the files a test opens.
class TestDictionaryWindow {
protected:
    TestDictionaryWindow() {
        QFile::copy(TESSARY_SOURCE_DIR "/tests/data/tessary_test.dic",
                    dictionaries_.filePath("tessary_test.dic"));
        window_ = std::make_unique<QcbsMainWindow>(buildTreeSharedData());
    }
    ~TestDictionaryWindow() {
        window_.reset();
        qputenv("TESSARY_DICTIONARIES", previous_);
    }
    // Writes the text to `fileName`, opens it and waits until it is read and checked.
    void openText(const QByteArray& text, const QString& fileName) {
        ASSERT_NO_FATAL_FAILURE(loadAndWait(*window_, writeBytes(files_.filePath(fileName), text)));
        ASSERT_FALSE(window_->currentCif().is_null());
    }

    ScopedPrefsDir prefs_;
    QTemporaryDir dictionaries_;
    QTemporaryDir files_;
    QByteArray previous_ = [this] {
        const QByteArray before = qgetenv("TESSARY_DICTIONARIES");
        qputenv("TESSARY_DICTIONARIES", dictionaries_.path().toUtf8());
        return before;
    }();
    std::unique_ptr<QcbsMainWindow> window_;
};

// A main window with its own settings and a directory for the files a test
// opens, to drive the wizards it launches.
class WizardWindow {
protected:
    WizardWindow() { window_ = std::make_unique<QcbsMainWindow>(buildTreeSharedData()); }

    // Writes the text to `fileName`, opens it and waits until it is read.
    void openText(const QByteArray& text, const QString& fileName) {
        loadAndWait(*window_, writeBytes(files_.filePath(fileName), text));
    }
    QString text() const { return QString::fromUtf8(window_->document()->fileBytes()); }
    // Calls the window's launching slot, with the cursor first put on a
    // 1-based line when one is given; the wizard shown, or null.
    QcbsWizard* launch(void (QcbsMainWindow::*slot)(), int line = 0) {
        if (line > 0) window_->currentEditor()->setCursorPosition(line - 1, 0);
        (window_.get()->*slot)();
        QcbsWizard* wizard = window_->openWizard();
        if (wizard != nullptr) {
            EXPECT_TRUE(waitUntil([&] { return wizard->isVisible(); }));
        }
        return wizard;
    }
    // Next up to the last page, then Finish.
    static void finish(QcbsWizard* wizard) {
        while (wizard->nextId() != -1) {
            ASSERT_TRUE(wizard->button(QWizard::NextButton)->isEnabled()) << wizard->currentId();
            wizard->button(QWizard::NextButton)->click();
        }
        wizard->button(QWizard::FinishButton)->click();
    }

    ScopedPrefsDir prefs_;
    QTemporaryDir files_;
    std::unique_ptr<QcbsMainWindow> window_;
};
