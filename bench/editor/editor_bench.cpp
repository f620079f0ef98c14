// SPDX-License-Identifier: GPL-3.0-or-later
// Benchmark: the CIF editor on a huge file against a bare QPlainTextEdit, step by step.
// The editor is the window's own stack: QcbsLineNumberedTextEdit (editor, highlighter, line
// numbers, folding) with its QcbsCifDocument. The peer is a QPlainTextEdit of the same size and
// font holding the same file (read whole, decoded, setPlainText), without any highlighting.
//
// Steps, each timed from the event loop with a 1 ms heartbeat timer whose longest gap is the
// longest stall of the event loop:
//   open     the file read into the view: the first screen painted, the whole text in
//   check    the whole check of the text (the editor's runs on the worker thread)
//   type     20 keystrokes (--keys) on the middle line, each with its repaint, typed from 0.3 s
//            after the jump there (the user looks at the line first)
//   far key  one keystroke with its repaint at once after a jump from there to a quarter of the text
//   end      Ctrl+End and the repaint at the end of the text
//   jump     from the middle to the last line, cursor and view, with the repaint
//   save     the text written to a new file (the editor's from the worker thread)
//   styled   the rest of the text coloured in idle time (the peer colours nothing)
// and the memory the process holds above what it held before the file was opened (VmRSS).
//
//   editor_bench [--file PATH | --rows N] [--side editor|peer] [--keys N]
//
// Without --file a reflection file of N rows (2,000,000: 70 MB) is written to a temporary
// directory. Run each side in a process of its own for the memory figures.
// Runs on the offscreen platform unless QT_QPA_PLATFORM says otherwise.

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QPlainTextEdit>
#include <QSaveFile>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <vector>

#include "../common/EventLoopTiming.hpp"
#include "../common/ReflectionRows.hpp"
#include "cif/CifDocumentCheck.hpp"
#include "document/QcbsCifDocument.hpp"
#include "editor/QcbsLineNumberedTextEdit.hpp"
#include "editor/QcbsRichTextEdit.hpp"

namespace {

QByteArray reflectionFile(long rows) {
    QByteArray text =
        "data_refl\n_cell_length_a 10.123(2)\nloop_\n_refln_index_h\n_refln_index_k\n_refln_index_l\n"
        "_refln_F_squared_meas\n_refln_F_squared_sigma\n_refln_observed_status\n";
    text.reserve(rows * 36 + 1024);
    ReflectionRows generated(40, 0.0);
    for (long i = 0; i < rows; ++i) {
        const std::string_view row = generated.next();
        text.append(row.data(), static_cast<qsizetype>(row.size()));
    }
    return text;
}

long residentKiB() {
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly)) return 0;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmRSS:")) return line.mid(6).trimmed().split(' ').first().toLong();
    return 0;
}

// Watches a viewport for its first paint with text in it.
class PaintWatch : public QObject {
public:
    explicit PaintWatch(const std::function<bool()>& hasText) : hasText_(hasText) {}
    bool painted = false;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint && hasText_()) painted = true;
        return false;
    }

private:
    std::function<bool()> hasText_;
};

// One side: what each step does on it.
struct Side {
    const char* name;
    QWidget* view;
    QWidget* viewport;
    std::function<void(const QString&)> open;
    std::function<bool()> opened;
    std::function<bool()> hasText;
    std::function<void()> check;
    std::function<bool()> checked;
    std::function<void(int)> goToLine;
    std::function<int()> lines;
    std::function<void(const QString&)> save;
    // Whether the whole text is coloured (the peer colours nothing).
    std::function<bool()> styled = [] { return true; };
};

void profiling(const char* step, const char* command) {
    const QByteArray control = qgetenv("EDITOR_BENCH_PERF_CTL");
    const QByteArray only = qgetenv("EDITOR_BENCH_PERF_STEP");
    if (control.isEmpty() || (!only.isEmpty() && only != step)) return;
    QFile fifo(QString::fromLocal8Bit(control));
    if (fifo.open(QIODevice::WriteOnly)) fifo.write(QByteArray(command) + '\n');
}

void line(const char* step, const Timing& timing, const char* note = "") {
    std::printf("  %-8s %8lld ms   longest stall %6lld ms", step, static_cast<long long>(timing.total),
                static_cast<long long>(timing.longest));
    if (timing.firstScreen >= 0)
        std::printf("   first screen %6lld ms", static_cast<long long>(timing.firstScreen));
    std::printf("%s\n", note);
}

void run(Side& side, const QString& file, const QString& copy, qint64 fileBytes, std::size_t keystrokes) {
    std::printf("%s\n", side.name);
    PaintWatch watch(side.hasText);
    side.viewport->installEventFilter(&watch);
    const long before = residentKiB();
    line("open", measure([&] { side.open(file); }, side.opened, [&] { return watch.painted; }));
    QCoreApplication::processEvents();
    const long afterOpen = residentKiB();
    std::printf("  %-8s %8.0f MB above the process before opening: %.2f x the file\n", "memory",
                (afterOpen - before) / 1024.0, (afterOpen - before) * 1024.0 / fileBytes);

    profiling("check", "enable");
    line("check", measure(side.check, side.checked));
    profiling("check", "disable");
    const long afterCheck = residentKiB();
    std::printf("  %-8s %8.0f MB with the check's result: %.2f x the file\n", "memory",
                (afterCheck - before) / 1024.0, (afterCheck - before) * 1024.0 / fileBytes);

    // Keystrokes on the middle line, each with the repaint it causes.
    const int middle = side.lines() / 2;
    side.goToLine(middle);
    side.viewport->repaint();
    // The user looks at the line before typing.
    QTest::qWait(300);
    std::vector<qint64> keys;
    std::vector<qint64> paints;
    std::function<void()> typeOne = [&] {
        QElapsedTimer one;
        one.start();
        QTest::keyClick(side.view, Qt::Key_X);
        const qint64 key = one.nsecsElapsed();
        side.viewport->repaint();
        keys.push_back(one.nsecsElapsed() / 1000);
        paints.push_back((one.nsecsElapsed() - key) / 1000);
        if (keys.size() < keystrokes) QTimer::singleShot(0, typeOne);
    };
    // One keystroke per turn of the event loop, as a user types. Under
    // `perf record --control fifo:CTL -D -1`, EDITOR_BENCH_PERF_CTL=CTL
    // profiles the check, the typing, Ctrl+End, the jump and the save (EDITOR_BENCH_PERF_STEP: one of them).
    profiling("type", "enable");
    const Timing typing = measure(typeOne, [&] { return keys.size() == keystrokes; });
    profiling("type", "disable");
    if (qEnvironmentVariableIsSet("EDITOR_BENCH_KEYS"))
        for (std::size_t i = 0; i < keys.size(); ++i)
            std::printf("    key %.1f ms (repaint %.1f ms)\n", keys[i] / 1000.0, paints[i] / 1000.0);
    std::sort(keys.begin(), keys.end());
    char note[96];
    std::snprintf(note, sizeof note, "   a keystroke: median %.1f ms, slowest %.1f ms",
                  keys[keys.size() / 2] / 1000.0, keys.back() / 1000.0);
    line("type", typing, note);

    // A keystroke at once after a jump of a quarter of the text (no pause).
    side.goToLine(middle / 2);
    side.viewport->repaint();
    line("far key", measure(
                        [&] {
                            QTest::keyClick(side.view, Qt::Key_X);
                            side.viewport->repaint();
                        },
                        [] { return true; }));

    profiling("end", "enable");
    line("end", measure(
                    [&] {
                        QTest::keyClick(side.view, Qt::Key_End, Qt::ControlModifier);
                        side.viewport->repaint();
                    },
                    [] { return true; }));
    profiling("end", "disable");
    side.goToLine(middle);
    side.viewport->repaint();
    profiling("jump", "enable");
    line("jump", measure(
                     [&] {
                         side.goToLine(side.lines() - 1);
                         side.viewport->repaint();
                     },
                     [] { return true; }));
    profiling("jump", "disable");
    bool saved = false;
    profiling("save", "enable");
    line("save", measure(
                     [&] {
                         side.save(copy);
                         saved = true;
                     },
                     [&] { return saved; }));
    profiling("save", "disable");
    // The rest of the styling, in idle time, from the edits on.
    line("styled", measure([] {}, side.styled));
    side.viewport->removeEventFilter(&watch);
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QString file;
    long rows = 2000000;
    std::size_t keystrokes = 20;
    QString only;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (std::strcmp(argv[i], "--file") == 0) file = argv[i + 1];
        if (std::strcmp(argv[i], "--rows") == 0) rows = std::atol(argv[i + 1]);
        if (std::strcmp(argv[i], "--side") == 0) only = argv[i + 1];
        if (std::strcmp(argv[i], "--keys") == 0) keystrokes = std::max(1, std::atoi(argv[i + 1]));
    }
    QApplication app(argc, argv);
    QTemporaryDir dir;
    if (file.isEmpty()) {
        file = dir.filePath("reflections.cif");
        QFile out(file);
        if (!out.open(QIODevice::WriteOnly) || out.write(reflectionFile(rows)) < 0) return 1;
    }
    const qint64 fileBytes = QFileInfo(file).size();
    const QString copy = dir.filePath("saved.cif");
    THandle<QcbsFontStyleSettings> styles(new QcbsFontStyleSettings());
    std::printf("%s: %.1f MB (offscreen, 1000x800)\n", qPrintable(QFileInfo(file).fileName()),
                fileBytes / 1e6);

    if (only.isEmpty() || only == "editor") {
        QcbsLineNumberedTextEdit widget(THandle<CifDictionary>(), "editor", styles, true);
        widget.resize(1000, 800);
        widget.show();
        QcbsRichTextEdit* edit = widget.editor();
        QcbsCifDocument document(edit);
        bool checked = false;
        QObject::connect(&document, &QcbsCifDocument::checked, [&] { checked = true; });
        QCoreApplication::processEvents();
        Side editor{"editor (QcbsLineNumberedTextEdit on QScintilla, highlighting, line numbers, folding)",
                    edit,
                    edit->viewport(),
                    [&](const QString& name) { document.loadFile(name); },
                    [&] { return !edit->isLoading(); },
                    [&] { return edit->byteLength() > 0; },
                    [&] {
                        checked = false;
                        document.check();
                    },
                    [&] { return checked; },
                    [&](int line) { edit->gotoLine(line + 1, QString()); },
                    [&] { return edit->lines(); },
                    [&](const QString& name) {
                        if (!document.save(name, false).saved) std::abort();
                    }};
        editor.styled = [&] {
            return edit->SendScintilla(QsciScintillaBase::SCI_GETENDSTYLED) >= edit->byteLength();
        };
        run(editor, file, copy, fileBytes, keystrokes);
    }
    if (only.isEmpty() || only == "peer") {
        QPlainTextEdit bare;
        bare.setLineWrapMode(QPlainTextEdit::NoWrap);
        bare.setFont(styles->editorFont());
        bare.resize(1000, 800);
        bare.show();
        QCoreApplication::processEvents();
        Side peer{"peer (QPlainTextEdit, setPlainText, no highlighting)",
                  &bare,
                  bare.viewport(),
                  [&](const QString& name) {
                      QFile in(name);
                      in.open(QIODevice::ReadOnly);
                      bare.setPlainText(QString::fromUtf8(in.readAll()));
                  },
                  [] { return true; },
                  [&] { return !bare.document()->isEmpty(); },
                  [&] { (void)CifDocumentCheck().run(bare.toPlainText().toStdString()); },
                  [] { return true; },
                  [&](int line) {
                      QTextCursor cursor(bare.document()->findBlockByNumber(line));
                      bare.setTextCursor(cursor);
                      bare.ensureCursorVisible();
                  },
                  [&] { return bare.document()->blockCount(); },
                  [&](const QString& name) {
                      QSaveFile out(name);
                      out.open(QIODevice::WriteOnly);
                      out.write(bare.toPlainText().toUtf8());
                      out.commit();
                  }};
        run(peer, file, copy, fileBytes, keystrokes);
    }
    return 0;
}
