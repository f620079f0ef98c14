// SPDX-License-Identifier: GPL-3.0-or-later
// A window that shows the help pages, with Back, Forward and Home.
#include "widgets/QcbsHelpWindow.hpp"

#include <QAction>
#include <QStyle>
#include <QTextBrowser>
#include <QToolBar>
#include <QVBoxLayout>

#include "base/QcbsUtilities.hpp"

QcbsHelpWindow::QcbsHelpWindow(const QStringList& searchPaths, QWidget* parent)
    : QWidget(parent, Qt::Window) {
    setObjectName("helpwindow");
    browser_ = new QTextBrowser(this);
    browser_->setObjectName("helpbrowser");
    browser_->setSearchPaths(searchPaths);
    browser_->setOpenExternalLinks(true);

    auto* toolBar = new QToolBar(this);
    QAction* back = toolBar->addAction(style()->standardIcon(QStyle::SP_ArrowBack), "Back", browser_,
                                       &QTextBrowser::backward);
    QAction* forward = toolBar->addAction(style()->standardIcon(QStyle::SP_ArrowForward), "Forward", browser_,
                                          &QTextBrowser::forward);
    toolBar->addAction(style()->standardIcon(QStyle::SP_DirHomeIcon), "Home", this, [this] {
        if (home_.isValid()) browser_->setSource(home_);
    });
    back->setEnabled(false);
    forward->setEnabled(false);
    connect(browser_, &QTextBrowser::backwardAvailable, back, &QAction::setEnabled);
    connect(browser_, &QTextBrowser::forwardAvailable, forward, &QAction::setEnabled);
    connect(browser_, &QTextBrowser::sourceChanged, this, &QcbsHelpWindow::updateTitle);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(toolBar);
    layout->addWidget(browser_);
    resize(720, 640);
    updateTitle();
}

void QcbsHelpWindow::showPage(const QUrl& page) {
    if (!home_.isValid()) home_ = page;
    browser_->setSource(page);
    show();
    raise();
    activateWindow();
}

void QcbsHelpWindow::updateTitle() {
    const QString title = browser_->documentTitle();
    setWindowTitle(title.isEmpty() ? programQName() + " Help" : title);
}
