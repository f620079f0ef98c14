#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs every Debian package that building, testing and running Tessary
# needs. Idempotent: when everything is present it only checks and returns.
set -euo pipefail

packages=(
  # build
  build-essential cmake ninja-build pkg-config
  # Qt 6 (Core, Gui, Widgets, OpenGLWidgets, PrintSupport, Network, Test) and SVG icons
  qt6-base-dev qt6-base-dev-tools libqt6opengl6-dev qt6-svg-dev libqt6svg6
  # the editor engine (QScintilla for Qt 6): headers and the run-time library
  libqscintilla2-qt6-dev libqscintilla2-qt6-15 libqscintilla2-qt6-l10n
  libgl-dev libglu1-mesa-dev libgl1-mesa-dri
  # space groups, elements and cell arithmetic (header-only)
  gemmi-dev
  # tests, benchmarks and fuzzing
  libgtest-dev libgmock-dev googletest libbenchmark-dev
  # profiling the benchmarks (editor_bench's EDITOR_BENCH_PERF_CTL)
  linux-perf
  clang libclang-rt-14-dev
  # the text of printed PDF files (the print tests)
  poppler-utils
  # the peer reader the benchmarks compare against (gemmi's CIF reader needs it)
  # and the peer checker they time whole (gemmi validate)
  tao-pegtl-dev gemmi
  # real-world CIFs and dictionaries for tests and benchmarks; a peer validator
  libavogadro-data libcifpp-data cod-tools
  # full structure reports (two from the COD) for the structure checks' measurements
  cif2hkl drawxtl gdis-data
  # running the editor headless and looking at it
  xvfb xauth x11-utils xdotool imagemagick fonts-dejavu-core
  # the Debian package (cpack -G DEB) and its validators: dependencies found by
  # dpkg-shlibdeps, lintian, the desktop file, AppStream metadata, the MIME
  # type, the man pages and the bash completion
  dpkg-dev lintian desktop-file-utils appstream shared-mime-info man-db bash-completion
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

echo "install-deps: installing ${missing[*]}"
SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO="sudo"; fi
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update
$SUDO apt-get install -y --no-install-recommends "${missing[@]}"
