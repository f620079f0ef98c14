#!/bin/sh
# SPDX-License-Identifier: GPL-3.0-or-later
# Kills a program saving a file over and over (kill -9 at random moments), TRIES times
# without and TRIES times with backups, and checks each time that the file holds one of
# the two contents whole and that a backup, when there is one, is whole too.
#   kill-during-save.sh SAVE_LOOP TRIES SIZE
set -u
loop=$1 tries=$2 size=$3
failures=0
# No dot in the directory's path: the backup name takes the path's first dot.
work=$(mktemp -d /tmp/tessary-save-XXXXXX) || exit 1
trap 'rm -rf "$work"' EXIT
whole() { cmp -s "$1" "$work/first" || cmp -s "$1" "$work/second"; }
for backup in 0 1; do
  try=1
  while [ "$try" -le "$tries" ]; do
    rm -rf "$work"/* "$work"/.[!.]* 2>/dev/null
    "$loop" "$work" "$size" "$backup" > "$work/out" 2>&1 &
    pid=$!
    while ! grep -q ready "$work/out" 2>/dev/null; do
      kill -0 "$pid" 2>/dev/null || { echo "save_loop did not start"; cat "$work/out"; exit 1; }
      sleep 0.01
    done
    # A moment somewhere in the first few saves.
    sleep "0.$(od -An -N2 -tu2 /dev/urandom | tr -d ' ' | cut -c1-3)"
    kill -9 "$pid"
    wait "$pid" 2>/dev/null
    if ! whole "$work/doc.cif"; then
      echo "backup=$backup try $try: doc.cif is missing or neither content whole"
      failures=$((failures + 1))
    fi
    if [ -e "$work/doc_backup.cif" ] && ! whole "$work/doc_backup.cif"; then
      echo "backup=$backup try $try: doc_backup.cif is not whole"
      failures=$((failures + 1))
    fi
    try=$((try + 1))
  done
done
echo "$((2 * tries)) kills, $failures damaged files"
[ "$failures" -eq 0 ]
