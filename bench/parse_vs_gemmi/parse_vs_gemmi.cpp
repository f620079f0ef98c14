// SPDX-License-Identifier: MIT
// Benchmark: the CIF library's reader against gemmi's, each in a fresh process.
// Reads generated CIF files (a large reflection loop, a text-heavy file) and, when present, the
// PDBx/mmCIF dictionary, and prints MB/s, peak memory and the ratios. A plain white-space
// tokenizer is the floor.
//
//   parse_vs_gemmi [--rows N] [--runs N] [--keep DIR]

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <gemmi/cif.hpp>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include "../common/ReflectionRows.hpp"
#include "cif/Cif.hpp"

namespace {

namespace fs = std::filesystem;

struct Measure {
    double seconds = 0;
    double peak_mb = 0;  // above the peak of a process that reads nothing
    std::string count;   // values seen, to show both read the same
};

// --- the work done in the child process ----------------------------------

std::string parse_ours(const std::string& file, bool dictionary) {
    std::ifstream stream(file, std::ios::binary);
    CifParserSettings settings;
    settings.line_length = 0;
    settings.allow_save_frames = dictionary;
    Cif cif;
    cif.read(stream, settings);
    std::size_t values = 0;
    for (const THandle<CifDataBlock>& block : cif.blocks()) {
        for (auto it = block->begin_write_order(); it != block->end_write_order(); ++it)
            values += (*it)->size();
        for (const THandle<CifDataBlock>& frame : block->save_frames()) {
            for (auto it = frame->begin_write_order(); it != frame->end_write_order(); ++it)
                values += (*it)->size();
        }
    }
    return std::to_string(values) + " values, " +
           std::to_string(cif.errors()->errors_of_type(CifError::error)) + " errors";
}

std::size_t count_gemmi(const gemmi::cif::Block& block) {
    std::size_t values = 0;
    for (const gemmi::cif::Item& item : block.items) {
        if (item.type == gemmi::cif::ItemType::Pair) values += 1;
        if (item.type == gemmi::cif::ItemType::Loop) values += item.loop.values.size();
        if (item.type == gemmi::cif::ItemType::Frame) values += count_gemmi(item.frame);
    }
    return values;
}

std::string parse_gemmi(const std::string& file) {
    gemmi::cif::Document document = gemmi::cif::read_file(file);
    std::size_t values = 0;
    for (const gemmi::cif::Block& block : document.blocks) values += count_gemmi(block);
    return std::to_string(values) + " values";
}

// Splits on white space only: the least any reader must do.
std::string parse_scan(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    std::string text(static_cast<std::size_t>(fs::file_size(file)), '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    std::size_t tokens = 0;
    bool in_token = false;
    for (char c : text) {
        bool space = c == ' ' || c == '\n' || c == '\t' || c == '\r';
        if (!space && !in_token) ++tokens;
        in_token = !space;
    }
    return std::to_string(tokens) + " tokens";
}

int child(const std::string& mode, const std::string& file, bool dictionary) {
    auto start = std::chrono::steady_clock::now();
    std::string count;
    if (mode == "ours") count = parse_ours(file, dictionary);
    if (mode == "gemmi") count = parse_gemmi(file);
    if (mode == "scan") count = parse_scan(file);
    double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::printf("%.6f %s\n", seconds, count.c_str());
    return 0;
}

// --- the parent: runs children and compares ------------------------------

Measure run(const std::string& self, const std::string& mode, const std::string& file, bool dictionary) {
    int pipe_ends[2];
    if (pipe(pipe_ends) != 0) std::exit(2);
    pid_t pid = fork();
    if (pid == 0) {
        dup2(pipe_ends[1], STDOUT_FILENO);
        close(pipe_ends[0]);
        close(pipe_ends[1]);
        execl(self.c_str(), self.c_str(), "--child", mode.c_str(), file.c_str(),
              dictionary ? "dictionary" : "data", static_cast<char*>(nullptr));
        _exit(127);
    }
    close(pipe_ends[1]);
    std::string output;
    char buffer[256];
    for (ssize_t n; (n = read(pipe_ends[0], buffer, sizeof buffer)) > 0;)
        output.append(buffer, static_cast<std::size_t>(n));
    close(pipe_ends[0]);
    int status = 0;
    rusage usage{};
    wait4(pid, &status, 0, &usage);
    Measure measure;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        measure.count = "failed";
        return measure;
    }
    measure.seconds = std::atof(output.c_str());
    std::size_t space = output.find(' ');
    measure.count = space == std::string::npos ? std::string() : output.substr(space + 1);
    if (!measure.count.empty() && measure.count.back() == '\n') measure.count.pop_back();
    measure.peak_mb = static_cast<double>(usage.ru_maxrss) / 1024.0;
    return measure;
}

Measure best_of(const std::string& self, const std::string& mode, const std::string& file, bool dictionary,
                int runs, double baseline_mb) {
    Measure best;
    for (int i = 0; i < runs; ++i) {
        Measure m = run(self, mode, file, dictionary);
        if (i == 0 || m.seconds < best.seconds) best = m;
        best.peak_mb = std::max(best.peak_mb, m.peak_mb);
    }
    best.peak_mb = std::max(0.0, best.peak_mb - baseline_mb);
    return best;
}

void write_refln_file(const std::string& path, long rows) {
    std::ofstream out(path, std::ios::binary);
    out << "data_r1abcsf\n_cell.entry_id 1ABC\n_cell.length_a 61.2\n_cell.length_b 75.4\n_cell.length_c "
           "98.1\n"
           "loop_\n_refln.index_h\n_refln.index_k\n_refln.index_l\n_refln.F_meas_au\n_refln.F_meas_sigma_au\n"
           "_refln.status\n";
    ReflectionRows generated;
    std::string chunk;
    for (long r = 0; r < rows; ++r) {
        chunk += generated.next();
        if (chunk.size() > (1 << 20)) {
            out << chunk;
            chunk.clear();
        }
    }
    out << chunk;
}

void write_text_file(const std::string& path, int blocks) {
    std::ofstream out(path, std::ios::binary);
    const char* prose =
        "The structure was solved by direct methods and refined by full-matrix\n"
        "least squares on F^2^. Hydrogen atoms were placed in calculated positions\n"
        "and refined with a riding model; 'quotes' and \"quotes\" appear here.\n";
    for (int b = 0; b < blocks; ++b) {
        out << "data_block" << b << "\n_publ_section_title\n;\nA report on compound " << b << "\n;\n";
        for (int i = 0; i < 10; ++i) {
            out << "_publ_section_part_" << i << "\n;\n" << prose << ";\n";
        }
        out << "_publ_contact_author_name 'A. N. Author'\n_journal_year 2024\n";
    }
}

void report(const std::string& name, double size_mb, const Measure& ours, const Measure& gemmi,
            const Measure& scan) {
    auto line = [&](const char* who, const Measure& m) {
        std::printf("  %-6s %8.3f s %9.1f MB/s %9.1f MB peak %6.2f x size   (%s)\n", who, m.seconds,
                    m.seconds > 0 ? size_mb / m.seconds : 0.0, m.peak_mb, m.peak_mb / size_mb,
                    m.count.c_str());
    };
    std::printf("%s: %.1f MB\n", name.c_str(), size_mb);
    line("ours", ours);
    line("gemmi", gemmi);
    line("scan", scan);
    std::printf(
        "  ratio: gemmi time / our time = %.2f (bar >= 2); our peak / file size = %.2f (bar <= 3); "
        "gemmi peak / file size = %.2f\n\n",
        ours.seconds > 0 ? gemmi.seconds / ours.seconds : 0.0, ours.peak_mb / size_mb,
        gemmi.peak_mb / size_mb);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 5 && std::string(argv[1]) == "--child") {
        if (std::string(argv[2]) == "none") return 0;
        try {
            return child(argv[2], argv[3], std::string(argv[4]) == "dictionary");
        } catch (const std::exception& error) {
            std::fprintf(stderr, "%s\n", error.what());
            return 1;
        }
    }
    long rows = 2000000;
    int runs = 3;
    std::string keep;
    for (int i = 1; i + 1 < argc; i += 2) {
        std::string option = argv[i];
        if (option == "--rows") rows = std::atol(argv[i + 1]);
        if (option == "--runs") runs = std::max(1, std::atoi(argv[i + 1]));
        if (option == "--keep") keep = argv[i + 1];
    }
    std::string self = fs::canonical("/proc/self/exe").string();
    fs::path dir = keep.empty() ? fs::temp_directory_path() / ("parse_vs_gemmi." + std::to_string(getpid()))
                                : fs::path(keep);
    fs::create_directories(dir);

    struct Input {
        std::string name;
        std::string path;
        bool dictionary;
    };
    std::vector<Input> inputs;
    std::string refln = (dir / "refln.cif").string();
    std::string text = (dir / "text.cif").string();
    std::printf("Generating inputs in %s ...\n", dir.c_str());
    write_refln_file(refln, rows);
    write_text_file(text, 20000);
    inputs.push_back({"reflection loop (" + std::to_string(rows) + " rows, 6 columns)", refln, false});
    inputs.push_back({"text fields (20000 blocks, 11 fields each)", text, false});
    const char* pdbx = "/usr/share/libcifpp/mmcif_pdbx.dic";
    if (fs::exists(pdbx)) inputs.push_back({"mmcif_pdbx.dic (save frames)", pdbx, true});

    Measure baseline = run(self, "none", refln, false);
    std::printf(
        "Best time of %d runs each, in a fresh process; peak memory above an idle process (%.1f MB).\n\n",
        runs, baseline.peak_mb);
    for (const Input& input : inputs) {
        double size_mb = static_cast<double>(fs::file_size(input.path)) / (1024.0 * 1024.0);
        Measure ours = best_of(self, "ours", input.path, input.dictionary, runs, baseline.peak_mb);
        Measure gemmi = best_of(self, "gemmi", input.path, input.dictionary, runs, baseline.peak_mb);
        Measure scan = best_of(self, "scan", input.path, input.dictionary, runs, baseline.peak_mb);
        report(input.name, size_mb, ours, gemmi, scan);
    }
    if (keep.empty()) fs::remove_all(dir);
    return 0;
}
