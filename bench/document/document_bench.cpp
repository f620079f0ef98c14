// SPDX-License-Identifier: GPL-3.0-or-later
// Benchmark: reading a document's file and saving it, against peers doing the least.
// On a generated file of a million lines; the peers do the least that the same job needs:
//
//   read: QFile::readAll + QString::fromUtf8 (the floor) against a load of
//         the document into its editor, whole: the file read in slices, its
//         encoding and line ends found on the way, the bytes in the editor.
//   save: the bytes written with QFile (no temporary file, no sync: what a
//         careless save does), and the same with fsync, against the save of
//         the document: a small document's bytes straight from the editor,
//         a large one's copied for the worker thread, written through a
//         synced temporary file renamed over the old one, without and with
//         a backup.
//
//   document_bench [--lines N] [--runs N]
//
// Every figure is the best of the runs; compare within one run.

#include <unistd.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>

#include "document/QcbsCifDocument.hpp"
#include "document/QcbsDocumentSaver.hpp"
#include "editor/QcbsRichTextEdit.hpp"

namespace {

QByteArray generatedCif(int lines) {
    QByteArray text =
        "data_big\n_publ_author_name 'Cr\xc3\xa9pin'\nloop_\n_refln_index_h\n_refln_index_k\n"
        "_refln_index_l\n_refln_F_squared_meas\n";
    text.reserve(static_cast<qsizetype>(lines) * 32);
    for (int i = 7; i < lines; ++i)
        text += QByteArray::number(i % 41 - 20) + ' ' + QByteArray::number(i % 37 - 18) + ' ' +
                QByteArray::number(i % 29) + ' ' + QByteArray::number(i) + '.' + QByteArray::number(i % 97) +
                " \n";
    return text;
}

double bestMs(int runs, const std::function<void()>& work) {
    double best = 1e300;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer clock;
        clock.start();
        work();
        best = std::min(best, static_cast<double>(clock.nsecsElapsed()) / 1e6);
    }
    return best;
}

void row(const char* what, double ms, double peerMs, double megabytes) {
    std::printf("  %-46s %9.1f ms %8.1f MB/s  x%.2f\n", what, ms, megabytes / (ms / 1000.0), ms / peerMs);
}

}  // namespace

int main(int argc, char** argv) {
    int lines = 1000000;
    int runs = 3;
    for (int i = 1; i + 1 < argc; ++i) {
        if (std::strcmp(argv[i], "--lines") == 0) lines = std::atoi(argv[++i]);
        if (std::strcmp(argv[i], "--runs") == 0) runs = std::atoi(argv[++i]);
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    QTemporaryDir dir;
    const QString name = dir.filePath("big.cif");
    const QByteArray bytes = generatedCif(lines);
    {
        QFile file(name);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) return 1;
    }
    const double megabytes = static_cast<double>(bytes.size()) / 1e6;
    std::printf("document_bench: %d lines, %.1f MB, best of %d\n", lines, megabytes, runs);

    std::printf("read\n");
    const double readFloor = bestMs(runs, [&] {
        QFile file(name);
        file.open(QIODevice::ReadOnly);
        const QString text = QString::fromUtf8(file.readAll());
        if (text.isEmpty()) std::abort();
    });
    QcbsRichTextEdit editor(THandle<CifDictionary>(),
                            THandle<QcbsFontStyleSettings>(new QcbsFontStyleSettings()));
    QcbsCifDocument document(&editor);
    const double readOurs = bestMs(runs, [&] {
        QEventLoop loop;
        QObject::connect(&editor, &QcbsRichTextEdit::textLoaded, &loop, &QEventLoop::quit);
        if (!document.loadFile(name)) std::abort();
        if (editor.isLoading()) loop.exec();
    });
    if (editor.bytes() != bytes) std::abort();
    row("readAll + fromUtf8 (peer)", readFloor, readFloor, megabytes);
    row("load into the editor: slices, encoding, line ends", readOurs, readFloor, megabytes);

    std::printf("save\n");
    const QString target = dir.filePath("saved.cif");
    const auto plainWrite = [&](bool sync) {
        QFile file(target);
        file.open(QIODevice::WriteOnly);
        file.write(bytes);
        file.flush();
        if (sync) ::fsync(file.handle());
    };
    const double writeFloor = bestMs(runs, [&] { plainWrite(false); });
    const double writeSynced = bestMs(runs, [&] { plainWrite(true); });
    const auto save = [&](bool backup) {
        if (!document.save(target, backup).saved) std::abort();
    };
    const double saveOurs = bestMs(runs, [&] { save(false); });
    const double saveBackup = bestMs(runs, [&] { save(true); });
    row("QFile write, no sync (peer)", writeFloor, writeFloor, megabytes);
    row("QFile write + fsync", writeSynced, writeFloor, megabytes);
    row(document.isLarge() ? "document save: copy, worker, synced rename" : "document save: synced rename",
        saveOurs, writeFloor, megabytes);
    row("document save with backup", saveBackup, writeFloor, megabytes);
    std::printf("  (save against write + fsync: x%.2f)\n", saveOurs / writeSynced);
    return 0;
}
