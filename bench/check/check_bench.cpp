// SPDX-License-Identifier: GPL-3.0-or-later
// Benchmark: a check from Ctrl+K to the filled error list, core dictionary enabled.
// The check runs in a main window on two generated files:
// - a structure report of 100,000 lines (cell, atoms, anisotropic
//   parameters, bonds, angles, reflections; a wrong value every 1,000
//   reflections and a run of non-standard names);
// - a reflection file of 2,000,000 rows.
// The check (the Check action, as Ctrl+K runs it) is timed whole, until the
// error list is filled (a text above a megabyte is checked on the worker
// thread, and the longest the event loop is held meanwhile is shown), then
// its steps one by one: the copy of the editor's bytes the reader gets,
// reading them without a dictionary (the peer every other figure is a ratio
// of), reading them with the dictionary (the difference is the validation),
// the consistency checks (the structure checks, codes 370-384, among
// them: the report gives the items they read), filling the error list,
// filling the block chooser; what is left (the output pane, the tools, the
// hand-over from the worker) is the rest.
//
// Then the error list alone: 25,000, 50,000 and 100,000 warnings (each a run
// of its own, so none is cut) through processErrors, against a bare
// QTreeWidget given as many rows in one call.
//
//   check_bench [--lines N] [--rows N] [--runs N] [--dictionary DIR]
//
// Runs on the offscreen platform unless QT_QPA_PLATFORM says otherwise.

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>

#include "../common/ReflectionRows.hpp"
#include "application/QcbsMainWindow.hpp"
#include "application/QcbsMainWindowActions.hpp"
#include "cif/ORMACifConsistencyChecker.hpp"
#include "document/QcbsCifDocument.hpp"
#include "editor/QcbsRichTextEdit.hpp"
#include "validation/QcbsErrorListView.hpp"

namespace {

QString structureReport(int lines) {
    QString text;
    text.reserve(lines * 48);
    int n = 0;
    const auto line = [&](const QString& s) {
        text += s;
        text += '\n';
        ++n;
    };
    line("data_bench");
    line("_cell_length_a                    10.1234(5)");
    line("_cell_length_b                    11.2345(6)");
    line("_cell_length_c                    12.3456(7)");
    line("_cell_angle_alpha                 90");
    line("_cell_angle_beta                  101.23(1)");
    line("_cell_angle_gamma                 90");
    line("_cell_volume                      1377.2(2)");
    line("_cell_formula_units_Z             4");
    line("_symmetry_space_group_name_H-M    'P 21/c'");
    line("_chemical_formula_sum             'C12 H10 O2'");
    // What the structure checks (codes 370-384) read.
    line("_chemical_formula_weight          186.20");
    line("_symmetry_space_group_name_Hall   '-P 2ybc'");
    line("_exptl_absorpt_coefficient_mu     0.09");
    line("_exptl_absorpt_correction_type    multi-scan");
    line("_exptl_absorpt_correction_T_min   0.90");
    line("_exptl_absorpt_correction_T_max   0.95");
    line("_exptl_crystal_size_max           0.30");
    line("_exptl_crystal_size_mid           0.20");
    line("_exptl_crystal_size_min           0.10");
    line("_diffrn_radiation_wavelength      0.71073");
    line("_diffrn_reflns_theta_max          27.50");
    line("_reflns_number_total              3000");
    line("_refine_ls_number_reflns          3000");
    line("_refine_ls_number_parameters      190");
    line("_refine_ls_shift/su_max           0.001");
    line("_refine_ls_wR_factor_ref          0.1012");
    line("_refine_diff_density_max          0.25");
    line("_refine_diff_density_min          -0.22");
    for (int i = 0; i < 40; ++i) line(QString("_bench_custom_item_%1 %1").arg(i));
    const int atoms = lines / 20;
    line(
        "loop_\n_atom_site_label\n_atom_site_type_symbol\n_atom_site_fract_x\n_atom_site_fract_y\n"
        "_atom_site_fract_z\n_atom_site_U_iso_or_equiv");
    n += 6;
    for (int i = 1; i <= atoms; ++i)
        line(QString("C%1 C 0.%2(3) 0.%3(3) 0.%4(3) 0.0%5(2)")
                 .arg(i)
                 .arg(1000 + i % 9000)
                 .arg(2000 + i % 7000)
                 .arg(3000 + i % 5000)
                 .arg(10 + i % 80));
    line(
        "loop_\n_atom_site_aniso_label\n_atom_site_aniso_U_11\n_atom_site_aniso_U_22\n_atom_site_aniso_U_33\n"
        "_atom_site_aniso_U_12\n_atom_site_aniso_U_13\n_atom_site_aniso_U_23");
    n += 7;
    for (int i = 1; i <= atoms; ++i)
        line(QString("C%1 0.0%2(2) 0.0%3(2) 0.0%4(2) 0.00%5(2) -0.00%6(2) 0.00%7(2)")
                 .arg(i)
                 .arg(20 + i % 70)
                 .arg(30 + i % 60)
                 .arg(25 + i % 50)
                 .arg(i % 9)
                 .arg(i % 8)
                 .arg(i % 7));
    line("loop_\n_geom_bond_atom_site_label_1\n_geom_bond_atom_site_label_2\n_geom_bond_distance");
    n += 3;
    for (int i = 1; i < atoms * 2; ++i)
        line(QString("C%1 C%2 1.%3(3)").arg(i % atoms + 1).arg((i + 1) % atoms + 1).arg(380 + i % 150));
    line(
        "loop_\n_geom_angle_atom_site_label_1\n_geom_angle_atom_site_label_2\n_geom_angle_atom_site_label_3\n"
        "_geom_angle");
    n += 4;
    for (int i = 1; i < atoms * 2; ++i)
        line(QString("C%1 C%2 C%3 1%4.%5(2)")
                 .arg(i % atoms + 1)
                 .arg((i + 1) % atoms + 1)
                 .arg((i + 2) % atoms + 1)
                 .arg(5 + i % 15)
                 .arg(i % 10));
    line(
        "loop_\n_refln_index_h\n_refln_index_k\n_refln_index_l\n_refln_F_squared_calc\n_refln_F_squared_"
        "meas\n"
        "_refln_F_squared_sigma\n_refln_include_status");
    n += 7;
    for (int i = 0; n < lines; ++i) {
        const bool wrong = i % 1000 == 999;
        line(QString("%1 %2 %3 %4.%5 %6.%7 %8 o")
                 .arg(i % 41 - 20)
                 .arg(i % 37 - 18)
                 .arg(i % 29)
                 .arg(100 + i % 900)
                 .arg(i % 97)
                 .arg(101 + i % 890)
                 .arg(i % 89)
                 .arg(wrong ? QString("x") : QString::number(1 + i % 30)));
    }
    return text;
}

QString reflectionFile(long rows) {
    QString text;
    text.reserve(rows * 38 + 300);
    text +=
        "data_r1abcsf\n_cell_length_a 61.2\n_cell_length_b 75.4\n_cell_length_c 98.1\n"
        "loop_\n_refln_index_h\n_refln_index_k\n_refln_index_l\n_refln_F_meas\n_refln_F_sigma\n"
        "_refln_include_status\n";
    ReflectionRows generated;
    for (long r = 0; r < rows; ++r) {
        const std::string_view row = generated.next();
        text += QLatin1String(row.data(), static_cast<qsizetype>(row.size()));
    }
    return text;
}

double msSince(const QElapsedTimer& clock) { return static_cast<double>(clock.nsecsElapsed()) / 1e6; }

// The best of `runs` timings of `work`, in milliseconds.
double best(int runs, const std::function<void()>& work) {
    double fastest = 1e300;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer clock;
        clock.start();
        work();
        fastest = std::min(fastest, msSince(clock));
    }
    return fastest;
}

void loadIntoEditor(QcbsRichTextEdit* editor, const QString& text) {
    QEventLoop loop;
    QObject::connect(editor, &QcbsRichTextEdit::textLoaded, &loop, &QEventLoop::quit);
    editor->loadText(text);
    loop.exec();
}

void benchDocument(QcbsMainWindow& window, const char* title, const QString& text, int runs) {
    QcbsRichTextEdit* editor = window.currentEditor();
    QElapsedTimer loading;
    loading.start();
    loadIntoEditor(editor, text);
    window.document()->setFileName(QString("bench-%1.cif").arg(title));
    std::printf("\n%s: %d lines, %.1f MB (in the editor after %.0f ms)\n", title, editor->lines(),
                static_cast<double>(text.size()) / 1e6, msSince(loading));

    QAction* check = window.windowActions()->action(QcbsMainWindowActions::Reparse);
    qint64 longestStall = 0;
    const double total = best(runs, [&] {
        // Until the list is filled, with a heartbeat measuring how long the
        // event loop is held at a time.
        QEventLoop loop;
        const auto done = QObject::connect(window.document(), &QcbsCifDocument::checked, &loop,
                                           &QEventLoop::quit, Qt::QueuedConnection);
        QElapsedTimer clock;
        qint64 last = 0;
        QTimer heartbeat;
        heartbeat.setTimerType(Qt::PreciseTimer);
        heartbeat.setInterval(1);
        QObject::connect(&heartbeat, &QTimer::timeout, [&] {
            longestStall = std::max(longestStall, clock.elapsed() - last);
            last = clock.elapsed();
        });
        QTimer::singleShot(0, [&] {
            clock.start();
            heartbeat.start();
            check->trigger();
        });
        loop.exec();
        QObject::disconnect(done);
        longestStall = std::max(longestStall, clock.elapsed() - last);
    });
    const THandle<Cif> checked = window.currentCif();

    // The copy of the editor's bytes that the reader takes.
    static volatile std::size_t sink = 0;
    const double take = best(runs, [&] {
        const std::string copy(editor->byteView());
        sink = sink + copy.size();
    });
    const std::string bytes(editor->byteView());
    const double plain = best(runs, [&] {
        Cif cif;
        cif.read_text(bytes);
    });
    const THandle<CifDictionary> dictionary = window.dictionary();
    THandle<Cif> cif;
    const double withDictionary = best(runs, [&] {
        cif = THandle<Cif>(new Cif(dictionary));
        cif->read_text(bytes);
    });
    double consistency = 1e300;
    for (int i = 0; i < runs; ++i) {
        THandle<Cif> copy(new Cif(dictionary));
        copy->read_text(bytes);
        ORMACifConsistencyChecker checker(copy);
        QElapsedTimer clock;
        clock.start();
        checker.check_cif();
        consistency = std::min(consistency, msSince(clock));
    }
    const double list = best(runs, [&] { window.processErrors(checked); });
    const double chooser = best(runs, [&] { window.fillBlocksCombo(checked); });

    const auto row = [&](const char* step, double ms) {
        std::printf("  %-38s %9.1f ms  %5.1f%% of the check  %5.2f x reading\n", step, ms, 100.0 * ms / total,
                    ms / plain);
    };
    std::printf("  messages: %d errors, %d warnings, %d remarks; listed %d\n",
                checked->errors()->errors_of_type(CifError::error),
                checked->errors()->errors_of_type(CifError::warning),
                checked->errors()->errors_of_type(CifError::remark), window.errorList()->numberTotal());
    row("Ctrl+K to the filled list", total);
    std::printf("  %-38s %9lld ms\n", "longest hold of the event loop", static_cast<long long>(longestStall));
    row("the copy of the editor's bytes", take);
    row("reading (no dictionary): peer", plain);
    row("validating (with - without)", withDictionary - plain);
    row("consistency checks", consistency);
    row("filling the error list", list);
    row("filling the block chooser", chooser);
    row("the rest (text to bytes, pane, tools)",
        total - take - withDictionary - consistency - list - chooser);
}

void benchList(QcbsMainWindow& window, int runs) {
    std::printf("\nerror list: N warnings, each on a line of its own run\n");
    std::printf("  %8s %12s %14s %8s\n", "N", "processErrors", "bare QTreeWidget", "ratio");
    double previous = 0;
    for (int count : {25000, 50000, 100000}) {
        THandle<Cif> cif(new Cif());
        for (int i = 0; i < count; ++i)
            cif->errors()->add(CifError(CifError::undefined_data_name, CifError::warning, 2 * i + 1,
                                        "_bench_item_" + std::to_string(i)));
        const double ours = best(runs, [&] { window.processErrors(cif); });
        const double bare = best(runs, [&] {
            QTreeWidget tree;
            tree.setColumnCount(2);
            auto* heading = new QTreeWidgetItem(&tree, QStringList{"Warnings"});
            QList<QTreeWidgetItem*> rows;
            rows.reserve(count);
            for (const CifError& error : *cif->errors())
                rows << new QTreeWidgetItem(
                    QStringList{"Line " + QString::number(error.line()).rightJustified(7),
                                QString::fromStdString(error.message())});
            heading->addChildren(rows);
        });
        std::printf("  %8d %10.1f ms %12.1f ms %8.2f", count, ours, bare, ours / bare);
        if (previous > 0) std::printf("   (x%.2f for twice as many)", ours / previous);
        std::printf("\n");
        previous = ours;
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    int lines = 100000;
    long rows = 2000000;
    int runs = 3;
    QString dictionaries = TESSARY_SHARED_DIR "/dictionaries";
    for (int i = 1; i + 1 < argc; i += 2) {
        if (std::strcmp(argv[i], "--lines") == 0) lines = std::atoi(argv[i + 1]);
        if (std::strcmp(argv[i], "--rows") == 0) rows = std::atol(argv[i + 1]);
        if (std::strcmp(argv[i], "--runs") == 0) runs = std::max(1, std::atoi(argv[i + 1]));
        if (std::strcmp(argv[i], "--dictionary") == 0) dictionaries = argv[i + 1];
    }
    QTemporaryDir prefs;
    qputenv("TESSARYPREFS", prefs.path().toUtf8());
    qputenv("TESSARY_DICTIONARIES", dictionaries.toUtf8());
    QApplication app(argc, argv);

    THandle<QcbsMainWindowSharedData> shared(
        new QcbsMainWindowSharedData(QFileInfo(QCoreApplication::applicationFilePath())));
    QcbsMainWindow window(shared);
    const THandle<CifDictionaryPool> all = shared->dictionaryLoader()->load(shared->programDirectory());
    if (all->empty()) {
        std::fprintf(stderr, "no dictionary found in %s: pass --dictionary DIR\n", qPrintable(dictionaries));
        return 1;
    }
    for (const auto& dictionary : *all)
        std::printf("dictionary: %s\n", dictionary->descriptor().text().c_str());

    benchDocument(window, "structure report", structureReport(lines), runs);
    benchDocument(window, "reflection file", reflectionFile(rows), runs);
    window.currentEditor()->setPlainText(QString());
    benchList(window, runs);
    return 0;
}
