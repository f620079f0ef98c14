// SPDX-License-Identifier: GPL-3.0-or-later
// The combine dialogue: a template's items and loops merged, row by chosen row, into a block.
#pragma once

#include <QDialog>
#include <QString>
#include <memory>
#include <optional>

#include "cif/CifBlockMerge.hpp"
#include "cif/CifTemplateFile.hpp"
#include "cif/CifWriteSettings.hpp"

class QComboBox;
class QDialogButtonBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;
class QcbsCombineModel;

// The combine dialogue: the user chooses a CIF or template file and one of
// its blocks, sees in a table which items and loops it would add to the
// block being edited and which values it would change, and chooses the
// rows to merge. Nothing reaches the document here: "Merge" hands the
// block's new text out through blockMerged(). The dialogue remembers the
// folder of the last file chosen and its own size.
class QcbsCombineDialog : public QDialog {
    Q_OBJECT
public:
    explicit QcbsCombineDialog(QWidget* parent = nullptr);
    ~QcbsCombineDialog() override;

    // The block merged into: its text as the document holds it (from its
    // heading on) and the document's CIF version.
    void setBlock(const QString& blockText, int cifVersion);
    void setWriteSettings(const CifWriteSettings& settings) { writeSettings_ = settings; }
    // Reads the file and offers its blocks (the first chosen); a file that
    // cannot serve is named with the reason in the dialogue.
    void setTemplateFile(const QString& path);
    QString templateFile() const;
    // Chooses the template's block of that name; false when it has none.
    bool chooseBlock(const QString& name);

    QcbsCombineModel* model() const { return model_; }
    QTableView* table() const { return table_; }
    // The message under the table: what the merge would do, or what is wrong.
    QString summary() const;
    // The block's text with the chosen rows merged in.
    QString mergedText() const;

    // Settings keys.
    static QString directoryKey() { return "merge template directory"; }
    static QString widthKey() { return "merge template width"; }
    static QString heightKey() { return "merge template height"; }

public slots:
    // Asks for a file, starting in the folder of the last one chosen.
    void browse();
    void accept() override;
    void done(int result) override;

signals:
    // The block's new text, for the document to put in as one undo step.
    void blockMerged(const QString& blockName, const QString& blockText);

private:
    void compare();
    void updateSummary();
    void showProblem(const QString& problem);

    QString blockText_;
    int cifVersion_ = 1;
    CifWriteSettings writeSettings_;
    std::optional<CifTemplateFile> template_;
    std::unique_ptr<CifBlockMerge> merge_;

    QLabel* target_;
    QLineEdit* file_;
    QPushButton* browse_;
    QComboBox* blocks_;
    QTableView* table_;
    QcbsCombineModel* model_;
    QLabel* summary_;
    QComboBox* choice_;
    QDialogButtonBox* buttons_;
};
