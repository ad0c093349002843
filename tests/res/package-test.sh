#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds the Debian package with scripts/package (quick when scripts/test has built the program),
# unpacks it into a temporary root and runs both programs from there: their versions and a
# render. The package must hold what an installed program needs and pass lintian without errors.
# Usage: package-test.sh <source dir> <version>
set -euo pipefail
source_dir=$1
version=$2
deb=$("$source_dir/scripts/package" | tail -n 1)
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
export XDG_CONFIG_HOME=$root/config HOME=$root
failed=0
fail() {
    echo "FAIL: $*"
    failed=1
}

echo "package: $deb"
dpkg-deb -x "$deb" "$root"
for file in usr/bin/tonwerk usr/bin/tonwerk-cli usr/share/applications/tonwerk.desktop \
    usr/share/icons/hicolor/scalable/apps/tonwerk.svg usr/share/mime/packages/tonwerk.xml \
    usr/share/metainfo/org.tonwerk.Tonwerk.metainfo.xml usr/share/man/man1/tonwerk.1.gz \
    usr/share/man/man1/tonwerk-cli.1.gz usr/share/doc/tonwerk/copyright; do
    [[ -f $root/$file ]] || fail "$file is missing"
done
depends=$(dpkg-deb -f "$deb" Depends)
echo "Depends: $depends"
for library in libsndfile1 libportaudio2 libqt6widgets6 libqt6svg6; do
    [[ $depends == *"$library"* ]] || fail "no dependency on $library"
done

[[ $("$root/usr/bin/tonwerk-cli" --version) == "tonwerk-cli $version" ]] || fail "tonwerk-cli --version"
[[ $(env -u DISPLAY "$root/usr/bin/tonwerk" --version) == "tonwerk $version" ]] ||
    fail "tonwerk --version"
"$root/usr/bin/tonwerk-cli" render --wpm 20 -o "$root/paris.ogg" "PARIS PARIS" ||
    fail "render from the package"
[[ $(head -c 4 "$root/paris.ogg" 2>/dev/null) == OggS ]] || fail "the render is no Ogg file"

# The sound libraries' probes print nothing: at most the one line that there is no output.
err=$("$root/usr/bin/tonwerk-cli" play --wpm 100 --pitch 700 E 2>&1 >/dev/null) || fail "play"
if [[ $(grep -c . <<<"$err") -gt 1 || $err == *[Jj][Aa][Cc][Kk]* || $err == *ALSA* ]]; then
    fail "play printed: $err"
fi

appstreamcli validate --no-net "$root/usr/share/metainfo/org.tonwerk.Tonwerk.metainfo.xml" ||
    fail "AppStream data"
lintian --fail-on error "$deb" || fail "lintian reports errors"
exit $failed
