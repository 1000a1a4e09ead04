#!/usr/bin/env bash
# Makes the pictures of the user guide: the wizard as a Windows program, under Wine, each page with
# something real on it:
#
#   tools/screenshots-windows.sh [FOLDER]     docs/images/windows by default
#
# Needs the programs of the presets windows and release, Xvfb, xdotool, ImageMagick, fonts-wine.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

pages=(1-welcome 2-target 3-processed 4-download-choice 5-download-list 6-download-transfer 7-select
  8-import)
native=$PWD/build/${ORVPAP_PRESET:-release}/bin/paptool  # serves files, which Windows' own does not
programs=$PWD/build/windows/bin
size=820x620

# The update that was applied before, and those that wait beside it.
processed=20260105_VELDHAVEN_PROFIEL.PRC
waiting=(20260202_BRUGMEER_BUIS.PRC 20260216_BRUGMEER_PLAAT.PRC)

under_wine() { tools/run-under-wine.sh --display "$prefix" "$@" </dev/null >/dev/null 2>&1; }

install_demo() {
  under_wine "$programs/paptool.exe" demo 'C:\Orvane'
  "$native" apply --table "$installation/Orv.pt" --no-backup --log "$work/log" \
    "$installation/PAP32/$processed" >/dev/null
  mkdir "$work/keep"
  (cd "$installation/PAP32" && mv "$processed" "${waiting[@]}" "$work/keep" && rm ./*)
  mv "$work/keep"/* "$installation/PAP32"
  printf '%s\r\n' 'Welcome to Orvane' \
    'This wizard brings the price updates of your suppliers into your product table.' '' \
    'Close Orvane before you go on.' >"$installation/welkom.txt"
  iconv -f UTF-16 -t UTF-8 "$installation/registry.reg" | sed 's/dutch\.lng/english.lng/' |
    iconv -f UTF-8 -t UTF-16 >"$prefix/drive_c/settings.reg"
  under_wine reg import 'C:\settings.reg'
}

# A picture of what is on the desktop, when it looks the same for a while and other than before, and
# is more than the empty desktop.
shoot() {
  local now last=''
  while :; do
    import -window root -strip +dither -colors 255 -define png:exclude-chunks=date,time \
      "png8:$work/now.png"
    now=$(md5sum <"$work/now.png")
    [[ $now == "$last" && $now != "${shot:-}" && $(identify -format %k "$work/now.png") -gt 16 ]] &&
      break
    last=$now
    sleep 1
  done
  shot=$now
  convert "$work/now.png" -trim +repage -define png:exclude-chunks=date,time "png8:$1"
}

if [[ ${1:-} != --on-display ]]; then
  ORVPAP_SCREEN=$size exec tools/run-under-xvfb.sh "$0" --on-display "$@"
fi
folder=${2:-docs/images/windows}
source tools/temporary-wine.sh
installation=$prefix/drive_c/Orvane

under_wine cmd /c exit
# The signs on title bars, and the letters of dialogs.
cp /usr/share/wine/fonts/{marlett,tahoma,tahomabd}.ttf "$prefix/drive_c/windows/Fonts"
install_demo
"$native" serve "$installation/server" >/dev/null &
sleep 1
under_wine explorer "/desktop=orvpap,$size" 'C:\Orvane\orvpap-demo.exe' &

mkdir -p "$folder"
for page in "${pages[@]}"; do
  shoot "$folder/$page.png"
  case $page in
    7-*)
      xdotool key Return
      sleep 5  # one of the updates has a fault: there is a message over the page
      xdotool key Return
      ;;
    8-*) ;;
    *) xdotool key Return ;;
  esac
done
xdotool key Return
sleep 3
