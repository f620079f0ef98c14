// SPDX-License-Identifier: GPL-3.0-or-later
// The combine dialogue: a template's items and loops merged, row by chosen row, into a block.
#include "views/QcbsCombineDialog.hpp"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

#include "base/ORMAApplicationSettings.hpp"
#include "views/QcbsCombineModel.hpp"

QcbsCombineDialog::QcbsCombineDialog(QWidget* parent)
    : QDialog(parent),
      target_(new QLabel(this)),
      file_(new QLineEdit(this)),
      browse_(new QPushButton("&Browse...", this)),
      blocks_(new QComboBox(this)),
      table_(new QTableView(this)),
      model_(new QcbsCombineModel(this)),
      summary_(new QLabel(this)),
      choice_(new QComboBox(this)),
      buttons_(new QDialogButtonBox(QDialogButtonBox::Cancel, this)) {
    setWindowTitle("Merge Template");
    setObjectName("combineDialog");
    file_->setObjectName("editFile");
    browse_->setObjectName("buttonBrowse");
    blocks_->setObjectName("comboBlock");
    table_->setObjectName("tableItems");
    summary_->setObjectName("labelSummary");
    summary_->setWordWrap(true);
    choice_->setObjectName("comboChoose");
    choice_->addItem("New items only", QcbsCombineModel::NewItems);
    choice_->addItem("New items and unknown values", QcbsCombineModel::NewAndUnknown);
    choice_->addItem("Everything that differs", QcbsCombineModel::EveryDifference);
    choice_->addItem("Nothing", QcbsCombineModel::Nothing);
    choice_->setCurrentIndex(1);

    table_->setModel(model_);
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setWordWrap(false);
    table_->verticalHeader()->hide();
    table_->horizontalHeader()->setStretchLastSection(true);
    table_->horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);

    auto* fileRow = new QHBoxLayout;
    fileRow->addWidget(file_, 1);
    fileRow->addWidget(browse_);
    auto* form = new QFormLayout;
    // Labels with their fields as buddies, so that their keys reach them.
    auto* fileLabel = new QLabel("&File:", this);
    fileLabel->setBuddy(file_);
    auto* blockLabel = new QLabel("B&lock:", this);
    blockLabel->setBuddy(blocks_);
    form->addRow(fileLabel, fileRow);
    form->addRow(blockLabel, blocks_);
    auto* choices = new QHBoxLayout;
    auto* choiceLabel = new QLabel("C&hoose:", this);
    choiceLabel->setBuddy(choice_);
    choices->addWidget(choiceLabel);
    choices->addWidget(choice_);
    choices->addWidget(summary_, 1);
    QPushButton* merge = buttons_->addButton("&Merge", QDialogButtonBox::AcceptRole);
    merge->setObjectName("buttonMerge");
    merge->setDefault(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(target_);
    layout->addLayout(form);
    layout->addWidget(table_, 1);
    layout->addLayout(choices);
    layout->addWidget(buttons_);

    connect(browse_, &QPushButton::clicked, this, &QcbsCombineDialog::browse);
    connect(file_, &QLineEdit::editingFinished, this, [this] {
        if (!template_ || file_->text() != file_->property("read").toString()) setTemplateFile(file_->text());
    });
    connect(blocks_, &QComboBox::currentIndexChanged, this, [this] { compare(); });
    connect(choice_, &QComboBox::activated, this,
            [this] { model_->choose(QcbsCombineModel::Choice(choice_->currentData().toInt())); });
    connect(model_, &QcbsCombineModel::choiceChanged, this, &QcbsCombineDialog::updateSummary);
    connect(buttons_, &QDialogButtonBox::accepted, this, &QcbsCombineDialog::accept);
    connect(buttons_, &QDialogButtonBox::rejected, this, &QcbsCombineDialog::reject);

    ORMAApplicationSettings settings;
    resize(settings.readNumEntry(widthKey(), 760), settings.readNumEntry(heightKey(), 480));
    showProblem("Choose a CIF or template file to merge from.");
}

QcbsCombineDialog::~QcbsCombineDialog() = default;

void QcbsCombineDialog::setBlock(const QString& blockText, int cifVersion) {
    blockText_ = blockText;
    cifVersion_ = cifVersion;
    compare();
}

void QcbsCombineDialog::setTemplateFile(const QString& path) {
    file_->setText(path);
    file_->setProperty("read", path);
    template_ = CifTemplateFile::read(QFile::encodeName(path).toStdString());
    const QSignalBlocker quiet(blocks_);
    blocks_->clear();
    for (const std::string& name : template_->block_names())
        blocks_->addItem("data_" + QString::fromStdString(name), QString::fromStdString(name));
    blocks_->setEnabled(blocks_->count() > 0);
    compare();
}

QString QcbsCombineDialog::templateFile() const { return file_->text(); }

bool QcbsCombineDialog::chooseBlock(const QString& name) {
    const int index = blocks_->findData(name, Qt::UserRole, Qt::MatchFixedString);
    if (index < 0) return false;
    blocks_->setCurrentIndex(index);  // a new choice compares again
    return true;
}

void QcbsCombineDialog::compare() {
    merge_.reset();
    model_->setRows({});
    if (!template_) return showProblem("Choose a CIF or template file to merge from.");
    if (!template_->ok()) return showProblem(QString::fromStdString(template_->problem()));
    const std::string name = blocks_->currentData().toString().toStdString();
    merge_ = std::make_unique<CifBlockMerge>(blockText_.toStdString(), template_->block(name), cifVersion_,
                                             writeSettings_);
    if (!merge_->ok()) return showProblem(QString::fromStdString(merge_->problem()));
    target_->setText("Into the block <b>data_" +
                     QString::fromStdString(merge_->block_name()).toHtmlEscaped() +
                     "</b>: choose the rows to merge.");
    model_->setRows(merge_->rows());
    model_->choose(QcbsCombineModel::Choice(choice_->currentData().toInt()));
    table_->resizeColumnsToContents();
    for (int column = 0; column < QcbsCombineModel::IncomingColumn; ++column)
        table_->setColumnWidth(column, std::min(table_->columnWidth(column), 320));
}

void QcbsCombineDialog::showProblem(const QString& problem) {
    summary_->setStyleSheet("color: #b00020");
    summary_->setText(problem);
    buttons_->button(QDialogButtonBox::Cancel)->setFocus();
    for (QAbstractButton* button : buttons_->buttons())
        if (buttons_->buttonRole(button) == QDialogButtonBox::AcceptRole) button->setEnabled(false);
    choice_->setEnabled(false);
}

void QcbsCombineDialog::updateSummary() {
    if (merge_ == nullptr || !merge_->ok()) return;
    int added = 0;
    int changed = 0;
    int same = 0;
    for (const CifMergeRow& row : model_->rows()) {
        if (row.kind == CifMergeRow::added) ++added;
        if (row.kind == CifMergeRow::changed) ++changed;
        if (row.kind == CifMergeRow::same) ++same;
    }
    const std::size_t chosen = model_->chosen().size();
    summary_->setStyleSheet(QString());
    if (added + changed == 0) {
        summary_->setText(same == 0 ? "The template's block is empty."
                                    : "The block already holds all of it.");
    } else {
        summary_->setText(QString("%1 to add, %2 to change, %3 the same; %4 chosen.")
                              .arg(added)
                              .arg(changed)
                              .arg(same)
                              .arg(chosen));
    }
    for (QAbstractButton* button : buttons_->buttons())
        if (buttons_->buttonRole(button) == QDialogButtonBox::AcceptRole) button->setEnabled(chosen > 0);
    choice_->setEnabled(added + changed > 0);
}

QString QcbsCombineDialog::summary() const { return summary_->text(); }

QString QcbsCombineDialog::mergedText() const {
    if (merge_ == nullptr) return QString();
    return QString::fromStdString(merge_->merged(model_->chosen()));
}

void QcbsCombineDialog::browse() {
    ORMAApplicationSettings settings;
    QString directory = settings.readEntry(directoryKey());
    if (directory.isEmpty() && !file_->text().isEmpty()) directory = QFileInfo(file_->text()).absolutePath();
    QFileDialog dialog(this, "Merge Template", directory, "CIF (*.cif);;Text (*.txt);;All Files (*)");
    dialog.setObjectName("mergetemplatefd");
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return;
    const QString name = dialog.selectedFiles().first();
    settings.writeEntry(directoryKey(), QFileInfo(name).absolutePath());
    setTemplateFile(name);
}

void QcbsCombineDialog::accept() {
    if (merge_ == nullptr || !merge_->ok() || model_->chosen().empty()) return;
    emit blockMerged(QString::fromStdString(merge_->block_name()), mergedText());
    QDialog::accept();
}

void QcbsCombineDialog::done(int result) {
    ORMAApplicationSettings settings;
    settings.writeEntry(widthKey(), width());
    settings.writeEntry(heightKey(), height());
    QDialog::done(result);
}
