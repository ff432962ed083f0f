#!/usr/bin/env bash
# fuzz-avi-seeds.sh DIR: writes the AVI reader's fuzz seeds into DIR, small
# AVIs of the kinds Kestrane edits (MPEG-4 with PCM audio, MJPEG alone, and
# one MEncoder wrote with MP3 audio).
set -euo pipefail
dir=$1
mkdir -p "$dir"
ff=(ffmpeg -nostdin -loglevel error -y)
"${ff[@]}" -f lavfi -i testsrc2=s=16x16:r=5:d=0.6 -f lavfi -i sine=d=0.6:r=8000 -ac 1 -ar 4000 \
  -c:v mpeg4 -g 2 -q:v 31 -c:a pcm_u8 "$dir/mpeg4-pcm.avi"
"${ff[@]}" -f lavfi -i testsrc2=s=16x16:r=5:d=0.6 -c:v mjpeg -q:v 31 -an "$dir/mjpeg.avi"
if command -v mencoder >/dev/null; then
  mencoder -really-quiet "$dir/mpeg4-pcm.avi" -ovc copy -oac mp3lame -lameopts cbr:br=32 \
    -o "$dir/mencoder-mp3.avi" >/dev/null 2>&1 || true
fi
