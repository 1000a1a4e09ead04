#!/usr/bin/env bash
# Runs clang-tidy over the code, not over its tests: check-tidy.sh [FILE...]
#
# Takes the compile commands of build/debug, which ./test.sh makes. What is reported about a file
# counts as an error.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

commands=build/debug/compile_commands.json
[[ -f $commands ]] || { echo "$commands is missing; run ./test.sh first." >&2; exit 2; }

patterns=("$PWD/(app|demo|engine|platform|store|tools|updates|wizard)/")
if [[ $# -gt 0 ]]; then patterns=("${@/#/\/}"); fi
log=build/clang-tidy.log
status=0
run-clang-tidy -quiet -p build/debug -j "$(nproc)" "${patterns[@]}" >"$log" 2>&1 || status=$?
sed -E -i 's/\x1b\[[0-9;]*m//g; s/^[0-9]+ warnings? generated\.//' "$log"
if [[ $status -ne 0 ]]; then
  grep -vE '^\S*clang-tidy|^$' "$log" || true
  echo "clang-tidy found something; its whole output is in $log." >&2
  exit 1
fi
files=$(grep -c '^\S*clang-tidy' "$log") || { echo "No such file is compiled in build/debug." >&2; exit 2; }
echo "ok: clang-tidy has nothing to say about $files files"
