// SPDX-License-Identifier: GPL-3.0-or-later
// The main window's recovery of unsaved edits: the recovery file kept, the offer after a crash.
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QSet>

#include "application/QcbsMainWindow.hpp"
#include "base/ORMALogQString.hpp"
#include "base/QcbsProgramOptions.hpp"
#include "base/QcbsUtilities.hpp"
#include "document/QcbsCifDocument.hpp"
#include "document/QcbsRecoveryCompareDialog.hpp"
#include "document/QcbsRecoveryRecord.hpp"
#include "document/QcbsRecoveryStore.hpp"
#include "document/QcbsRecoveryWriter.hpp"
#include "editor/QcbsRichTextEdit.hpp"

// A recovered text waiting for its file to be loaded.
struct QcbsMainWindow::PendingRecovery {
    QcbsRecoveryRecord record;
    QByteArray text;
};

namespace {

const QByteArray kByteOrderMark = "\xef\xbb\xbf";

// The records asked about in this process: each is offered once.
QSet<QString>& offeredRecords() {
    static QSet<QString> offered;
    return offered;
}

bool sameFile(const QString& a, const QString& b) {
    const QString canonical = QFileInfo(a).canonicalFilePath();
    if (!canonical.isEmpty()) return canonical == QFileInfo(b).canonicalFilePath();
    return QFileInfo(a).absoluteFilePath() == QFileInfo(b).absoluteFilePath();
}

QString shownName(const QcbsRecoveryRecord& record) {
    return record.isUntitled() ? "a new document (" + QFileInfo(record.fileName).fileName() + ")"
                               : "\"" + QDir::toNativeSeparators(record.fileName) + "\"";
}

}  // namespace

void QcbsMainWindow::makeRecovery() {
    recovery_ = new QcbsRecoveryWriter(document_, currentEditor(), this);
    // Said once: a directory that cannot be written fails at every edit.
    connect(recovery_, &QcbsRecoveryWriter::failed, this,
            [this, told = false](const QString& reason) mutable {
                if (std::exchange(told, true)) return;
                writeToOutputPane(
                    "Could not keep a recovery copy of the unsaved text: " + reason.toHtmlEscaped(), true);
            });
    connect(this, &QcbsMainWindow::documentLoaded, this, &QcbsMainWindow::offerRecoveryFor);
    recovery_->setEnabled(options().keep_recovery);
    connect(sharedData_->options(), &QcbsProgramOptions::changed, recovery_,
            [this] { recovery_->setEnabled(options().keep_recovery); });
}

void QcbsMainWindow::offerRecoveryAtStart() {
    // A file opened meanwhile gets the question when its text is in.
    const auto wanted = [](const QcbsRecoveryRecord& record) {
        return !offeredRecords().contains(record.id) &&
               (record.isUntitled() || !fileAlreadyOpen(record.fileName));
    };
    for (const QcbsRecoveryRecord& record : QcbsRecoveryStore::orphans(wanted)) {
        QByteArray text;
        if (!askAboutRecord(record, &text)) continue;
        QcbsMainWindow* target = this;
        if (!isBlank()) {
            target = new QcbsMainWindow(sharedData_, StartEmpty);
            target->setAttribute(Qt::WA_DeleteOnClose);
            target->show();
        }
        target->recoverText(record, text);
    }
}

void QcbsMainWindow::offerRecoveryFor(const QString& filename) {
    if (pendingRecovery_ && sameFile(pendingRecovery_->record.fileName, filename)) {
        const std::shared_ptr<PendingRecovery> pending = std::exchange(pendingRecovery_, nullptr);
        applyRecoveredText(pending->record, pending->text);
        return;
    }
    const auto wanted = [&](const QcbsRecoveryRecord& record) {
        return !record.isUntitled() && !offeredRecords().contains(record.id) &&
               sameFile(record.fileName, filename);
    };
    for (const QcbsRecoveryRecord& record : QcbsRecoveryStore::orphans(wanted)) {
        QByteArray text;
        if (!askAboutRecord(record, &text)) continue;
        applyRecoveredText(record, text);
        return;
    }
}

bool QcbsMainWindow::askAboutRecord(const QcbsRecoveryRecord& record, QByteArray* text) {
    offeredRecords().insert(record.id);
    QString state;
    if (!record.isUntitled()) {
        switch (record.disk.compare(record.fileName)) {
            case QcbsFileIdentity::State::Missing:
                state = " The file no longer exists.";
                break;
            case QcbsFileIdentity::State::Changed:
                state = " The file has been changed since.";
                break;
            default:
                break;
        }
    }
    const QString when = QLocale().toString(record.written.toLocalTime(), QLocale::LongFormat);
    for (;;) {
        QMessageBox box(QMessageBox::Question, programQName(),
                        "Unsaved edits of " + shownName(record) + " were found.", QMessageBox::NoButton,
                        this);
        box.setObjectName("recoveryquestion");
        box.setInformativeText("They were kept on " + when + " by a " + programQName() +
                               " that ended without saving them." + state +
                               "\n\nRecover them, compare them with the file first, or discard them?");
        QPushButton* recover = box.addButton("Recover", QMessageBox::AcceptRole);
        QPushButton* compare = box.addButton("Compare", QMessageBox::ActionRole);
        QPushButton* discard = box.addButton("Discard", QMessageBox::DestructiveRole);
        QPushButton* later = box.addButton("Later", QMessageBox::RejectRole);
        box.setDefaultButton(recover);
        box.setEscapeButton(later);
        box.exec();
        QAbstractButton* chosen = box.clickedButton();
        if (chosen == discard) {
            QcbsRecoveryStore::remove(record.id);
            return false;
        }
        if (chosen != recover && chosen != compare) return false;  // left for the next start
        // The record is read again: it must still be whole.
        if (!QcbsRecoveryStore::load(record.id, text)) {
            QMessageBox::warning(this, "Warning",
                                 "The unsaved edits of " + shownName(record) + " can no longer be read.");
            return false;
        }
        if (chosen == recover) return true;
        QcbsRecoveryCompareDialog dialog(record, *text, this);
        dialog.exec();
        if (dialog.choice() == QcbsRecoveryCompareDialog::Recover) return true;
        if (dialog.choice() == QcbsRecoveryCompareDialog::Discard) {
            QcbsRecoveryStore::remove(record.id);
            return false;
        }
        // Cancel in the comparison asks again.
    }
}

void QcbsMainWindow::recoverText(const QcbsRecoveryRecord& record, const QByteArray& text) {
    if (!record.isUntitled() && QFileInfo(record.fileName).isFile()) {
        // The file first, then the text over it: one undo step takes the
        // document back to the file.
        pendingRecovery_ = std::make_shared<PendingRecovery>(PendingRecovery{record, text});
        if (!load(record.fileName, false, true)) pendingRecovery_.reset();
        return;
    }
    // No file (any more): a document of its own, with the text as it was.
    if (record.isUntitled()) fileNewUntitled();
    const QString name = record.isUntitled() ? fileName() : record.fileName;
    enableFileTools(true);
    QcbsRichTextEdit* editor = currentEditor();
    connect(
        editor, &QcbsRichTextEdit::textLoaded, this,
        [this, record] {
            document_->setModified(true);
            parse();
            statusLineNumber();
            recovery_->adopt(record.id);
            recovery_->writeSoon();
        },
        Qt::SingleShotConnection);
    document_->load(name, record.byteOrderMark ? kByteOrderMark + text : text);
    enableTools(tabs_->currentWidget());
    writeToOutputPane("Recovered the unsaved edits of " + shownName(record).toHtmlEscaped(), true);
}

void QcbsMainWindow::applyRecoveredText(const QcbsRecoveryRecord& record, const QByteArray& text) {
    QcbsRichTextEdit* editor = currentEditor();
    const bool utf8 = document_->encoding().kind() == QcbsDocumentEncoding::Utf8;
    if (utf8 == record.utf8 && document_->encoding().hasByteOrderMark() == record.byteOrderMark) {
        document_->replaceText(text);
    } else {
        // The file now has another encoding than the text had: the text as it was.
        connect(
            editor, &QcbsRichTextEdit::textLoaded, this,
            [this] {
                document_->setModified(true);
                parse();
            },
            Qt::SingleShotConnection);
        document_->load(record.fileName, record.byteOrderMark ? kByteOrderMark + text : text);
    }
    statusLineNumber();
    recovery_->adopt(record.id);
    recovery_->writeSoon();
    writeToOutputPane("Recovered the unsaved edits of " + shownName(record).toHtmlEscaped(), true);
    debugLine(1, "QcbsMainWindow::applyRecoveredText - " + record.fileName);
}
