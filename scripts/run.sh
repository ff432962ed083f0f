#!/usr/bin/env bash
# Installs what is missing, builds, and starts Kestrane on the given files
# (on a generated sample when none is given).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup.sh"
"$root/scripts/build.sh" "$root/build"

files=("$@")
if ((${#files[@]} == 0)); then
  sample_dir="${XDG_CACHE_HOME:-$HOME/.cache}/kestrane"
  sample="$sample_dir/kestrane-sample.mkv"
  mkdir -p "$sample_dir"
  if [ ! -s "$sample" ]; then
    ffmpeg -nostdin -loglevel error -y -f lavfi -i testsrc=size=640x360:rate=25 \
      -f lavfi -i sine=frequency=440:sample_rate=48000 -t 10 \
      -c:v libx264 -preset ultrafast -c:a ac3 -metadata:s:a:0 language=eng "$sample"
  fi
  files=("$sample")
fi

if [ -x "$root/build/bin/kestrane" ] && { [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; }; then
  exec "$root/build/bin/kestrane" "${files[@]}"
fi

# No display: the same conversion through the command line, with its
# progress, into a fresh folder (Kestrane never writes over a result).
out_dir="${XDG_CACHE_HOME:-$HOME/.cache}/kestrane/converted-$(date +%Y%m%d-%H%M%S)"
mkdir -p "$out_dir"
echo "No display for the window: converting with kestrane-cli instead."
status=0
"$root/build/bin/kestrane-cli" convert --save-dir "$out_dir" "${files[@]}" || status=$?
echo
if [ -n "$(ls -A "$out_dir")" ]; then
  echo "The result is in $out_dir:"
  ls -l "$out_dir"
else
  echo "Nothing was written into $out_dir."
fi
exit $status
