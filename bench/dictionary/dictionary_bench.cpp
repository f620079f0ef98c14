// SPDX-License-Identifier: MIT
// Benchmark: loading the core dictionary, and reading a loop with and without it.
//
// dictionary_bench [--rows N] [--runs N] [--dictionary FILE]
//
// Times are processor time of the thread (the machines here are shared).
// 1. Loads the core dictionary (cif_core.dic) N times and prints the best
//    and the median time.
// 2. Reads a reflection loop of N rows (default 2,000,000) from memory with
//    no dictionary and with the core dictionary, alternately, best of N
//    runs each, and prints the ratio. Two files: one with the core
//    dictionary's own data names (_refln_index_h ...), where every value is
//    checked against its definition, and one with the mmCIF-style names
//    (_refln.index_h ...) that the core dictionary does not define, where
//    only six names are reported.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "cif/Cif.hpp"
#include "cif/CifConcreteDictionary.hpp"
#include "cif/CifDictionaryPool.hpp"

namespace {

// Processor time of this thread: the machine is shared, and time spent
// waiting for a core is not ours.
struct Clock {
    using time_point = double;
    static double now() {
        timespec t{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
        return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
    }
};

double milliseconds(double start) { return Clock::now() - start; }

std::string reflection_loop(long rows, bool core_names) {
    std::string text = "data_refln\n_cell_length_a 61.2\n_cell_length_b 75.4\n_cell_length_c 98.1\nloop_\n";
    text += core_names ? "_refln_index_h\n_refln_index_k\n_refln_index_l\n_refln_F_squared_meas\n"
                         "_refln_F_squared_sigma\n_refln_observed_status\n"
                       : "_refln.index_h\n_refln.index_k\n_refln.index_l\n_refln.F_meas_au\n"
                         "_refln.F_meas_sigma_au\n_refln.status\n";
    std::mt19937 random(7);
    std::uniform_real_distribution<double> value(1.0, 9999.0);
    char line[96];
    text.reserve(static_cast<std::size_t>(rows) * 40);
    // Each reflection once, in order, as merged data lists them (the
    // indices are the loop's key).
    constexpr long side = 126;
    for (long r = 0; r < rows; ++r) {
        double f = value(random);
        int h = static_cast<int>(r / (side * side) % side - side / 2);
        int k = static_cast<int>(r / side % side - side / 2);
        int l = static_cast<int>(r % side - side / 2);
        int n = std::snprintf(line, sizeof line, "%4d%4d%4d %10.2f %8.2f o\n", h, k, l, f, f / 37.0);
        text.append(line, static_cast<std::size_t>(n));
    }
    return text;
}

double read_once(const std::string& text, THandle<CifDictionary> dictionary, std::size_t& messages) {
    Clock::time_point start = Clock::now();
    THandle<Cif> cif(new Cif(dictionary));
    cif->read_text(text);
    double time = milliseconds(start);
    messages = cif->errors()->size();
    return time;
}

}  // namespace

int main(int argc, char** argv) {
    long rows = 2000000;
    int runs = 5;
    std::string path = std::string(TESSARY_SHARED_DIR) + "/dictionaries/cif_core.dic";
    for (int i = 1; i + 1 < argc; i += 2) {
        std::string option = argv[i];
        if (option == "--rows") rows = std::atol(argv[i + 1]);
        if (option == "--runs") runs = std::max(1, std::atoi(argv[i + 1]));
        if (option == "--dictionary") path = argv[i + 1];
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::cerr << "dictionary_bench: cannot read " << path << '\n';
        return 2;
    }
    std::stringstream buffer;
    buffer << file.rdbuf();
    const std::string dictionary_text = buffer.str();

    std::vector<double> loads;
    THandle<CifConcreteDictionary> core;
    for (int run = 0; run < std::max(runs, 5); ++run) {
        std::istringstream stream(dictionary_text);
        Clock::time_point start = Clock::now();
        THandle<CifConcreteDictionary> dictionary(new CifConcreteDictionary());
        THandle<CifErrorContainer> errors(new CifErrorContainer());
        dictionary->read(stream, errors, nullptr);
        loads.push_back(milliseconds(start));
        if (!errors->empty()) {
            std::cerr << "dictionary_bench: " << errors->begin()->complete_message() << '\n';
            return 1;
        }
        core = dictionary;
    }
    std::sort(loads.begin(), loads.end());
    std::printf("load %s (%zu bytes, %zu data names, %zu categories): best %.1f ms, median %.1f ms\n",
                core->descriptor().text().c_str(), dictionary_text.size(), core->definition_count(),
                core->categories().size(), loads.front(), loads[loads.size() / 2]);

    THandle<CifDictionaryPool> pool(new CifDictionaryPool());
    pool->insert(core);
    for (bool core_names : {true, false}) {
        std::string text = reflection_loop(rows, core_names);
        double plain = 1e300, checked = 1e300;
        std::size_t plain_messages = 0, checked_messages = 0;
        for (int run = 0; run < runs; ++run) {
            plain = std::min(plain, read_once(text, THandle<CifDictionary>(), plain_messages));
            checked = std::min(checked, read_once(text, pool, checked_messages));
        }
        std::printf(
            "%s, %ld rows, %.0f MB: no dictionary %.0f ms, cif_core.dic %.0f ms (%zu messages), "
            "ratio %.3f\n",
            core_names ? "core names (_refln_index_h)" : "mmCIF names (_refln.index_h)", rows,
            static_cast<double>(text.size()) / 1e6, plain, checked, checked_messages, checked / plain);
        (void)plain_messages;
    }
    return 0;
}
