// SPDX-License-Identifier: GPL-3.0-or-later
// The list of the problems a document's last check found, under Errors, Warnings, Remarks.
#include "validation/QcbsErrorListView.hpp"

#include <QHeaderView>
#include <QRegularExpression>
#include <QSignalBlocker>

#include "resources/QcbsXpmResource.hpp"
#include "validation/QcbsErrorResource.hpp"
#include "validation/QcbsKeyListViewItem.hpp"

namespace {

const QString kNone = " - none";

// Width of the right-justified line number: up to seven digits sort in
// line order as plain text.
constexpr int kLineNumberWidth = 7;

QcbsKeyListViewItem* makeHeading(QTreeWidget* list, const QString& text, int image, const QString& key) {
    auto* heading = new QcbsKeyListViewItem(list, text, kNone);
    heading->setIcon(0, QcbsXpmResource::get_xpm(image));
    heading->setKey(0, key);
    return heading;
}

}  // namespace

QcbsErrorListView::QcbsErrorListView(QWidget* parent, const char* name) : QTreeWidget(parent) {
    if (name) setObjectName(QString::fromLatin1(name));
    setColumnCount(2);
    setHeaderLabels({QString(""), QString("")});
    // Both columns follow their contents: a long message gets a scroll bar
    // rather than being cut short on screen.
    header()->setStretchLastSection(false);
    header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    setup();
    setRootIsDecorated(true);
    header()->hide();
    setToolTip("Double-click item to view");
    setSortingEnabled(true);
    sortByColumn(0, Qt::AscendingOrder);
    connect(this, &QTreeWidget::itemDoubleClicked, this,
            [this](QTreeWidgetItem* item, int) { doubleClickedItem(item); });
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this, &QcbsErrorListView::contextMenuAt);
    setFocusPolicy(Qt::NoFocus);
}

void QcbsErrorListView::setup() {
    errors_ = makeHeading(this, "Errors", QcbsXpmResource::Error, "1");
    warnings_ = makeHeading(this, "Warnings", QcbsXpmResource::Warning, "2");
    remarks_ = makeHeading(this, "Remarks", QcbsXpmResource::Remark, "3");
}

bool QcbsErrorListView::addError(QString message, int line, CifError::ErrorID id) {
    return addEntry(errors_, std::move(message), line, id);
}

bool QcbsErrorListView::addWarning(QString message, int line, CifError::ErrorID id) {
    return addEntry(warnings_, std::move(message), line, id);
}

bool QcbsErrorListView::addRemark(QString message, int line, CifError::ErrorID id) {
    return addEntry(remarks_, std::move(message), line, id);
}

bool QcbsErrorListView::addEntry(QcbsKeyListViewItem* heading, QString message, int line,
                                 CifError::ErrorID id) {
    const QString lineText = "Line " + QString::number(line).rightJustified(kLineNumberWidth, ' ');
    tidyMessage(message);
    auto* entry = new QcbsErrorListViewItem(heading, lineText, message);
    entry->setIdentifier(1, id);
    heading->setText(1, "  Total of " + QString::number(heading->childCount()));
    return true;
}

int QcbsErrorListView::numberErrors() const { return errors_->childCount(); }

int QcbsErrorListView::numberWarnings() const { return warnings_->childCount(); }

int QcbsErrorListView::numberRemarks() const { return remarks_->childCount(); }

int QcbsErrorListView::numberTotal() const { return numberErrors() + numberWarnings() + numberRemarks(); }

void QcbsErrorListView::removeAll() {
    const bool errorsOpen = errors_->isExpanded();
    const bool warningsOpen = warnings_->isExpanded();
    const bool remarksOpen = remarks_->isExpanded();
    clear();
    setup();
    errors_->setExpanded(errorsOpen);
    warnings_->setExpanded(warningsOpen);
    remarks_->setExpanded(remarksOpen);
}

QcbsErrorListView::Filled QcbsErrorListView::fill(const CifErrorContainer& errors, int runLimit,
                                                  const std::function<int(const CifError&)>& remarkLine) {
    removeAll();
    const bool open[3] = {errors_->isExpanded(), warnings_->isExpanded(), remarks_->isExpanded()};
    Filled filled;
    // The tree hears of its new rows once, after the last: told of each
    // one, it re-measures its columns every time, which costs a long list
    // seconds. It sorts and paints once as well.
    setUpdatesEnabled(false);
    setSortingEnabled(false);
    {
        const QSignalBlocker quiet(model());
        int warningRun = 0;
        int errorRun = 0;
        int previousWarning = -99;
        int previousError = -99;
        for (const CifError& error : errors) {
            const int line = error.line();
            const int type = error.type();
            const bool known = type >= CifError::remark && type <= CifError::error;
            // Validation reply items (_vrf_...) answer a validation report;
            // no dictionary defines them, and that is no fault.
            if (type == CifError::warning && error.id() == CifError::undefined_data_name &&
                error.text().find("_vrf") != std::string::npos)
                continue;
            if (known) ++filled.total[type];
            if (filled.stoppedAt >= 0) continue;
            const QString message = QString::fromStdString(error.message());
            switch (type) {
                case CifError::remark:
                    addRemark(message, remarkLine ? remarkLine(error) : line, error.id());
                    ++filled.listed[type];
                    break;
                case CifError::warning:
                    // The cross-checks' messages follow the reading's and may go back to
                    // earlier lines: any line but the next or the same starts a new run.
                    if (line == previousWarning + 1)
                        ++warningRun;
                    else if (line != previousWarning)
                        warningRun = 1;
                    if (warningRun <= runLimit) {
                        addWarning(message, line, error.id());
                        ++filled.listed[type];
                    }
                    previousWarning = line;
                    if (warningRun == runLimit + 1) {
                        addWarning("(warnings omitted)", line, CifError::warnings_omitted);
                        ++warningRun;
                    }
                    break;
                case CifError::error:
                    addError(message, line, error.id());
                    ++filled.listed[type];
                    if (line == previousError + 1)
                        ++errorRun;
                    else if (line != previousError)
                        errorRun = 0;
                    previousError = line;
                    if (errorRun >= runLimit) filled.stoppedAt = line;
                    break;
                default:
                    ++filled.misc;
                    break;
            }
        }
        if (!filled.complete()) {
            QcbsKeyListViewItem* headings[3] = {remarks_, warnings_, errors_};
            for (int kind = 0; kind < 3; ++kind) {
                if (filled.total[kind] == 0) continue;
                headings[kind]->setText(1, "  " + QString::number(filled.listed[kind]) + " shown of " +
                                               QString::number(filled.total[kind]));
            }
        }
    }
    reset();
    errors_->setExpanded(open[0]);
    warnings_->setExpanded(open[1]);
    remarks_->setExpanded(open[2]);
    setSortingEnabled(true);
    sortByColumn(0, Qt::AscendingOrder);
    setUpdatesEnabled(true);
    return filled;
}

void QcbsErrorListView::tidyMessage(QString& message) {
    static const QRegularExpression lineEnd("\\n");
    message.replace(lineEnd, " ... ");
    message.truncate(kMaxMessageLength);
}

void QcbsErrorListView::doubleClickedItem(QTreeWidgetItem* item) {
    if (!item) return;
    bool referenced = false;

    // A message naming another line ("... line: 17") highlights that line too;
    // a message that begins with "line:" names no other line.
    QString message = item->text(1);
    const int at = message.indexOf("line:");
    if (at > 0) {
        bool ok = false;
        const int number = message.mid(at + 5).trimmed().toInt(&ok);
        if (ok) {
            emit requestHighlightLine(number, 1, true);
            referenced = true;
        }
    }

    bool ok = false;
    const int own = item->text(0).mid(4).trimmed().toInt(&ok);
    if (ok) emit requestHighlightLine(own, 2, !referenced);
}

void QcbsErrorListView::showHelp(QTreeWidgetItem* item, const QPoint& /*position*/, int column) {
    if (column != 1) return;
    const auto* entry = dynamic_cast<QcbsErrorListViewItem*>(item);
    if (!entry) return;
    const QString file = QcbsErrorResource::get_help_file(entry->identifier(1));
    if (!file.isEmpty()) emit helpRequest(file);
}

void QcbsErrorListView::contextMenuAt(const QPoint& position) {
    // The position is in viewport coordinates, as itemAt and columnAt expect.
    showHelp(itemAt(position), viewport()->mapToGlobal(position), columnAt(position.x()));
}
