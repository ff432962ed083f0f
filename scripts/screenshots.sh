#!/usr/bin/env bash
# Builds kestrane, makes a small sample video, runs the window under Xvfb
# and saves screenshots of its views into docs/screenshots/.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build-gui}
out=$root/docs/screenshots
work=$(mktemp -d)
trap 'kill ${app_pid:-} ${xvfb_pid:-} 2>/dev/null || true; rm -rf "$work"' EXIT

[ -f "$build/CMakeCache.txt" ] || cmake -S "$root" -B "$build" -G Ninja >/dev/null
cmake --build "$build" --target kestrane -j2

# Long enough that the tour's two-pass encode is photographed under way.
ffmpeg -v error -f lavfi -i testsrc=size=640x360:rate=25 -f lavfi -i sine=frequency=440 \
    -t 120 -c:v mpeg4 -q:v 5 -c:a libmp3lame -b:a 128k "$work/sample.avi"
ffmpeg -v error -f lavfi -i testsrc2=size=320x240:rate=25 -f lavfi -i sine=frequency=660 \
    -t 8 -c:v mpeg4 -q:v 5 -c:a libmp3lame -b:a 128k "$work/second.avi"

export DISPLAY=:99
Xvfb :99 -screen 0 1280x800x24 -nolisten tcp &
xvfb_pid=$!
sleep 1
export XDG_CONFIG_HOME=$work/config XDG_STATE_HOME=$work/state
export KESTRANE_RESOURCES=$build/resources
export KESTRANE_SCREENSHOT_SCRIPT=$work/steps
mkdir -p "$out"

# The program walks through its views on its own when asked (see
# MCScreenshotTour) and names each one on stdout when it is on screen.
"$build/bin/kestrane" --screenshot-tour "$work/sample.avi" "$work/second.avi" > "$work/tour.log" &
app_pid=$!
shot() { import -window root "$out/$1.png"; convert "$out/$1.png" -strip -colors 128 "PNG8:$out/$1.png" 2>/dev/null || true; }
seen=""
for _ in $(seq 1 240); do
    sleep 0.5
    while read -r name; do
        case " $seen " in *" $name "*) continue ;; esac
        seen="$seen $name"
        [ "$name" = done ] && break 2
        shot "$name"
        echo "ready $name" >> "$work/steps"
    done < "$work/tour.log"
done
ls -l "$out"
