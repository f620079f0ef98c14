// SPDX-License-Identifier: MIT
// tessary-check: checks CIF files from the command line (see CheckOptions::usage).

#include <unistd.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <ext/stdio_filebuf.h>
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
    // The standard streams stay synchronised with C's: unsynchronised, each
    // of the six gets a buffer of its own (128 KiB of heap, the wide ones
    // never used), and the report has its own buffered stream anyway.
    CheckOptions options = CheckOptions::parse(std::vector<std::string_view>(argv + 1, argv + argc));
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

    const std::size_t count = options.files.size();
    FileCheckSettings settings;
    settings.check.parser.line_length = options.line_length;
    settings.check.consistency = options.consistency;
    bool dictionaries_ok = true;
    THandle<CifDictionaryPool> pool = DictionaryFiles::load(
        DictionaryFiles::resolve(std::getenv("TESSARY_DICTIONARIES"), options.dictionaries), std::cerr,
        dictionaries_ok);
    if (!dictionaries_ok) return 2;
#ifdef __GLIBC__
    // Reading the dictionaries held their texts and documents for a while:
    // the pages they leave free in the middle of the heap go back now
    // rather than stay with the process to its end.
    ::malloc_trim(0);
#endif
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
    // The last file's document is left to the end of the process.
    THandle<Cif> last_document;
    auto keep = [&](std::size_t i) { return i + 1 == count ? &last_document : nullptr; };
    // Checking many files prints a great deal: written in pieces of 32 KiB
    // rather than 8, a pipe's reader is woken far less often.
    __gnu_cxx::stdio_filebuf<char> output_buffer(STDOUT_FILENO, std::ios::out, 1 << 15);
    std::ostream output(&output_buffer);
    CheckReport report(output, std::cerr, options.json);
    report.begin();
    bool any_errors = false;
    bool any_unreadable = false;
    const bool interactive = ::isatty(STDOUT_FILENO) != 0;
    auto last_flush = std::chrono::steady_clock::now();
    auto print = [&](const FileCheckResult& result) {
        any_errors = any_errors || result.errors > 0;
        any_unreadable = any_unreadable || !result.io_problem.empty();
        report.add(result);
        // Lines go out as files are done: at once to a terminal, otherwise
        // at least every tenth of a second (a flush per file would cost
        // more than checking a small file).
        auto now = std::chrono::steady_clock::now();
        if (interactive || now - last_flush >= std::chrono::milliseconds(100)) {
            output.flush();
            last_flush = now;
        }
    };

    std::size_t threads = options.jobs > 0 ? static_cast<std::size_t>(options.jobs)
                                           : std::max(1u, std::thread::hardware_concurrency());
    threads = std::min(threads, count);
    if (threads <= 1) {
        for (std::size_t i = 0; i < count; ++i) print(checker.check(std::string(options.files[i]), keep(i)));
    } else {
        // Each file is checked on one thread; results are printed in the
        // order the files were named, each as soon as it and those before
        // it are done.
        std::vector<std::optional<FileCheckResult>> results(count);
        std::mutex mutex;
        std::condition_variable ready;
        std::atomic<std::size_t> next_file{0};
        auto work = [&]() {
            for (std::size_t i = next_file++; i < count; i = next_file++) {
                FileCheckResult result = checker.check(std::string(options.files[i]), keep(i));
                std::lock_guard<std::mutex> lock(mutex);
                results[i] = std::move(result);
                ready.notify_all();
            }
        };
        std::vector<std::thread> workers;
        for (std::size_t i = 0; i < threads; ++i) workers.emplace_back(work);
        for (std::size_t i = 0; i < count; ++i) {
            FileCheckResult result;
            {
                std::unique_lock<std::mutex> lock(mutex);
                ready.wait(lock, [&]() { return results[i].has_value(); });
                result = std::move(*results[i]);
                results[i].reset();
            }
            print(result);
        }
        for (std::thread& worker : workers) worker.join();
    }
    report.end();
    // Everything is printed: the process ends without freeing the
    // dictionaries and settings piece by piece.
    output.flush();
    std::fflush(nullptr);
    std::_Exit(any_unreadable ? 2 : (any_errors ? 1 : 0));
}
