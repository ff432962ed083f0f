#!/usr/bin/env bash
# Regenerates the recorded mediainfo reports in this folder: makes small media
# files with ffmpeg and mkvmerge in a scratch folder and saves
# `mediainfo -f NAME` for each as NAME.txt, through the resource folder's
# mediainfo (which adds --Legacy, as Kestrane runs it). The reports are kept
# whole except for lines that change on every run (dates) and a few long,
# repetitive groups that nothing reads (sizes, durations, delays, encoder
# settings). `record.sh NAME...` records only those reports.
set -euo pipefail
out=$(cd "$(dirname "$0")" && pwd)
mediainfo=$(cd "$out/../../.." && pwd)/resources/wrappers/mediainfo
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

ff() { ffmpeg -nostdin -loglevel error -y "$@"; }
video="-f lavfi -i testsrc=size=320x240:rate=25"

ff $video -f lavfi -i sine=sample_rate=44100 -t 1 -c:v mpeg4 -vtag XVID -c:a libmp3lame -b:a 128k -ac 2 xvid_mp3.avi

printf '1\n00:00:00,000 --> 00:00:00,500\nBonjour\n\n2\n00:00:00,500 --> 00:00:01,000\nSalut\n' > subs.srt
ff $video -f lavfi -i sine=sample_rate=48000 -t 1 -c:v libx264 -preset ultrafast -c:a ac3 -b:a 384k -ac 6 h264_ac3.mkv
mkvmerge -q -o h264_ac3_srt.mkv \
  --track-name 0:Picture --track-name 1:Surround --language 1:eng h264_ac3.mkv \
  --track-name 0:Dialogue --language 0:fre subs.srt

ff $video -f lavfi -i sine=sample_rate=48000 -i subs.srt -t 1 -map 0 -map 1 -map 2 \
  -c:v libx264 -preset ultrafast -c:a aac -ac 1 -c:s mov_text \
  -metadata:s:a:0 language=deu -metadata:s:s:0 language=eng h264_aac_text.mp4

# Transport-stream identifiers above 700, as broadcast recordings have.
ff $video -f lavfi -i sine -t 1 -c:v mpeg2video -c:a mp2 -ac 1 -mpegts_start_pid 0x1011 stream.ts

ff -f lavfi -i sine=sample_rate=44100 -t 1 -c:a libvorbis -ac 1 audio.ogg
ff -f lavfi -i sine=sample_rate=48000 -t 1 -ac 6 -c:a dca -strict -2 audio.dts

printf 'This is not a video, only some notes.\n' > notes.txt

# Today's codecs.
small="-f lavfi -i testsrc=size=256x144:rate=25"
ff $small -f lavfi -i sine=sample_rate=48000 -t 1 -c:v libx265 -preset ultrafast -x265-params log-level=error \
  -c:a libopus -ac 2 hevc_opus.mkv
ff $small -f lavfi -i sine=sample_rate=48000 -t 1 -c:v libx265 -preset ultrafast -x265-params log-level=error \
  -tag:v hvc1 -c:a aac -ac 2 hevc_aac.mp4
ff $small -f lavfi -i sine=sample_rate=48000 -t 1 -c:v libvpx -deadline realtime -c:a libvorbis -ac 2 vp8_vorbis.webm
ff $small -f lavfi -i sine=sample_rate=48000 -t 1 -c:v libsvtav1 -preset 12 -c:a eac3 -ac 6 av1_eac3.mkv 2>/dev/null
ff $small -f lavfi -i sine=sample_rate=48000 -t 1 -c:v libvpx-vp9 -deadline realtime -c:a truehd -strict -2 -ac 2 \
  vp9_truehd.mkv

# Flash Video, whose streams mediainfo gives no ID.
ff $video -f lavfi -i sine=sample_rate=44100 -t 1 -c:v flv -c:a libmp3lame -ac 2 flv_mp3.flv

# Audio ids of program streams: AC-3 and LPCM in the private stream, two
# MPEG audio streams.
ff $video -f lavfi -i sine=sample_rate=48000 -f lavfi -i sine=sample_rate=48000 -t 1 -map 0 -map 1 -map 2 \
  -c:v mpeg2video -c:a:0 ac3 -ac 6 -c:a:1 pcm_s16be -f vob ac3_lpcm.vob 2>/dev/null # LPCM packets overflow the muxer buffer: it says so per packet
ff $video -f lavfi -i sine=sample_rate=48000 -f lavfi -i sine=sample_rate=48000 -t 1 -map 0 -map 1 -map 2 \
  -c:v mpeg2video -c:a mp2 -f vob two_mp2.mpg

names=(xvid_mp3.avi h264_ac3_srt.mkv h264_aac_text.mp4 stream.ts audio.ogg audio.dts subs.srt notes.txt
       hevc_opus.mkv hevc_aac.mp4 vp8_vorbis.webm av1_eac3.mkv vp9_truehd.mkv ac3_lpcm.vob two_mp2.mpg flv_mp3.flv)
[ $# -gt 0 ] && names=("$@")
for name in "${names[@]}"; do
  "$mediainfo" -f "$name" \
    | grep -v -e '^File last modification date' -e '^File creation date' -e '^Encoded date' \
              -e '^Tagged date' -e '^Encoding settings' -e '^Encoded_Library_Settings' \
              -e '^Stream size' -e '^Source stream size' -e '^File size' -e '^Duration' \
              -e '^Source duration' -e '^Delay' -e '^Video0 delay' \
    > "$out/$name.txt"
done
wc -c "$out"/*.txt
