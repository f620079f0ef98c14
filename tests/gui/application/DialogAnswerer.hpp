// SPDX-License-Identifier: GPL-3.0-or-later
// Answers the modal dialogs a test provokes, so that no test waits for a user.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <utility>

// Answers the modal dialogs a test provokes, so that no test waits for a
// user. A message box is recorded and gets the next scripted button (or its
// escape button); a file dialog gets the next scripted name (an empty one
// cancels it); any other dialog goes to the handler, or is cancelled.
class DialogAnswerer : public QObject {
public:
    struct Box {
        QString caption;
        QString text;
        QStringList buttons;  // as shown, without their mnemonic marks
        QMessageBox::Icon icon;
        QString detail;      // the informative text under the text
        QStringList labels;  // the buttons' texts with their "&" marks
    };

    DialogAnswerer() {
        connect(&timer_, &QTimer::timeout, this, &DialogAnswerer::answer);
        timer_.start(5);
    }
    DialogAnswerer& click(const QString& button) { return buttons_ << button, *this; }
    DialogAnswerer& chooseFile(const QString& name) { return files_ << name, *this; }
    // The next file dialog answered gets this name filter chosen first.
    DialogAnswerer& chooseFilter(const QString& filter) { return filter_ = filter, *this; }

    QList<Box> boxes;
    QStringList proposals;  // the file each file dialog proposed
    std::function<void(QDialog*)> otherHandler;

private:
    void answer() {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal == nullptr) return;
        if (modal == answered_) {
            // A dialog that does not close on its answer is cancelled: the
            // test goes on (and fails) instead of waiting.
            if (auto* dialog = qobject_cast<QDialog*>(modal); dialog != nullptr && ++stuckTicks_ > 400)
                dialog->reject();
            return;
        }
        answered_ = modal;
        stuckTicks_ = 0;
        if (auto* box = qobject_cast<QMessageBox*>(modal)) {
            Box record{box->windowTitle(), box->text(), {}, box->icon(), box->informativeText(), {}};
            const QString wanted = buttons_.isEmpty() ? QString() : buttons_.takeFirst();
            QAbstractButton* target = box->escapeButton();
            for (QAbstractButton* button : box->buttons()) {
                record.labels << button->text();
                record.buttons << QString(button->text()).remove(u'&');
                if (record.buttons.last() == wanted || target == nullptr) target = button;
            }
            boxes << record;
            if (target != nullptr) target->click();
        } else if (auto* dialog = qobject_cast<QFileDialog*>(modal)) {
            proposals << dialog->selectedFiles().value(0);
            const QString name = files_.isEmpty() ? QString() : files_.takeFirst();
            if (name.isEmpty()) return dialog->reject();
            if (!filter_.isEmpty()) dialog->selectNameFilter(std::exchange(filter_, QString()));
            // The name as typed, whatever the dialog has read of the directory so far.
            dialog->selectFile(name);
            if (auto* edit = dialog->findChild<QLineEdit*>("fileNameEdit")) edit->setText(name);
            static_cast<QDialog*>(dialog)->accept();  // QFileDialog's own accept() is protected
        } else if (auto* other = qobject_cast<QDialog*>(modal)) {
            otherHandler ? otherHandler(other) : other->reject();
        }
    }

    QTimer timer_;
    QStringList buttons_;
    QStringList files_;
    QString filter_;
    QPointer<QWidget> answered_;
    int stuckTicks_ = 0;
};
