// SPDX-License-Identifier: GPL-3.0-or-later
// What the dictionary says about a data item and, when editing, a new value for it in a block.
#include "views/QcbsEditDataDialogue.hpp"

#include <QComboBox>
#include <QFontMetrics>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <sstream>

#include "base/QcbsUtilities.hpp"
#include "cif/CifDataBlock.hpp"
#include "cif/CifPrinter.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "resources/QcbsXpmResource.hpp"
#include "views/QcbsDataItemInfo.hpp"

QcbsEditDataDialogue::QcbsEditDataDialogue(QString dataName, THandle<CifDictionary> dictionary,
                                           QWidget* parent, bool editing, QString blockName,
                                           QString currentValue, THandle<QcbsFontStyleSettings> styles)
    : QDialog(parent),
      dataName_(std::move(dataName)),
      dictionary_(std::move(dictionary)),
      styles_(std::move(styles)),
      editing_(editing),
      blockName_(std::move(blockName)) {
    setObjectName("editdatadialogue");
    setWindowIcon(QIcon(QcbsXpmResource::get_xpm(QcbsXpmResource::ItemHelp, 32)));
    setWindowTitle(editing_ ? "Set data item value" : "Data item help");
    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(8);
    const QString dictionaryName =
        dictionary_.is_null() ? QString() : QString::fromStdString(dictionary_->name());
    layout->addWidget(makeMainWidget(dataName_, dictionaryName), 1);
    if (editing_) layout->addWidget(makeValueWidget(currentValue));

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    if (editing_) {
        auto* ok = new QPushButton("OK");
        ok->setObjectName("ok");
        ok->setDefault(true);
        connect(ok, &QPushButton::clicked, this, &QcbsEditDataDialogue::ok);
        auto* cancel = new QPushButton("Cancel");
        cancel->setObjectName("cancel");
        connect(cancel, &QPushButton::clicked, this, &QcbsEditDataDialogue::close);
        buttons->addWidget(ok);
        buttons->addWidget(cancel);
    } else {
        auto* close = new QPushButton("Close");
        close->setObjectName("close");
        close->setDefault(true);
        connect(close, &QPushButton::clicked, this, &QcbsEditDataDialogue::close);
        buttons->addWidget(close);
    }
    layout->addLayout(buttons);
    resize(560, editing_ ? 620 : 480);
}

QGroupBox* QcbsEditDataDialogue::makeMainWidget(const QString& dataName, const QString& dictionaryName) {
    auto* box = new QGroupBox;
    box->setObjectName("information");
    auto* heading = new QLabel("Data item:  <b>" + dataName.toHtmlEscaped() + "</b><p>Dictionary:  <b>" +
                               dictionaryName.toHtmlEscaped() + "</b>");
    heading->setObjectName("heading");
    heading->setTextFormat(Qt::RichText);
    info_ = new QcbsDataItemInfo(dataName, dictionary_, styles_);
    // The panel's own Close button closes the dialogue, discarding any entry.
    connect(info_, &QcbsDataItemInfo::userDidClose, this, &QcbsEditDataDialogue::close);
    auto* layout = new QVBoxLayout(box);
    layout->setSpacing(8);
    layout->addWidget(heading);
    layout->addWidget(info_, 1);
    return box;
}

QGroupBox* QcbsEditDataDialogue::makeValueWidget(const QString& currentValue) {
    auto* box = new QGroupBox;
    box->setObjectName("value");
    auto* layout = new QVBoxLayout(box);
    layout->setSpacing(8);
    auto* heading = new QLabel("Set <b>" + dataName_.toHtmlEscaped() + " </b>in block<b> " +
                               blockName_.toHtmlEscaped() + "</b>");
    heading->setTextFormat(Qt::RichText);
    layout->addWidget(heading);

    const std::vector<CifDictionary::Enumeration> permitted =
        dictionary_.is_null() ? std::vector<CifDictionary::Enumeration>()
                              : dictionary_->enumerations(dataName_.toStdString());
    if (permitted.empty()) {
        layout->addWidget(new QLabel("Type data item value:"));
        editor_ = new QcbsRichTextEdit(nullptr, "valueeditor");
        editor_->setToolTip("Enter a value");
        editor_->loadText(currentValue);
        // Room for the value: two lines for a short one, up to ten for a long one.
        const int lines = std::clamp(
            static_cast<int>(currentValue.count('\n')) + 1 + static_cast<int>(currentValue.size() / 60), 2,
            10);
        editor_->setMinimumHeight(QFontMetrics(editor_->font()).lineSpacing() * lines + 12);
        layout->addWidget(editor_);
        editor_->setFocus();
        return box;
    }
    layout->addWidget(new QLabel("Select data item value from enumeration list:"));
    choice_ = new QComboBox;
    choice_->setObjectName("valuechoice");
    choice_->setEditable(true);
    choice_->setInsertPolicy(QComboBox::NoInsert);
    choice_->setToolTip("Choose from the list or enter a value");
    choice_->addItem("?");
    choice_->addItem(".");
    for (const CifDictionary::Enumeration& value : permitted)
        choice_->addItem(QString::fromStdString(value.value));
    const int match = choice_->findText(currentValue, Qt::MatchFixedString);  // case ignored
    if (!currentValue.isEmpty() && match >= 0)
        choice_->setCurrentIndex(match);
    else
        choice_->setEditText(currentValue);
    layout->addWidget(choice_);
    choice_->setFocus();
    return box;
}

QString QcbsEditDataDialogue::value() const {
    QString text;
    if (choice_ != nullptr) {
        text = choice_->currentText();
    } else if (editor_ != nullptr) {
        QStringList lines;
        for (int para = 0; para < editor_->paragraphs(); ++para) lines << editor_->text(para);
        text = lines.join('\n');
    }
    removeNewLineAtStart(text);
    return text;
}

QString QcbsEditDataDialogue::itemText(const THandle<CifDictionary>& dictionary, const QString& dataName,
                                       const QString& value) {
    // A block of its own holds the item, so that the printer decides the quoting.
    const std::string heading = "tessary_item";
    CifDataBlock block(dictionary, heading, -1);
    block.set_value(dataName.toStdString(), value.toStdString());
    std::ostringstream printed;
    CifPrinter(CifWriteSettings()).print_block(block, printed);
    std::string text = printed.str();
    // The heading line goes; the item's own lines stay.
    const std::string headingLine = "data_" + heading;
    if (text.compare(0, headingLine.size(), headingLine) == 0) {
        text.erase(0, headingLine.size());
        while (!text.empty() && (text.front() == '\n' || text.front() == '\r')) text.erase(0, 1);
    }
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    return QString::fromStdString(text);
}

void QcbsEditDataDialogue::ok() {
    emit setDataItemTextRequest(dataName_, blockName_, itemText(dictionary_, dataName_, value()));
    done(QDialog::Accepted);
}

void QcbsEditDataDialogue::close() { done(QDialog::Rejected); }
