// SPDX-License-Identifier: GPL-3.0-or-later
// A window that shows the help pages, with Back, Forward and Home.
#pragma once

#include <QStringList>
#include <QUrl>
#include <QWidget>

class QTextBrowser;

// A window that shows the help pages: the user guide and the pages the
// error list asks for. Links between pages are followed inside it, links to
// the web open in the user's browser; Back, Forward and Home move through
// the pages seen.
class QcbsHelpWindow : public QWidget {
    Q_OBJECT
public:
    // `searchPaths` are the directories relative page names are found in.
    explicit QcbsHelpWindow(const QStringList& searchPaths, QWidget* parent = nullptr);

    // Shows the page and brings the window to the front; the first page
    // shown becomes the Home page.
    void showPage(const QUrl& page);
    QTextBrowser* browser() const { return browser_; }

private:
    void updateTitle();

    QTextBrowser* browser_;
    QUrl home_;
};
