#!/usr/bin/env bash
# The installed form, as a user of the library meets it:
#   installed-package.sh SOURCE_DIR BUILD_DIR
# installs the build into a scratch prefix, builds the example against it with
# its CMake package and with pkg-config, runs both, and packs, lists, installs
# into a fresh root and checks the Debian package.
set -euo pipefail
source_dir=$1
build_dir=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export HOME="$scratch/home" XDG_CONFIG_HOME="$scratch/home/.config" XDG_RUNTIME_DIR="$scratch/home"
export KORVA_REGISTRY_DIR="$scratch/registry" QT_QPA_PLATFORM=offscreen
mkdir -p "$HOME" "$KORVA_REGISTRY_DIR" && chmod 700 "$HOME"
fail() { echo "FAILED: $*" >&2; exit 1; }

prefix="$scratch/prefix"
cmake --install "$build_dir" --prefix "$prefix" >/dev/null

run_consumer() { # program runs-before
  local out
  out=$(timeout 120 "$1" --answer-with-key) || fail "$1 ended with $?: $out"
  echo "$out"
  grep -qx "progress: 10 of 10" <<<"$out" || fail "no progress line"
  grep -qx "setting Runs: $2" <<<"$out" || fail "the setting did not read $2"
  grep -qx "answer: no" <<<"$out" || fail "the key did not answer the question"
  local companion
  companion=$(sed -n 's/^break window program: //p' <<<"$out")
  [[ "$companion" == "$prefix"/* && -x "$companion" ]] || fail "break window program $companion is not the installed one"
  if ldd "$1" | grep -E "not found|$build_dir"; then fail "$1 loads from the build tree or misses a library"; fi
}

echo "== find_package"
cmake -S "$source_dir/examples/consumer" -B "$scratch/cmake-build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$scratch/cmake-build" >/dev/null
run_consumer "$scratch/cmake-build/korva-consumer" 0
# Handlers of users' programs are unwound after a fault as the library's own are.
grep -q -- -fnon-call-exceptions "$scratch/cmake-build/build.ninja" || fail "the CMake package does not pass on -fnon-call-exceptions"

echo "== pkg-config"
pc=$(find "$prefix" -name korvautlwin.pc)
[ -n "$pc" ] || fail "no korvautlwin.pc installed"
flags=$(PKG_CONFIG_PATH=$(dirname "$pc") pkg-config --cflags --libs korvautlwin)
grep -q -- -fnon-call-exceptions <<<"$flags" || fail "pkg-config does not pass on -fnon-call-exceptions"
libdir=$(PKG_CONFIG_PATH=$(dirname "$pc") pkg-config --variable=libdir korvautlwin)
# shellcheck disable=SC2086
g++ -std=c++20 -fPIC "$source_dir/examples/consumer/Consumer.cpp" -o "$scratch/consumer-pc" $flags -Wl,-rpath,"$libdir"
run_consumer "$scratch/consumer-pc" 1

echo "== Debian package"
cpack --config "$build_dir/CPackConfig.cmake" -B "$scratch/deb" -D CPACK_PACKAGING_INSTALL_PREFIX=/usr >/dev/null
deb=$(ls "$scratch"/deb/*.deb)
contents=$(dpkg-deb --contents "$deb")
for path in ./usr/lib/libKORVAutl.so.1 ./usr/lib/libKORVAutlwin.so.1 ./usr/libexec/KORVAutlwin/breakwin \
            ./usr/bin/Workbench ./usr/bin/artpack ./usr/share/KORVAutlwin/Abstracts.tart \
            ./usr/include/KORVAutlwin/progress/Progress.h ./usr/include/KORVAutl/TsString.h \
            ./usr/lib/cmake/KORVAutlwin/KORVAutlwinConfig.cmake ./usr/lib/pkgconfig/korvautlwin.pc; do
  grep -q " $path\( \|$\)" <<<"$contents" || fail "the package lacks $path"
done
depends=$(dpkg-deb --field "$deb" Depends)
echo "Depends: $depends"
for package in libqt6widgets6 libqt6gui6 libqt6core6 libsqlite3-0 libgsf-1-114; do
  grep -q "$package" <<<"$depends" || fail "the package does not depend on $package"
done
# A fresh root with an empty package database: the package's own files, nothing
# else. The root has no shell of its own, so the maintainer scripts (ldconfig)
# run outside it.
root="$scratch/root"
mkdir -p "$root/var/lib/dpkg/info" "$root/var/lib/dpkg/updates"
touch "$root/var/lib/dpkg/status"
dpkg --root="$root" --force-depends --force-not-root --force-script-chrootless --log=/dev/null -i "$deb" >/dev/null 2>&1 ||
  fail "dpkg could not install the package into a fresh root"
dpkg --root="$root" -s korvautlwin | grep -q "^Status: install ok installed" || fail "dpkg does not list the package"
# Every program and library of the package resolves each library it needs from
# the package itself or from the system's packages.
while IFS= read -r file; do
  if file -b "$file" | grep -q ELF; then
    missing=$(LD_LIBRARY_PATH="$root/usr/lib" ldd "$file" | grep "not found" || true)
    [ -z "$missing" ] || fail "$file: $missing"
    while read -r library; do
      case "$library" in
        "$root"/*) ;;
        /*) dpkg -S "$(readlink -f "$library")" >/dev/null 2>&1 || dpkg -S "$library" >/dev/null 2>&1 ||
              fail "$file loads $library, which no Debian package holds" ;;
      esac
    done < <(LD_LIBRARY_PATH="$root/usr/lib" ldd "$file" | sed -n 's/.*=> \(\/[^ ]*\).*/\1/p')
  fi
done < <(find "$root/usr/bin" "$root/usr/lib" "$root/usr/libexec" -type f)
echo "installed package checked"
