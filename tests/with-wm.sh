#!/usr/bin/env bash
# with-wm.sh COMMAND [ARGS]: runs COMMAND on the current display beside a window manager, without
# which no window becomes active. Ends with COMMAND's exit code.
set -euo pipefail

openbox >/dev/null 2>&1 &
wm=$!
trap 'kill "$wm" 2>/dev/null || true' EXIT

for _ in $(seq 100); do
    if xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id'; then
        "$@"
        exit
    fi
    sleep 0.1
done
echo "with-wm.sh: the window manager did not start" >&2
exit 1
