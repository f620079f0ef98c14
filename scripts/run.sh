#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Sets everything up and runs the editor: installs packages, builds, starts
# build/bin/tessary with any file names given.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
./scripts/build.sh
exec ./build/bin/tessary "$@"
