// SPDX-License-Identifier: GPL-3.0-or-later
// The frame every wizard shares: pages over a private copy of one block, its text handed back.
#pragma once

#include <QHash>
#include <QPixmap>
#include <QString>
#include <QWizard>
#include <string>
#include <vector>

#include "cif/Cif.hpp"
#include "cif/CifDictionary.hpp"
#include "cif/CifWriteSettings.hpp"
#include "support/THandle.hpp"

class QcbsWizardPage;

// The frame every wizard shares. A wizard works on a private copy of one
// block of a checked document (the working block) and never touches the
// document: Finish emits blockUpdated() once with the copy printed as CIF
// text, and whoever opened the wizard puts that text into the document.
// Cancel throws the copy away. The wizard deletes itself when it closes.
//
// A wizard derives from this class; its constructor calls startPages()
// with its page total and then setupPages(), which adds the welcome page,
// the syntax-check page, the wizard's own pages and the finish page. Each
// page is added with addWizardPage(), which numbers its title
// ("Welcome   (page 1 of 7)"). The frame calls the current page's next()
// when the user presses Next or Finish, and its showPage() whenever the
// page is raised. Pages that do not apply are skipped with setAppropriate().
class QcbsWizard : public QWizard {
    Q_OBJECT
public:
    // Copies block `blockIndex` of `document` into the working block (which
    // stays null when there is no such block). `dictionary` is the one the
    // working block and the pages' help use when the document has none.
    QcbsWizard(THandle<Cif> document, int blockIndex, THandle<CifDictionary> dictionary,
               const CifWriteSettings& settings, QWidget* parent = nullptr, const QString& name = QString());
    ~QcbsWizard() override;

    const THandle<Cif>& document() const { return document_; }
    const THandle<CifDictionary>& dictionary() const { return dictionary_; }
    // The private copy the pages read and write; null without a block.
    const THandle<CifDataBlock>& workingBlock() const { return block_; }
    const CifWriteSettings& writeSettings() const { return writeSettings_; }
    // The longest text a single-line field of a page takes, where the page says so.
    int maxFieldLength() const { return maxFieldLength_; }
    // The picture on the left of every page.
    QPixmap* splashPixmap() { return &splash_; }

    // The number the next page added gets, and how many pages there are.
    int pageCounter() const { return pageCounter_; }
    int pageTotal() const { return pageTotal_; }

    // The working block as CIF text from its "data_" line; a single line
    // end without a block.
    QString blockText() const;
    // Whether the working block differs from the document's block.
    bool blockChanged() const { return blockText() != originalText_; }
    // Gives an item of the working block a new single value. A comment after
    // the old value on its line goes with the old value.
    void setValue(const std::string& dataName, const QString& text);

    // A value of the working block as text, and text as a value: UTF-8,
    // or Latin-1 for a block whose text is not UTF-8.
    QString fromBlock(const std::string& value) const;
    std::string toBlock(const QString& text) const;

    QcbsWizardPage* wizardPage(int id) const;
    QcbsWizardPage* currentWizardPage() const;

    // A page that is not appropriate is skipped, forwards and back.
    void setAppropriate(QWizardPage* page, bool appropriate);
    bool appropriate(QWizardPage* page) const;

    int nextId() const override;
    // Next and Finish: the current page writes its fields.
    bool validateCurrentPage() override;

public slots:
    // Emits blockUpdated(blockText()) when the block changed, and closes.
    void accept() override;
    // The dictionary's definition of a data name, in the edit data dialogue, modally.
    void dataItemHelp(const QString& dataName);

signals:
    // The complete text of the edited block, from its "data_" line.
    void blockUpdated(const QString& blockText);

protected:
    // Called by a wizard's constructor before it sets up its pages.
    void startPages(int total);
    // Makes the working block a new, empty block of this name (with or
    // without "data_"), for a wizard whose text becomes a new block. It
    // counts as changed only once a page writes into it.
    void startNewBlock(const std::string& name);
    // The welcome, syntax-check and finish pages; wizards put theirs between.
    virtual void setupPages();
    virtual void setupIntroPage();
    virtual void setupErrorPage();
    virtual void setupFinishPage();
    // Adds a page titled "heading   (page n of total)" with Next on or off,
    // connects its help buttons to dataItemHelp() and counts it. Returns its id.
    int addWizardPage(QcbsWizardPage* page, const QString& heading, bool nextEnabled);

private:
    void raisePage(int id);

    QPixmap splash_;
    int pageCounter_ = 1;
    int pageTotal_ = 0;
    int maxFieldLength_ = 78;
    THandle<CifDictionary> dictionary_;
    THandle<Cif> document_;
    THandle<CifDataBlock> block_;
    CifWriteSettings writeSettings_;
    bool utf8_ = true;
    QString originalText_;
    QHash<int, bool> appropriate_;
};
