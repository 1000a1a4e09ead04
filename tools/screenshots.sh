#!/usr/bin/env bash
# Makes pictures of the wizard, as it looks on this system, each page with something real on it:
#
#   tools/screenshots.sh [FOLDER [LANGUAGE...]]     docs/images, and english and dutch, by default
#
# FOLDER gets a folder LANGUAGE, and LANGUAGE-200 for a display scale of 200 %. Needs a release build
# (run.sh makes one), Xvfb, xdotool and ImageMagick.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

pages=(1-welcome 2-target 3-processed 4-download-choice 5-download-list 6-download-transfer 7-select
  8-import)
programs=$PWD/build/${ORVPAP_PRESET:-release}/bin
installation=/tmp/Orvane  # seen on the pictures, so always the same

# The update that was applied before, and those that wait beside it.
processed=20260105_VELDHAVEN_PROFIEL.PRC
waiting=(20260202_BRUGMEER_BUIS.PRC 20260216_BRUGMEER_PLAAT.PRC)

# The demo's welcome text is Dutch.
welcome() {
  case $1 in
    english)
      printf '%s\r\n' 'Welcome to Orvane' \
        'This wizard brings the price updates of your suppliers into your product table.' '' \
        'Close Orvane before you go on.'
      ;;
    *) cat "$installation/welkom.txt" ;;
  esac
}

install_demo() {
  local language=$1 updates=$installation/PAP32 text
  rm -rf "$installation"
  "$programs/paptool" demo "$installation" >/dev/null
  "$programs/paptool" apply --table "$installation/Orv.pt" --no-backup \
    --log "$work/log" "$updates/$processed" >/dev/null
  mkdir "$work/keep"
  mv "${waiting[@]/#/$updates/}" "$updates/$processed" "$work/keep"
  rm "$updates"/*
  mv "$work/keep"/* "$updates"
  rmdir "$work/keep"
  iconv -f UTF-16 -t UTF-8 "$installation/registry.reg" | sed "s/dutch\.lng/$language.lng/" |
    iconv -f UTF-8 -t UTF-16 >"$work/registry.reg"
  mv "$work/registry.reg" "$installation/registry.reg"
  text=$(welcome "$language"; echo .)
  printf '%s' "${text%.}" >"$installation/welkom.txt"
}

# A picture of the window that is in front, when it looks the same for a while and other than before.
shoot() {
  local now last=''
  while :; do
    import -window "$window" -strip +dither -colors 255 -define png:exclude-chunks=date,time \
      "png8:$work/now.png"
    now=$(md5sum <"$work/now.png")
    [[ $now == "$last" && $now != "${shot:-}" ]] && break
    last=$now
    sleep 0.4
  done
  shot=$now
  mv "$work/now.png" "$1"
}

# Sends keys to a window; without a window manager nobody else gives it the keyboard.
keys() {
  xdotool windowfocus --sync "$1" key --delay 60 "${@:2}"
}

walk() {
  local language=$1 scale=$2 folder=$3 page box wizard server
  mkdir -p "$folder"
  install_demo "$language"
  "$installation/paptool" serve "$installation/server" >/dev/null &
  server=$!
  GDK_SCALE=$scale "$installation/orvpap-demo" &
  wizard=$!
  window=$(xdotool search --sync --onlyvisible --pid "$wizard" | tail -n 1)
  for page in "${pages[@]}"; do
    shoot "$folder/$page.png"
    case $page in
      7-*) keys "$window" End shift+Up space Return ;;  # without those that were downloaded now
      8-*) ;;
      *) keys "$window" Return ;;
    esac
    if [[ $page == 7-* ]]; then
      # One of the updates has a fault: there is a message over the page.
      until box=$(xdotool search --onlyvisible --pid "$wizard" | grep -vx "$window"); do sleep 0.1; done
      keys "$box" Return
    fi
  done
  keys "$window" Return
  wait "$wizard"
  kill "$server"
  wait "$server" 2>/dev/null || true
}

if [[ ${1:-} != --on-display ]]; then
  ORVPAP_SCREEN=2200x1800 exec tools/run-under-xvfb.sh "$0" --on-display "$@"
fi
folder=${2:-docs/images}
shift $(($# > 1 ? 2 : 1))
[[ $# -gt 0 ]] || set -- english dutch

work=$(mktemp -d)
trap 'rm -rf "$work" "$installation"' EXIT
# Nothing blinks or moves, and no settings of this user's are in the pictures.
export XDG_CONFIG_HOME=$work/config LC_ALL=C.UTF-8 TZ=UTC
mkdir -p "$XDG_CONFIG_HOME/gtk-3.0"
printf '[Settings]\ngtk-cursor-blink=false\ngtk-enable-animations=false\n' \
  >"$XDG_CONFIG_HOME/gtk-3.0/settings.ini"
xdotool mousemove 2199 1799

for language in "$@"; do
  walk "$language" 1 "$folder/$language"
  walk "$language" 2 "$folder/$language-200"
done
