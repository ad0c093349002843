#!/usr/bin/env bash
# SPDX-License-Identifier: GPL-3.0-or-later
# A private PulseAudio server with a null sink, for tests on machines without sound hardware.
#   pulse-fixture.sh start DIR   start it with its runtime directory DIR (idempotent)
#   pulse-fixture.sh stop DIR    stop it and its monitor reader
# Tests reach it through PULSE_SERVER=unix:DIR/pulse/native; ALSA's "default" device goes to
# it through the pulse plugin. The null sink's monitor is the default source, so recording the
# default input records what was played.
set -euo pipefail
action=${1:?start or stop}
dir=${2:?runtime directory}
export XDG_RUNTIME_DIR=$dir PULSE_RUNTIME_PATH=$dir/pulse
export PULSE_SERVER=unix:$PULSE_RUNTIME_PATH/native

stop() {
    if [[ -f $dir/keeper.pid ]]; then
        kill "$(cat "$dir/keeper.pid")" 2>/dev/null || true
        rm -f "$dir/keeper.pid"
    fi
    pulseaudio --kill 2>/dev/null || true
    for _ in $(seq 50); do
        if ! pactl info >/dev/null 2>&1; then
            # A server killed outright may linger unreaped (no init in a container) and its
            # pid file would then stop a new one from starting.
            rm -f "$PULSE_RUNTIME_PATH/pid"
            return 0
        fi
        sleep 0.1
    done
}

case $action in
stop) stop ;;
start)
    stop
    mkdir -p "$PULSE_RUNTIME_PATH"
    chmod 700 "$XDG_RUNTIME_DIR" "$PULSE_RUNTIME_PATH"
    pulseaudio --daemonize=yes -n --exit-idle-time=-1 --system=false --use-pid-file=yes \
        --log-target="file:$dir/pulse.log" \
        --load="module-native-protocol-unix socket=$PULSE_RUNTIME_PATH/native auth-anonymous=1" \
        --load="module-null-sink sink_name=nullsink rate=48000" --load="module-always-sink"
    for _ in $(seq 100); do
        pactl info >/dev/null 2>&1 && break
        sleep 0.1
    done
    pactl info >/dev/null
    pactl set-default-sink nullsink
    pactl set-default-source nullsink.monitor
    # An idle null sink sleeps on a timer of up to 2 s and stalls every new stream; a reader
    # that never stops keeps it awake.
    setsid parec -d nullsink.monitor --latency-msec=10 --format=s16le --channels=1 \
        >/dev/null 2>&1 < /dev/null &
    echo $! >"$dir/keeper.pid"
    timeout 5 parec -d nullsink.monitor --latency-msec=10 --format=s16le --channels=1 |
        head -c 4800 >/dev/null || true
    echo "sound server ready at $PULSE_SERVER"
    ;;
*) echo "usage: $0 start|stop DIR" >&2; exit 2 ;;
esac
