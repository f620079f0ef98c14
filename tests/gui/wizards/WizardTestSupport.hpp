// SPDX-License-Identifier: GPL-3.0-or-later
// Helpers of the wizard tests: documents read from text, wizards shown and walked through.
#pragma once

#include <QAbstractButton>
#include <QPointer>
#include <QSignalSpy>
#include <QWizard>
#include <memory>
#include <string>

#include "GuiTestSupport.hpp"
#include "cif/Cif.hpp"
#include "wizards/QcbsDataWizard.hpp"
#include "wizards/QcbsWizardPage.hpp"

namespace wizard_test {

// A document read from text, without a dictionary.
inline THandle<Cif> readCif(const std::string& text) {
    THandle<Cif> cif(new Cif());
    cif->read_text(text);
    return cif;
}

// A wizard on one block of a document, shown; `extra` goes to the
// wizard's constructor after the write settings. The wizard deletes itself
// when it closes; one still open is deleted with the holder.
template <class Wizard>
class ShownWizardOf {
public:
    template <class... Extra>
    ShownWizardOf(const std::string& text, int block = 0, Extra&&... extra)
        : document_(readCif(text)),
          wizard_(new Wizard(document_, block, THandle<CifDictionary>(), CifWriteSettings(),
                             std::forward<Extra>(extra)...)),
          updates_(new QSignalSpy(wizard_.data(), &QcbsWizard::blockUpdated)) {
        wizard_->show();
    }
    ~ShownWizardOf() { delete wizard_.data(); }

    Wizard* operator->() const { return wizard_.data(); }
    Wizard* get() const { return wizard_.data(); }
    bool closed() const { return wizard_.isNull(); }
    const THandle<Cif>& document() const { return document_; }
    // The texts blockUpdated() carried.
    QStringList updates() const {
        QStringList texts;
        for (const QList<QVariant>& call : *updates_) texts << call.value(0).toString();
        return texts;
    }

    // Presses a button as the user does; false (and a failure) when it is
    // hidden or off.
    bool press(QWizard::WizardButton which) const {
        QAbstractButton* button = wizard_->button(which);
        const bool usable = button->isVisible() && button->isEnabled();
        EXPECT_TRUE(usable) << "button " << which << " on page " << wizard_->currentId() << ": "
                            << wizard_->currentPage()->title().toStdString();
        if (usable) button->click();
        return usable;
    }
    // The wizard's page of a class.
    template <class Page>
    Page* pageOf() const {
        for (int id : wizard_->pageIds())
            if (auto* page = qobject_cast<Page*>(wizard_->page(id))) return page;
        return nullptr;
    }
    // Presses Next until the page is current.
    void goTo(QWizardPage* page) const {
        while (!wizard_.isNull() && wizard_->currentPage() != page)
            if (!press(QWizard::NextButton)) return;
    }
    // Presses Next up to the finish page, then Finish.
    void finish() const {
        while (!wizard_.isNull() && wizard_->nextId() != -1)
            if (!press(QWizard::NextButton)) return;
        press(QWizard::FinishButton);
    }

private:
    THandle<Cif> document_;
    QPointer<Wizard> wizard_;
    std::unique_ptr<QSignalSpy> updates_;
};

using ShownWizard = ShownWizardOf<QcbsDataWizard>;

}  // namespace wizard_test
