#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# The trainer started where there is no display (over SSH, on a console) says so in one line that
# points to tonwerk-cli and ends with status 1: no platform plugin text, no abort. --version needs
# no display at all.
# Usage: no-display-test.sh <tonwerk binary> <version>
set -uo pipefail
program=$1
version=$2
failed=0
profile=$(mktemp -d)
trap 'rm -rf "$profile"' EXIT
export XDG_CONFIG_HOME=$profile

out=$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$program" --version 2>&1)
if [[ $out != "tonwerk $version" ]]; then
    echo "--version printed: $out"
    failed=1
fi

# No display at all, and a display that is named but not there.
for display in "" ":7311"; do
    err=$(env -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM DISPLAY="$display" \
          timeout 60 "$program" 2>&1 >/dev/null)
    status=$?
    echo "DISPLAY='$display': status $status: $err"
    if ((status != 1)); then
        echo "  expected status 1"
        failed=1
    fi
    if [[ $(wc -l <<<"$err") -ne 1 || $err != *"graphical session"*"tonwerk-cli"* ]]; then
        echo "  expected one line pointing to tonwerk-cli"
        failed=1
    fi
done
exit $failed
