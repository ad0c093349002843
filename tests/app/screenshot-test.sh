#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Starts the trainer under a virtual X server with a fresh profile, lets it save a picture of its
# main window, and checks that the picture is a PNG of the whole window with something drawn in it.
# Usage: screenshot-test.sh <tonwerk binary> <output png>
set -euo pipefail
program=$1
out=$2
profile=$(mktemp -d)
trap 'rm -rf "$profile"' EXIT
rm -f "$out"
XDG_CONFIG_HOME=$profile timeout 120 xvfb-run -a -s "-screen 0 1280x1024x24" \
    "$program" --screenshot "$out"

[[ -s $out ]] || { echo "no picture was saved"; exit 1; }
[[ $(head -c 8 "$out" | od -An -tx1 | tr -d ' \n') == 89504e470d0a1a0a ]] ||
    { echo "not a PNG"; exit 1; }
# The IHDR chunk holds width and height as big-endian 32-bit numbers at offsets 16 and 20.
width=$((16#$(od -An -tx1 -j16 -N4 "$out" | tr -d ' \n')))
height=$((16#$(od -An -tx1 -j20 -N4 "$out" | tr -d ' \n')))
echo "picture: ${width} x ${height}, $(stat -c %s "$out") bytes"
((width >= 860 && height >= 560)) || { echo "the window is smaller than the form"; exit 1; }
# A blank window compresses to a few kilobytes; the drawn form takes far more.
(($(stat -c %s "$out") > 40000)) || { echo "the picture is nearly empty"; exit 1; }
