#!/usr/bin/env bash
# Runs a Windows program under Wine without a display: run-under-wine.sh PREFIX PROGRAM [ARGUMENT...]
#
# PREFIX is the folder of the Wine installation to use; it is made at the first call. Made for CTest,
# which runs several tests at once.
set -euo pipefail

WINEPREFIX=$(realpath -m "$1")
export WINEPREFIX
shift
export WINEARCH=win64
export WINEDEBUG=-all
# Neither the .NET nor the HTML component is there, and nothing should ask for them.
export WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY WAYLAND_DISPLAY

# Debian keeps Wine's 64-bit programs outside the search path.
PATH=$PATH:/usr/lib/wine
wine=$(command -v wine64 || command -v wine) ||
  { echo "Wine is missing; run tools/install-dependencies.sh windows." >&2; exit 127; }

if [[ ! -e $WINEPREFIX/ready ]]; then
  mkdir -p "$WINEPREFIX"
  (
    flock 9
    if [[ ! -e $WINEPREFIX/ready ]]; then
      # Wine's own services start here, with the output that they keep open sent elsewhere.
      "$wine" wineboot --init </dev/null >"$WINEPREFIX/wineboot.log" 2>&1 9>&-
      touch "$WINEPREFIX/ready"
    fi
  ) 9>"$WINEPREFIX/lock"
fi

exec "$wine" "$@"
