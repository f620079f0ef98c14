#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Sets everything up and runs every test: installs packages, builds, runs the
# whole suite with CTest, then runs the Qt-free tests again in a build with
# AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
./scripts/build.sh
export TESSARY_LOG_LEVEL=0
ctest --test-dir build --output-on-failure --parallel "$(nproc)"

generator=()
if command -v ninja >/dev/null 2>&1; then generator=(-G Ninja); fi
if [ ! -f build-sanitize/CMakeCache.txt ]; then
  cmake -S . -B build-sanitize "${generator[@]}" -DCMAKE_BUILD_TYPE=Debug \
    -DTESSARY_GUI=OFF -DTESSARY_SANITIZE=ON
fi
cmake --build build-sanitize --parallel "$(nproc)"
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-sanitize --output-on-failure --parallel "$(nproc)"

# The Release build with the benchmarks, and the fuzz target built with
# clang, compile with warnings as errors as well; the tests ran above, so
# neither builds them again.
if [ ! -f build-release/CMakeCache.txt ]; then
  cmake -S . -B build-release "${generator[@]}" -DCMAKE_BUILD_TYPE=Release -DTESSARY_BENCH=ON \
    -DTESSARY_TESTS=OFF
fi
cmake --build build-release --parallel "$(nproc)"
if [ ! -f build-fuzz/CMakeCache.txt ]; then
  cmake -S . -B build-fuzz "${generator[@]}" -DCMAKE_CXX_COMPILER=clang++ -DTESSARY_FUZZ=ON \
    -DTESSARY_GUI=OFF -DTESSARY_TESTS=OFF
fi
cmake --build build-fuzz --parallel "$(nproc)"
