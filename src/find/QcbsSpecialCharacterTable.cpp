// SPDX-License-Identifier: GPL-3.0-or-later
// The table of special characters: each glyph with its CIF code; a click inserts the code.
#include "find/QcbsSpecialCharacterTable.hpp"

#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

#include "editor/QcbsUnicode.hpp"

namespace {

constexpr int kColumns = 16;

const char* groupTitle(QcbsUnicode::Group group) {
    switch (group) {
        case QcbsUnicode::GreekLetter:
            return "Greek letters";
        case QcbsUnicode::Accent:
            return "Accents (type the letter after the code)";
        case QcbsUnicode::SpecialLetter:
            return "Special letters";
        case QcbsUnicode::Symbol:
            return "Symbols";
    }
    return "";
}

QString glyph(const QcbsUnicode::Entry& entry) {
    if (entry.character == 0) return QString::fromLatin1(entry.code);
    // A combining accent is shown on the dotted circle that stands for a letter.
    if (entry.group == QcbsUnicode::Accent) return QString(QChar(0x25CC)) + QChar(entry.character);
    return QString(QChar(entry.character));
}

}  // namespace

QcbsSpecialCharacterTable::QcbsSpecialCharacterTable(QWidget* parent) : QDialog(parent) {
    setObjectName("SpecialCharacters");
    setWindowTitle("Special Characters");
    setModal(false);
    // The editor keeps the keyboard while the table is open.
    setAttribute(Qt::WA_ShowWithoutActivating);
    setWindowFlag(Qt::Tool);
    auto* layout = new QVBoxLayout(this);
    auto* hint = new QLabel("Click a character to insert its CIF code at the cursor.", this);
    layout->addWidget(hint);
    QGroupBox* box = nullptr;
    QGridLayout* grid = nullptr;
    int count = 0;
    bool haveGroup = false;
    QcbsUnicode::Group current = QcbsUnicode::GreekLetter;
    const auto startGroup = [&](const QString& title) {
        box = new QGroupBox(title, this);
        grid = new QGridLayout(box);
        grid->setSpacing(2);
        grid->setColumnStretch(kColumns, 1);
        layout->addWidget(box);
        count = 0;
    };
    const auto addButton = [&](const QString& code, const QString& text, const QString& tip) {
        auto* button = new QToolButton(box);
        button->setText(text);
        button->setObjectName(code);
        button->setToolTip(tip);
        button->setFocusPolicy(Qt::NoFocus);
        button->setAutoRaise(true);
        button->setMinimumSize(34, 30);
        QFont font = button->font();
        font.setPointSize(font.pointSize() + 3);
        button->setFont(font);
        grid->addWidget(button, count / kColumns, count % kColumns);
        ++count;
        buttons_ << button;
        connect(button, &QToolButton::clicked, this, [this, code] { emit codeChosen(code); });
    };
    for (const QcbsUnicode::Entry& entry : QcbsUnicode::table()) {
        // A second character for a code already shown adds nothing to choose.
        if (entry.use == QcbsUnicode::ToMarkupOnly) continue;
        if (!haveGroup || entry.group != current) {
            haveGroup = true;
            current = entry.group;
            startGroup(groupTitle(entry.group));
        }
        const QString code = QString::fromLatin1(entry.code);
        addButton(code, glyph(entry), QString("%1: %2").arg(code, QString::fromLatin1(entry.description)));
    }
    startGroup("Superscript and subscript markers");
    addButton("^", "x\u00B2", "^: superscript, as in m^2^");
    addButton("~", "x\u2082", "~: subscript, as in C~6~H~12~");
    auto* close = new QToolButton(this);
    close->setText("Close");
    close->setObjectName("buttonClose");
    connect(close, &QToolButton::clicked, this, &QDialog::close);
    layout->addWidget(close, 0, Qt::AlignRight);
}
