// SPDX-License-Identifier: GPL-3.0-or-later
// Tessary's start-up with its input on stdin, for the tests that kill it and start it again.
//   recovery_session [--answer BUTTON]... [FILE]
// Starts as tessary does (application, shared data, first window, FILE opened, the
// unsaved edits of ended processes offered) on the offscreen platform, and prints "ready".
// Questions are answered with the next BUTTON ("Later" when none is left), each printed
// as "asked TEXT" (or "compare" for the comparison, whose buttons are named lower-case).
// Commands, one a line on stdin: "type TEXT" (typed as keys into the editor), "enter",
// "save", "text" (prints "text " and the document's bytes in base 64), "modified".
#include <unistd.h>

#include <QKeyEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QSocketNotifier>
#include <QTest>
#include <QTimer>
#include <cstdio>

#include "application/QcbsApplication.hpp"
#include "application/QcbsMainWindow.hpp"
#include "application/QcbsMainWindowSharedData.hpp"
#include "document/QcbsCifDocument.hpp"
#include "document/QcbsRecoveryCompareDialog.hpp"
#include "document/QcbsRecoveryWriter.hpp"
#include "editor/QcbsRichTextEdit.hpp"

namespace {

void say(const QByteArray& line) {
    std::fputs((line + "\n").constData(), stdout);
    std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QStringList answers;
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        if (QByteArray(argv[i]) == "--answer" && i + 1 < argc)
            answers << QString::fromLocal8Bit(argv[++i]);
        else
            arguments << QString::fromLocal8Bit(argv[i]);
    }
    int qtArgc = 1;
    QcbsApplication app(qtArgc, argv);
    THandle<QcbsMainWindowSharedData> shared(
        new QcbsMainWindowSharedData(QFileInfo(app.applicationFilePath())));
    auto* window = new QcbsMainWindow(shared, QcbsMainWindow::StartWithNewFile);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->recoveryWriter()->setDelay(300);

    QTimer answerer;
    QPointer<QWidget> answered;
    QObject::connect(&answerer, &QTimer::timeout, [&] {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal == nullptr || modal == answered) return;
        answered = modal;
        const QString wanted = answers.isEmpty() ? QString("Later") : answers.takeFirst();
        if (auto* box = qobject_cast<QMessageBox*>(modal)) {
            say("asked " + box->text().toUtf8().replace('\n', ' '));
            for (QAbstractButton* button : box->buttons())
                if (button->text().remove('&') == wanted) return button->click();
            if (box->escapeButton() != nullptr) box->escapeButton()->click();
        } else if (auto* compare = qobject_cast<QcbsRecoveryCompareDialog*>(modal)) {
            say("compare");
            if (auto* button = compare->findChild<QPushButton*>(wanted.toLower())) return button->click();
            compare->reject();
        } else if (auto* dialog = qobject_cast<QDialog*>(modal)) {
            dialog->reject();
        }
    });
    answerer.start(10);

    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QByteArray pending;
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        char buffer[4096];
        const ssize_t got = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (got <= 0) {
            input.setEnabled(false);
            return;
        }
        pending.append(buffer, got);
        for (qsizetype end = pending.indexOf('\n'); end >= 0; end = pending.indexOf('\n')) {
            const QByteArray line = pending.left(end);
            pending.remove(0, end + 1);
            QcbsRichTextEdit* editor = window->currentEditor();
            if (line.startsWith("type ")) {
                // Each character as a key with its text (QTest knows ASCII keys only).
                for (const QChar c : QString::fromUtf8(line.mid(5))) {
                    QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
                    QKeyEvent release(QEvent::KeyRelease, 0, Qt::NoModifier, QString(c));
                    QApplication::sendEvent(editor, &press);
                    QApplication::sendEvent(editor, &release);
                }
            } else if (line == "enter") {
                QTest::keyClick(editor, Qt::Key_Return);
            } else if (line == "save") {
                window->fileSave();
                say("saved");
            } else if (line == "text") {
                say("text " + window->document()->fileBytes().toBase64());
            } else if (line == "modified") {
                say(window->document()->isModified() ? "modified 1" : "modified 0");
            }
        }
    });

    for (const QString& file : arguments) app.open(file);
    QTimer::singleShot(0, window, [window] {
        window->offerRecoveryAtStart();
        say("ready");
    });
    return app.exec();
}
