#!/usr/bin/env bash
# The workbench starts without a display, saves a picture of its main window and
# of the About box, and leaves its settings in the file and registry branch of
# its version.
set -euo pipefail
workbench="$1"
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
export QT_QPA_PLATFORM=offscreen XDG_CONFIG_HOME="$tmp/config" KORVA_COMMON_APPDATA="$tmp/common" \
       KORVA_REGISTRY_DIR="$tmp/registry"
mkdir -p "$KORVA_REGISTRY_DIR"

fail() { echo "FAILED: $*" >&2; exit 1; }
is_png() { [ "$(head -c 8 "$1" | od -An -tx1 | tr -d ' \n')" = "89504e470d0a1a0a" ]; }

"$workbench" --screenshot "$tmp/main.png"
is_png "$tmp/main.png" || fail "no picture of the main window"
"$workbench" --screenshot "$tmp/about.png" --command 57664
is_png "$tmp/about.png" || fail "no picture of the About box"

settings="$tmp/config/Tessmark/Workbench/1.0/Workbench.xml"
[ -f "$settings" ] || fail "no settings file at $settings"
grep -q 'AppName="Workbench"' "$settings" || fail "settings file lacks AppName"
grep -q 'StartCount="2"' "$settings" || fail "settings file does not count two starts"
[ -s "$tmp/registry/HKCU.sqlite" ] || fail "no registry store"
grep -q "Workbench starts." "$tmp/config/Tessmark/Workbench/1.0/Workbench.log" || fail "nothing logged"
echo "workbench: pictures, settings file, registry and log are in place"
