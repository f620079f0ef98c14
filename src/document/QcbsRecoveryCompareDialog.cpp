// SPDX-License-Identifier: GPL-3.0-or-later
// The recovered text beside the file's, read-only, to choose between them.
#include "document/QcbsRecoveryCompareDialog.hpp"

#include <QDialogButtonBox>
#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QGridLayout>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTextBlock>

namespace {

QString decoded(QByteArray bytes, bool utf8, bool* cut) {
    *cut = bytes.size() > QcbsRecoveryCompareDialog::ShownBytes;
    if (*cut) bytes.truncate(QcbsRecoveryCompareDialog::ShownBytes);
    if (bytes.startsWith("\xef\xbb\xbf")) bytes.remove(0, 3);
    return utf8 ? QString::fromUtf8(bytes) : QString::fromLatin1(bytes);
}

int firstDifferentLine(const QString& a, const QString& b) {
    const QStringList left = a.split('\n');
    const QStringList right = b.split('\n');
    const qsizetype common = std::min(left.size(), right.size());
    for (qsizetype i = 0; i < common; ++i)
        if (left[i] != right[i]) return static_cast<int>(i);
    return left.size() == right.size() ? -1 : static_cast<int>(common);
}

}  // namespace

QcbsRecoveryCompareDialog::QcbsRecoveryCompareDialog(const QcbsRecoveryRecord& record,
                                                     const QByteArray& recovered, QWidget* parent)
    : QDialog(parent) {
    setObjectName("recoverycompare");
    setWindowTitle("Compare the recovered text of " + QFileInfo(record.fileName).fileName());

    bool recoveredCut = false;
    const QString recoveredText = decoded(recovered, record.utf8, &recoveredCut);
    QString fileText;
    QString fileCaption;
    bool fileCut = false;
    QFile file(record.fileName);
    if (record.isUntitled()) {
        fileCaption = "No file: the document was never saved";
    } else if (!file.open(QIODevice::ReadOnly)) {
        fileCaption = "The file " + record.fileName + " no longer exists or cannot be read";
    } else {
        fileText = decoded(file.read(ShownBytes + 1), record.utf8, &fileCut);
        fileCaption = "The file on disk: " + record.fileName;
    }
    const QString written = QLocale().toString(record.written.toLocalTime(), QLocale::ShortFormat);
    auto* recoveredLabel = new QLabel("Recovered text, written " + written, this);
    auto* fileLabel = new QLabel(fileCaption, this);
    recoveredView_ = makeView("recoveredtext", recoveredText);
    fileView_ = makeView("filetext", fileText);

    auto* layout = new QGridLayout(this);
    layout->addWidget(recoveredLabel, 0, 0);
    layout->addWidget(fileLabel, 0, 1);
    layout->addWidget(recoveredView_, 1, 0);
    layout->addWidget(fileView_, 1, 1);
    if (recoveredCut || fileCut)
        layout->addWidget(new QLabel("Only the first " + QLocale().formattedDataSize(ShownBytes) +
                                         " of each text are shown.",
                                     this),
                          2, 0, 1, 2);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* recover = buttons->addButton("Recover", QDialogButtonBox::AcceptRole);
    recover->setObjectName("recover");
    QPushButton* discard = buttons->addButton("Discard", QDialogButtonBox::DestructiveRole);
    discard->setObjectName("discard");
    QPushButton* later = buttons->addButton("Cancel", QDialogButtonBox::RejectRole);
    later->setObjectName("later");
    recover->setDefault(true);
    connect(recover, &QPushButton::clicked, this, [this] {
        choice_ = Recover;
        accept();
    });
    connect(discard, &QPushButton::clicked, this, [this] {
        choice_ = Discard;
        accept();
    });
    connect(later, &QPushButton::clicked, this, &QDialog::reject);
    layout->addWidget(buttons, 3, 0, 1, 2);

    // Scrolled together, line for line.
    connect(recoveredView_->verticalScrollBar(), &QScrollBar::valueChanged, fileView_->verticalScrollBar(),
            &QScrollBar::setValue);
    connect(fileView_->verticalScrollBar(), &QScrollBar::valueChanged, recoveredView_->verticalScrollBar(),
            &QScrollBar::setValue);
    firstDifference_ = firstDifferentLine(recoveredText, fileText);
    if (firstDifference_ >= 0) {
        markLine(recoveredView_, firstDifference_);
        markLine(fileView_, firstDifference_);
    }
    resize(1000, 600);
}

QPlainTextEdit* QcbsRecoveryCompareDialog::makeView(const QString& name, const QString& text) {
    auto* view = new QPlainTextEdit(this);
    view->setObjectName(name);
    view->setReadOnly(true);
    view->setLineWrapMode(QPlainTextEdit::NoWrap);
    view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    view->setPlainText(text);
    return view;
}

void QcbsRecoveryCompareDialog::markLine(QPlainTextEdit* view, int line) {
    const QTextBlock block = view->document()->findBlockByNumber(line);
    if (!block.isValid()) return;
    QTextCursor cursor(block);
    view->setTextCursor(cursor);
    view->centerCursor();
    QTextEdit::ExtraSelection mark;
    mark.cursor = cursor;
    mark.format.setBackground(QColor(255, 230, 150));
    mark.format.setProperty(QTextFormat::FullWidthSelection, true);
    view->setExtraSelections({mark});
}
