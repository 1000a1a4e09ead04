# Sourced by scripts that need a Wine installation of their own, with the project's root as the current
# folder. Sets `work`, a temporary folder, and `prefix`, the installation in it; at the script's end
# what it has started is ended, and both are removed.
work=$(mktemp -d)
prefix=$work/wine
remove_work() {
  jobs -p | xargs -r kill 2>/dev/null || true
  export WINEPREFIX=$prefix PATH=$PATH:/usr/lib/wine
  wineserver -k || true
  wineserver -w
  rm -rf "$work"
}
trap remove_work EXIT
