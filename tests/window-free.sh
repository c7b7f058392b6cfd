#!/usr/bin/env bash
# Each program named must not load libQt6Widgets, directly or through a library it links.
set -u
status=0
for program in "$@"; do
  if ! libraries=$(ldd "$program"); then
    echo "cannot list the libraries of $program"
    status=1
  elif grep -q 'libQt6Widgets' <<<"$libraries"; then
    echo "$program loads Qt Widgets:"
    grep -E 'libQt6|libKORVA' <<<"$libraries"
    status=1
  else
    echo "window-free: $(basename "$program")"
  fi
done
exit $status
