#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <functional>

// Answers the modal dialogs a test provokes, so that no test waits for a
// user. Every message box is recorded (caption, text, button texts) and
// answered with the next scripted button, or its escape button when none is
// scripted; every file dialog gets the next scripted file name, or is
// cancelled; any other dialog is recorded by its object name and cancelled,
// unless a handler for it is set.
class DialogAnswerer : public QObject {
public:
    struct Box {
        QString caption;
        QString text;
        QStringList buttons;
        QString clicked;
        QMessageBox::Icon icon = QMessageBox::NoIcon;
    };

    DialogAnswerer() {
        timer_.setInterval(5);
        connect(&timer_, &QTimer::timeout, this, &DialogAnswerer::answer);
        timer_.start();
    }

    // The button (by its text) that the next message box gets.
    DialogAnswerer& click(const QString& button) {
        buttons_ << button;
        return *this;
    }
    // The file name the next file dialog gets; an empty name cancels it.
    DialogAnswerer& chooseFile(const QString& name) {
        files_ << name;
        return *this;
    }
    // Takes the next dialog that is neither a message box nor a file dialog.
    void setOtherDialogHandler(std::function<void(QDialog*)> handler) { other_ = std::move(handler); }

    QList<Box> boxes;
    QStringList fileDialogs;   // the object names of the file dialogs answered
    QStringList proposals;     // the file each of them proposed
    QStringList otherDialogs;  // the object names of the other dialogs
    QStringList stuck;         // dialogs that had to be cancelled after their answer

    QStringList texts() const {
        QStringList list;
        for (const Box& box : boxes) list << box.text;
        return list;
    }

private:
    void answer() {
        QWidget* modal = QApplication::activeModalWidget();
        if (modal == nullptr) return;
        if (modal == answered_) {
            // A dialog that did not close on its answer is cancelled, so
            // that the test goes on (and fails) instead of waiting.
            if (++stuckTicks_ > 400)
                if (auto* dialog = qobject_cast<QDialog*>(modal)) {
                    stuck << modal->objectName();
                    dialog->reject();
                }
            return;
        }
        answered_ = modal;
        stuckTicks_ = 0;
        if (auto* box = qobject_cast<QMessageBox*>(modal)) {
            Box record{box->windowTitle(), box->text(), {}, {}, box->icon()};
            QAbstractButton* target = box->escapeButton();
            const QString wanted = buttons_.isEmpty() ? QString() : buttons_.takeFirst();
            for (QAbstractButton* button : box->buttons()) {
                const QString text = button->text().remove(u'&');
                record.buttons << text;
                if (text == wanted) target = button;
            }
            if (target == nullptr && !box->buttons().isEmpty()) target = box->buttons().first();
            record.clicked = target != nullptr ? target->text().remove(u'&') : QString();
            boxes << record;
            if (target != nullptr) target->click();
            return;
        }
        if (auto* dialog = qobject_cast<QFileDialog*>(modal)) {
            fileDialogs << dialog->objectName();
            proposals << dialog->selectedFiles().value(0);
            const QString name = files_.isEmpty() ? QString() : files_.takeFirst();
            if (name.isEmpty()) {
                dialog->reject();
                return;
            }
            dialog->selectFile(name);
            // The name as typed, whatever the dialog's model has read of the
            // directory so far.
            if (auto* edit = dialog->findChild<QLineEdit*>("fileNameEdit")) edit->setText(name);
            static_cast<QDialog*>(dialog)->accept();  // QFileDialog's own accept() is protected
            return;
        }
        if (auto* dialog = qobject_cast<QDialog*>(modal)) {
            otherDialogs << dialog->objectName();
            if (other_)
                other_(dialog);
            else
                dialog->reject();
        }
    }

    QTimer timer_;
    QStringList buttons_;
    QStringList files_;
    std::function<void(QDialog*)> other_;
    QPointer<QWidget> answered_;
    int stuckTicks_ = 0;
};
