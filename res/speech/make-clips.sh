#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Speaks the 26 letter names in each of the nine voices into <id>.wav, the ids the program
# plays them by: 134 + base + letter, base 0 for Amy and 36 + 26 × (voice − 1) for the others.
# Needs espeak-ng and sox. The clips are committed; run this only to remake them.
set -euo pipefail
cd "$(dirname "$0")"
# name, espeak-ng voice, pitch (0..99), words per minute: five female-sounding and four
# male-sounding voices, each apart from the others in pitch and pace.
voices=(
    "Amy      en-us+f2 62 165"
    "Audrey   en-us+f3 78 140"
    "Charles  en-us+m1 22 150"
    "Claire   en-us+f4 88 180"
    "Crystal  en-us+f5 99 190"
    "Dave     en-us+m3 36 128"
    "Lauren   en-us+f1 70 155"
    "Mike     en-us+m2 48 172"
    "Rich     en-us+m7 12 118"
)
tmp=$(mktemp -d)
trap 'rm -rf "$tmp"' EXIT
rm -f ./*.wav
for index in "${!voices[@]}"; do
    read -r _ voice pitch speed <<<"${voices[$index]}"
    base=0
    ((index == 0)) || base=$((36 + 26 * (index - 1)))
    for letter in {0..25}; do
        character=$(printf "\\x$(printf %x $((65 + letter)))")
        id=$((134 + base + letter))
        espeak-ng -v "$voice" -p "$pitch" -s "$speed" -w "$tmp/raw.wav" "$character"
        # Trim the silence at both ends so a letter follows its code at once.
        sox "$tmp/raw.wav" "$id.wav" silence 1 0.005 0.5% reverse silence 1 0.005 0.5% reverse
    done
done
