#!/usr/bin/env bash
# Installs mdb-reader, in the version that package-lock.json names, into a folder: install.sh FOLDER
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
folder=$1

# npm ci takes a while, so it runs only when the wanted version is not the installed one.
if cmp -s "$here/package-lock.json" "$folder/installed-lock.json"; then
  exit 0
fi
mkdir -p "$folder"
cp "$here/package.json" "$here/package-lock.json" "$here/.npmrc" "$folder"
npm ci --prefix "$folder" --loglevel=error
cp "$here/package-lock.json" "$folder/installed-lock.json"
