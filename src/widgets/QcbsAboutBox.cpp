// SPDX-License-Identifier: GPL-3.0-or-later
// The "About Tessary" box: picture, name, version, date, core dictionary, home page.
#include "widgets/QcbsAboutBox.hpp"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

#include "base/QcbsUtilities.hpp"
#include "resources/QcbsImages.hpp"

namespace {

QString q(const std::string& text) { return QString::fromStdString(text).toHtmlEscaped(); }

THandle<CifConcreteDictionary> firstCore(const CifDictionaryPool& pool) {
    for (const THandle<CifConcreteDictionary>& dictionary : pool)
        if (QString::fromStdString(dictionary->descriptor().name).startsWith("cif_core", Qt::CaseInsensitive))
            return dictionary;
    return THandle<CifConcreteDictionary>();
}

QString described(const CifDictionaryDescriptor& descriptor) {
    QString text = q(descriptor.name);
    if (!descriptor.version.empty()) text += " version " + q(descriptor.version);
    if (!descriptor.date.empty()) text += " of " + q(descriptor.date);
    return text;
}

}  // namespace

QcbsAboutBox::QcbsAboutBox(QWidget* parent) : QDialog(parent) {
    setObjectName("aboutbox");
    setWindowTitle("About " + programQName());

    auto* picture = new QLabel(this);
    picture->setObjectName("aboutpicture");
    picture->setPixmap(aboutImage());
    picture->setAlignment(Qt::AlignCenter);

    text_ = new QLabel(aboutText(), this);
    text_->setObjectName("abouttext");
    text_->setTextFormat(Qt::RichText);
    text_->setAlignment(Qt::AlignCenter);
    text_->setWordWrap(true);
    text_->setOpenExternalLinks(true);
    text_->setTextInteractionFlags(Qt::TextBrowserInteraction);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(picture);
    layout->addWidget(text_);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

void QcbsAboutBox::setDictionaries(const CifDictionaryPool& enabled, const CifDictionaryPool& all) {
    text_->setText(aboutText(coreDictionaryText(enabled, all)));
}

QString QcbsAboutBox::coreDictionaryText(const CifDictionaryPool& enabled, const CifDictionaryPool& all) {
    if (const THandle<CifConcreteDictionary> used = firstCore(enabled); !used.is_null())
        return "Core dictionary in use: " + described(used->descriptor()) + ".";
    if (const THandle<CifConcreteDictionary> off = firstCore(all); !off.is_null())
        return "Core dictionary " + described(off->descriptor()) + " is loaded but switched off.";
    return QString();
}

QString QcbsAboutBox::aboutText(const QString& loadedCore) {
    const QString url = q(TessaryURL());
    return "<h2>" + programQName().toHtmlEscaped() + "</h2>" + "<p>Version " + q(TessaryVersion()) + ", " +
           q(TessaryDate()) + "</p>" +
           "<p>An editor for Crystallographic Information Files (CIF):<br>"
           "edit, check against the CIF dictionaries, browse and complete.</p>" +
           "<p>Built for the core CIF dictionary version " + q(coreCIFVersion()) + ", " + q(coreCIFDate()) +
           "." + (loadedCore.isEmpty() ? QString() : "<br>" + loadedCore) + "</p>" + "<p><a href=\"" + url +
           "\">" + url + "</a></p>";
}
