#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test:
#
#   ./test.sh [PRESET [CTEST-ARGUMENT...]]     for example ./test.sh sanitize -R jet
#
# PRESET is debug (the default) or sanitize. docs/building.md tells the rest.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
source tools/environment.sh

preset=${1:-debug}
shift $(($# > 0 ? 1 : 0))

# Tests that change a sample file leave the outcome here for the other readers to look at.
export ORVPAP_CHANGED_FILES=$PWD/build/changed-files
rm -rf "$ORVPAP_CHANGED_FILES"
mkdir -p "$ORVPAP_CHANGED_FILES"

tools/install-dependencies.sh build test

targets=(all)
if [[ $preset == debug ]]; then
  targets+=(header_check)  # the same headers in every preset, so once is enough
fi
cmake --preset "$preset"
cmake --build --preset "$preset" -j "$(nproc)" --target "${targets[@]}"
"${without_proxy[@]}" ctest --preset "$preset" "$@"

echo
echo "Comparing with independent readers of the database file:"
tests/readers/install.sh build/readers
python3 tests/readers/check_files.py --paptool "build/$preset/bin/paptool" --modules build/readers
