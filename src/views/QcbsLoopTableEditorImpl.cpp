// SPDX-License-Identifier: GPL-3.0-or-later
// The loop table editor dialog: a loop as a table with its row, column and cell commands.
#include "views/QcbsLoopTableEditorImpl.hpp"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QToolButton>
#include <QUndoStack>
#include <QVBoxLayout>
#include <functional>

#include "base/ORMAApplicationSettings.hpp"
#include "views/QcbsLoopTable.hpp"
#include "views/QcbsLoopTableModel.hpp"

QcbsLoopTableEditorImpl::QcbsLoopTableEditorImpl(QWidget* parent)
    : QDialog(parent),
      table_(new QcbsLoopTable(this, "loopTable")),
      category_(new QLabel(this)),
      commands_(new QWidget(this)) {
    setObjectName("QcbsLoopTableEditorImpl");
    setWindowTitle("Loop Table Editor");
    category_->setObjectName("labelCategory");
    commands_->setObjectName("commands");
    makeCommands();

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QcbsLoopTableEditorImpl::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QcbsLoopTableEditorImpl::reject);

    auto* middle = new QHBoxLayout;
    middle->addWidget(table_, 1);
    middle->addWidget(commands_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(category_);
    layout->addLayout(middle, 1);
    layout->addWidget(buttons);

    connect(table_, &QcbsLoopTable::editingBegins, this, [this] { setEditing(true); });
    connect(table_, &QcbsLoopTable::editingEnds, this, [this] { setEditing(false); });
    connect(table_, &QcbsLoopTable::loopCategoryChanged, this, [this] { updateTitle(); });
    connect(table_->model(), &QAbstractItemModel::modelReset, this, [this] { updateTitle(); });
    connect(table_->model(), &QAbstractItemModel::rowsInserted, this, [this] { updateTitle(); });
    connect(table_->model(), &QAbstractItemModel::rowsRemoved, this, [this] { updateTitle(); });

    ORMAApplicationSettings settings;
    resize(settings.readNumEntry(widthKey(), 820), settings.readNumEntry(heightKey(), 560));
}

void QcbsLoopTableEditorImpl::makeCommands() {
    QcbsLoopTable* t = table_;
    const auto current = [t] { return t->currentIndex(); };
    const auto moveRow = [t, current](int by) {
        const QModelIndex cell = current();
        if (!cell.isValid()) return;
        t->swapRows(cell.row(), cell.row() + by);
        const QModelIndex next = t->model()->index(cell.row() + by, cell.column());
        if (next.isValid()) t->setCurrentIndex(next);
    };
    const auto moveColumn = [t, current](int by) {
        const QModelIndex cell = current();
        if (!cell.isValid()) return;
        t->swapColumns(cell.column(), cell.column() + by);
        const QModelIndex next = t->model()->index(cell.row(), cell.column() + by);
        if (next.isValid()) t->setCurrentIndex(next);
    };
    const auto sort = [t, current](Qt::SortOrder order) {
        if (current().isValid()) t->sortRows(current().column(), order);
    };
    struct Command {
        const char* group;
        const char* text;
        const char* tip;
        std::function<void()> run;
    };
    const std::vector<Command> commands = {
        {"Rows", "Add Row", "A row of \"?\" at the end", [t] { t->addRow(); }},
        {"Rows", "Delete Row", "Delete the selected rows", [t] { t->deleteRow(); }},
        {"Rows", "Row Up", "Move the row up", [moveRow] { moveRow(-1); }},
        {"Rows", "Row Down", "Move the row down", [moveRow] { moveRow(1); }},
        {"Columns", "Add Column", "Add a column for a data name", [this] { chooseColumn(); }},
        {"Columns", "Delete Column", "Delete the selected columns", [t] { t->deleteCol(); }},
        {"Columns", "Column Left", "Move the column left", [moveColumn] { moveColumn(-1); }},
        {"Columns", "Column Right", "Move the column right", [moveColumn] { moveColumn(1); }},
        {"Columns", "Sort Ascending", "Sort the rows by this column, smallest first",
         [sort] { sort(Qt::AscendingOrder); }},
        {"Columns", "Sort Descending", "Sort the rows by this column, largest first",
         [sort] { sort(Qt::DescendingOrder); }},
        {"Cells", "Insert Cell", "Insert \"?\" here; the values after it move on", [t] { t->insertCell(); }},
        {"Cells", "Delete Cell", "Delete the selected cells; the values after them move back",
         [t] { t->deleteCell(); }},
        {"Cells", "Split Cell", "Split the value at its blanks into cells", [t] { t->splitCell(); }},
        {"Cells", "Merge Cells", "Join this value and the next one", [t] { t->mergeCell(); }},
        {"Cells", "Copy", "Copy the cells as tab-separated text",
         [t] { QApplication::clipboard()->setText(t->copyCells()); }},
        {"Cells", "Paste", "Paste tab-separated text from this cell on",
         [t] { t->pasteCells(QApplication::clipboard()->text()); }},
        {"Edit", "Go to Line", "Show the row's line in the editor", [this] { goToRowLine(); }},
    };
    auto* layout = new QVBoxLayout(commands_);
    layout->setContentsMargins(0, 0, 0, 0);
    QMap<QString, QGridLayout*> groups;
    const auto place = [&](const QString& group, QAction* action) {
        if (!groups.contains(group)) {
            auto* box = new QGroupBox(group, commands_);
            groups[group] = new QGridLayout(box);
            layout->addWidget(box);
        }
        QGridLayout* grid = groups[group];
        auto* button = new QToolButton(commands_);
        button->setDefaultAction(action);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        const int n = grid->count();
        grid->addWidget(button, n / 2, n % 2);
    };
    for (const Command& command : commands) {
        auto* action = new QAction(command.text, this);
        action->setToolTip(command.tip);
        connect(action, &QAction::triggered, this, command.run);
        actions_ << action;
        place(command.group, action);
    }
    QAction* undo = table_->undoStack()->createUndoAction(this, "Undo");
    undo->setShortcut(QKeySequence::Undo);
    QAction* redo = table_->undoStack()->createRedoAction(this, "Redo");
    redo->setShortcut(QKeySequence::Redo);
    for (QAction* action : {undo, redo}) {
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        addAction(action);
        place("Edit", action);
    }
    layout->addStretch();
    table_->setContextActions(actions_);
}

QAction* QcbsLoopTableEditorImpl::command(const QString& text) const {
    for (QAction* action : actions_)
        if (action->text() == text) return action;
    for (QAction* action : QWidget::actions())
        if (action->text().startsWith(text)) return action;
    return nullptr;
}

bool QcbsLoopTableEditorImpl::editLoop(const QString& dataName, THandle<CifDataBlock> block) {
    if (!table_->processLoop(dataName, block)) return false;
    newLoop_ = false;
    blockName_ = QString::fromStdString(block->name());
    originalMaster_ = table_->loopMaster();
    updateTitle();
    return true;
}

void QcbsLoopTableEditorImpl::newLoop(THandle<CifDictionary> dictionary, const QString& blockName) {
    table_->newLoop(dictionary);
    newLoop_ = true;
    blockName_ = blockName;
    originalMaster_.clear();
    updateTitle();
}

QStringList QcbsLoopTableEditorImpl::columnChoices() const {
    const THandle<CifDataBlock>& block = table_->workingBlock();
    QStringList choices;
    if (block.is_null() || block->dictionary().is_null()) return choices;
    const CifDictionary& dictionary = *block->dictionary();
    std::vector<std::string> categories;
    const std::string category = table_->loopMaster().isEmpty()
                                     ? std::string()
                                     : dictionary.category_of(table_->loopMaster().toStdString());
    if (!category.empty())
        categories.push_back(category);
    else
        categories = dictionary.categories();
    const QString prefix = table_->loopCategory();
    for (const std::string& each : categories) {
        for (const std::string& name : dictionary.category_items(each)) {
            const QString text = QString::fromStdString(name);
            if (text.endsWith("[]") || !block->find(name).is_null()) continue;
            // A loop whose first name the dictionary lacks offers the names that share its beginning.
            if (category.empty() && !prefix.isEmpty() && !text.startsWith(prefix, Qt::CaseInsensitive))
                continue;
            choices << text;
        }
    }
    choices.removeDuplicates();
    return choices;
}

void QcbsLoopTableEditorImpl::chooseColumn() {
    bool ok = false;
    const QString name = QInputDialog::getItem(this, "Add Column",
                                               "Data name of the new column:", columnChoices(), 0, true, &ok);
    if (!ok || name.trimmed().isEmpty()) return;
    if (!name.trimmed().startsWith('_') || !table_->addCol(name.trimmed())) QApplication::beep();
}

void QcbsLoopTableEditorImpl::goToRowLine() {
    const int line = table_->rowLine(table_->currentIndex().row());
    if (line < 1) {
        QApplication::beep();
        return;
    }
    emit goToLineRequest(line);
}

void QcbsLoopTableEditorImpl::setEditing(bool editing) { commands_->setEnabled(!editing); }

void QcbsLoopTableEditorImpl::updateTitle() {
    const QString what = table_->loopCategory().isEmpty() ? table_->loopMaster() : table_->loopCategory();
    category_->setText(
        QString("Block: %1    Loop: %2    Rows: %3")
            .arg(blockName_.isEmpty() ? "(none)" : blockName_, what.isEmpty() ? "(no columns yet)" : what)
            .arg(table_->model()->rowCount()));
    setWindowTitle(newLoop_ ? "New Loop" : "Loop Table Editor");
}

void QcbsLoopTableEditorImpl::accept() {
    // A cell still being typed into counts.
    table_->finishEditing();
    // An unchanged loop stays as the document has it, byte for byte.
    if (!table_->undoStack()->isClean()) {
        const QString text = table_->loopText(writeSettings_);
        if (newLoop_) {
            if (!text.isEmpty()) emit loopAdded(blockName_, text);
        } else {
            emit loopEdited(blockName_, originalMaster_, text);
        }
    }
    QDialog::accept();
}

void QcbsLoopTableEditorImpl::done(int result) {
    ORMAApplicationSettings settings;
    settings.writeEntry(widthKey(), width());
    settings.writeEntry(heightKey(), height());
    QDialog::done(result);
}
