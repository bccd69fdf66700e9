#!/usr/bin/env bash
# Ctrl+C during `stimctl record OUT.wav --stream` must end the recording with a whole wave file:
# the interrupt reaches the program as Wine delivers it from a terminal, as SIGINT.
# Usage: stimctl-interrupt.sh STIMCTL.EXE   (in the environment scripts/test brings up)
set -euo pipefail

stimctl=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
out=$work/interrupted.wav

"${WINELOADER:-wine}" "$stimctl" record "Z:${out//\//\\}" --stream >"$work/log" 2>&1 &
recorder=$!
for _ in $(seq 60); do
  grep -q 'recording [1-9]' "$work/log" 2>/dev/null && break
  sleep 0.5
done
kill -INT "$recorder"
for _ in $(seq 60); do
  kill -0 "$recorder" 2>/dev/null || break
  sleep 0.5
done
if kill -0 "$recorder" 2>/dev/null; then
  echo "stimctl did not end within 30 s of Ctrl+C" >&2
  kill -KILL "$recorder"
  exit 1
fi
wait "$recorder" || { echo "stimctl ended with status $? after Ctrl+C" >&2; tr '\r' '\n' <"$work/log" >&2; exit 1; }

# A whole file: RIFF size = file size - 8, data size = file size - 80 (the header keeps room
# for an RF64 header in a JUNK chunk), and some sound in it.
size=$(stat -c %s "$out")
riff=$(od -An -tu4 -j4 -N4 "$out" | tr -d ' ')
data=$(od -An -tu4 -j76 -N4 "$out" | tr -d ' ')
echo "file $size bytes, RIFF size $riff, data size $data"
[[ $riff -eq $((size - 8)) && $data -eq $((size - 80)) && $data -gt 0 ]]
