// SPDX-License-Identifier: GPL-3.0-or-later
// A wizard's syntax-check page: the document's messages, and no way on while it has errors.
#include "wizards/QcbsWizardErrorPage.hpp"

#include <QPlainTextEdit>
#include <QStatusBar>
#include <QVBoxLayout>

#include "wizards/QcbsWizard.hpp"

namespace {

QString counted(int count, const QString& noun) {
    return QString::number(count) + " " + noun + (count == 1 ? "" : "s");
}

}  // namespace

QcbsWizardErrorPage::Summary QcbsWizardErrorPage::summarise(const THandle<CifErrorContainer>& errors) {
    Summary summary;
    summary.status = "Cif processed with no warnings or errors.";
    if (errors.is_null() || errors->empty()) return summary;
    const int errorCount = errors->errors_of_type(CifError::error);
    const int warningCount = errors->errors_of_type(CifError::warning);
    for (const CifError& error : *errors) summary.lines << QString::fromStdString(error.complete_message());
    if (errorCount > 0)
        summary.status = "Sorry, the wizard cannot continue whilst there are errors.";
    else if (warningCount > 0)
        summary.status = "It is strongly recommended that you fix syntax warnings before using the wizard.";
    summary.lines << "\nCIF processed with " + counted(warningCount, "warning") + " and " +
                         counted(errorCount, "error");
    summary.blocking = errorCount > 0;
    return summary;
}

QcbsWizardErrorPage::QcbsWizardErrorPage(QPixmap* splash, QcbsWizard* wizard)
    : QcbsWizardPage(splash, wizard, "syntax check") {
    messages_ = new QPlainTextEdit(this);
    messages_->setObjectName("messages");
    messages_->setReadOnly(true);
    messages_->setLineWrapMode(QPlainTextEdit::NoWrap);
    // Wide enough for a long message without scrolling.
    messages_->setMinimumWidth(
        messages_->fontMetrics().horizontalAdvance(
            "Warning: Line 00000 : Created non-standard data item _geom_extra_table_head_a") +
        2 * messages_->frameWidth() + 8);
    status_ = new QStatusBar(this);
    status_->setObjectName("status");
    status_->setSizeGripEnabled(false);
    contentLayout()->addWidget(messages_, 1);
    contentLayout()->addWidget(status_);
}

void QcbsWizardErrorPage::showPage() {
    const THandle<Cif>& document = wizard()->document();
    const Summary summary = summarise(document.is_null() ? THandle<CifErrorContainer>() : document->errors());
    messages_->setPlainText(summary.lines.join('\n'));
    status_->showMessage(summary.status);
    setNextEnabled(!summary.blocking);
}
