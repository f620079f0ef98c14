// SPDX-License-Identifier: GPL-3.0-or-later
// Benchmark: a reflection loop of millions of rows opened in the loop table editor dialog.
// A loop of N rows (2,000,000 by default) and 6 columns, 67 MB, is read by the CIF
// reader against the core dictionary: that is the peer. The loop table editor dialog
// is then opened on it, as Edit Loop does, and measured: the time from the command to
// the first screen of rows painted, the longest stall of the event loop (the largest
// gap between the ticks of a 1 ms timer) in the two seconds after, the time to scroll
// to the last row and paint it, and the process's extra memory for the open table
// against the loop's text. A second peer fills a QStandardItemModel with the same
// cells for the first P rows (200,000 by default; an item per cell would not fit a
// shared machine for all rows) and shows it in a QTableView; its figures are per row.
//
//   loop_table_bench [--rows N] [--peer-rows P] [--dictionary FILE]
//
// Runs on the offscreen platform unless QT_QPA_PLATFORM says otherwise.

#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QStandardItemModel>
#include <QTableView>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

#include "../common/ReflectionRows.hpp"
#include "cif/Cif.hpp"
#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifDictionaryPool.hpp"
#include "views/QcbsLoopTable.hpp"
#include "views/QcbsLoopTableEditorImpl.hpp"

namespace {

std::string reflectionLoop(long rows) {
    std::string text =
        "data_refl\n_cell_length_a 61.2\n_cell_length_b 75.4\n_cell_length_c 98.1\n"
        "loop_\n_refln_index_h\n_refln_index_k\n_refln_index_l\n_refln_F_meas\n_refln_F_sigma\n"
        "_refln_observed_status\n";
    text.reserve(static_cast<std::size_t>(rows) * 34 + text.size());
    ReflectionRows generated;
    for (long r = 0; r < rows; ++r) text += generated.next();
    return text;
}

// Resident memory of the process in MB.
double residentMb() {
    std::ifstream statm("/proc/self/statm");
    long pages = 0;
    long resident = 0;
    statm >> pages >> resident;
    return static_cast<double>(resident) * 4096.0 / (1024.0 * 1024.0);
}

double msSince(const QElapsedTimer& clock) { return static_cast<double>(clock.nsecsElapsed()) / 1e6; }

// Waits until the widget has painted once after now; the time it took.
double untilPainted(QWidget* widget) {
    struct Watcher : QObject {
        bool painted = false;
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::Paint) painted = true;
            return false;
        }
    } watcher;
    widget->installEventFilter(&watcher);
    QElapsedTimer clock;
    clock.start();
    while (!watcher.painted && clock.elapsed() < 20000) QApplication::processEvents();
    widget->removeEventFilter(&watcher);
    return msSince(clock);
}

// The largest gap between ticks of a 1 ms timer over the period.
double longestStall(int periodMs) {
    QElapsedTimer clock;
    clock.start();
    double last = 0;
    double longest = 0;
    QTimer timer;
    timer.setInterval(1);
    QObject::connect(&timer, &QTimer::timeout, [&] {
        const double now = msSince(clock);
        longest = std::max(longest, now - last);
        last = now;
    });
    timer.start();
    while (clock.elapsed() < periodMs) QApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
    return longest;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    long rows = 2000000;
    int peerRows = 200000;
    std::string dictionaryFile = TESSARY_SHARED_DIR "/dictionaries/cif_core.dic";
    for (int i = 1; i + 1 < argc; i += 2) {
        if (std::strcmp(argv[i], "--rows") == 0) rows = std::atol(argv[i + 1]);
        if (std::strcmp(argv[i], "--peer-rows") == 0) peerRows = std::atoi(argv[i + 1]);
        if (std::strcmp(argv[i], "--dictionary") == 0) dictionaryFile = argv[i + 1];
    }
    QApplication app(argc, argv);
    std::ifstream file(dictionaryFile, std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "loop_table_bench: cannot read the dictionary %s\n", dictionaryFile.c_str());
        return 1;
    }
    THandle<CifConcreteDictionary> core(new CifConcreteDictionary());
    core->read(file, THandle<CifErrorContainer>(new CifErrorContainer()));
    THandle<CifDictionaryPool> pool(new CifDictionaryPool());
    pool->insert(core);

    const std::string text = reflectionLoop(rows);
    const double textMb = static_cast<double>(text.size()) / (1024.0 * 1024.0);
    std::printf("loop_table_bench: %ld rows, 6 columns, %.1f MB, %s\n", rows, textMb, dictionaryFile.c_str());

    // The peer: the reader on the same text.
    QElapsedTimer clock;
    clock.start();
    THandle<Cif> cif(new Cif(pool));
    cif->read_text(text);
    const double readMs = msSince(clock);

    // The dialog on the loop, as Edit Loop opens it.
    const double before = residentMb();
    clock.restart();
    QcbsLoopTableEditorImpl dialog;
    dialog.resize(1000, 700);
    const bool opened = dialog.editLoop("_refln_F_meas", cif->block(0));
    dialog.show();
    const double firstScreenMs = msSince(clock) + untilPainted(dialog.table()->viewport());
    const double openMb = residentMb() - before;
    if (!opened) {
        std::fprintf(stderr, "loop_table_bench: the loop did not open\n");
        return 1;
    }
    const double stallMs = longestStall(2000);
    clock.restart();
    dialog.table()->scrollToBottom();
    dialog.table()->viewport()->repaint();
    const double scrollMs = msSince(clock);
    const int lastRow = dialog.table()->rowAt(dialog.table()->viewport()->height() - 2);
    // An edit at the end and the text OK would hand out.
    clock.restart();
    dialog.table()->updateCell(static_cast<int>(rows) - 1, 3, "1.5");
    const QString loop = dialog.table()->loopText();
    const double loopTextMs = msSince(clock);

    // The second peer: an item per cell for the first peerRows rows.
    const double peerBefore = residentMb();
    clock.restart();
    auto* items = new QStandardItemModel(peerRows, 6);
    for (int r = 0; r < peerRows; ++r)
        for (int c = 0; c < 6; ++c) {
            const std::string_view value = cif->block(0)->loops().front()[c]->value_view(r);
            items->setItem(
                r, c,
                new QStandardItem(QString::fromUtf8(value.data(), static_cast<qsizetype>(value.size()))));
        }
    QTableView peer;
    peer.resize(1000, 700);
    peer.setModel(items);
    peer.show();
    const double peerMs = msSince(clock) + untilPainted(peer.viewport());
    const double peerMb = residentMb() - peerBefore;
    const double scale = static_cast<double>(rows) / peerRows;

    std::printf("last row shown after scrolling: %d of %ld; loop text %lld characters\n", lastRow + 1, rows,
                static_cast<long long>(loop.size()));
    std::printf("%-52s %10s %10s\n", "", "ms", "MB");
    std::printf("%-52s %10.0f %10s\n", "reader, whole file (peer)", readMs, "");
    std::printf("%-52s %10.0f %10.0f\n", "dialog: command to first screen painted, extra memory",
                firstScreenMs, openMb);
    std::printf("%-52s %10.1f\n", "dialog: longest stall in the 2 s after", stallMs);
    std::printf("%-52s %10.1f\n", "dialog: scroll to the last row and paint", scrollMs);
    std::printf("%-52s %10.0f\n", "dialog: edit the last row, then the loop's text", loopTextMs);
    std::printf("%-52s %10.0f %10.0f\n", "QStandardItemModel + QTableView, scaled to all rows",
                peerMs * scale, peerMb * scale);
    std::printf(
        "first screen / reader: %.3f; extra memory / loop text: %.2f; item model / dialog: %.1fx time, %.1fx "
        "memory\n",
        firstScreenMs / readMs, openMb / textMb, peerMs * scale / firstScreenMs, peerMb * scale / openMb);
    return 0;
}
