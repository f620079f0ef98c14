// SPDX-License-Identifier: GPL-3.0-or-later
// The 3-D view with its tools: structure, style, contents, toggles, axes, picture.
// and print.
#include "visualiser/QcbsStructurePanel.hpp"

#include <QAction>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QStackedWidget>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include "visualiser/QcbsOpenGLSupport.hpp"
#include "visualiser/QcbsStructureView.hpp"

namespace {

QString noStructureText() {
    return "No structure to show. Check the document (Ctrl+K); blocks with cell parameters and atom "
           "coordinates are drawn here.";
}

QAction* toggle(QToolBar* bar, const QString& text, const QString& name, bool on) {
    QAction* action = bar->addAction(text);
    action->setObjectName(name);
    action->setCheckable(true);
    action->setChecked(on);
    return action;
}

}  // namespace

QcbsStructurePanel::QcbsStructurePanel(QWidget* parent) : QWidget(parent) {
    setObjectName("structurepanel");
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    makeTools();
    stack_ = new QStackedWidget(this);
    message_ = new QLabel(this);
    message_->setObjectName("vismessage");
    message_->setAlignment(Qt::AlignCenter);
    message_->setWordWrap(true);
    message_->setMargin(24);
    stack_->addWidget(message_);
    layout->addWidget(stack_, 1);
    showMessage(noStructureText());
}

void QcbsStructurePanel::makeTools() {
    auto* bar = new QToolBar(this);
    bar->setObjectName("vistools");
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    layout()->addWidget(bar);

    blocks_ = new QComboBox(bar);
    blocks_->setObjectName("visblocks");
    blocks_->setToolTip("The block whose structure is shown");
    blocks_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    blocks_->setMinimumContentsLength(12);
    bar->addWidget(blocks_);
    connect(blocks_, &QComboBox::activated, this, [this](int index) { showEntry(index); });

    style_ = new QComboBox(bar);
    style_->setObjectName("visstyle");
    style_->addItems({"Ball and stick", "Sticks", "Space filling", "Ellipsoids"});
    style_->setItemData(3, "Displacement ellipsoids at 50 % probability", Qt::ToolTipRole);
    bar->addWidget(style_);
    contents_ = new QComboBox(bar);
    contents_->setObjectName("viscontents");
    contents_->addItems({"Asymmetric unit", "Molecules", "Unit cell"});
    contents_->setCurrentIndex(1);
    bar->addWidget(contents_);
    connect(style_, &QComboBox::currentIndexChanged, this, &QcbsStructurePanel::applyOptions);
    connect(contents_, &QComboBox::currentIndexChanged, this, &QcbsStructurePanel::applyOptions);

    bar->addSeparator();
    labels_ = toggle(bar, "Labels", "vislabels", true);
    hydrogens_ = toggle(bar, "Hydrogens", "vishydrogens", true);
    cell_ = toggle(bar, "Cell", "viscell", true);
    for (QAction* action : {labels_, hydrogens_, cell_})
        connect(action, &QAction::toggled, this, &QcbsStructurePanel::applyOptions);
    disorder_ = new QToolButton(bar);
    disorder_->setObjectName("visdisorder");
    disorder_->setText("Disorder");
    disorder_->setToolTip("Disorder groups shown");
    disorder_->setPopupMode(QToolButton::InstantPopup);
    disorderMenu_ = new QMenu(disorder_);
    disorder_->setMenu(disorderMenu_);
    disorder_->setEnabled(false);
    bar->addWidget(disorder_);

    bar->addSeparator();
    alongA_ = bar->addAction("a");
    alongB_ = bar->addAction("b");
    alongC_ = bar->addAction("c");
    QAction* const axes[3] = {alongA_, alongB_, alongC_};
    for (int axis = 0; axis < 3; ++axis) {
        QAction* action = axes[axis];
        action->setObjectName(QString("visalong") + QChar('a' + axis));
        action->setToolTip(QString("View down ") + QChar('a' + axis));
        connect(action, &QAction::triggered, this, [this, axis] {
            if (view_ != nullptr) view_->viewAlong(axis);
        });
    }
    reset_ = bar->addAction("Reset");
    reset_->setObjectName("visreset");
    reset_->setToolTip("Back to the first orientation and size");
    connect(reset_, &QAction::triggered, this, [this] {
        if (view_ != nullptr) view_->resetView();
    });
    auto* picture = new QToolButton(bar);
    picture->setObjectName("vispicture");
    picture->setText("Picture");
    picture->setToolTip("Save the view as a picture, or print it");
    picture->setPopupMode(QToolButton::InstantPopup);
    auto* pictureMenu = new QMenu(picture);
    export_ = pictureMenu->addAction("Export as PNG...");
    export_->setObjectName("visexport");
    connect(export_, &QAction::triggered, this, &QcbsStructurePanel::exportPicture);
    print_ = pictureMenu->addAction("Print...");
    print_->setObjectName("visprint");
    connect(print_, &QAction::triggered, this, &QcbsStructurePanel::printPicture);
    picture->setMenu(pictureMenu);
    bar->addWidget(picture);
}

QList<QAction*> QcbsStructurePanel::toolActions() const {
    return {labels_, hydrogens_, cell_, alongA_, alongB_, alongC_, reset_, export_, print_};
}

void QcbsStructurePanel::setToolsEnabled(bool on) {
    for (QAction* action : toolActions()) action->setEnabled(on);
    for (QWidget* widget : std::initializer_list<QWidget*>{blocks_, style_, contents_})
        widget->setEnabled(on);
    disorder_->setEnabled(on && !disorderMenu_->actions().isEmpty());
}

QString QcbsStructurePanel::message() const {
    return stack_->currentWidget() == message_ ? message_->text() : QString();
}

QString QcbsStructurePanel::currentBlock() const {
    return database_.is_null() ? QString() : QString::fromStdString(database_->block_name(current_));
}

void QcbsStructurePanel::showMessage(const QString& text) {
    message_->setText(text);
    stack_->setCurrentWidget(message_);
}

bool QcbsStructurePanel::ensureView() {
    if (view_ != nullptr) return true;
    const QString problem = failure_.isEmpty() ? openGLProblem() : failure_;
    if (!problem.isEmpty()) {
        viewFailed(problem);
        return false;
    }
    view_ = new QcbsStructureView(stack_);
    stack_->addWidget(view_);
    connect(view_, &QcbsStructureView::statusMessage, this, &QcbsStructurePanel::statusBarMessageRequest);
    connect(view_, &QcbsStructureView::atomActivated, this, &QcbsStructurePanel::goToLineRequest);
    connect(view_, &QcbsStructureView::openGLFailed, this, &QcbsStructurePanel::viewFailed);
    applyOptions();
    return true;
}

void QcbsStructurePanel::viewFailed(const QString& problem) {
    failure_ = problem;
    showMessage("The 3-D view cannot be drawn here: " + problem +
                ". The structure can still be checked and edited as text.");
    for (QAction* action : {alongA_, alongB_, alongC_, reset_, export_, print_}) action->setEnabled(false);
    if (view_ != nullptr) {
        view_->hide();
        view_->deleteLater();
        view_ = nullptr;
    }
}

void QcbsStructurePanel::setDatabase(THandle<CifDatabase> database) {
    const QString previous = currentBlock();
    database_ = database;
    current_ = -1;
    fillBlocks();
    if (database_.is_null() || database_->size() == 0) {
        if (view_ != nullptr) view_->setStructure(THandle<CifStructure>(), false);
        showMessage(noStructureText());
        return;
    }
    const int same = previous.isEmpty() ? -1 : database_->index_of(previous.toStdString());
    const int index = same >= 0 ? same : 0;
    current_ = index;
    THandle<CifStructure> structure = database_->entry(index);
    blocks_->setCurrentIndex(index);
    fillDisorderMenu();
    if (!structure->usable()) {
        showMessage("data_" + QString::fromStdString(structure->block_name()) + ": " +
                    QString::fromStdString(structure->reason()) + ".");
        emit blockShown(currentBlock());
        return;
    }
    if (!ensureView()) return;
    view_->setStructure(structure, same >= 0);
    stack_->setCurrentWidget(view_);
    emit blockShown(currentBlock());
}

bool QcbsStructurePanel::showEntry(int index) {
    if (database_.is_null() || index < 0 || index >= database_->size()) return false;
    if (index == current_ && (view_ == nullptr || view_->structure() == database_->entry(index))) {
        blocks_->setCurrentIndex(index);
        return true;
    }
    current_ = index;
    blocks_->setCurrentIndex(index);
    THandle<CifStructure> structure = database_->entry(index);
    fillDisorderMenu();
    emit blockShown(currentBlock());
    if (!structure->usable()) {
        showMessage("data_" + QString::fromStdString(structure->block_name()) + ": " +
                    QString::fromStdString(structure->reason()) + ".");
        return true;
    }
    if (!ensureView()) return true;
    view_->setStructure(structure, false);
    stack_->setCurrentWidget(view_);
    const CifAtomSet& set = structure->grown();
    emit statusBarMessageRequest("data_" + currentBlock() + ": " +
                                 QString::number(structure->sites().size()) + " sites, " +
                                 QString::number(set.atoms.size()) + " atoms in molecules");
    return true;
}

bool QcbsStructurePanel::showBlock(const QString& blockName) {
    if (database_.is_null()) return false;
    return showEntry(database_->index_of(blockName.toStdString()));
}

void QcbsStructurePanel::fillBlocks() {
    blocks_->clear();
    if (database_.is_null()) return;
    for (int n = 0; n < database_->size(); ++n)
        blocks_->addItem("data_" + QString::fromStdString(database_->block_name(n)));
}

void QcbsStructurePanel::fillDisorderMenu() {
    // Groups hidden before stay hidden when they are still there.
    QSet<QString> hidden;
    for (QAction* action : disorderMenu_->actions()) {
        if (!action->isChecked()) hidden.insert(action->data().toString());
    }
    disorderMenu_->clear();
    if (!database_.is_null() && current_ >= 0) {
        THandle<CifStructure> structure = database_->entry(current_);
        for (const std::string& key : structure->disorder_groups()) {
            const QString name = QString::fromStdString(key);
            QString text = name.startsWith(':')
                               ? "group " + name.mid(1)
                               : "assembly " + name.section(':', 0, 0) + ", group " + name.section(':', 1);
            QAction* action = disorderMenu_->addAction(text);
            action->setCheckable(true);
            action->setChecked(!hidden.contains(name));
            action->setData(name);
            connect(action, &QAction::toggled, this, &QcbsStructurePanel::applyOptions);
        }
    }
    disorder_->setEnabled(!disorderMenu_->actions().isEmpty());
    applyOptions();
}

void QcbsStructurePanel::applyOptions() {
    if (view_ == nullptr) return;
    QcbsSceneOptions options;
    options.style = QcbsSceneOptions::Style(style_->currentIndex());
    options.contents = QcbsSceneOptions::Contents(contents_->currentIndex());
    options.labels = labels_->isChecked();
    options.hydrogens = hydrogens_->isChecked();
    options.cell = cell_->isChecked();
    for (QAction* action : disorderMenu_->actions()) {
        if (!action->isChecked()) options.hiddenGroups.insert(action->data().toString());
    }
    view_->setOptions(options);
}

void QcbsStructurePanel::copyViewFrom(const QcbsStructurePanel& other) {
    style_->setCurrentIndex(other.style_->currentIndex());
    contents_->setCurrentIndex(other.contents_->currentIndex());
    labels_->setChecked(other.labels_->isChecked());
    hydrogens_->setChecked(other.hydrogens_->isChecked());
    cell_->setChecked(other.cell_->isChecked());
    if (view_ != nullptr && other.view_ != nullptr)
        view_->camera().setRotation(other.view_->camera().rotation());
}

void QcbsStructurePanel::exportPicture() {
    if (view_ == nullptr || stack_->currentWidget() != view_) return;
    const QString fileName = QFileDialog::getSaveFileName(this, "Export the view", currentBlock() + ".png",
                                                          "PNG pictures (*.png)");
    if (fileName.isEmpty()) return;
    if (!view_->exportPng(fileName))
        QMessageBox::warning(this, "Error", "The picture could not be written to " + fileName + ".");
}

void QcbsStructurePanel::printPicture() {
    if (view_ == nullptr || stack_->currentWidget() != view_) return;
    QPrinter printer(QPrinter::HighResolution);
    QPrintDialog dialog(&printer, this);
    dialog.setWindowTitle("Print the view");
    if (dialog.exec() == QDialog::Accepted) view_->print(&printer);
}
