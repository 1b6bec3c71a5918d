#!/usr/bin/env bash
# A run over a generated farm of pages in bounded memory, descriptors and time per page. Prints one row of a table every
# ten seconds. What must hold: no more descriptors than at the beginning, and no more memory than the links need.
# usage: tests/reliability/soak.sh PAGES [SECONDS]     after SECONDS the run is stopped, in order
#   SOAK_EVERY=60    seconds from row to row
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
pages=${1:-1000000}
limit=${2:-}
every=${SOAK_EVERY:-10}
quenlar=${QUENLAR:-$PWD/build/linux/quenlar}
bytes_a_page=64 # of memory, at most, for what a page leaves behind: the links it names, to know them again
work=$(mktemp -d)
farm_pid= run_pid=
cleanup() {
  for pid in "$run_pid" "$farm_pid"; do [ -z "$pid" ] || kill "$pid" 2>/dev/null || true; done
  rm -rf "$work"
}
trap cleanup EXIT

mkfifo "$work/keep" "$work/answers" "$work/never"
build/linux/farm_server $((pages / 10)) 9 0 0 <"$work/keep" >"$work/answers" &
farm_pid=$!
exec 9>"$work/keep" 8<"$work/answers"
read -r port <&8

"$quenlar" --home "$work/home" extract www.h0.example --proxy "http://127.0.0.1:$port" --assume-online --other-sites yes \
  --summary "$work/summary" >/dev/null 2>"$work/log" &
run_pid=$!
tick=$(getconf CLK_TCK)
seconds=0 first_memory= memory= descriptors= cpu= answered=0 most_descriptors=0 stopped=
measure() {
  local now
  now=$(awk '/^VmRSS/ { print $2 }' "/proc/$run_pid/status") && [ -n "$now" ] || return 1
  memory=$now
  descriptors=$(ls "/proc/$run_pid/fd" | wc -l)
  cpu=$(awk -v t="$tick" '{ printf "%.1f", ($14 + $15) / t }' "/proc/$run_pid/stat")
  echo >&9 && read -r answered <&8
} 2>/dev/null
echo "| seconds | pages | memory MB | descriptors | processor s |"
echo "|---|---|---|---|---|"
while kill -0 "$run_pid" 2>/dev/null; do
  # The first row is one of a run in full swing.
  read -r -t "$every" _ <>"$work/never" 2>/dev/null || true
  seconds=$((seconds + every))
  measure || break
  echo "| $seconds | $answered | $((memory / 1024)) | $descriptors | $cpu |"
  [ -n "$first_memory" ] || first_memory=$memory
  [ "$descriptors" -le "$most_descriptors" ] || most_descriptors=$descriptors
  if [ -n "$limit" ] && [ "$seconds" -ge "$limit" ] && [ -z "$stopped" ]; then
    stopped=yes
    kill -INT "$run_pid"
  fi
done
status=0
wait "$run_pid" || status=$?
run_pid=
echo
echo "Exit status $status. $(cat "$work/summary" 2>/dev/null)"
[ -n "$first_memory" ] || { echo "soak: over before the first row; more pages are needed" >&2; exit 2; }
allowed=$((first_memory + 8192 + answered * bytes_a_page / 1024))
[ "$memory" -le "$allowed" ] || { echo "soak: $memory KB at the end, $allowed KB would do" >&2; exit 1; }
[ "$most_descriptors" -le 64 ] || { echo "soak: $most_descriptors descriptors" >&2; exit 1; }
[ "$status" -eq "$([ -n "$stopped" ] && echo 130 || echo 0)" ]
