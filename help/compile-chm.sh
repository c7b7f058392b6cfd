#!/usr/bin/env bash
# compile-chm.sh PAGES_DIR PROJECT.hhp OUTPUT.chm
# chmcmd writes the absolute paths of the pages into the help file's topic
# table. It runs here in a folder of its own as the root of the file system, so
# that the topics read "/page.htm" wherever the build tree lies.
set -euo pipefail
pages=$1 project=$2 output=$3
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
chmcmd=$(readlink -f "$(command -v chmcmd)")
mkdir -p "$root/bin"
cp "$chmcmd" "$root/bin/chmcmd"
# The compiler's libraries, and those its runtime loads by name.
libs=$(ldd "$chmcmd" | grep -o '/[^ ]*' || true)
for lib in libpthread.so.0 libdl.so.2; do
  # awk reads to the end: leaving early would kill ldconfig with SIGPIPE, a failure under pipefail.
  found=$(ldconfig -p | awk -v n="$lib" '!f && $1 == n && /x86-64|x86_64|64bit/ {print $NF; f = 1}')
  [ -n "$found" ] && libs="$libs $found"
done
for lib in $libs; do
  mkdir -p "$root$(dirname "$lib")"
  cp -L "$lib" "$root$lib"
done
cp -r "$pages"/. "$root/"
if [ "$(id -u)" -eq 0 ]; then
  chroot "$root" /bin/chmcmd "$project" >"$root.log" 2>&1 || { cat "$root.log"; rm -f "$root.log"; exit 1; }
else
  unshare -r chroot "$root" /bin/chmcmd "$project" >"$root.log" 2>&1 || { cat "$root.log"; rm -f "$root.log"; exit 1; }
fi
rm -f "$root.log"
chm=$(sed -n 's/^Compiled file=//p' "$pages/$project" | tr -d '\r')
mkdir -p "$(dirname "$output")"
cp "$root/$chm" "$output"
