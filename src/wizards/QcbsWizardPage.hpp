// SPDX-License-Identifier: GPL-3.0-or-later
// One page of a wizard: the side picture on the left, the page's content on the right.
#pragma once

#include <QPixmap>
#include <QWizardPage>

class QVBoxLayout;
class QcbsWizard;

// One page of a wizard: the wizard's side picture on the left and, on the
// right, a column (contentLayout()) that the page fills. A page reads its
// fields from the wizard's working block in showPage(), each time the
// wizard raises it (also on Back), and writes them back in next(), which
// the wizard calls when the user leaves the page forwards or finishes.
// Next (or Finish, on the last page) is on while the page is complete.
class QcbsWizardPage : public QWizardPage {
    Q_OBJECT
public:
    QcbsWizardPage(QPixmap* splash, QcbsWizard* wizard, const QString& name);

    QcbsWizard* wizard() const { return wizard_; }
    QPixmap* splash() const { return splash_; }
    // The column right of the picture, spacing 8.
    QVBoxLayout* contentLayout() const { return content_; }

    // Reads the page's fields; the base version does nothing.
    virtual void showPage();
    // Writes the page's fields into the working block.
    virtual void next() = 0;

    // Whether the wizard may go on from this page (Next, or Finish on the last page).
    void setNextEnabled(bool enabled);
    bool isComplete() const override { return nextEnabled_; }

private:
    QcbsWizard* wizard_;
    QPixmap* splash_;
    QVBoxLayout* content_;
    bool nextEnabled_ = true;
};
