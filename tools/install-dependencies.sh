#!/usr/bin/env bash
# Installs what is missing, from Debian's packages: install-dependencies.sh GROUP...
#
# Groups: build, test, lint, windows, bench, pictures, fuzz. docs/building.md says what each package is for.
# Asks nothing, and is quick and needs neither network nor rights where nothing is missing.
set -euo pipefail

# What must be there (a command, or a file by its full path) and the package that brings it.
requirements() {
  case $1 in
    build)
      echo "g++ g++"
      echo "cmake cmake"
      echo "ninja ninja-build"
      echo "ccache ccache"
      echo "/usr/include/CLI/CLI.hpp libcli11-dev"
      echo "curl-config libcurl4-openssl-dev"
      echo "/usr/include/httplib.h libcpp-httplib-dev"
      echo "pkg-config pkg-config"
      echo "wx-config libwxgtk3.2-dev"
      ;;
    test)
      echo "/usr/include/gtest/gtest.h libgtest-dev"
      echo "/usr/include/gmock/gmock.h libgmock-dev"
      echo "python3 python3"
      echo "mdb-export mdbtools"
      echo "node nodejs"
      echo "npm npm"
      echo "nginx nginx-light"
      echo "openssl openssl"
      echo "Xvfb xvfb"
      echo "xdotool xdotool"
      ;;
    lint)
      echo "git git"
      echo "clang-format clang-format"
      echo "clang-tidy clang-tidy"
      echo "run-clang-tidy clang-tidy"
      ;;
    windows)
      echo "x86_64-w64-mingw32-g++-posix g++-mingw-w64-x86-64-posix"
      echo "/usr/src/googletest/CMakeLists.txt googletest"
      echo "dpkg-source dpkg-dev"
      echo "/usr/lib/wine/wine64 wine64"
      echo "/usr/share/wine/fonts/marlett.ttf fonts-wine"
      echo "Xvfb xvfb"
      echo "xdotool xdotool"
      ;;
    bench)
      echo "/usr/include/benchmark/benchmark.h libbenchmark-dev"
      echo "/usr/include/sqlite3.h libsqlite3-dev"
      echo "curl curl"
      ;;
    pictures)
      echo "Xvfb xvfb"
      echo "xdotool xdotool"
      echo "import imagemagick"
      ;;
    fuzz)
      echo "clang++-14 clang-14"
      echo "/usr/lib/llvm-14/lib/clang/14.0.6/lib/linux/libclang_rt.fuzzer-x86_64.a libclang-rt-14-dev"
      ;;
    *)
      echo "install-dependencies.sh: unknown group '$1'" >&2
      return 2
      ;;
  esac
}

# Servers lie where an ordinary user's shell does not look.
is_there() {
  if [[ $1 == /* ]]; then [[ -e $1 ]]; else PATH=$PATH:/usr/sbin command -v "$1" >/dev/null; fi
}

[[ $# -gt 0 ]] || { echo "usage: install-dependencies.sh GROUP..." >&2; exit 2; }

missing=()
for group in "$@"; do
  needed=$(requirements "$group")
  while read -r thing package; do
    is_there "$thing" || missing+=("$package")
  done <<<"$needed"
done
[[ ${#missing[@]} -gt 0 ]] || exit 0

echo "Installing: ${missing[*]}"
if ! command -v apt-get >/dev/null; then
  echo "This is not a Debian system: please install the counterparts of these packages." >&2
  exit 1
fi
as_root=()
if [[ $(id -u) -ne 0 ]]; then
  command -v sudo >/dev/null || { echo "Run this as root, or install sudo." >&2; exit 1; }
  as_root=(sudo)
fi
"${as_root[@]}" apt-get update -q
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
  apt-get install -q -y --no-install-recommends "${missing[@]}"
