// SPDX-License-Identifier: GPL-3.0-or-later
// The modeless "Go to Line" dialog.
#include "find/QcbsGotoLineDialog.hpp"

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "editor/QcbsRichTextEdit.hpp"

QcbsGotoLineDialog::QcbsGotoLineDialog(QWidget* parent) : QDialog(parent) {
    setObjectName("GotoLineDialog");
    setWindowTitle("Go to Line");
    setModal(false);
    auto* label = new QLabel("Go to line:", this);
    line_ = new QLineEdit(this);
    line_->setObjectName("lineNumber");
    label->setBuddy(line_);
    auto* go = new QPushButton("&Go", this);
    go->setObjectName("buttonGo");
    go->setDefault(true);
    auto* close = new QPushButton("Close", this);
    close->setObjectName("buttonClose");
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(line_, 1);
    layout->addWidget(go);
    layout->addWidget(close);
    connect(go, &QPushButton::clicked, this, &QcbsGotoLineDialog::doIt);
    connect(close, &QPushButton::clicked, this, &QDialog::close);
}

void QcbsGotoLineDialog::setEditor(QcbsRichTextEdit* editor) { editor_ = editor; }

bool QcbsGotoLineDialog::doIt() {
    bool ok = false;
    const int line = line_->text().trimmed().toInt(&ok, 10);
    if (editor_ == nullptr || !ok || line < 1 || line > editor_->paragraphs()) {
        QApplication::beep();
        emit failed();
        return false;
    }
    editor_->gotoLine(line, QString(), true);
    editor_->viewport()->setFocus();
    return true;
}
