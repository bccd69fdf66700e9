#!/usr/bin/env bash
# A streamed recording against what ends it from outside, as a user meets it:
#  - the process killed hard (SIGKILL) after about 5 s: the file it leaves reads whole up to
#    the last data written, as sox sees it, with sizes that agree;
#  - a file that stops growing (a file-size limit stands in for a full disk): stimctl says why
#    and exits 1, and the file is finished with everything that reached it.
# Usage: stimctl-record-limits.sh STIMCTL.EXE   (in the environment scripts/test brings up)
set -euo pipefail

stimctl=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "$*" >&2; exit 1; }

# Prints the RIFF size, the data size and the file size of a wave file with the 80-byte header.
sizes() { echo "$(od -An -tu4 -j4 -N4 "$1") $(od -An -tu4 -j76 -N4 "$1") $(stat -c %s "$1")"; }

# Seconds of sound sox reads from the file, with no warning about its header.
sox_seconds() {
  sox -V2 "$1" -n 2>"$work/sox.log" || fail "sox cannot read $1: $(cat "$work/sox.log")"
  ! grep -qE 'WARN|FAIL' "$work/sox.log" || fail "sox warns about $1: $(cat "$work/sox.log")"
  soxi -D "$1"
}

killed=$work/killed.wav
"${WINELOADER:-wine}" "$stimctl" record "Z:${killed//\//\\}" --stream >"$work/killed.log" 2>&1 &
recorder=$!
for _ in $(seq 60); do
  grep -q 'recording 5 s' "$work/killed.log" 2>/dev/null && break
  sleep 0.25
done
kill -KILL "$recorder"
wait "$recorder" 2>/dev/null || true
read -r riff data size < <(sizes "$killed")
seconds=$(sox_seconds "$killed")
echo "killed after 5 s: file $size bytes, RIFF size $riff, data size $data, sox reads $seconds s"
((riff == data + 72 && data + 80 <= size && data % 4 == 0)) || fail "the killed recording's sizes disagree"
awk -v s="$seconds" 'BEGIN { exit !(s >= 3.0) }' || fail "the killed recording holds only $seconds s"

full=$work/full.wav
limit_kib=600
status=0
(trap '' XFSZ; ulimit -f $limit_kib; exec "${WINELOADER:-wine}" "$stimctl" record "Z:${full//\//\\}" --stream --seconds 30) \
  >"$work/full.log" 2>&1 || status=$?
tr -d '\r' <"$work/full.log" | grep -v 'ftruncate' || true
((status == 1)) || fail "stimctl ended with $status on a full disk, not 1"
grep -q 'the recording ended early' "$work/full.log" || fail "stimctl did not say why the recording ended"
read -r riff data size < <(sizes "$full")
seconds=$(sox_seconds "$full")
echo "disk full at $((limit_kib * 1024)) bytes: file $size bytes, RIFF size $riff, data size $data, sox reads $seconds s"
((riff == size - 8 && data == size - 80 && size > limit_kib * 1024 - 4096)) || fail "the file is not finished with all it got"
