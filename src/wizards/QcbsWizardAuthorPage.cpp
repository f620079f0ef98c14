// SPDX-License-Identifier: GPL-3.0-or-later
// The publication wizard's page of the authors: names and addresses, one author at a time.
#include "wizards/QcbsWizardAuthorPage.hpp"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "views/QcbsDataItemHelpButton.hpp"
#include "wizards/QcbsWizard.hpp"

namespace {

const char* const kName = "_publ_author_name";
const char* const kAddress = "_publ_author_address";
const char* const kContact = "_publ_contact_author_name";

bool unknown(const QString& value) { return value.trimmed().isEmpty() || value.trimmed() == "?"; }

bool sameName(const std::string& a, const char* b) {
    return QString::fromStdString(a).compare(b, Qt::CaseInsensitive) == 0;
}

QString shownAddress(const QString& value) {
    if (unknown(value)) return QString();
    QString text = value;
    // A text field's value begins and ends with line breaks the field does not show.
    while (text.startsWith('\n')) text.remove(0, 1);
    while (text.endsWith('\n')) text.chop(1);
    return text;
}

}  // namespace

QcbsWizardAuthorPage::QcbsWizardAuthorPage(QPixmap* splash, QcbsWizard* wizard)
    : QcbsWizardPage(splash, wizard, "authors") {
    auto* box = new QGroupBox("Enter the names and addresses of the authors", this);
    box->setObjectName("group");
    auto* rows = new QVBoxLayout(box);
    rows->setSpacing(8);

    family_ = new QLineEdit(box);
    family_->setObjectName("family name");
    family_->setMaxLength(wizard->maxFieldLength());
    first_ = new QLineEdit(box);
    first_->setObjectName("first names");
    first_->setMaxLength(wizard->maxFieldLength());
    address_ = new QPlainTextEdit(box);
    address_->setObjectName(kAddress);
    address_->setTabChangesFocus(true);
    address_->setFixedHeight(address_->fontMetrics().lineSpacing() * 4 + 12);

    const std::tuple<QString, QWidget*, const char*> fields[] = {
        {"Family name :", family_, kName},
        {"First name(s)\nor initial(s) :", first_, nullptr},
        {"Address :", address_, kAddress},
    };
    QList<QLabel*> labels;
    int labelWidth = 0;
    for (const auto& [text, widget, help] : fields) {
        auto* row = new QHBoxLayout;
        row->setSpacing(8);
        auto* label = new QLabel(text, box);
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        label->setBuddy(widget);
        labelWidth = std::max(labelWidth, label->sizeHint().width());
        labels << label;
        row->addWidget(label);
        row->addWidget(widget, 1);
        auto* button = new QcbsDataItemHelpButton(help != nullptr ? help : kName, box);
        button->setFixedSize(button->sizeHint());
        row->addWidget(button);
        // The first names share the family name's data item: one help button for both.
        if (help == nullptr) {
            QSizePolicy policy = button->sizePolicy();
            policy.setRetainSizeWhenHidden(true);  // the fields line up
            button->setSizePolicy(policy);
            button->setVisible(false);
        }
        rows->addLayout(row);
    }
    for (QLabel* label : labels) label->setMinimumWidth(labelWidth);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    position_ = new QLabel(box);
    position_->setObjectName("position");
    previous_ = new QPushButton("Previous", box);
    next_ = new QPushButton("Next", box);
    add_ = new QPushButton("Add", box);
    delete_ = new QPushButton("Delete", box);
    buttons->addWidget(position_, 1);
    for (QPushButton* button : {previous_, next_, add_, delete_}) {
        button->setObjectName(button->text());
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    rows->addLayout(buttons);
    contentLayout()->addWidget(box);
    note_ = new QLabel(this);
    note_->setObjectName("note");
    note_->setStyleSheet("color: #1f6f3f; font-style: italic;");
    note_->setWordWrap(true);
    contentLayout()->addWidget(note_);
    contentLayout()->addStretch(1);

    connect(previous_, &QPushButton::clicked, this, &QcbsWizardAuthorPage::prevAuthor);
    connect(next_, &QPushButton::clicked, this, &QcbsWizardAuthorPage::nextAuthor);
    connect(add_, &QPushButton::clicked, this, &QcbsWizardAuthorPage::addauthor);
    connect(delete_, &QPushButton::clicked, this, &QcbsWizardAuthorPage::delauthor);
    newAuthor();
    authchanged(0);
}

QString QcbsWizardAuthorPage::joinedName(const QString& family, const QString& first) {
    const QString f = family.trimmed();
    const QString g = first.trimmed();
    if (f.isEmpty() || g.isEmpty()) return f.isEmpty() ? g : f;
    return f + ", " + g;
}

QPair<QString, QString> QcbsWizardAuthorPage::splitName(const QString& name) {
    const qsizetype comma = name.indexOf(',');
    if (comma < 0) return {name.trimmed(), QString()};
    return {name.left(comma).trimmed(), name.mid(comma + 1).trimmed()};
}

void QcbsWizardAuthorPage::showPage() {
    readAuthors();
    authchanged(0);
    family_->setFocus();
    if (auto* nextButton = qobject_cast<QPushButton*>(wizard()->button(QWizard::NextButton)))
        nextButton->setDefault(true);
}

void QcbsWizardAuthorPage::readAuthors() {
    authors_.clear();
    read_.clear();
    note_->clear();
    const THandle<CifDataBlock>& block = wizard()->workingBlock();
    if (block.is_null()) {
        newAuthor();
        return;
    }
    const THandle<CifDataItem> names = block->find(kName);
    const THandle<CifDataItem> addresses = block->find(kAddress);
    const std::size_t count = names.is_null() ? 0 : names->size();
    for (std::size_t i = 0; i < count; ++i) {
        Read read;
        read.name = wizard()->fromBlock(names->value(unsigned(i)));
        if (!addresses.is_null() && i < addresses->size())
            read.address = wizard()->fromBlock(addresses->value(unsigned(i)));
        if (!unknown(read.name)) std::tie(read.family, read.first) = splitName(read.name);
        read.shownAddress = shownAddress(read.address);
        read_ << read;
        authors_ << Author{read.family, read.first, read.shownAddress, int(i)};
    }
    if (authors_.isEmpty()) {
        newAuthor();
        const QString contact = wizard()->fromBlock(block->value(kContact));
        if (!unknown(contact)) {
            std::tie(authors_[0].family, authors_[0].first) = splitName(contact);
            note_->setText("The block names no authors: the first is its contact author.");
        }
    }
}

int QcbsWizardAuthorPage::newAuthor() {
    authors_ << Author{};
    return int(authors_.size()) - 1;
}

void QcbsWizardAuthorPage::saveAuthor() {
    if (current_ < 0 || current_ >= authors_.size()) return;
    Author& author = authors_[current_];
    author.family = family_->text();
    author.first = first_->text();
    author.address = address_->toPlainText();
}

void QcbsWizardAuthorPage::authchanged(int index) {
    current_ = std::clamp(index, 0, int(authors_.size()) - 1);
    const Author& author = authors_[current_];
    family_->setText(author.family);
    first_->setText(author.first);
    address_->setPlainText(author.address);
    const int count = int(authors_.size());
    position_->setText("Author " + QString::number(current_ + 1) + " of " + QString::number(count));
    previous_->setEnabled(current_ > 0);
    next_->setEnabled(current_ < count - 1);
}

void QcbsWizardAuthorPage::prevAuthor() {
    saveAuthor();
    authchanged(current_ - 1);
}

void QcbsWizardAuthorPage::nextAuthor() {
    saveAuthor();
    authchanged(current_ + 1);
}

void QcbsWizardAuthorPage::addauthor() {
    saveAuthor();
    authchanged(newAuthor());
    family_->setFocus();
}

void QcbsWizardAuthorPage::delauthor() {
    authors_.removeAt(current_);
    if (authors_.isEmpty()) newAuthor();
    authchanged(current_);
    family_->setFocus();
}

QList<QcbsWizardAuthorPage::Author> QcbsWizardAuthorPage::kept() const {
    QList<Author> list;
    for (const Author& author : authors_)
        if (!(author.family.trimmed().isEmpty() && author.first.trimmed().isEmpty() &&
              author.address.trimmed().isEmpty()))
            list << author;
    return list;
}

bool QcbsWizardAuthorPage::unchanged(const QList<Author>& list) const {
    if (list.size() != read_.size()) return false;
    for (qsizetype i = 0; i < list.size(); ++i) {
        const Author& a = list[i];
        const Read& r = read_[i];
        if (a.row != int(i) || a.family != r.family || a.first != r.first || a.address != r.shownAddress)
            return false;
    }
    return true;
}

QString QcbsWizardAuthorPage::nameOf(const Author& author) const {
    if (author.row >= 0 && author.family == read_[author.row].family &&
        author.first == read_[author.row].first)
        return read_[author.row].name;
    const QString name = joinedName(author.family, author.first);
    return name.isEmpty() ? QString("?") : name;
}

QString QcbsWizardAuthorPage::addressOf(const Author& author) const {
    if (author.row >= 0 && author.address == read_[author.row].shownAddress) return read_[author.row].address;
    return author.address.trimmed().isEmpty() ? QString("?") : author.address;
}

void QcbsWizardAuthorPage::next() {
    if (wizard()->workingBlock().is_null()) return;
    saveAuthor();
    const QList<Author> list = kept();
    if (!unchanged(list)) writeAuthors(list);
}

void QcbsWizardAuthorPage::writeAuthors(const QList<Author>& list) {
    CifDataBlock& block = *wizard()->workingBlock();
    const THandle<CifDataItem> names = block.find(kName);
    const THandle<CifDataItem> addresses = block.find(kAddress);
    const bool looped =
        (!names.is_null() && names->is_looped()) || (!addresses.is_null() && addresses->is_looped());
    std::vector<std::string> columns;
    if (!names.is_null() && names->is_looped()) block.loop_columns(kName, columns);

    if (list.isEmpty()) {
        // Every author deleted: the author items go, with the rest of their loop.
        if (columns.empty()) columns = {kName};
        columns.push_back(kAddress);
        block.remove(columns);
        return;
    }
    const bool anyAddress =
        !addresses.is_null() ||
        std::any_of(list.begin(), list.end(), [](const Author& a) { return !a.address.trimmed().isEmpty(); });
    if (!looped && list.size() == 1) {
        // One author of a block without an author loop stays a pair of single items.
        const QString name = nameOf(list[0]);
        if (names.is_null() || wizard()->fromBlock(names->value()) != name) wizard()->setValue(kName, name);
        const QString address = addressOf(list[0]);
        if (anyAddress && (addresses.is_null() || wizard()->fromBlock(addresses->value()) != address))
            wizard()->setValue(kAddress, address);
        return;
    }
    const bool hasAddressColumn = std::any_of(columns.begin(), columns.end(),
                                              [](const std::string& c) { return sameName(c, kAddress); });
    if (columns.empty() || (anyAddress && !hasAddressColumn)) {
        if (columns.empty()) columns = {kName};
        if (anyAddress && !hasAddressColumn) columns.push_back(kAddress);
        block.create_loop(columns);
        columns.clear();
        block.loop_columns(kName, columns);
    }
    for (const std::string& column : columns) {
        const THandle<CifDataItem> item = block.find(column);
        const THandle<CifDataItem> old = item->clone();
        const bool isName = sameName(column, kName);
        const bool isAddress = sameName(column, kAddress);
        item->clear_values();
        for (qsizetype n = 0; n < list.size(); ++n) {
            const Author& author = list[n];
            const bool kept = author.row >= 0 && std::size_t(author.row) < old->size();
            bool same = kept;
            if (isName) same = kept && nameOf(author) == read_[author.row].name;
            if (isAddress) same = kept && addressOf(author) == read_[author.row].address;
            if (same)
                item->copy_value_from(std::size_t(n), *old, std::size_t(author.row));
            else if (isName)
                item->add_value(wizard()->toBlock(nameOf(author)));
            else if (isAddress)
                item->add_value(wizard()->toBlock(addressOf(author)));
            else
                item->add_value("?");
        }
    }
}
