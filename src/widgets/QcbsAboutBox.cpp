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

}  // namespace

QcbsAboutBox::QcbsAboutBox(QWidget* parent) : QDialog(parent) {
    setObjectName("aboutbox");
    setWindowTitle("About " + programQName());

    auto* picture = new QLabel(this);
    picture->setObjectName("aboutpicture");
    picture->setPixmap(aboutImage());
    picture->setAlignment(Qt::AlignCenter);

    auto* text = new QLabel(aboutText(), this);
    text->setObjectName("abouttext");
    text->setTextFormat(Qt::RichText);
    text->setAlignment(Qt::AlignCenter);
    text->setWordWrap(true);
    text->setOpenExternalLinks(true);
    text->setTextInteractionFlags(Qt::TextBrowserInteraction);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(picture);
    layout->addWidget(text);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
}

QString QcbsAboutBox::aboutText() {
    const QString url = q(TessaryURL());
    return "<h2>" + programQName().toHtmlEscaped() + "</h2>" + "<p>Version " + q(TessaryVersion()) + ", " +
           q(TessaryDate()) + "</p>" +
           "<p>An editor for Crystallographic Information Files (CIF):<br>"
           "edit, check against the CIF dictionaries, browse and complete.</p>" +
           "<p>Built for the core CIF dictionary version " + q(coreCIFVersion()) + ", " + q(coreCIFDate()) +
           ".</p>" + "<p><a href=\"" + url + "\">" + url + "</a></p>";
}
