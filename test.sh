#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test:
#
#   ./test.sh [PRESET [CTEST-ARGUMENT...]]     for example ./test.sh sanitize -R jet
#
# PRESET is debug (the default), sanitize, or windows, whose tests run under Wine. docs/building.md
# tells the rest.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
source tools/environment.sh

preset=${1:-debug}
shift $(($# > 0 ? 1 : 0))

# Tests that change a database file leave the outcome here for the other readers to look at.
export ORVPAP_CHANGED_FILES=$PWD/build/changed-files
rm -rf "$ORVPAP_CHANGED_FILES"
mkdir -p "$ORVPAP_CHANGED_FILES"

tools/install-dependencies.sh build test

targets=(all)
run_tests=("${without_proxy[@]}")
case $preset in
  debug) targets+=(header_check) ;;  # the same headers in every preset, so once is enough
  windows)
    tools/build-windows.sh
    # The checker is a Python program, which Wine has not.
    run_tests+=(-u ORVPAP_JETCHECK)
    ;;
esac
cmake --preset "$preset"
cmake --build --preset "$preset" -j "$(nproc)" --target "${targets[@]}"
"${run_tests[@]}" ctest --preset "$preset" "$@"

echo
echo "Comparing with independent readers of the database file:"
tests/readers/install.sh build/readers
programs=build/$preset/bin
if [[ $preset == windows ]]; then
  programs=build/debug/bin
  tests/end_to_end/shipped_program.sh build/windows/orvpap-*-windows.zip
  cmake --preset debug
  cmake --build --preset debug -j "$(nproc)" --target paptool
  python3 tests/readers/check_exchange.py --paptool "$programs/paptool" --modules build/readers \
    --windows build/windows/bin/paptool.exe --prefix build/windows/wine
fi
python3 tests/readers/check_files.py --paptool "$programs/paptool" --modules build/readers
