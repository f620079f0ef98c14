// SPDX-License-Identifier: GPL-3.0-or-later
// Saves two contents over one file in turn, forever, for the kill-during-save test.
//   save_loop DIR SIZE BACKUP   writes DIR/first and DIR/second (SIZE bytes each, different
//                               throughout), makes DIR/doc.cif a copy of the first, prints
//                               "ready", then saves second, first, second, ... over
//                               DIR/doc.cif, with a backup when BACKUP is 1, until killed
#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <cstdio>
#include <cstdlib>

#include "document/QcbsDocumentSaver.hpp"

namespace {

QByteArray content(qsizetype size, char letter) {
    QByteArray line = QByteArray("data_") + letter + QByteArray(60, letter) + "\n";
    QByteArray bytes;
    bytes.reserve(size + line.size());
    while (bytes.size() < size) bytes += line;
    bytes.truncate(size);
    return bytes;
}

bool writeFile(const QString& name, const QByteArray& bytes) {
    QFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    if (argc != 4) {
        std::fprintf(stderr, "usage: save_loop DIR SIZE BACKUP\n");
        return 2;
    }
    const QDir dir(QString::fromLocal8Bit(argv[1]));
    const qsizetype size = std::atoll(argv[2]);
    const bool backup = std::atoi(argv[3]) == 1;
    const QByteArray contents[] = {content(size, 'a'), content(size, 'b')};
    if (!writeFile(dir.filePath("first"), contents[0]) || !writeFile(dir.filePath("second"), contents[1]) ||
        !writeFile(dir.filePath("doc.cif"), contents[0])) {
        std::fprintf(stderr, "save_loop: cannot write into %s\n", argv[1]);
        return 1;
    }
    std::printf("ready\n");
    std::fflush(stdout);
    const QString name = dir.filePath("doc.cif");
    for (unsigned long n = 1;; ++n) {
        if (!QcbsDocumentSaver::save(name, contents[n % 2], backup).saved) {
            std::fprintf(stderr, "save_loop: a save failed\n");
            return 1;
        }
    }
}
