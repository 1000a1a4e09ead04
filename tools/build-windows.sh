#!/usr/bin/env bash
# Builds the programs for 64-bit Windows on a Debian machine, from nothing to
# build/windows/orvpap-VERSION-windows.zip. Installs what is missing.
#
# Fails when a program needs a DLL that is not part of Windows, or the wizard has become too large.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

programs=(orvpap paptool)
most_bytes=$((12 * 1024 * 1024))  # of the wizard

# Parts of every Windows. What is not here is a library of ours or of the compiler, or needs a look.
system_dlls=(
  advapi32 comctl32 comdlg32 gdi32 kernel32 msvcrt ole32 oleacc oleaut32 shell32 shlwapi user32
  uxtheme version winhttp
)

tools/install-dependencies.sh build windows
tools/build-wx-windows.sh
cmake --preset windows
cmake --build --preset windows -j "$(nproc)" --target "${programs[@]}"

version=$(sed -n -E 's/^project\(.* VERSION ([0-9.]+) .*/\1/p' CMakeLists.txt)
name=orvpap-$version-windows
folder=build/windows/$name
rm -rf build/windows/orvpap-*-windows*  # of other versions, too
mkdir -p "$folder"
for program in "${programs[@]}"; do
  x86_64-w64-mingw32-strip -o "$folder/$program.exe" "build/windows/bin/$program.exe"
done
cp -r lang "$folder/lang"
for text in LEESMIJ README; do
  grep -qF "$version" "resources/windows/$text.txt" ||
    { echo "resources/windows/$text.txt is of another version." >&2; exit 1; }
  # Without the mark at its front a text would be taken for one in the machine's own code page.
  (printf '\xef\xbb\xbf'; sed 's/$/\r/' "resources/windows/$text.txt") >"$folder/$text.txt"
done

for program in "$folder"/*.exe; do
  imports=$(x86_64-w64-mingw32-objdump -p "$program" | sed -n 's/.*DLL Name: //p')
  [[ -n $imports ]] || { echo "$program imports nothing: it cannot be looked at." >&2; exit 1; }
  if foreign=$(grep -viE "^($(IFS='|'; echo "${system_dlls[*]}"))\.dll$" <<<"$imports"); then
    echo "$program needs what Windows does not have:" $foreign >&2
    exit 1
  fi
done
size=$(stat -c %s "$folder/orvpap.exe")
((size < most_bytes)) || { echo "orvpap.exe has $size bytes, more than $most_bytes." >&2; exit 1; }

(cd build/windows && cmake -E tar cf "$name.zip" --format=zip "$name")
echo "$folder.zip: $(stat -c %s "$folder.zip") bytes; the wizard in it has $size."
