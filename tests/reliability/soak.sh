#!/usr/bin/env bash
# A run over a generated farm of pages in bounded memory, descriptors and time per page. Prints one row of a table per
# tenth of the run. usage: tests/reliability/soak.sh PAGES
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
pages=${1:-1000000}
quenlar=${QUENLAR:-$PWD/build/linux/quenlar}
work=$(mktemp -d)
farm_pid= run_pid=
cleanup() {
  for pid in "$run_pid" "$farm_pid"; do [ -z "$pid" ] || kill "$pid" 2>/dev/null || true; done
  rm -rf "$work"
}
trap cleanup EXIT

mkfifo "$work/keep" "$work/port" "$work/never"
build/linux/farm_server $((pages / 10)) 9 0 0 <"$work/keep" >"$work/port" &
farm_pid=$!
exec 9>"$work/keep"
read -r port <"$work/port"

"$quenlar" --home "$work/home" extract www.h0.example --proxy "http://127.0.0.1:$port" --assume-online --other-sites yes \
  --summary "$work/summary" >/dev/null 2>"$work/log" &
run_pid=$!
echo "| seconds | memory MB | descriptors | processor s |"
echo "|---|---|---|---|"
tick=$(getconf CLK_TCK)
seconds=0
while kill -0 "$run_pid" 2>/dev/null; do
  memory=$(awk '/^VmRSS/ { printf "%.1f", $2 / 1024 }' "/proc/$run_pid/status" 2>/dev/null || true)
  descriptors=$(ls "/proc/$run_pid/fd" 2>/dev/null | wc -l)
  cpu=$(awk -v t="$tick" '{ printf "%.1f", ($14 + $15) / t }' "/proc/$run_pid/stat" 2>/dev/null || true)
  [ -z "$memory" ] || echo "| $seconds | $memory | $descriptors | $cpu |"
  read -r -t 10 _ <>"$work/never" 2>/dev/null || true
  seconds=$((seconds + 10))
done
status=0
wait "$run_pid" || status=$?
run_pid=
echo
echo "Exit status $status. $(cat "$work/summary" 2>/dev/null)"
[ "$status" -eq 0 ]
