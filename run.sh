#!/usr/bin/env bash
# Shows the program at work on a demo installation in build/demo. Installs what is missing (Debian) and
# builds. Then it starts the wizard, with a download server for it; without a display it applies the
# demo's price updates one by one and shows what they did to the prices.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
export LC_ALL=C.UTF-8

demo=build/demo
table=$demo/Orv.pt
import_log=$demo/paplog.txt
paptool=build/release/bin/paptool
prices_shown=4
refusals_shown=8

# In the wizard's update folder; the demo's others are on the server.
updates_at_hand=(20260105_VELDHAVEN_PROFIEL.PRC 20260202_BRUGMEER_BUIS.PRC)

has_display() { [[ -n ${DISPLAY:-}${WAYLAND_DISPLAY:-} ]]; }

build() {
  mkdir -p build
  local log=build/run.log
  tools/install-dependencies.sh build
  echo "Building (only what changed since last time) ..."
  if ! { cmake --preset release && cmake --build --preset release -j "$(nproc)" --target "$@"; } \
      >"$log" 2>&1; then
    tail -n 40 "$log" >&2
    echo "The build failed; its whole output is in $log." >&2
    exit 1
  fi
}

# The articles' prices, a line each: supplier, article, price, description.
prices() {
  local name
  for name in Supplier Article ArtPrice; do
    "$paptool" rows --table "$table" "$name" >"$work/$name"
  done
  awk -F '\t' '
    FNR == 1 {
      file++
      for (i = 1; i <= NF; i++) column[file, $i] = i
      next
    }
    file == 1 { supplier[$column[1, "ID"]] = $column[1, "Code"] }
    file == 2 {
      article[$column[2, "ID"]] = $column[2, "Code"]
      description[$column[2, "ID"]] = $column[2, "Description"]
    }
    file == 3 && $column[3, "PriceDim"] != "\\N" {
      id = $column[3, "fkArticle"]
      printf "%s\t%s\t%.2f\t%s\n", supplier[$column[3, "fkSupplier"]], article[id],
        $column[3, "PriceDim"], description[id]
    }' \
    "$work/Supplier" "$work/Article" "$work/ArtPrice" | sort
}

# What changed between two lists of prices: some of the lines, and the number of the others.
show_changes() {
  awk -F '\t' -v most="$prices_shown" '
    NR == FNR { before[$1, $2] = $3; next }
    ($1, $2) in before && before[$1, $2] == $3 { next }
    ++changed == 1 { printf "    %-10s %-18s %9s %10s\n", "supplier", "article", "before", "after" }
    changed <= most {
      was = ($1, $2) in before ? before[$1, $2] : "-"
      printf "    %-10s %-18s %9s %10s  %s\n", $1, $2, was, $3, $4
    }
    END {
      if (!changed) print "    No article price changed."
      if (changed > most) printf "    ... and %d more prices\n", changed - most
    }' "$1" "$2"
}

# A line of a result list is a message, a tab and its detail; one that begins with "! " is a refusal.
show_refusals() {
  awk -F '\t' -v most="$refusals_shown" '
    /^! / && ++refused <= most { printf "    %s  %s\n", $1, $2 }
    END { if (refused > most) printf "    ... and %d more refusals\n", refused - most }' "$1"
}

apply() {
  local update=$1 status=0
  echo
  echo "== ${update##*/}"
  "$paptool" apply --table "$table" --log "$import_log" --language english.lng "$update" \
    >"$work/messages" 2>"$work/boxes" || status=$?
  prices >"$work/after"
  case $status in
    0) echo "  Applied. What it did to the prices:" ;;
    1) echo "  Applied but for the records that were refused: this update has faults on purpose." ;;
    *)
      cat "$work/boxes" >&2
      exit "$status"
      ;;
  esac
  show_refusals "$work/messages"
  show_changes "$work/before" "$work/after"
  mv "$work/after" "$work/before"
}

apply_all() {
  echo "The demo installation is in $demo: a product table, price updates, settings, texts, programs."
  prices >"$work/before"
  for update in "$demo"/PAP32/*.PRC; do
    apply "$update"
  done

  echo
  echo "The product table is sound: $("$paptool" check --table "$table")"
  echo "A copy of it from before each update lies beside it; the log of the last one is $import_log."
  echo "Look around:  $paptool tables --table $table"
  echo "              $paptool --help"
}

show_wizard() {
  local update
  for update in "$demo"/PAP32/*.PRC; do
    [[ " ${updates_at_hand[*]} " == *" ${update##*/} "* ]] || mv "$update" "$demo/server/"
  done
  local server_log=$demo/server.log
  "$demo/paptool" serve "$demo/server" >"$server_log" 2>&1 &
  server=$!
  until grep -q '^Serving' "$server_log"; do
    if ! kill -0 "$server" 2>/dev/null; then
      echo "The wizard will find no download server:" >&2
      cat "$server_log" >&2
      break
    fi
    sleep 0.1
  done
  echo "The wizard runs on the demo installation in $demo; its download server's log is $server_log."
  "$demo/orvpap-demo"
}

targets=(paptool)
if has_display; then targets+=(orvpap-demo); fi
build "${targets[@]}"

work=$(mktemp -d)
server=
trap 'rm -rf "$work"; if [[ -n $server ]]; then kill "$server" 2>/dev/null || true; fi' EXIT

rm -rf "$demo"
"$paptool" demo "$demo" >"$work/messages"
if ! has_display; then
  apply_all
elif ! show_wizard; then
  echo "Without the window, then:"
  apply_all
fi
