#!/usr/bin/env bash
# Checks that the C++ code is laid out as .clang-format says; with --fix, lays it out so.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

how=(--dry-run --Werror)
if [[ ${1:-} == --fix ]]; then how=(-i); fi

files=()
while IFS= read -r file; do
  if [[ -f $file ]]; then files+=("$file"); fi
done < <(git ls-files --cached --others --exclude-standard -- '*.h' '*.cpp')
clang-format "${how[@]}" "${files[@]}"
echo "ok: the layout of ${#files[@]} files"
