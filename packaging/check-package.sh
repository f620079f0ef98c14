#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks Tessary as the distribution's tools see it: the desktop file, the
# AppStream data, the CIF MIME type, the man pages, the bash completion (its
# options against each program's --help and man page), and the Debian package
# built by CPack from BUILD_DIR: lintian reports no error, no -dev package is
# needed, and every library the programs and Qt's plugins load comes from a
# package the .deb depends on.
# Usage: packaging/check-package.sh BUILD_DIR. Exit 77 when a validator is
# missing (scripts/install-deps.sh installs them all).
set -euo pipefail
src=$(cd "$(dirname "$0")" && pwd)
build=$(cd "${1:?usage: check-package.sh BUILD_DIR}" && pwd)

for tool in desktop-file-validate appstreamcli update-mime-database lintian dpkg-shlibdeps man cpack apt-cache; do
  if ! command -v "$tool" >/dev/null; then
    echo "skipped: $tool is not installed (scripts/install-deps.sh installs it)"
    exit 77
  fi
done
completion_library=/usr/share/bash-completion/bash_completion
if [ ! -f "$completion_library" ]; then
  echo "skipped: bash-completion is not installed (scripts/install-deps.sh installs it)"
  exit 77
fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() {
  echo "FAIL: $*"
  failures=$((failures + 1))
}

# --- the desktop file: errors and warnings fail, hints are shown ---
if ! out=$(desktop-file-validate "$src/tessary.desktop" 2>&1); then fail "desktop-file-validate: $out"; fi
if grep -qE ': (error|warning):' <<<"$out"; then fail "desktop-file-validate: $out"; fi
[ -z "$out" ] || echo "desktop-file-validate says: $out"

# --- AppStream ---
appstreamcli validate --no-net "$src/org.tessary.Tessary.metainfo.xml" || fail "appstreamcli validate"

# --- the MIME type: CIF by name and by its first bytes, the backslash of #\#CIF_2.0 kept ---
mkdir -p "$work/mime/packages"
cp "$src/tessary-mime.xml" "$work/mime/packages/tessary.xml"
update-mime-database "$work/mime" >/dev/null 2>&1 || fail "update-mime-database"
grep -qx '50:chemical/x-cif:\*\.cif' "$work/mime/globs2" || fail "the MIME type lacks the glob *.cif"
for magic in 'data_' '#\#CIF_2.0'; do
  grep -aqF "$magic" "$work/mime/magic" || fail "the MIME type lacks the magic $magic"
done
if grep -aqF '##CIF' "$work/mime/magic"; then fail "the MIME magic lost the backslash of #\\#CIF"; fi

# --- man pages: formatted without a warning ---
for page in "$src"/man/*.1; do
  warnings=$(LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null)
  [ -z "$warnings" ] || fail "$(basename "$page"): $warnings"
done

# --- every option: in --help, in the man page's OPTIONS and in the completion ---
help_options() { # the option column of the --help lines that begin with an option
  "$1" --help | grep -E '^ +-' | sed -E 's/^ +//; s/  .*//' | tr ', ' '\n\n' | grep -E '^-' | sort -u
}
man_options() { # the tags of the OPTIONS section
  sed -n '/^\.SH OPTIONS/,/^\.SH /p' "$1" | awk 'tag { print; tag = 0 } /^\.TP/ { tag = 1 }' |
    sed -E 's/\\-/-/g; s/\\f[BIRP]//g; s/"//g' | tr ', ' '\n\n' | grep -E '^-' | sort -u
}
completion_options() { # what the completion offers after "PROGRAM -"
  bash -c "source $completion_library; source '$src/completion/$1'
    COMP_WORDS=($1 -); COMP_CWORD=1; COMP_LINE='$1 -'; COMP_POINT=\${#COMP_LINE}
    $2 $1 - $1; printf '%s\n' \"\${COMPREPLY[@]}\"" | sort -u
}
for program in tessary tessary-check; do
  function=_${program//-/_}
  help=$(help_options "$build/bin/$program")
  [ -n "$help" ] || fail "$program --help lists no option"
  [ "$(man_options "$src/man/$program.1")" = "$help" ] ||
    fail "$program.1 and --help differ: $(diff <(man_options "$src/man/$program.1") <(echo "$help") | tr '\n' ' ')"
  [ "$(completion_options "$program" "$function")" = "$help" ] ||
    fail "the completion of $program and --help differ: $(diff <(completion_options "$program" "$function") <(echo "$help") | tr '\n' ' ')"
done
# File names: CIFs for both, dictionaries after -d.
mkdir -p "$work/files/sub" && touch "$work/files/a.cif" "$work/files/b:2.cif" "$work/files/notes.txt" "$work/files/core.dic"
complete_files() {
  (cd "$work/files" && bash -c "source $completion_library; source '$src/completion/$1'
    COMP_WORDS=($1 $2 ''); COMP_CWORD=$3; COMP_LINE='$1 $2 '; COMP_POINT=\${#COMP_LINE}
    $4 $1 '' x; printf '%s\n' \"\${COMPREPLY[@]}\"" | sort | tr '\n' ' ')
}
[ "$(complete_files tessary '' 1 _tessary)" = "a.cif b:2.cif sub " ] ||
  fail "tessary completes $(complete_files tessary '' 1 _tessary)"
[ "$(complete_files tessary-check -d 2 _tessary_check)" = "core.dic sub " ] ||
  fail "tessary-check -d completes $(complete_files tessary-check -d 2 _tessary_check)"

# --- the Debian package ---
cpack --config "$build/CPackConfig.cmake" -G DEB -B "$work/package" >"$work/cpack.log" 2>&1 ||
  { cat "$work/cpack.log"; fail "cpack -G DEB"; }
deb=$(ls "$work"/package/tessary_*.deb)
lint=$(lintian "$deb" 2>&1 | grep -v 'running with root privileges' || true)
[ -z "$lint" ] || echo "lintian says: $lint"
if grep -q '^E:' <<<"$lint"; then fail "lintian reports errors"; fi

depends=$(dpkg-deb -f "$deb" Depends)
echo "Depends: $depends"
names=$(tr ',|' '\n\n' <<<"$depends" | sed -E 's/\(.*\)//; s/ //g' | grep -v '^$')
if grep -E -- '-dev$' <<<"$names"; then fail "the package depends on development packages"; fi
closure=$(apt-cache depends --recurse --no-recommends --no-suggests --no-conflicts --no-breaks \
  --no-replaces --no-enhances $names 2>/dev/null | grep -vE '^ ' | sed 's/:.*//' | sort -u)
dpkg-deb -x "$deb" "$work/root"
plugins=/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)/qt6/plugins
# What each program, the library and Qt's plugins load, as "NEEDER LIBRARY PATH".
needs=$work/needs
: >"$needs"
for elf in "$work"/root/usr/bin/* "$work"/root/usr/lib/*/tessary/*.so \
  "$plugins"/platforms/libqxcb.so "$plugins"/imageformats/libqsvg.so "$plugins"/iconengines/libqsvgicon.so; do
  if [ ! -f "$elf" ]; then
    fail "missing: $elf"
    continue
  fi
  case $elf in "$work"/*) ;; *) echo "Qt-plugin $(basename "$elf") $elf" >>"$needs" ;; esac
  ldd "$elf" | awk -v who="$(basename "$elf")" '$2 == "=>" { print who, $1, $3 }' >>"$needs"
done
if grep -q ' not$' "$needs"; then fail "libraries not found: $(grep ' not$' "$needs" | tr '\n' ' ')"; fi
# Which package holds each library: one dpkg -S for all, under each name
# the library may have on a merged /usr.
declare -A holder
mapfile -t paths < <(awk '$3 ~ /^\// && $3 !~ /^'"${work//\//\\/}"'/ { print $3 }' "$needs" | sort -u)
candidates=()
for path in "${paths[@]}"; do candidates+=("$path" "${path#/usr}" "$(readlink -f "$path")"); done
while IFS= read -r line; do
  holder["${line#*: }"]=${line%%[:,]*}
done < <(dpkg -S "${candidates[@]}" 2>/dev/null || true)
for path in "${paths[@]}"; do
  package=${holder["$path"]:-${holder["${path#/usr}"]:-${holder["$(readlink -f "$path")"]:-}}}
  if ! grep -qx "$package" <<<"$closure"; then
    fail "$(awk -v p="$path" '$3 == p { print $1; exit }' "$needs") needs $path from ${package:-no package}," \
      "which the package does not depend on"
  fi
done
version=$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$work/root/usr/bin/tessary" --version)
[ "$version" = "Tessary $(dpkg-deb -f "$deb" Version)" ] || fail "the packaged program says: $version"

if [ "$failures" -gt 0 ]; then
  echo "$failures check(s) failed"
  exit 1
fi
echo "all package checks passed"
