#!/usr/bin/env bash
# Unpacks the Windows zip, makes a demo installation with the paptool in it, and starts the wizard there:
#
#   shipped_program.sh ZIP
#
# Fails when the wizard's window does not come, when Escape does not end it, or when its exit status
# is not 0.
set -euo pipefail
zip=$(realpath "$1")
cd "$(dirname "${BASH_SOURCE[0]}")/../.."

if [[ ${2:-} != --on-display ]]; then
  exec tools/run-under-xvfb.sh "$0" "$zip" --on-display
fi
source tools/temporary-wine.sh
under_wine() { tools/run-under-wine.sh --display "$prefix" "$@" </dev/null; }

under_wine cmd /c exit
installation=$prefix/drive_c/Orvane
mkdir "$work/zip"
(cd "$work/zip" && cmake -E tar xf "$zip")
under_wine "$work"/zip/*/paptool.exe demo 'C:\Orvane'
cp -r "$work"/zip/*/. "$installation"
under_wine reg import 'C:\Orvane\registry.reg' >/dev/null 2>&1

tools/run-under-wine.sh --display "$prefix" 'C:\Orvane\orvpap.exe' </dev/null &
wizard=$!
timeout 180 xdotool search --sync --onlyvisible --name '^Wizard Orvane 3.2 Prijsaanpassingen$' >/dev/null ||
  { echo "The wizard's window does not come." >&2; exit 1; }
# The window may be there before the keyboard is its own.
for _ in {1..30}; do
  sleep 1
  kill -0 "$wizard" 2>/dev/null || break
  xdotool key Escape
done
! kill -0 "$wizard" 2>/dev/null || { echo "Escape does not end the wizard." >&2; exit 1; }
wait "$wizard" || { echo "The wizard ended with status $?." >&2; exit 1; }
under_wine 'C:\Orvane\paptool.exe' check --table 'C:\Orvane\Orv.pt'
echo "The programs of $(basename "$zip") start and end."
