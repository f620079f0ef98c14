// SPDX-License-Identifier: MIT
// tessary-check: checks CIF files from the command line (see CheckOptions::usage).

#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "cif/CifMandatoryItems.hpp"
#include "tools/CheckOptions.hpp"
#include "tools/CheckReport.hpp"
#include "tools/DictionaryFiles.hpp"
#include "tools/FileCheck.hpp"

int main(int argc, char** argv) {
    std::ios::sync_with_stdio(false);
    CheckOptions options = CheckOptions::parse(std::vector<std::string>(argv + 1, argv + argc));
    if (!options.problem.empty()) {
        std::cerr << "tessary-check: " << options.problem << "\n\n" << CheckOptions::usage();
        return 2;
    }
    if (options.help) {
        std::cout << CheckOptions::usage();
        return 0;
    }
    if (options.version) {
        std::cout << "tessary-check 1.2\n";
        return 0;
    }

    // Each file is checked on one thread; results are printed in the order
    // the files were named, as soon as each is ready.
    const std::size_t count = options.files.size();
    std::vector<std::optional<FileCheckResult>> results(count);
    std::mutex mutex;
    std::condition_variable ready;
    std::atomic<std::size_t> next_file{0};
    FileCheckSettings settings;
    settings.check.parser.line_length = options.line_length;
    settings.check.consistency = options.consistency;
    bool dictionaries_ok = true;
    THandle<CifDictionaryPool> pool = DictionaryFiles::load(
        DictionaryFiles::resolve(std::getenv("TESSARY_DICTIONARIES"), options.dictionaries), std::cerr,
        dictionaries_ok);
    if (!dictionaries_ok) return 2;
    if (!pool->empty()) settings.dictionary = pool.get();
    if (!options.mandatory_file.empty()) {
        std::ifstream stream(options.mandatory_file);
        if (!stream) {
            std::cerr << "tessary-check: cannot read mandatory-items file " << options.mandatory_file << '\n';
            return 2;
        }
        CifMandatoryItems items = CifMandatoryItems::read(stream);
        settings.check.publication_items = std::move(items.publication);
        settings.check.crystal_items = std::move(items.crystal);
    }
    FileCheck checker(settings);
    auto work = [&]() {
        for (std::size_t i = next_file++; i < count; i = next_file++) {
            FileCheckResult result = checker.check(options.files[i]);
            std::lock_guard<std::mutex> lock(mutex);
            results[i] = std::move(result);
            ready.notify_all();
        }
    };
    std::size_t threads = std::min<std::size_t>(static_cast<std::size_t>(options.jobs), count);
    std::vector<std::thread> workers;
    if (threads > 1) {
        for (std::size_t i = 0; i < threads; ++i) workers.emplace_back(work);
    }
    if (threads <= 1) work();

    CheckReport report(std::cout, std::cerr, options.json);
    report.begin();
    bool any_errors = false;
    bool any_unreadable = false;
    for (std::size_t i = 0; i < count; ++i) {
        FileCheckResult result;
        {
            std::unique_lock<std::mutex> lock(mutex);
            ready.wait(lock, [&]() { return results[i].has_value(); });
            result = std::move(*results[i]);
            results[i].reset();
        }
        any_errors = any_errors || result.errors > 0;
        any_unreadable = any_unreadable || !result.io_problem.empty();
        report.add(result);
    }
    report.end();
    for (std::thread& worker : workers) worker.join();
    if (any_unreadable) return 2;
    return any_errors ? 1 : 0;
}
