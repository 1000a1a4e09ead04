#!/usr/bin/env bash
# Builds wxWidgets for 64-bit Windows from Debian's source package, statically, and keeps it:
#
#   build-wx-windows.sh            builds it unless it is there; the folder is the last line printed
#   build-wx-windows.sh --folder   only prints the folder; fails where it has not been built
#
# Of the toolkit it takes what the program uses and no more, which makes minutes of what would be
# twenty. The folder is named after the version and after all that the result depends on; several may
# lie beside each other in ~/.cache/orvpap, and each may be removed.
set -euo pipefail

target=x86_64-w64-mingw32
compiler=$target-g++-posix

# What of the toolkit: first what everything else needs, then services, then controls. Some of it is
# named by others only (menubar by frames; choice and treectrl by the file dialog's header),
# uiactionsim by the tests.
features=(
  unicode exceptions std_string unsafe_conv_in_wxstring threads tls
  baseevtloop dynlib ffile file log longlong regkey stdpaths stopwatch streams sysoptions textbuf
  textfile timer variant datetime
  accel autoidman clipboard commondlg dataobj dccache display filedlg geometry ico_cur image imaglist
  menus menubar mousewheel msgdlg ole ownerdrawn taskbarbutton tooltips uxtheme wxdib uiactionsim
  controls button checkbox choice gauge headerctrl listctrl radiobtn scrollbar statbmp statbox
  statline stattext textctrl treectrl
)
options=(
  --build=x86_64-linux-gnu "--host=$target" --with-msw --disable-shared
  "CC=$target-gcc-posix" "CXX=$compiler" CFLAGS=-Os CXXFLAGS=-Os
  --disable-debug --disable-debug_flag --disable-debug_info
  --enable-pch --disable-dependency-tracking --disable-tests --without-subdirs
  --disable-sys-libs --disable-all-features "${features[@]/#/--enable-}"
  --without-expat --without-libiconv --without-libjpeg --without-libpng --without-libtiff
  --without-nanosvg --without-opengl --without-regex --without-zlib
)

command -v "$compiler" >/dev/null ||
  { echo "The compiler is missing; run tools/install-dependencies.sh windows." >&2; exit 1; }
cache=${XDG_CACHE_HOME:-$HOME/.cache}/orvpap
key=$({ "$compiler" --version; printf '%s\n' "${options[@]}"; } | sha256sum | cut -c 1-12)

# The newest version of what was built in this way, if any.
built() { compgen -G "$cache/wx-*-$key" | sort -V | tail -n 1 | grep .; }

if built; then
  exit 0
elif [[ ${1:-} == --folder ]]; then
  echo "wxWidgets for Windows has not been built; run tools/build-wx-windows.sh." >&2
  exit 1
fi

mkdir -p "$cache"
work=$(mktemp -d "$cache/building-wx.XXXXXX")
trap 'rm -rf "$work"' EXIT

# Runs a command with its output in the log, which is shown when it fails.
logged() {
  "$@" >>"$work/log" 2>&1 && return
  tail -n 40 "$work/log" >&2
  echo "Building wxWidgets for Windows failed at: ${*:1:2}" >&2
  exit 1
}

# The sources come from where this machine gets its packages: its own entries, read as entries for
# sources, in a list that only this download uses. That changes nothing on the machine.
apt_sources() {
  eval "$(apt-config shell list Dir::Etc::sourcelist/f parts Dir::Etc::sourceparts/d)"
  mkdir -p "$work/apt/sources.list.d" "$work/apt/lists/partial" "$work/apt/cache"
  local file name
  for file in "$list" "$parts"/*.list "$parts"/*.sources; do
    [[ -f $file ]] || continue
    name=$work/apt/sources.list.d/${file##*/}
    case $file in
      *.list) sed -n -E 's/^deb[[:space:]]/deb-src /p' "$file" >"$name" ;;
      *.sources) sed -E 's/^Types:.*/Types: deb-src/' "$file" >"$name" ;;
    esac
  done
}
apt() {
  apt-get -q -o Dir::Etc::SourceList=/dev/null -o "Dir::Etc::SourceParts=$work/apt/sources.list.d" \
    -o "Dir::State::Lists=$work/apt/lists" -o "Dir::Cache=$work/apt/cache" \
    -o "APT::Sandbox::User=$(id -un)" "$@"
}

cd "$work"
echo "Fetching the sources of wxWidgets ..." >&2
apt_sources
logged apt update
logged apt source wxwidgets3.2
source=$(compgen -G "$work/wxwidgets3.2-*/configure" | xargs dirname)
version=${source##*-}
folder=$cache/wx-${version%%+*}-$key

# Installed beside, then renamed: what has the name is complete.
echo "Building wxWidgets for Windows, some minutes ..." >&2
mkdir build
cd build
logged "$source/configure" "--prefix=$folder" "${options[@]}"
logged make -j "$(nproc)"
logged make install "DESTDIR=$work/installed"
rm -rf "$folder"
mv "$work/installed$folder" "$folder"
echo "$folder"
