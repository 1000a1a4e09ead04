#!/usr/bin/env bash
# Runs a Windows program under Wine: run-under-wine.sh [--display] PREFIX PROGRAM [ARGUMENT...]
#
# PREFIX is the folder of the Wine installation to use; it is made at the first call. Made for CTest,
# which runs several tests at once. Without --display, windows are nowhere to be seen. With it they
# are on this process's display, and then one program at a time may use PREFIX: Wine shows all windows
# where the first one was.
set -euo pipefail

display=no
if [[ $1 == --display ]]; then
  display=yes
  shift
fi
WINEPREFIX=$(realpath -m "$1")
export WINEPREFIX
shift
export WINEARCH=win64
export WINEDEBUG=-all
# Neither the .NET nor the HTML component is there, and nothing should ask for them; a program that
# crashes ends, without a debugger that waits for somebody.
export WINEDLLOVERRIDES="mscoree,mshtml,winedbg.exe="
screen=${DISPLAY:-}
unset DISPLAY WAYLAND_DISPLAY

# Debian keeps Wine's 64-bit programs outside the search path.
PATH=$PATH:/usr/lib/wine
wine=("$(command -v wine64 || command -v wine)") ||
  { echo "Wine is missing; run tools/install-dependencies.sh windows." >&2; exit 127; }
# One start in some thousands fails, without a word, where the system happens to put something at an
# address that Wine needs. So it is to put nothing at random addresses, where it lets us ask for that.
if setarch -R true 2>/dev/null; then
  wine=(setarch -R "${wine[@]}")
fi

# Wine's own services start with the first program and keep its output open: that one is never the
# caller's. Without a display they stay for a while after the last program, because starting them
# takes longer than most tests.
mkdir -p "$WINEPREFIX"
(
  flock 9
  if [[ ! -e $WINEPREFIX/ready ]]; then
    "${wine[@]}" wineboot --init </dev/null >"$WINEPREFIX/wineboot.log" 2>&1 9>&-
    # While these services stay, no window is seen.
    wineserver -w </dev/null >/dev/null 2>&1 9>&-
    touch "$WINEPREFIX/ready"
  fi
  if [[ $display == no ]] && wineserver -p30 </dev/null >/dev/null 2>&1 9>&-; then
    "${wine[@]}" cmd /c exit </dev/null >/dev/null 2>&1 9>&-
  fi
) 9>"$WINEPREFIX/lock"

if [[ $display == yes ]]; then
  export DISPLAY=$screen
fi
exec "${wine[@]}" "$@"
