#!/bin/sh
# Generates the small media files the tests and benchmarks open, into the folder given as
# the first argument. Nothing binary is kept in the repository: every run makes its own.
#
#   tests/support/make_test_media.sh /tmp/media
#
# Files (all 0.2 s, 64x36 unless the name says otherwise):
#   h264_1080p.mp4   H.264 1920x1080 with AAC audio
#   h264_tiny.mp4    H.264, no audio
#   h265.mp4         H.265, no audio (fails: its only stream is H.265)
#   h265_aac.mp4     H.265 with AAC audio (opens, H.265 stream unusable)
#   hdr10.mp4        H.265 tagged HDR10: PQ transfer, BT.2020 primaries and matrix
#   hdr_h264.mp4     H.264 tagged HLG (opens, is HDR)
#   audio.m4a        AAC audio only
#   clip.y4m         raw 64x36 video (a text header that tests damage on purpose)
#   tone.wav         PCM audio, 44.1 kHz mono
#   still.png        a still picture
#   truncated.mp4    the first third of h264_1080p.mp4
#   text.mp4         plain text renamed
#   empty.mp4        zero bytes
set -eu
out=${1:?usage: make_test_media.sh OUTDIR}
mkdir -p "$out"
ff() { ffmpeg -nostdin -hide_banner -loglevel error -y "$@"; }
# tiny NAME OPTIONS...: a 64x36 picture source, then the options and the output file.
tiny() { name=$1; shift; ff -f lavfi -i testsrc2=size=64x36:rate=25:duration=0.2 "$@" "$out/$name"; }
sine="-f lavfi -i sine=duration=0.2"
x264="-c:v libx264 -preset ultrafast -pix_fmt yuv420p"
x265="-c:v libx265 -preset ultrafast"
bt2020="-color_primaries bt2020 -colorspace bt2020nc"
ff -f lavfi -i testsrc2=size=1920x1080:rate=25:duration=0.2 $sine $x264 -c:a aac -shortest "$out/h264_1080p.mp4"
tiny h264_tiny.mp4 $x264
tiny h265.mp4 $x265 -x265-params log-level=error -pix_fmt yuv420p
tiny h265_aac.mp4 $sine $x265 -x265-params log-level=error -pix_fmt yuv420p -c:a aac -shortest
tiny hdr10.mp4 $x265 -pix_fmt yuv420p10le $bt2020 -color_trc smpte2084 \
     -x265-params log-level=error:hdr10=1:colorprim=bt2020:transfer=smpte2084:colormatrix=bt2020nc
tiny hdr_h264.mp4 $x264 $bt2020 -color_trc arib-std-b67
ff $sine -c:a aac "$out/audio.m4a"
tiny clip.y4m -pix_fmt yuv420p
ff $sine "$out/tone.wav"
ff -f lavfi -i testsrc2=size=64x36:rate=1 -frames:v 1 "$out/still.png"
size=$(wc -c < "$out/h264_1080p.mp4")
head -c $((size / 3)) "$out/h264_1080p.mp4" > "$out/truncated.mp4"
printf 'This is a plain text file, not a video.\nIt only has an .mp4 name.\n' > "$out/text.mp4"
: > "$out/empty.mp4"
