// SPDX-License-Identifier: GPL-3.0-or-later
// A data name's dictionary definition as rich text, with links to the names it mentions.
#include "views/QcbsDataItemInfo.hpp"

#include <QHBoxLayout>
#include <QPushButton>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>

#include "base/QcbsUtilities.hpp"

namespace {

QString qs(const std::string& text) { return QString::fromStdString(text); }

QString escaped(const QString& text) { return text.toHtmlEscaped(); }

// The definition text as the dictionary indents it, without the common
// indentation and the blank lines around it. The first line follows the
// text field's ";" and is indented on its own.
QString dedented(const std::string& text) {
    QStringList lines = qs(text).split('\n');
    while (!lines.isEmpty() && lines.first().trimmed().isEmpty()) lines.removeFirst();
    while (!lines.isEmpty() && lines.last().trimmed().isEmpty()) lines.removeLast();
    if (lines.isEmpty()) return QString();
    const QString first = lines.takeFirst().trimmed();
    qsizetype indent = -1;
    for (const QString& line : lines) {
        if (line.trimmed().isEmpty()) continue;
        qsizetype blanks = 0;
        while (blanks < line.size() && line[blanks].isSpace()) ++blanks;
        indent = indent < 0 ? blanks : std::min(indent, blanks);
    }
    for (QString& line : lines) line = line.mid(std::max<qsizetype>(indent, 0));
    lines.prepend(first);
    return lines.join('\n');
}

// Builds the page of one name.
class DefinitionPage {
public:
    DefinitionPage(const THandle<CifDictionary>& dictionary, const QcbsFontStyleSettings& styles)
        : dictionary_(dictionary) {
        code_ = "font-family:'" + styles.baseFont().family() + "'";
        const QColor colour = styles.styleSettings(QcbsFontStyleSettings::CoreDataItem).color;
        if (colour.isValid()) nameColour_ = ";color:" + colour.name();
    }

    QString code(const QString& text) const {
        return "<span style=\"" + code_ + "\">" + escaped(text) + "</span>";
    }

    // A link to a name's definition; a name the dictionary lacks is plain text.
    QString link(const QString& name) const {
        if (!defines(name)) return code(name);
        return "<a href=\"INFO" + escaped(name) + "\"><span style=\"" + code_ + nameColour_ + "\">" +
               escaped(name) + "</span></a>";
    }

    QString links(const std::vector<std::string>& names) const {
        QStringList parts;
        for (const std::string& name : names) parts << link(qs(name));
        return parts.join(", ");
    }

    bool defines(const QString& name) const {
        return !dictionary_.is_null() && dictionary_->definition(name.toStdString()) != nullptr;
    }

    void row(const QString& label, const QString& html) {
        if (html.isEmpty()) return;
        rows_ += "<tr><td valign=\"top\"><b>" + label + "</b>&nbsp;&nbsp;</td><td>" + html + "</td></tr>";
    }

    QString table() const {
        return rows_.isEmpty() ? QString() : "<table cellspacing=\"2\">" + rows_ + "</table>";
    }

    // The names a related name stands for: itself when defined, otherwise
    // (a name prefix such as "_atom_site_Cartn_") the names of the category
    // that begin with it.
    QString related(const std::string& name, const std::string& category) const {
        if (defines(qs(name)) || dictionary_.is_null()) return link(qs(name));
        std::vector<std::string> expanded;
        for (const std::string& member : dictionary_->category_items(category))
            if (member.size() > name.size() && qs(member).startsWith(qs(name), Qt::CaseInsensitive))
                expanded.push_back(member);
        return expanded.empty() ? code(qs(name)) : links(expanded);
    }

private:
    THandle<CifDictionary> dictionary_;
    QString code_;
    QString nameColour_;
    QString rows_;
};

QString rangeText(const CifItemDefinition& definition) {
    if (!definition.has_range) return QString();
    const auto number = [](double value) { return QString::number(value, 'g', 10); };
    if (definition.type != CifItemDefinition::Type::numb) return escaped(qs(definition.range_text));
    if (definition.has_minimum && definition.has_maximum)
        return "from " + number(definition.minimum) + " to " + number(definition.maximum);
    if (definition.has_minimum) return "at least " + number(definition.minimum);
    if (definition.has_maximum) return "at most " + number(definition.maximum);
    return escaped(qs(definition.range_text));
}

QString listText(CifItemDefinition::List list) {
    switch (list) {
        case CifItemDefinition::List::yes:
            return "must be looped";
        case CifItemDefinition::List::both:
            return "may be looped or not";
        case CifItemDefinition::List::no:
            break;
    }
    return "must not be looped";
}

QString undefinedNote(const QString& name) {
    const QString lower = name.toLower();
    if (lower.startsWith("_shelx_"))
        return "It is written by the SHELX programs, which define it themselves.";
    if (lower.startsWith("_vrf_")) return "It holds a reply to a validation alert.";
    if (lower.startsWith("_[local]_")) return "It is a local name, which no dictionary defines.";
    return "Data names that no enabled dictionary defines are kept, but neither their names nor their values "
           "are checked.";
}

}  // namespace

QcbsDataItemInfo::QcbsDataItemInfo(QString dataName, THandle<CifDictionary> dictionary,
                                   THandle<QcbsFontStyleSettings> styles, QWidget* parent)
    : QWidget(parent),
      dataName_(std::move(dataName)),
      dictionary_(std::move(dictionary)),
      styles_(std::move(styles)) {
    setObjectName("dataiteminfo");
    if (styles_.is_null()) styles_ = THandle<QcbsFontStyleSettings>(new QcbsFontStyleSettings());
    browser_ = new QTextBrowser;
    browser_->setObjectName("definition");
    browser_->setOpenLinks(false);
    connect(browser_, &QTextBrowser::anchorClicked, this, &QcbsDataItemInfo::followLink);

    back_ = new QPushButton("Back");
    back_->setObjectName("back");
    back_->setEnabled(false);
    connect(back_, &QPushButton::clicked, this, &QcbsDataItemInfo::back);
    auto* close = new QPushButton("Close");
    close->setObjectName("close");
    connect(close, &QPushButton::clicked, this, &QcbsDataItemInfo::userDidClose);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(back_);
    buttons->addStretch(1);
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(browser_, 1);
    layout->addLayout(buttons);
    render();
}

void QcbsDataItemInfo::showDataName(const QString& dataName) {
    if (dataName.isEmpty() || dataName == dataName_) return;
    history_ << dataName_;
    dataName_ = dataName;
    render();
}

void QcbsDataItemInfo::back() {
    if (history_.isEmpty()) return;
    dataName_ = history_.takeLast();
    render();
}

void QcbsDataItemInfo::followLink(const QUrl& link) {
    const QString text = link.toString(QUrl::FullyDecoded);
    if (determineLinkType(text) == 2) showDataName(removeSpecialStringFromLink(text));
}

void QcbsDataItemInfo::render() {
    browser_->setHtml(definitionHtml(dictionary_, dataName_, *styles_));
    back_->setEnabled(!history_.isEmpty());
}

QString QcbsDataItemInfo::definitionHtml(const THandle<CifDictionary>& dictionary, const QString& dataName,
                                         const QcbsFontStyleSettings& styles) {
    DefinitionPage page(dictionary, styles);
    QString html = "<h3>" + page.code(dataName) + "</h3>";
    if (dictionary.is_null() || !dictionary->has_definitions())
        return html + "<p>No dictionary is enabled, so nothing is known about this name.</p>";

    const std::string name = dataName.toStdString();
    const CifItemDefinition* definition = dictionary->definition(name);
    const std::vector<std::string> members = dictionary->category_items(name);
    if (definition == nullptr && members.empty()) {
        return html + "<p>The dictionary " + escaped(qs(dictionary->name())) +
               " does not define this name.</p><p>" + undefinedNote(dataName) + "</p>";
    }
    if (definition == nullptr || definition->is_category_overview()) {
        // A category: its overview (when the dictionary has one) and its names.
        page.row("Category", page.code(qs(CifDictionary::plain_category_name(name))));
        page.row("Data names", page.links(members));
        html += page.table();
        if (definition != nullptr && !definition->notes().definition.empty())
            html += "<p style=\"white-space:pre-wrap\">" + escaped(dedented(definition->notes().definition)) +
                    "</p>";
        return html;
    }

    const QString overview = "_" + qs(definition->category) + "_[]";
    page.row("Category", page.defines(overview) ? page.link(overview) : page.code(qs(definition->category)));
    QString type = escaped(qs(definition->type_text));
    if (definition->type == CifItemDefinition::Type::numb) type = "number (" + type + ")";
    if (definition->type == CifItemDefinition::Type::char_text) type = "text (" + type + ")";
    page.row("Type", type);
    if (definition->type == CifItemDefinition::Type::numb)
        page.row("Standard uncertainty", definition->uncertainty == CifItemDefinition::Uncertainty::allowed
                                             ? "allowed"
                                             : "not allowed");
    QString units = escaped(qs(definition->notes().units));
    if (!definition->notes().units_detail.empty())
        units += " (" + escaped(qs(definition->notes().units_detail)) + ")";
    page.row("Units", units);
    page.row("Range", rangeText(*definition));
    if (!definition->enumerations.empty()) {
        QString values = "<table cellspacing=\"1\">";
        for (const CifEnumeration& value : definition->enumerations)
            values += "<tr><td>" + page.code(qs(value.value)) + "&nbsp;&nbsp;</td><td>" +
                      escaped(qs(value.detail)) + "</td></tr>";
        values += "</table>";
        if (definition->enumeration_concatenated) values += "several codes may be run together";
        page.row("Permitted values", values);
    }
    if (!definition->notes().enumeration_default.empty())
        page.row("Default", page.code(qs(definition->notes().enumeration_default)));
    page.row("Loop",
             listText(definition->list) + (definition->list_mandatory ? "; every loop of its category "
                                                                        "must hold it"
                                                                      : ""));
    // These may name a prefix of several names ("_geom_bond_atom_site_label_").
    const auto names = [&](const std::vector<std::string>& list) {
        QStringList parts;
        for (const std::string& name : list) parts << page.related(name, definition->category);
        return parts.join(", ");
    };
    page.row("Loop must hold", names(definition->list_reference));
    page.row("Parent", names(definition->list_link_parent));
    page.row("Children", names(definition->notes().list_link_child));

    QStringList related;
    QStringList replacements;
    for (const CifItemDefinition::Related& item : definition->related) {
        const QString target = page.related(item.name, definition->category);
        if (item.function == "replace")
            replacements << target;
        else
            related << target + " (" + escaped(qs(item.function)) + ")";
    }
    page.row("Replaced by", replacements.join(", "));
    page.row("Related", related.join("<br>"));
    QStringList examples;
    for (const CifItemDefinition::Example& example : definition->notes().examples)
        examples << page.code(qs(example.text)) +
                        (example.detail.empty() ? QString() : " &mdash; " + escaped(qs(example.detail)));
    page.row("Examples", examples.join("<br>"));
    html += page.table();
    if (!definition->notes().definition.empty())
        html +=
            "<p style=\"white-space:pre-wrap\">" + escaped(dedented(definition->notes().definition)) + "</p>";
    return html;
}
