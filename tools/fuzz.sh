#!/usr/bin/env bash
# Runs every fuzz target for ten minutes or a million runs, whichever ends first:
#
#   tools/fuzz.sh [SECONDS [RUNS]]
#
# What they learn is kept in build/fuzz/corpus and used again; an input that makes one fail is left in
# build/fuzz/findings. When the fault is mended, put that input into tests/fuzz/corpus, which every
# build's tests run.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

seconds=${1:-600}
runs=${2:-1000000}

tools/install-dependencies.sh build fuzz
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j "$(nproc)"

status=0
for target in update_file product_table; do
  learnt=build/fuzz/corpus/$target
  findings=build/fuzz/findings/$target
  log=build/fuzz/$target.log
  mkdir -p "$learnt" "$findings"
  echo "$target: at most $seconds seconds or $runs runs ..."
  if build/fuzz/bin/"${target}_fuzz" -max_total_time="$seconds" -runs="$runs" -timeout=30 \
      -rss_limit_mb=2048 -print_final_stats=1 -artifact_prefix="$findings/" \
      "$learnt" "tests/fuzz/corpus/$target" >"$log" 2>&1; then
    grep -E '^Done |number_of_executed_units|peak_rss_mb' "$log"
  else
    status=1
    tail -n 40 "$log"
    echo "$target found something: $findings; its whole output is in $log" >&2
  fi
done
exit "$status"
