// SPDX-License-Identifier: GPL-3.0-or-later
// The frame every wizard shares: pages over a private copy of one block, its text handed back.
#include "wizards/QcbsWizard.hpp"

#include <QAbstractButton>
#include <QStringDecoder>
#include <sstream>

#include "resources/QcbsImages.hpp"
#include "views/QcbsDataItemHelpButton.hpp"
#include "views/QcbsEditDataDialogue.hpp"
#include "wizards/QcbsWizardErrorPage.hpp"
#include "wizards/QcbsWizardFinishPage.hpp"
#include "wizards/QcbsWizardIntroPage.hpp"
#include "wizards/QcbsWizardPage.hpp"

namespace {

bool isUtf8(const std::string& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder.decode(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
    return !decoder.hasError();
}

std::string printed(const CifDataBlock& block, const CifWriteSettings& settings) {
    std::ostringstream out;
    block.print(out, settings);
    out << '\n';
    return out.str();
}

}  // namespace

QcbsWizard::QcbsWizard(THandle<Cif> document, int blockIndex, THandle<CifDictionary> dictionary,
                       const CifWriteSettings& settings, QWidget* parent, const QString& name)
    : QWizard(parent),
      splash_(wizardImage()),
      dictionary_(std::move(dictionary)),
      document_(std::move(document)),
      writeSettings_(settings) {
    setObjectName(name);
    setModal(true);
    setAttribute(Qt::WA_DeleteOnClose);
    setWizardStyle(QWizard::ClassicStyle);
    setOption(QWizard::NoBackButtonOnStartPage);
    if (!document_.is_null() && blockIndex >= 0 && std::size_t(blockIndex) < document_->block_count()) {
        const THandle<CifDataBlock> source = document_->block(unsigned(blockIndex));
        const THandle<CifDictionary> blockDictionary =
            !document_->dictionary().is_null() ? document_->dictionary() : dictionary_;
        block_ = THandle<CifDataBlock>(new CifDataBlock(blockDictionary, "data_", -1));
        block_->copy(*source);
        utf8_ = document_->version() == 2 || isUtf8(printed(*block_, writeSettings_));
    }
    originalText_ = blockText();
    connect(this, &QWizard::currentIdChanged, this, &QcbsWizard::raisePage);
}

QcbsWizard::~QcbsWizard() = default;

QString QcbsWizard::fromBlock(const std::string& value) const {
    return utf8_ ? QString::fromStdString(value) : QString::fromLatin1(value.data(), qsizetype(value.size()));
}

std::string QcbsWizard::toBlock(const QString& text) const {
    return utf8_ ? text.toStdString() : text.toLatin1().toStdString();
}

QString QcbsWizard::blockText() const {
    std::string text = "\n";
    if (!block_.is_null()) text = printed(*block_, writeSettings_);
    QString result = fromBlock(text);
    const qsizetype heading = result.indexOf("data_");
    if (heading > 0) result.remove(0, heading);
    return result;
}

QcbsWizardPage* QcbsWizard::wizardPage(int id) const { return qobject_cast<QcbsWizardPage*>(page(id)); }

QcbsWizardPage* QcbsWizard::currentWizardPage() const { return wizardPage(currentId()); }

void QcbsWizard::setAppropriate(QWizardPage* page, bool appropriate) {
    for (int id : pageIds())
        if (this->page(id) == page) appropriate_[id] = appropriate;
}

bool QcbsWizard::appropriate(QWizardPage* page) const {
    for (int id : pageIds())
        if (this->page(id) == page) return appropriate_.value(id, true);
    return false;
}

int QcbsWizard::nextId() const {
    const QList<int> ids = pageIds();
    for (qsizetype i = ids.indexOf(currentId()) + 1; i > 0 && i < ids.size(); ++i)
        if (appropriate_.value(ids[i], true)) return ids[i];
    return -1;
}

bool QcbsWizard::validateCurrentPage() {
    if (QcbsWizardPage* page = currentWizardPage()) page->next();
    return true;
}

void QcbsWizard::setValue(const std::string& dataName, const QString& text) {
    if (block_.is_null()) return;
    block_->set_value(dataName, toBlock(text));
    block_->find(dataName)->set_comments(std::string(), CifCommentable::trailing_comment);
}

void QcbsWizard::accept() {
    // Finish without a change leaves the document as it is, byte for byte.
    if (blockChanged()) emit blockUpdated(blockText());
    QWizard::accept();
}

void QcbsWizard::dataItemHelp(const QString& dataName) {
    const THandle<CifDictionary> dictionary =
        !document_.is_null() && !document_->dictionary().is_null() ? document_->dictionary() : dictionary_;
    QcbsEditDataDialogue dialogue(dataName, dictionary, nullptr, false, QString(), QString());
    dialogue.exec();
}

void QcbsWizard::startPages(int total) {
    pageCounter_ = 1;
    pageTotal_ = total;
}

void QcbsWizard::startNewBlock(const std::string& name) {
    const THandle<CifDictionary> blockDictionary =
        !document_.is_null() && !document_->dictionary().is_null() ? document_->dictionary() : dictionary_;
    block_ = THandle<CifDataBlock>(new CifDataBlock(blockDictionary, name, -1));
    utf8_ = true;
    originalText_ = blockText();
}

void QcbsWizard::setupPages() {
    setupIntroPage();
    setupErrorPage();
    setupFinishPage();
}

void QcbsWizard::setupIntroPage() {
    // Opened on a document, the welcome page has nothing to ask: Next is on.
    addWizardPage(new QcbsWizardIntroPage(&splash_, this, dictionary_), "Welcome", !document_.is_null());
}

void QcbsWizard::setupErrorPage() {
    addWizardPage(new QcbsWizardErrorPage(&splash_, this), "CIF syntax checking...", false);
}

void QcbsWizard::setupFinishPage() {
    QcbsWizardPage* page = new QcbsWizardFinishPage(&splash_, this);
    page->setFinalPage(true);
    addWizardPage(page, "Apply changes to CIF...", false);
}

int QcbsWizard::addWizardPage(QcbsWizardPage* page, const QString& heading, bool nextEnabled) {
    page->setTitle(heading + "   (page " + QString::number(pageCounter_) + " of " +
                   QString::number(pageTotal_) + ")");
    const int id = addPage(page);
    page->setNextEnabled(nextEnabled);
    for (QcbsDataItemHelpButton* help : page->findChildren<QcbsDataItemHelpButton*>())
        connect(help, &QcbsDataItemHelpButton::dataItemHelpRequested, this, &QcbsWizard::dataItemHelp);
    ++pageCounter_;
    return id;
}

void QcbsWizard::raisePage(int id) {
    if (QcbsWizardPage* page = wizardPage(id)) page->showPage();
}
