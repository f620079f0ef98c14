// SPDX-License-Identifier: GPL-3.0-or-later
// Benchmark: CIF highlighting on a million-line reflection loop and a text-heavy file.
//
// 1. Classification alone (QcbsCifLineClassifier over every line, runs
//    included; the lines are split beforehand, as Qt hands them over one by
//    one) in MB/s, next to the CIF library's reader on the same text.
// 2. The editor's lexer styling the whole file in one pass, against the
//    classification alone: what the lexer adds (bytes to characters and
//    back, styles, line states and fold levels handed to Scintilla). Loading
//    and styling in a window, against QPlainTextEdit, is bench/editor.
//
//   highlight_bench [--lines N] [--runs N] [--classification-only]
//
// Runs on the offscreen platform unless QT_QPA_PLATFORM says otherwise.

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unordered_set>
#include <vector>

#include "cif/Cif.hpp"
#include "editor/QcbsCifLineClassifier.hpp"
#include "editor/QcbsRichTextEdit.hpp"

namespace {

// --- the files -------------------------------------------------------------

class Random {
public:
    unsigned next() {
        state_ = state_ * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<unsigned>(state_ >> 33);
    }
    int between(int low, int high) { return low + static_cast<int>(next() % unsigned(high - low + 1)); }
    double unit() { return next() / 2147483648.0; }

private:
    unsigned long long state_ = 42;
};

std::string reflectionLoop(int lines) {
    Random random;
    std::string text =
        "data_big\n_cell_length_a 10.123(2)\nloop_\n_refln_index_h\n_refln_index_k\n_refln_index_l\n"
        "_refln_F_squared_calc\n_refln_F_squared_meas\n_refln_F_squared_sigma\n_refln_status\n"
        "_refln_scale_group_code\n";
    char row[128];
    for (int i = 12; i < lines; ++i) {
        std::snprintf(row, sizeof row, "%4d %4d %4d %13.4f %13.4f %11.4f o %6.3f\n", random.between(-40, 40),
                      random.between(-40, 40), random.between(-40, 40), random.unit() * 1e5,
                      random.unit() * 1e5, random.unit() * 100, random.unit());
        text += row;
    }
    return text;
}

std::string textHeavy(int lines) {
    Random random;
    std::string text;
    char buffer[160];
    for (int record = 0; lines > 0; ++record) {
        std::snprintf(buffer, sizeof buffer,
                      "data_entry%d\n_publ_section_title\n;\nCrystal structure of tris(2,2'-bipyridine)"
                      "ruthenium(II) entry %d at 100 K,\n",
                      record, record);
        text += buffer;
        text +=
            "measured with Cu K\\a radiation; R~int~ = 0.031 and \\q~max~ = 27.5\\%.\n"
            "The rings show \\p-stacking at 3.5 \\%A; see Fig. 2 and the CIF's comments.\n;\n"
            "_journal_name_full 'Acta Crystallographica Section E'\n"
            "_chemical_formula_moiety 'C30 H24 N6 Ru, 2(Cl O4)'\n"
            "# refinement details follow, in the publication's words\n";
        std::snprintf(buffer, sizeof buffer,
                      "_refine_ls_R_factor_all %.4f\nloop_\n_atom_site_label\n_atom_site_type_symbol\n"
                      "_atom_site_fract_x\n_atom_site_fract_y\n_atom_site_fract_z\n",
                      random.unit() * 0.1);
        text += buffer;
        for (int atom = 0; atom < 4; ++atom) {
            std::snprintf(buffer, sizeof buffer, "C%d C %.5f(%d) %.5f(%d) %.5f(%d)\n", atom + 1,
                          random.unit(), random.between(1, 9), random.unit(), random.between(1, 9),
                          random.unit(), random.between(1, 9));
            text += buffer;
        }
        lines -= 21;  // the lines of one record
    }
    return text;
}

// A dictionary of the names the files use, asked as a real one is: without
// regard to case.
class BenchDictionary : public CifDictionary {
public:
    BenchDictionary() {
        for (const char* name :
             {"_cell_length_a", "_refln_index_h", "_refln_index_k", "_refln_index_l", "_refln_f_squared_calc",
              "_refln_f_squared_meas", "_refln_f_squared_sigma", "_refln_status", "_publ_section_title",
              "_journal_name_full", "_chemical_formula_moiety", "_refine_ls_r_factor_all", "_atom_site_label",
              "_atom_site_type_symbol", "_atom_site_fract_x", "_atom_site_fract_y", "_atom_site_fract_z"}) {
            names_.insert(name);
        }
    }
    bool is_defined(const std::string& name) const override {
        std::string lower(name);
        std::transform(lower.begin(), lower.end(), lower.begin(),
                       [](unsigned char c) { return std::tolower(c); });
        return names_.count(lower) != 0;
    }

private:
    std::unordered_set<std::string> names_;
};

// --- 1. classification against the reader ----------------------------------

double megabytes(std::size_t bytes) { return bytes / 1e6; }

template <class Work>
double bestSeconds(int runs, Work&& work) {
    double best = 1e30;
    for (int run = 0; run < runs; ++run) {
        QElapsedTimer clock;
        clock.start();
        work();
        best = std::min(best, clock.nsecsElapsed() / 1e9);
    }
    return best;
}

// Returns the classification's time in seconds.
double compareWithReader(const char* name, const std::string& bytes, int runs) {
    const QString text = QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
    BenchDictionary dictionary;
    long long runsSeen = 0;
    // Qt hands the highlighter one line at a time, so the lines are found
    // before the clock starts.
    std::vector<QStringView> lines;
    const QStringView all(text);
    for (qsizetype start = 0; start <= all.size();) {
        qsizetype end = all.indexOf(u'\n', start);
        if (end < 0) end = all.size();
        lines.push_back(all.mid(start, end - start));
        start = end + 1;
    }
    const double classify = bestSeconds(runs, [&] {
        QcbsCifLineClassifier classifier(&dictionary);
        int state = -1;
        for (const QStringView line : lines) {
            state = classifier.classify(line, state);
            classifier.forEachRun([&](int, int, QcbsFontStyleSettings::SyntaxStyle) { ++runsSeen; });
        }
    });
    std::size_t blocks = 0;
    const double read = bestSeconds(runs, [&] {
        CifParserSettings settings;
        settings.line_length = 0;
        Cif cif;
        cif.read_text(bytes, settings);
        blocks += cif.block_count();
    });
    const double mb = megabytes(bytes.size());
    std::printf("%-16s %7.1f MB  classify %7.1f MB/s   CIF reader %7.1f MB/s   classify/reader %5.2f\n", name,
                mb, mb / classify, mb / read, read / classify);
    if (runsSeen == 0 || blocks == 0) std::printf("  (nothing classified or read?)\n");
    return classify;
}

// --- 2. the lexer against the classification --------------------------------

// The editor's lexer styling the whole text in one pass (what idle time
// does in slices): the classification, the bytes turned into characters and
// back, the styles, line states and fold levels handed to Scintilla.
void lexerAgainstClassifier(const char* name, const std::string& bytes, int runs, double classifySeconds) {
    THandle<QcbsFontStyleSettings> styles(new QcbsFontStyleSettings());
    QcbsRichTextEdit editor(THandle<CifDictionary>(new BenchDictionary()), styles);
    editor.resize(1000, 800);
    QEventLoop loop;
    QObject::connect(&editor, &QcbsRichTextEdit::textLoaded, &loop, &QEventLoop::quit);
    editor.loadBytes(QByteArray::fromStdString(bytes));
    if (editor.isLoading()) loop.exec();
    const double lexer =
        bestSeconds(runs, [&] {
            // Piece by piece, as idle time asks.
            editor.SendScintilla(QsciScintillaBase::SCI_STARTSTYLING, 0L);
            while (editor.SendScintilla(QsciScintillaBase::SCI_GETENDSTYLED) < editor.byteLength())
                editor.SendScintilla(QsciScintillaBase::SCI_COLOURISE,
                                     editor.SendScintilla(QsciScintillaBase::SCI_GETENDSTYLED), -1L);
        });
    const double mb = megabytes(bytes.size());
    std::printf(
        "%-16s %7.1f MB  lexer    %7.1f MB/s   classification %7.1f MB/s   lexer/classification %5.2f\n",
        name, mb, mb / lexer, mb / classifySeconds, lexer / classifySeconds);
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    int lines = 1000000;
    int runs = 3;
    bool classificationOnly = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--lines") == 0 && i + 1 < argc) lines = std::max(100, std::atoi(argv[++i]));
        if (std::strcmp(argv[i], "--runs") == 0 && i + 1 < argc) runs = std::max(1, std::atoi(argv[++i]));
        if (std::strcmp(argv[i], "--classification-only") == 0) classificationOnly = true;
    }
    QApplication app(argc, argv);

    const std::string loop = reflectionLoop(lines);
    const std::string prose = textHeavy(lines);
    std::printf("Classification against the CIF library's reader (best of %d runs)\n", runs);
    const double loopClassify = compareWithReader("reflection loop", loop, runs);
    const double proseClassify = compareWithReader("text-heavy", prose, runs);
    if (classificationOnly) return 0;

    std::printf("\nThe editor's lexer styling everything once, against classification alone\n");
    lexerAgainstClassifier("reflection loop", loop, runs, loopClassify);
    lexerAgainstClassifier("text-heavy", prose, runs, proseClassify);
    return 0;
}
