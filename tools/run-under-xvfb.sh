#!/usr/bin/env bash
# Runs a command with windows on a display of its own that nobody sees: run-under-xvfb.sh COMMAND...
#
# ORVPAP_SCREEN is the display's size, 1280x1024 without it. Exit status is the command's.
set -euo pipefail

if ! command -v Xvfb >/dev/null; then
  echo "run-under-xvfb.sh: Xvfb is missing; run tools/install-dependencies.sh test." >&2
  exit 1
fi

# The server tells the number of its display on descriptor 6 as soon as programs can connect.
exec 5< <(exec Xvfb -displayfd 6 -screen 0 "${ORVPAP_SCREEN:-1280x1024}x24" -nolisten tcp \
  6>&1 >/dev/null 2>&1)
server=$!
trap 'kill "$server" 2>/dev/null || true' EXIT
if ! read -r -t 30 -u 5 number; then
  echo "run-under-xvfb.sh: Xvfb does not start." >&2
  exit 1
fi

# The toolkit and its libraries keep memory to the end, which the address sanitizer would call leaks.
export ASAN_OPTIONS=${ASAN_OPTIONS:+$ASAN_OPTIONS:}detect_leaks=0

status=0
env -u WAYLAND_DISPLAY GDK_BACKEND=x11 NO_AT_BRIDGE=1 DISPLAY=":$number" "$@" || status=$?
exit "$status"
