#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Configures and builds Tessary into build/ (executables in build/bin/).
set -euo pipefail
cd "$(dirname "$0")/.."
generator=()
if command -v ninja >/dev/null 2>&1; then generator=(-G Ninja); fi
if [ ! -f build/CMakeCache.txt ]; then
  cmake -S . -B build "${generator[@]}" -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
fi
cmake --build build --parallel "$(nproc)"
