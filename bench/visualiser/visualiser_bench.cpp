// SPDX-License-Identifier: GPL-3.0-or-later
// The 3-D structure view measured against peers doing the least the same job needs.
//
//   visualiser_bench build FILE [--runs N]
//       building the structures of FILE (cell, symmetry, molecules, packed
//       cell) against the check of the same file (read + consistency, no
//       dictionary), best of N runs each.
//   visualiser_bench first-frame page|bare FILE [--contents C]
//       from turning to the visualiser page (the document already checked, the
//       window on screen) to its first frame; "bare" times a QOpenGLWidget that
//       only clears, put into a window on screen: the floor of any OpenGL frame
//       here, OpenGL's start-up included. Run each in a fresh process.
//   visualiser_bench rotate page|bare FILE [--frames N] [--contents C] [--draw S]
//       frames per second while the view turns a step per frame.
//   visualiser_bench png OUT FILE [--contents C] [--draw S] [--along a|b|c]
//       [--turn DX,DY] [--no-labels] [--pick X,Y ...] [--window]
//       the page (with its tools) as a picture; --window shows the separate window beside.
//
// C: asym, molecules, cell (default cell); S: balls, sticks, spacefill, ellipsoids.
// Window 800 x 600. Needs a display with OpenGL (Xvfb and Mesa will do).

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QOpenGLFunctions>
#include <QOpenGLWidget>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <functional>
#include <sstream>

#include "cif/CifDatabase.hpp"
#include "cif/CifDocumentCheck.hpp"
#include "visualiser/QcbsOpenGLSupport.hpp"
#include "visualiser/QcbsStructurePanel.hpp"
#include "visualiser/QcbsStructureView.hpp"
#include "visualiser/QcbsVelmoraWindow.hpp"
#include "visualiser/QcbsVisSorter.hpp"

namespace {

class BareView : public QOpenGLWidget {
public:
    BareView() { setFormat(structureViewFormat()); }
    long long frames = 0;

protected:
    void paintGL() override {
        QOpenGLFunctions* gl = context()->functions();
        gl->glClearColor(0.1f, 0.1f, 0.1f, 1.0f);
        gl->glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        ++frames;
    }
};

std::string readFile(const char* path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

double bestMs(int runs, const std::function<void()>& work) {
    double best = 1e300;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer clock;
        clock.start();
        work();
        best = std::min(best, double(clock.nsecsElapsed()) / 1e6);
    }
    return best;
}

QString option(const QStringList& args, const QString& name, const QString& fallback) {
    const int at = int(args.indexOf(name));
    return at >= 0 && at + 1 < args.size() ? args[at + 1] : fallback;
}

int contentsIndex(const QString& name) { return name == "asym" ? 0 : name == "molecules" ? 1 : 2; }
int styleIndex(const QString& name) {
    return name == "sticks" ? 1 : name == "spacefill" ? 2 : name == "ellipsoids" ? 3 : 0;
}

// Waits until the condition holds or the time is up.
bool waitFor(const std::function<bool()>& condition, int ms = 20000) {
    QElapsedTimer clock;
    clock.start();
    while (!condition()) {
        if (clock.elapsed() > ms) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return true;
}

THandle<Cif> check(const std::string& text) { return CifDocumentCheck().run(text); }

int build(const char* file, int runs) {
    const std::string text = readFile(file);
    THandle<Cif> checked = check(text);
    int atoms = 0;
    const double checkMs = bestMs(runs, [&] { check(text); });
    const double buildMs = bestMs(runs, [&] {
        CifDatabase database(checked);
        for (int n = 0; n < database.size(); ++n) atoms += int(database.entry(n)->packed_cell().atoms.size());
    });
    CifDatabase database(checked);
    THandle<CifStructure> first = database.entry(0);
    std::printf("%s: %zu bytes; %d sites, %zu atoms in the packed cell, %zu bonds\n", file, text.size(),
                first.is_null() ? 0 : int(first->sites().size()),
                first.is_null() ? 0 : first->packed_cell().atoms.size(),
                first.is_null() ? 0 : first->packed_cell().bonds.size());
    std::printf("check (peer) %.3f ms, build %.3f ms, build/check %.2f\n", checkMs, buildMs,
                buildMs / checkMs);
    return 0;
}

// The page set up as the window would: the document checked, the page hidden until now.
QcbsVisSorter* makePage(const char* file, const QStringList& args) {
    auto* page = new QcbsVisSorter;
    page->resize(800, 600);
    page->setDocument(check(readFile(file)));
    page->panel()
        ->findChild<QComboBox*>("viscontents")
        ->setCurrentIndex(contentsIndex(option(args, "--contents", "cell")));
    page->panel()
        ->findChild<QComboBox*>("visstyle")
        ->setCurrentIndex(styleIndex(option(args, "--draw", "balls")));
    return page;
}

// Both start from a window already on screen, as a main window is when its tab is turned.
int firstFrame(bool bare, const char* file, const QStringList& args) {
    if (bare) {
        QWidget window;
        window.resize(800, 600);
        window.show();
        if (!QTest::qWaitForWindowExposed(&window)) return 1;
        QElapsedTimer clock;
        clock.start();
        const std::clock_t cpu = std::clock();
        auto* view = new BareView;
        view->setParent(&window);
        view->resize(800, 600);
        view->show();
        if (!waitFor([&] { return view->frames > 0; })) return 1;
        std::printf("bare first frame %.1f ms, %.1f ms of processor time\n",
                    double(clock.nsecsElapsed()) / 1e6, 1000.0 * double(std::clock() - cpu) / CLOCKS_PER_SEC);
        return 0;
    }
    QcbsVisSorter* page = makePage(file, args);
    page->show();
    if (!QTest::qWaitForWindowExposed(page)) return 1;
    QElapsedTimer clock;
    clock.start();
    const std::clock_t cpu = std::clock();
    page->setCurrent(true);
    QcbsStructureView* view = page->panel()->view();
    if (view == nullptr) {
        std::fprintf(stderr, "no view: %s\n", qPrintable(page->message()));
        return 1;
    }
    if (!waitFor([&] { return view->framesDrawn() > 0; })) return 1;
    std::printf("page first frame %.1f ms, %.1f ms of processor time (%zu atoms, %lld triangles)\n",
                double(clock.nsecsElapsed()) / 1e6, 1000.0 * double(std::clock() - cpu) / CLOCKS_PER_SEC,
                view->scene().atoms().size(), view->lastTriangles());
    delete page;
    return 0;
}

int rotate(bool bare, const char* file, const QStringList& args) {
    const int frames = option(args, "--frames", "200").toInt();
    QWidget* shown = nullptr;
    std::function<long long()> count;
    std::function<void()> step;
    BareView bareView;
    QcbsVisSorter* page = nullptr;
    if (bare) {
        bareView.resize(800, 600);
        shown = &bareView;
        count = [&] { return bareView.frames; };
        step = [&] { bareView.update(); };
    } else {
        page = makePage(file, args);
        if (args.contains("--no-labels")) page->panel()->findChild<QAction*>("vislabels")->setChecked(false);
        page->setCurrent(true);
        QcbsStructureView* view = page->panel()->view();
        if (view == nullptr) return 1;
        view->setFixedSize(800, 600);
        shown = page;
        count = [view] { return view->framesDrawn(); };
        step = [view] {
            view->camera().rotateBy(QPoint(4, 2));
            view->redraw();
        };
    }
    shown->show();
    if (!waitFor([&] { return count() > 0; })) return 1;
    QElapsedTimer clock;
    clock.start();
    const std::clock_t cpu = std::clock();
    for (int n = 0; n < frames; ++n) {
        const long long before = count();
        step();
        if (!waitFor([&] { return count() > before; })) return 1;
    }
    const double seconds = double(clock.nsecsElapsed()) / 1e9;
    const double cpuMs = 1000.0 * double(std::clock() - cpu) / CLOCKS_PER_SEC;
    std::printf("%s: %d frames in %.2f s, %.1f frames per second, %.1f ms of processor time a frame",
                bare ? "bare" : "page", frames, seconds, frames / seconds, cpuMs / frames);
    if (page != nullptr)
        std::printf(" (%zu atoms, %lld triangles a frame)", page->panel()->view()->scene().atoms().size(),
                    page->panel()->view()->lastTriangles());
    std::printf("\n");
    delete page;
    return 0;
}

int png(const QString& out, const char* file, const QStringList& args) {
    QcbsVisSorter* page = makePage(file, args);
    if (args.contains("--no-labels")) page->panel()->findChild<QAction*>("vislabels")->setChecked(false);
    page->show();
    page->setCurrent(true);
    QcbsStructureView* view = page->panel()->view();
    if (view == nullptr) {
        page->grab().save(out);
        std::printf("%s\n", qPrintable(page->message()));
        return 0;
    }
    const QString along = option(args, "--along", "");
    if (!along.isEmpty()) view->viewAlong(along[0].toLatin1() - 'a');
    const QStringList turn = option(args, "--turn", "").split(',');
    if (turn.size() == 2) view->camera().rotateBy(QPoint(turn[0].toInt(), turn[1].toInt()));
    for (int i = 0; i < int(args.size()); ++i) {
        if (args[i] != "--pick" || i + 1 >= args.size()) continue;
        const QStringList xy = args[i + 1].split(',');
        std::printf("pick: %s\n", qPrintable(view->pickAt(QPoint(xy[0].toInt(), xy[1].toInt()))));
    }
    if (!waitFor([&] { return view->framesDrawn() > 0; })) return 1;
    // What the screen shows (QWidget::grab leaves out what is painted over the OpenGL picture).
    const auto shoot = [](QWidget* widget, const QString& file) {
        waitFor([] { return false; }, 300);
        return std::system(qPrintable(QString("import -window %1 %2").arg(widget->winId()).arg(file))) == 0;
    };
    if (!shoot(page, out)) view->grabFramebuffer().save(out);
    if (args.contains("--window")) {
        QcbsVelmoraWindow* window = page->openSeparateWindow();
        window->setGeometry(820, 0, 860, 640);
        QcbsStructureView* other = window->panel()->view();
        if (other != nullptr) waitFor([&] { return other->framesDrawn() > 0; });
        shoot(window, QString(out).replace(".png", "-window.png"));
        waitFor([] { return false; }, 300);
        std::system(qPrintable("import -window root " + QString(out).replace(".png", "-screen.png")));
    }
    std::printf("%s: %zu atoms shown\n", qPrintable(out), view->scene().atoms().size());
    delete page;
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 3) {
        std::fprintf(stderr, "usage: see the top of visualiser_bench.cpp\n");
        return 2;
    }
    const QString mode = args[1];
    if (mode == "build") return build(argv[2], option(args, "--runs", "20").toInt());
    if (args.size() < 4) return 2;
    // The first frame includes the page's own test of OpenGL, as when a user first opens the tab.
    if (mode == "rotate" && args[2] != "bare" && !openGLProblem().isEmpty()) {
        std::fprintf(stderr, "no OpenGL: %s\n", qPrintable(openGLProblem()));
        return 1;
    }
    if (mode == "first-frame") return firstFrame(args[2] == "bare", argv[3], args);
    if (mode == "rotate") return rotate(args[2] == "bare", argv[3], args);
    if (mode == "png") return png(args[2], argv[3], args);
    return 2;
}
