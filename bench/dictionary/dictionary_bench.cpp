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
// 3. The suggestions for undefined names ("did you mean ...?"): reads a
//    block of 2000 distinct undefined names (each a core name with two
//    neighbouring letters swapped, so every one finds a suggestion) and one
//    of 2000 names unlike any core name, against the core dictionary with
//    suggestions and against the same dictionary without them (the peer),
//    alternately, best of N runs each, and prints the ratio.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <iostream>
#include <random>
#include <sstream>
#include <string>
#include <utility>
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

// The core dictionary as it is, except that it suggests nothing: the peer
// of the suggestions.
class WithoutSuggestions : public CifDictionary {
public:
    explicit WithoutSuggestions(THandle<CifDictionary> target) : target_(std::move(target)) {}
    bool is_defined(const std::string& name) const override { return target_->is_defined(name); }
    const CifItemDefinition* definition(const std::string& name) const override {
        return target_->definition(name);
    }
    bool has_definitions() const override { return target_->has_definitions(); }
    int check_value(const std::string& name, const std::string& value, bool looped) const override {
        return target_->check_value(name, value, looped);
    }

private:
    THandle<CifDictionary> target_;
};

// A block of `count` distinct undefined names: misspelt core names, or names
// like no core name.
std::string undefined_names(const CifConcreteDictionary& core, std::size_t count, bool misspelt) {
    std::string text = "data_names\n";
    std::size_t made = 0;
    for (std::size_t i = 0; made < count; ++i) {
        std::string name;
        if (misspelt) {
            const CifItemDefinition& definition = core.definition_at(i % core.definition_count());
            name = definition.name;
            if (name.find('[') != std::string::npos || name.size() < 8) continue;
            std::swap(name[name.size() - 2 - i / core.definition_count()],
                      name[name.size() - 3 - i / core.definition_count()]);
            if (core.is_defined(name)) continue;
        } else {
            name = "_zz_local_item_" + std::to_string(i);
        }
        text += name + " 1\n";
        ++made;
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

    const THandle<CifDictionary> without(new WithoutSuggestions(pool));
    for (bool misspelt : {true, false}) {
        const std::string text = undefined_names(*core, 2000, misspelt);
        double peer = 1e300, suggesting = 1e300;
        std::size_t peer_messages = 0, messages = 0;
        for (int run = 0; run < runs; ++run) {
            peer = std::min(peer, read_once(text, without, peer_messages));
            suggesting = std::min(suggesting, read_once(text, pool, messages));
        }
        std::printf(
            "2000 undefined names %s: without suggestions %.1f ms, with %.1f ms (%zu messages), "
            "ratio %.2f, %.1f us a name\n",
            misspelt ? "each a misspelt core name" : "like no core name", peer, suggesting, messages,
            suggesting / peer, (suggesting - peer) * 1000.0 / 2000.0);
        if (messages != peer_messages) return 1;
    }
    return 0;
}
