#!/usr/bin/env bash
# Retakes docs/screenshots from the real window, driven as a person drives
# it (keys and clicks through xdotool on a private Xvfb screen, state read
# through the accessibility bus); see scripts/screenshot-walk/ScreenshotWalk.cpp.
# Usage: scripts/screenshots.sh [BUILD_DIR]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$root/build}
"$root/scripts/build.sh" "$build" >/dev/null
"$build/bin/kestrane_screenshot_walk" "$root/docs/screenshots"
ls -l "$root/docs/screenshots"
