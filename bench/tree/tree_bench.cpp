// SPDX-License-Identifier: GPL-3.0-or-later
// Benchmark: the tree of blocks refilled after a check, against the check itself.
// A generated CIF of two blocks, each with an atom-site loop of N rows (2,000 by
// default), cell and symmetry items and a few refused values, is checked against
// the core dictionary as the editor checks it (CifDocumentCheck: read,
// mandatory items, consistency): that is the peer. The tree is then refilled
// from each new check with both blocks and five categories open (atom_site,
// cell and symmetry of the first block, atom_site and cell of the second), as
// it is after every Ctrl+K: setCif alone, and setCif with the repaint that
// follows. Best and median of R runs.
//
//   tree_bench [--rows N] [--runs R] [--dictionary FILE]
//
// Runs on the offscreen platform unless QT_QPA_PLATFORM says otherwise.

#include <QApplication>
#include <QElapsedTimer>
#include <QScrollBar>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifDictionaryPool.hpp"
#include "cif/CifDocumentCheck.hpp"
#include "views/QcbsCifBoxView.hpp"

namespace {

std::string block(const std::string& name, int rows) {
    std::string text = "data_" + name + "\n";
    text +=
        "_cell_length_a                    10.1234(5)\n_cell_length_b                    11.2345(6)\n"
        "_cell_length_c                    12.3456(7)\n_cell_angle_alpha                 90\n"
        "_cell_angle_beta                  101.23(1)\n_cell_angle_gamma                 90\n"
        "_cell_volume                      1377.2(2)\n_cell_formula_units_Z             4\n"
        "_cell_measurement_temperature     hot\n"  // refused: not a number
        "_symmetry_cell_setting            monoclinic\n_symmetry_space_group_name_H-M    'P 21/c'\n"
        "_chemical_formula_sum             'C12 H10 O2'\n_exptl_crystal_colour            colourless\n";
    text +=
        "loop_\n_atom_site_label\n_atom_site_type_symbol\n_atom_site_fract_x\n_atom_site_fract_y\n"
        "_atom_site_fract_z\n_atom_site_U_iso_or_equiv\n_atom_site_adp_type\n_atom_site_occupancy\n"
        "_atom_site_calc_flag\n";
    char row[160];
    for (int i = 1; i <= rows; ++i) {
        // The last row's occupancy is out of range.
        std::snprintf(row, sizeof row, "C%d C 0.%04d(3) 0.%04d(3) 0.%04d(3) 0.0%02d(2) Uani %s d\n", i,
                      1000 + i % 9000, 2000 + i % 7000, 3000 + i % 5000, 10 + i % 80,
                      i == rows ? "1.5" : "1");
        text += row;
    }
    return text;
}

double msSince(const QElapsedTimer& clock) { return static_cast<double>(clock.nsecsElapsed()) / 1e6; }

struct Times {
    double best = 0;
    double median = 0;
};

Times measure(int runs, const std::function<double()>& work) {
    std::vector<double> all;
    for (int i = 0; i < runs; ++i) all.push_back(work());
    std::sort(all.begin(), all.end());
    return {all.front(), all[all.size() / 2]};
}

QTreeWidgetItem* childNamed(QTreeWidgetItem* parent, const char* text) {
    for (int i = 0; i < parent->childCount(); ++i)
        if (parent->child(i)->text(0) == QLatin1String(text)) return parent->child(i);
    return nullptr;
}

int visibleRows(const QTreeWidget& tree) {
    int count = 0;
    for (QTreeWidgetItemIterator it(const_cast<QTreeWidget*>(&tree)); *it; ++it) {
        const QTreeWidgetItem* item = *it;
        bool shown = true;
        for (const QTreeWidgetItem* up = item->parent(); up != nullptr && shown; up = up->parent())
            shown = up->isExpanded();
        if (shown) ++count;
    }
    return count;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    int rows = 2000;
    int runs = 15;
    std::string dictionaryFile = TESSARY_SHARED_DIR "/dictionaries/cif_core.dic";
    for (int i = 1; i + 1 < argc; i += 2) {
        if (std::strcmp(argv[i], "--rows") == 0) rows = std::atoi(argv[i + 1]);
        if (std::strcmp(argv[i], "--runs") == 0) runs = std::max(1, std::atoi(argv[i + 1]));
        if (std::strcmp(argv[i], "--dictionary") == 0) dictionaryFile = argv[i + 1];
    }
    QApplication app(argc, argv);

    std::ifstream file(dictionaryFile, std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "tree_bench: cannot read the dictionary %s\n", dictionaryFile.c_str());
        return 1;
    }
    THandle<CifConcreteDictionary> core(new CifConcreteDictionary());
    core->read(file, THandle<CifErrorContainer>(new CifErrorContainer()));
    THandle<CifDictionaryPool> pool(new CifDictionaryPool());
    pool->insert(core);
    const CifDocumentCheck check(pool, CifCheckSettings());
    const std::string text = block("first", rows) + "\n" + block("second", rows);
    std::printf("tree_bench: %zu bytes, two blocks of %d atom sites, %s (%zu categories)\n", text.size(),
                rows, dictionaryFile.c_str(), core->categories().size());

    QcbsCifBoxView view;
    view.resize(360, 900);
    view.show();
    view.setCif(check.run(text));
    // Two blocks and five categories open, as a user leaves them.
    const char* open[][3] = {{"_atom_site_[]", "_cell_[]", "_symmetry_[]"},
                             {"_atom_site_[]", "_cell_[]", nullptr}};
    for (int b = 0; b < 2; ++b) {
        QcbsCifBoxBlockItem* blockRow = view.blockRow(b);
        blockRow->setOpen(true);
        for (const char* category : open[b]) {
            if (category == nullptr) continue;
            QTreeWidgetItem* row = childNamed(blockRow, category);
            if (row == nullptr) {
                std::fprintf(stderr, "tree_bench: the dictionary has no category %s\n", category);
                return 1;
            }
            static_cast<QcbsCifBoxItem*>(row)->setOpen(true);
        }
    }
    view.verticalScrollBar()->setValue(view.verticalScrollBar()->maximum() / 3);
    QApplication::processEvents();

    THandle<Cif> next;
    const Times checking = measure(runs, [&] {
        QElapsedTimer clock;
        clock.start();
        next = check.run(text);
        return msSince(clock);
    });
    const Times refill = measure(runs, [&] {
        const THandle<Cif> cif = check.run(text);
        QElapsedTimer clock;
        clock.start();
        view.setCif(cif);
        return msSince(clock);
    });
    const Times refillPainted = measure(runs, [&] {
        const THandle<Cif> cif = check.run(text);
        QElapsedTimer clock;
        clock.start();
        view.setCif(cif);
        view.repaint();
        return msSince(clock);
    });

    std::printf(
        "rows in the tree: %d, shown %d; errors of the check: %zu\n",
        [&] {
            int n = 0;
            for (QTreeWidgetItemIterator it(&view); *it; ++it) ++n;
            return n;
        }(),
        visibleRows(view), next->errors()->size());
    std::printf("%-34s %9s %9s %9s\n", "", "best ms", "median ms", "x check");
    const auto line = [&](const char* what, const Times& t) {
        std::printf("%-34s %9.2f %9.2f %9.3f\n", what, t.best, t.median, t.median / checking.median);
    };
    line("check (peer)", checking);
    line("tree refilled (setCif)", refill);
    line("tree refilled and repainted", refillPainted);
    return 0;
}
