#!/usr/bin/env bash
# The break window under a real X server. A program computes on its main thread
# without ever returning to its event loop; the break window of its companion
# process must appear, keep repainting (two pictures a second apart differ),
# and take a stop by real input (XTEST: the pointer clicks Stop, the keyboard
# answers the question), after which the program's next Set returns false.
#   break-window-e2e.sh <break_window_e2e program>
# With KORVA_E2E_PICTURE=FILE a picture of the break window is kept there.
set -uo pipefail
program="$1"

for tool in Xvfb xdotool; do
    if ! command -v "$tool" >/dev/null 2>&1; then
        echo "SKIPPED: $tool is not installed (scripts/install-deps installs it)"
        exit 77
    fi
done

tmp=$(mktemp -d)
xvfb_pid=""
program_pid=""
cleanup() {
    [ -n "$program_pid" ] && kill -9 "$program_pid" 2>/dev/null
    # The companion ends by itself when the program's socket closes; make sure.
    [ -n "${companion_pid:-}" ] && kill -9 "$companion_pid" 2>/dev/null
    [ -n "$xvfb_pid" ] && kill "$xvfb_pid" 2>/dev/null
    wait 2>/dev/null
    rm -rf "$tmp"
}
trap cleanup EXIT

fail() {
    echo "FAILED: $*" >&2
    echo "--- program output:" >&2
    cat "$tmp/out" "$tmp/err" >&2 2>/dev/null
    echo "--- companion trace:" >&2
    cat "$tmp/trace" >&2 2>/dev/null
    exit 1
}

# Waits up to $1 seconds for the command after it to succeed.
wait_for() {
    local limit=$(( $1 * 10 )) i=0
    shift
    until "$@"; do
        i=$((i + 1))
        [ "$i" -ge "$limit" ] && return 1
        sleep 0.1
    done
}

# A free display, chosen by the server itself.
exec 5>"$tmp/display"
Xvfb -displayfd 5 -screen 0 1280x1024x24 -nolisten tcp >"$tmp/xvfb.log" 2>&1 &
xvfb_pid=$!
exec 5>&-
wait_for 20 test -s "$tmp/display" || fail "Xvfb did not start: $(cat "$tmp/xvfb.log")"
export DISPLAY=":$(head -n1 "$tmp/display")"
unset QT_QPA_PLATFORM WAYLAND_DISPLAY
export XDG_CONFIG_HOME="$tmp/config" KORVA_REGISTRY_DIR="$tmp/registry" KORVA_BREAKWIN_TRACE="$tmp/trace"
unset KORVA_BREAK_WINDOW KORVA_BREAKWIN
mkdir -p "$KORVA_REGISTRY_DIR"

: >"$tmp/out"
"$program" "$tmp/release" >>"$tmp/out" 2>"$tmp/err" &
program_pid=$!

wait_for 30 grep -q '^busy 1$' "$tmp/out" || fail "the program did not start its work"
grep -q '^start true$' "$tmp/out" || fail "the first Set did not return true"

title="Break window end-to-end"
find_window() { window=$(xdotool search --onlyvisible --name "^${title}\$" 2>/dev/null | head -n1); [ -n "$window" ]; }
wait_for 20 find_window || fail "no visible break window titled '$title'"
companion_pid=$(xdotool getwindowpid "$window" 2>/dev/null || true)
[ -n "$companion_pid" ] && [ "$companion_pid" != "$program_pid" ] ||
    echo "note: the window's process is not known to X (pid '$companion_pid')"

# The main thread is busy now; the window must go on painting (the gauge's colour
# cycle). Pictures a second apart, until two differ, within one cycle of 9 s.
"$program" --grab "$window" "$tmp/shot0.png" || fail "cannot take a picture of the window"
changed=""
for i in $(seq 1 11); do
    sleep 1
    "$program" --grab "$window" "$tmp/shot$i.png" || fail "cannot take a picture of the window"
    if ! cmp -s "$tmp/shot$((i - 1)).png" "$tmp/shot$i.png"; then
        changed=$i
        break
    fi
done
[ -n "$changed" ] || fail "the window did not repaint while the main thread computed"
# scripts/screenshots keeps a picture of the window for the documentation.
[ -n "${KORVA_E2E_PICTURE:-}" ] && cp "$tmp/shot$changed.png" "$KORVA_E2E_PICTURE"
grep -q '^busy 1$' "$tmp/out" && ! grep -q '^set 1' "$tmp/out" || fail "the work was not busy during the pictures"

# Click Stop with the real pointer, where the companion placed the button.
read -r _ _ bx by bw bh < <(grep '^# stop ' "$tmp/trace" | tail -n1)
[ -n "${bh:-}" ] || fail "the companion did not say where its stop button is"
eval "$(xdotool getwindowgeometry --shell "$window")"
xdotool mousemove --sync $((X + bx + bw / 2)) $((Y + by + bh / 2)) click 1 || fail "cannot click"

# The question comes up; Return answers it with its default button, Yes.
question_title="Stop the end-to-end work"
find_question() { question=$(xdotool search --onlyvisible --name "^${question_title}\$" 2>/dev/null | head -n1); [ -n "$question" ]; }
wait_for 10 find_question || fail "no stop question after clicking Stop"
xdotool windowfocus --sync "$question" 2>/dev/null || true
xdotool key Return || fail "cannot press Return"
question_gone() { ! xdotool search --onlyvisible --name "^${question_title}\$" >/dev/null 2>&1; }
wait_for 10 question_gone || fail "the stop question stayed open"

# Only now does the computation reach its next Set.
touch "$tmp/release1"
wait_for 20 grep -q '^set 1' "$tmp/out" || fail "the work did not reach its next Set"
grep -q '^set 1 false$' "$tmp/out" || fail "the next Set after the stop did not return false"
wait "$program_pid"
status=$?
program_pid=""
[ "$status" -eq 0 ] || fail "the program ended with $status"
# A zombie has ended too: whether anyone reaps orphans here is not ours to test.
ended() { ! [ -r "/proc/$1/stat" ] || [ "$(cut -d' ' -f3 "/proc/$1/stat" 2>/dev/null)" = "Z" ]; }
if [ -n "$companion_pid" ]; then
    wait_for 10 ended "$companion_pid" || fail "the companion outlived its program"
fi
echo "break window: repainted while the main thread computed (picture $changed), stopped by real input"
