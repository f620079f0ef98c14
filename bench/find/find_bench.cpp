// SPDX-License-Identifier: GPL-3.0-or-later
// Benchmark: find and replace all in the editor on a huge file, against QString on the same text.
// The file is a reflection loop of N lines (2,000,000 by default, 70 MB); every 20th line holds
// the word MARK (100,000 matches) and only the last line holds the text "needle_on_last_line".
//
// Steps on the editor (a QcbsRichTextEdit holding the file, through the find and replace
// dialogs as the user drives them):
//   find       the text of the last line, case-blind and case-sensitive, from the top
//   replace    Replace All of MARK by DONE (one undo step), then Undo (checked byte for byte)
// Peer, on the same text decoded into a QString: QString::indexOf (both cases) and
// QString::replace with the same regular expression and with the literal text.
//
//   find_bench [--lines N] [--runs N]
//
// Runs on the offscreen platform unless QT_QPA_PLATFORM says otherwise.

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThread>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <vector>

#include "editor/QcbsRichTextEdit.hpp"
#include "find/QcbsFindDialog.hpp"
#include "find/QcbsReplaceDialog.hpp"

namespace {

QByteArray makeFile(long lines) {
    QByteArray text =
        "data_refl\nloop_\n_refln_index_h\n_refln_index_k\n_refln_index_l\n_refln_F_meas\n_refln_note\n";
    text.reserve(lines * 36 + 1024);
    std::mt19937 random(7);
    std::uniform_int_distribution<int> index(-40, 40);
    std::uniform_real_distribution<double> value(0.0, 9999.0);
    char row[96];
    // 7 header lines, the rows, the last line: every 20th row is marked.
    for (long i = 0; i < lines - 8; ++i) {
        std::snprintf(row, sizeof row, "%4d%4d%4d %10.2f %s\n", index(random), index(random), index(random),
                      value(random), i % 20 == 0 ? "MARK" : "o");
        text += row;
    }
    text += "   0   0   0       0.00 needle_on_last_line\n";
    return text;
}

double medianMs(int runs, const std::function<void()>& step) {
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        step();
        times.push_back(timer.nsecsElapsed() / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

void row(const char* what, double ours, double peer) {
    std::printf("| %s | %.0f ms | %.0f ms | %.2f |\n", what, ours, peer, ours / std::max(peer, 0.001));
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    long lines = 2000000;
    int runs = 3;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (std::strcmp(argv[i], "--lines") == 0) lines = std::atol(argv[i + 1]);
        if (std::strcmp(argv[i], "--runs") == 0) runs = std::atoi(argv[i + 1]);
    }
    QTemporaryDir prefs;  // the dialogs' settings stay out of the user's
    qputenv("TESSARYPREFS", prefs.path().toUtf8());
    QApplication app(argc, argv);
    const QByteArray bytes = makeFile(lines);
    QcbsRichTextEdit editor;
    editor.resize(1000, 800);
    editor.show();
    editor.loadBytes(bytes);
    while (editor.isLoading()) {
        QApplication::processEvents();
        QThread::msleep(1);
    }
    std::printf("%ld lines, %.1f MB, %d runs (median)\n\n", static_cast<long>(editor.paragraphs()),
                bytes.size() / 1e6, runs);
    std::printf("| step | editor | QString | editor/QString |\n|---|---|---|---|\n");

    const QString text = QString::fromUtf8(bytes);
    const QString needle = "needle_on_last_line";
    QcbsFindDialog find;
    find.setEditor(&editor);
    find.comboFind()->setEditText(needle);
    for (const bool caseSensitive : {false, true}) {
        find.checkCase()->setChecked(caseSensitive);
        bool found = true;
        const double ours = medianMs(runs, [&] {
            editor.setCursorPosition(0, 0);
            found = found && find.doFind();
        });
        qsizetype at = -1;
        const double peer = medianMs(runs, [&] {
            at = text.indexOf(needle, 0, caseSensitive ? Qt::CaseSensitive : Qt::CaseInsensitive);
        });
        if (!found || at < 0) return std::puts("find failed"), 1;
        row(caseSensitive ? "find on the last line, case-sensitive" : "find on the last line, case-blind",
            ours, peer);
    }

    QcbsReplaceDialog replace;
    replace.setEditor(&editor);
    replace.comboFind()->setEditText("MARK");
    replace.comboReplace()->setEditText("DONE");
    replace.checkCase()->setChecked(true);
    double undoMs = 0;
    bool exact = true;
    const double ours = medianMs(runs, [&] {
        if (!replace.doReplaceAll()) exact = false;
        QElapsedTimer timer;
        timer.start();
        editor.undo();
        undoMs += timer.nsecsElapsed() / 1e6;
        exact = exact && editor.bytes() == bytes && !editor.isUndoAvailable();
    });
    // The time above holds the undo as well; take it out.
    const double replaceOnly = ours - undoMs / runs;
    qsizetype matches = text.count(QStringLiteral("MARK"));
    const QRegularExpression expression("MARK");
    const double peerRegex = medianMs(runs, [&] {
        QString copy = text;
        copy.replace(expression, "DONE");
    });
    const double peerLiteral = medianMs(runs, [&] {
        QString copy = text;
        copy.replace("MARK", "DONE");
    });
    if (!exact) return std::puts("replace all or undo was not byte-exact"), 1;
    std::printf(
        "| replace all, %lld matches (vs QString::replace(QRegularExpression)) | %.0f ms | %.0f ms | %.2f "
        "|\n",
        static_cast<long long>(matches), replaceOnly, peerRegex, replaceOnly / peerRegex);
    std::printf("| replace all (vs QString::replace(literal)) | %.0f ms | %.0f ms | %.2f |\n", replaceOnly,
                peerLiteral, replaceOnly / peerLiteral);
    std::printf("| undo of replace all (byte-exact: %s) | %.0f ms | | |\n", exact ? "yes" : "no",
                undoMs / runs);
    return 0;
}
