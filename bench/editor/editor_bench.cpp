// SPDX-License-Identifier: GPL-3.0-or-later
// Benchmark: the CIF editor on a million lines against a bare QPlainTextEdit.
// The editor is QcbsLineNumberedTextEdit (editor, margin, signals); its peer has the same
// highlighter, scheduler and sliced loader. Whatever the editor adds on top of the peer shows
// as a ratio.
//
// For loading: the time to the first paint, the longest stall of the event
// loop (a 1 ms heartbeat timer measures it) and the time until the whole
// file is in and highlighted. Then the same interactions on both, near the
// end of the file: a jump to a distant line, typing, paging down, a
// selection that is commented (the peer replaces the line itself) and, for
// the editor only, marking an error line.
//
//   editor_bench [--lines N]
//
// Runs on the offscreen platform unless QT_QPA_PLATFORM says otherwise.

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>

#include "editor/QcbsHighlightScheduler.hpp"
#include "editor/QcbsLineNumberedTextEdit.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "editor/QcbsSlicedTextLoader.hpp"
#include "editor/QcbsSyntaxHighlighter_CIF.hpp"

namespace {

QString generatedCif(int lines) {
    QString text =
        "data_big\n_cell_length_a 10.123(2)\n_publ_section_title\n;\nA title, 5 \\%A.\n;\nloop_\n"
        "_refln_index_h\n_refln_index_k\n_refln_index_l\n_refln_F_squared_meas\n";
    text.reserve(lines * 40);
    for (int i = 11; i < lines; ++i)
        text += QString("%1 %2 %3 %4.%5 # row\n")
                    .arg(i % 41 - 20)
                    .arg(i % 37 - 18)
                    .arg(i % 29)
                    .arg(i)
                    .arg(i % 97);
    return text;
}

// The longest stall of the event loop while `work` runs from the loop and
// until `done` holds, and the total time.
struct Timing {
    qint64 total = -1;
    qint64 longest = 0;
};

Timing measure(const std::function<void()>& work, const std::function<bool()>& done) {
    QElapsedTimer clock;
    Timing timing;
    qint64 last = 0;
    QEventLoop loop;
    QTimer heartbeat;
    heartbeat.setTimerType(Qt::PreciseTimer);
    heartbeat.setInterval(1);
    QObject::connect(&heartbeat, &QTimer::timeout, [&] {
        const qint64 now = clock.elapsed();
        timing.longest = std::max(timing.longest, now - last);
        last = now;
        if (done() && timing.total < 0) {
            timing.total = now;
            loop.quit();
        }
    });
    QTimer::singleShot(0, [&] {
        clock.start();
        heartbeat.start();
        work();
    });
    loop.exec();
    return timing;
}

// One side of the comparison: an editor, its highlighter and a way to load.
struct Side {
    QPlainTextEdit* view = nullptr;
    QcbsSyntaxHighlighter_CIF* highlighter = nullptr;
    std::function<void(const QString&)> load;
    std::function<bool()> loading;
    bool idle() const { return !loading() && highlighter->scheduler()->isIdle(); }
};

void report(const char* what, const Timing& editor, const Timing& peer) {
    std::printf("%-28s editor %6lld ms (stall %4lld ms)   peer %6lld ms (stall %4lld ms)   ratio %5.2f\n",
                what, static_cast<long long>(editor.total), static_cast<long long>(editor.longest),
                static_cast<long long>(peer.total), static_cast<long long>(peer.longest),
                peer.total > 0 ? double(editor.total) / double(peer.total) : 0.0);
}

void moveTo(QPlainTextEdit* view, int line, bool select) {
    QTextCursor cursor(view->document()->findBlockByNumber(line - 1));
    cursor.movePosition(QTextCursor::EndOfBlock, select ? QTextCursor::KeepAnchor : QTextCursor::MoveAnchor);
    view->setTextCursor(cursor);
    view->ensureCursorVisible();
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    int lines = 1000000;
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], "--lines") == 0 && i + 1 < argc)
            lines = std::max(1000, std::atoi(argv[++i]));
    QApplication app(argc, argv);
    const QString text = generatedCif(lines);
    THandle<QcbsFontStyleSettings> styles(new QcbsFontStyleSettings());

    QcbsLineNumberedTextEdit widget(THandle<CifDictionary>(), "editor", styles, true);
    widget.resize(1000, 800);
    widget.show();
    QcbsRichTextEdit* edit = widget.editor();
    Side editor{edit, edit->highlighter(), [edit](const QString& t) { edit->loadText(t); },
                [edit] { return edit->isLoading(); }};

    QPlainTextEdit bare;
    bare.setLineWrapMode(QPlainTextEdit::NoWrap);
    bare.setFont(styles->editorFont());
    bare.resize(1000, 800);
    bare.show();
    auto* bareHighlighter = new QcbsSyntaxHighlighter_CIF(THandle<CifDictionary>(), styles, &bare);
    auto* loader = new QcbsSlicedTextLoader(&bare);
    Side peer{&bare, bareHighlighter, [loader](const QString& t) { loader->load(t); },
              [loader] { return loader->isLoading(); }};
    QCoreApplication::processEvents();

    std::printf("%d lines, %.1f MB of text (offscreen, 1000x800)\n", lines, text.size() * 2 / 1e6);
    const auto both = [&](const char* what, const std::function<void(Side&)>& work) {
        const Timing a = measure([&] { work(editor); }, [&] { return editor.idle(); });
        const Timing b = measure([&] { work(peer); }, [&] { return peer.idle(); });
        report(what, a, b);
    };
    both("load and highlight", [&](Side& side) { side.load(text); });
    edit->reopenErrorHighlighting();

    const int far = lines - lines / 10;
    both("jump to a distant line", [&](Side& side) {
        if (side.view == edit)
            edit->gotoLine(far, QString(), true);
        else
            moveTo(side.view, far, true);
    });
    both("type 20 characters", [&](Side& side) {
        moveTo(side.view, far, false);
        for (int i = 0; i < 20; ++i) QTest::keyClick(side.view, Qt::Key_X);
    });
    both("page down 30 times", [&](Side& side) {
        for (int i = 0; i < 30; ++i) QTest::keyClick(side.view, Qt::Key_PageDown);
    });
    both("comment one line", [&](Side& side) {
        moveTo(side.view, far - 5, false);
        if (side.view == edit) {
            edit->commentSelection();
        } else {
            QTextCursor cursor = side.view->textCursor();
            cursor.movePosition(QTextCursor::StartOfBlock);
            cursor.insertText("#");
        }
    });
    edit->reopenErrorHighlighting();
    const Timing mark =
        measure([&] { edit->setErrorHighlighting(far / 2, 1, true); }, [&] { return editor.idle(); });
    std::printf("%-28s editor %6lld ms (stall %4lld ms)\n", "mark a distant error line",
                static_cast<long long>(mark.total), static_cast<long long>(mark.longest));
    return 0;
}
