// SPDX-License-Identifier: GPL-3.0-or-later
// Benchmark: writing the recovery file of a huge unsaved document, and the event loop meanwhile.
// Ours: QcbsRecoveryWriter on the window's editor stack (QcbsLineNumberedTextEdit with its
// QcbsCifDocument): the text copied a slice at a time, hashed and written on a worker.
// Peer: the same bytes written at once from the event loop through QSaveFile (synced,
// renamed into place), as a plain autosave would.
// Each round types one key and then writes; a 1 ms heartbeat timer's longest gap is the
// longest stall of the event loop. Rounds alternate between the two, after a control of
// 3 s in which nothing is written.
//
//   recovery_bench [--rows N] [--rounds R]
//
// A reflection file of N rows (8,500,000: about 300 MB) is written to a temporary directory.
#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QSaveFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>

#include "../common/EventLoopTiming.hpp"
#include "../common/ReflectionRows.hpp"
#include "document/QcbsCifDocument.hpp"
#include "document/QcbsRecoveryStore.hpp"
#include "document/QcbsRecoveryWriter.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "editor/QcbsLineNumberedTextEdit.hpp"
#include "editor/QcbsRichTextEdit.hpp"

namespace {

void writeReflectionFile(const QString& name, long rows) {
    QFile out(name);
    if (!out.open(QIODevice::WriteOnly)) std::abort();
    out.write(
        "data_refl\nloop_\n_refln_index_h\n_refln_index_k\n_refln_index_l\n_refln_F_squared_meas\n"
        "_refln_F_squared_sigma\n_refln_observed_status\n");
    ReflectionRows generated(40, 0.0);
    QByteArray chunk;
    for (long i = 0; i < rows; ++i) {
        const std::string_view row = generated.next();
        chunk.append(row.data(), static_cast<qsizetype>(row.size()));
        if (chunk.size() > (1 << 20)) out.write(std::exchange(chunk, QByteArray()));
    }
    out.write(chunk);
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    long rows = 8500000;
    int rounds = 3;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (std::strcmp(argv[i], "--rows") == 0) rows = std::atol(argv[i + 1]);
        if (std::strcmp(argv[i], "--rounds") == 0) rounds = std::atoi(argv[i + 1]);
    }
    QTemporaryDir dir;
    qputenv("XDG_STATE_HOME", dir.filePath("state").toUtf8());
    QApplication app(argc, argv);
    const QString file = dir.filePath("reflections.cif");
    writeReflectionFile(file, rows);

    THandle<QcbsFontStyleSettings> styles(new QcbsFontStyleSettings());
    QcbsLineNumberedTextEdit widget(THandle<CifDictionary>(), "editor", styles, true);
    widget.resize(1000, 800);
    widget.show();
    QcbsRichTextEdit* edit = widget.editor();
    QcbsCifDocument document(edit);
    document.loadFile(file);
    if (!QTest::qWaitFor([&] { return !edit->isLoading(); }, 600000)) return 1;
    QcbsRecoveryWriter writer(&document, edit);
    writer.setDelay(3600 * 1000);  // written only when the bench asks
    bool written = false;
    QObject::connect(&writer, &QcbsRecoveryWriter::written, [&] { written = true; });
    std::printf("%s: %.1f MB unsaved (offscreen); times in ms\n", qPrintable(QFileInfo(file).fileName()),
                document.byteCount() / 1e6);
    std::printf("%-6s %-58s %9s %14s\n", "round", "side", "written", "longest stall");

    for (int round = 1; round <= rounds; ++round) {
        // The control: the same wait with nothing written, so that holds of
        // the event loop that are not the writer's (the machine's load, the
        // editor's own work) show.
        QElapsedTimer idle;
        const Timing control = measure([&] { idle.start(); }, [&] { return idle.elapsed() >= 3000; });
        std::printf("%-6d %-58s %9lld %14lld\n", round, "control (nothing written, 3 s)",
                    static_cast<long long>(control.total), static_cast<long long>(control.longest));

        QTest::keyClick(edit, Qt::Key_X);
        written = false;
        const Timing ours = measure([&] { writer.writeSoon(); }, [&] { return written; });
        // The whole text went to the record, the key just typed included.
        QFile record(QcbsRecoveryStore::pathOf(writer.recordId()));
        QByteArray text;
        if (!record.open(QIODevice::ReadOnly) || !QcbsRecoveryRecord::read(record, &text) ||
            text != QByteArray::fromRawData(edit->byteView().data(), edit->byteLength())) {
            const std::string_view now = edit->byteView();
            qsizetype at = 0;
            while (at < text.size() && at < qsizetype(now.size()) && text[at] == now[at]) ++at;
            std::fprintf(stderr,
                         "the record does not hold the text (%lld bytes read, %lld in the editor, first "
                         "difference at %lld)\n",
                         static_cast<long long>(text.size()), static_cast<long long>(now.size()),
                         static_cast<long long>(at));
            return 1;
        }
        std::printf("%-6d %-58s %9lld %14lld\n", round, "ours (QcbsRecoveryWriter: slices + worker)",
                    static_cast<long long>(ours.total), static_cast<long long>(ours.longest));

        QTest::keyClick(edit, Qt::Key_X);
        bool saved = false;
        const Timing peer = measure(
            [&] {
                QSaveFile out(dir.filePath("peer.recovery"));
                const std::string_view bytes = edit->byteView();
                if (!out.open(QIODevice::WriteOnly) ||
                    out.write(bytes.data(), static_cast<qint64>(bytes.size())) < 0 || !out.commit())
                    std::abort();
                saved = true;
            },
            [&] { return saved; });
        std::printf("%-6d %-58s %9lld %14lld\n", round, "peer (QSaveFile from the event loop)",
                    static_cast<long long>(peer.total), static_cast<long long>(peer.longest));
    }
    return 0;
}
