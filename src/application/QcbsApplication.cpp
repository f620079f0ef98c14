// SPDX-License-Identifier: GPL-3.0-or-later
// The editor's application object: the splash screen at start-up, files opened in a window.
#include "application/QcbsApplication.hpp"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <algorithm>
#include <clocale>

#include "application/QcbsMainWindow.hpp"
#include "base/ORMALogQString.hpp"
#include "base/QcbsUtilities.hpp"
#include "document/QcbsCifDocument.hpp"
#include "resources/QcbsImages.hpp"
#include "support/ORMALog.hpp"

namespace {

// The one splash screen; QPointer because it deletes itself when closed.
QPointer<QLabel> splash;

// The splash image without a status line, kept on the label itself.
const char* const basePixmapProperty = "tessarySplashImage";

}  // namespace

QcbsApplication::QcbsApplication(int& argc, char** argv) : QtServerApplication("Tessary", argc, argv) {
    // The desktop's menu entry and the windows of the program belong together.
    setDesktopFileName("tessary");
    // Qt takes the user's locale for everything; numbers in a CIF always have a point, and
    // the C library's strtod reads "1.5" as 1 under a comma-decimal locale.
    std::setlocale(LC_NUMERIC, "C");
}

QcbsApplication::~QcbsApplication() { debugLine(1, "QcbsApplication::~QcbsApplication finished"); }

QcbsMainWindow* QcbsApplication::firstMainWindow() {
    for (QWidget* widget : QApplication::allWidgets()) {
        if (!widget->inherits("QMainWindow")) continue;
        if (auto* window = qobject_cast<QcbsMainWindow*>(widget)) return window;
    }
    return nullptr;
}

QcbsMainWindow* QcbsApplication::windowShowing(const QString& filename) {
    const QFileInfo file(filename);
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* window = qobject_cast<QcbsMainWindow*>(widget);
        if (window != nullptr && window->document()->isOpen() && !window->document()->isUntitled() &&
            QFileInfo(window->document()->fileName()) == file)
            return window;
    }
    return nullptr;
}

void QcbsApplication::open(const QString& filename) {
    QcbsMainWindow* window = firstMainWindow();
    if (window == nullptr) {
        ORMALog::start_error_line()
            << "QcbsApplication - cannot open file because main window has not yet been created: "
            << filename;
        ORMALog::end_error_line();
        return;
    }
    debugLine(1, "QcbsApplication - open file " + filename);
    window->fileOpen(filename, true);
}

void QcbsApplication::openAtLine(const QString& filename, int line) {
    QcbsMainWindow* window = windowShowing(filename);
    if (window == nullptr) {
        open(filename);
        window = windowShowing(filename);
        if (window == nullptr) return;  // not opened; the window said why
    }
    window->raise();
    window->activateWindow();
    // A large text comes in slices; the line exists once it is all in.
    QPointer<QcbsMainWindow> target(window);
    auto goToLine = [target, line] {
        if (target.isNull()) return;
        const int last = std::max(1, target->document()->lineCount());
        emit target->requestGotoLine(std::min(line, last), QString());
    };
    if (window->document()->isLoading())
        connect(window, &QcbsMainWindow::documentLoaded, window, goToLine, Qt::SingleShotConnection);
    else
        goToLine();
}

QLabel* QcbsApplication::showSplash() {
    debugLine(1, "QcbsApplication::showSplash");
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    splash = new QLabel(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                                     Qt::X11BypassWindowManagerHint);
    splash->setObjectName("splash");
    splash->setAttribute(Qt::WA_DeleteOnClose);
    splash->setFrameStyle(QFrame::WinPanel | QFrame::Raised);
    const QPixmap image = splashScreen();
    splash->setProperty(basePixmapProperty, image);
    splash->setPixmap(image);
    splash->setWindowTitle(programQName());
    splash->adjustSize();
    splash->move((screen.left() + screen.right()) / 2 - splash->width() / 2,
                 (screen.top() + screen.bottom()) / 2 - splash->height() / 2);
    splash->show();
    splash->repaint();
    QCoreApplication::processEvents();
    set_splash_status(programQName() + ", Version " + QString::fromStdString(TessaryVersion()) +
                      " : Initializing...");
    return splash;
}

void set_splash_status(const QString& txt) {
    debugLine(1, "QcbsApplication::set_splash_status - txt:" + txt);
    if (splash.isNull()) return;
    // The status is drawn over a fresh copy of the image, so the last one goes.
    QPixmap shown = splash->property(basePixmapProperty).value<QPixmap>();
    QPainter painter(&shown);
    painter.setFont(splash->font());
    painter.setPen(Qt::white);
    painter.drawText(5, QFontMetrics(splash->font()).height(),
                     "Tessary - Version " + QString::fromStdString(TessaryVersion()) + " : " + txt);
    painter.end();
    splash->setPixmap(shown);
    splash->repaint();
    QCoreApplication::processEvents();
}

void QcbsApplication::closeSplash() {
    debugLine(1, "QcbsApplication::closeSplash");
    if (!splash.isNull()) splash->close();  // hidden, then deleted (WA_DeleteOnClose)
}

QLabel* currentSplash() { return splash.data(); }
