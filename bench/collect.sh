#!/usr/bin/env bash
# Collections over a made-up web on loopback (bench/web_of_hosts.cpp): one host next to other crawlers, 64 hosts with an
# answer in 50 ms, 1,000 hosts with a pause of a second, and one crawl of many pages with its cost and memory from first
# to last. usage: bench/collect.sh ROUNDS HOSTS-OF-THE-LONG-CRAWL
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
rounds=${1:-3}
long_hosts=${2:-2000}
quenlar=${QUENLAR:-$PWD/build/bench/quenlar}
work=$(mktemp -d)
server_pid=
cleanup() {
  [ -z "$server_pid" ] || kill "$server_pid" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT

serve() { # PAGES-A-HOST MILLISECONDS: sets $port
  [ -z "$server_pid" ] || { kill "$server_pid"; wait "$server_pid" || true; }
  while :; do
    port=$((20000 + RANDOM % 12000))
    (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null || break
  done
  build/bench/web_of_hosts "$port" "$1" "$2" >"$work/answers" &
  server_pid=$!
  until (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; do :; done
}
hosts() { # COUNT: one address of a host a line
  awk -v n="$1" -v port="$port" \
    'BEGIN { for (i = 0; i < n; ++i) printf "http://127.%d.%d.%d:%d/\n", 1 + int(i / 62500), int(i / 250) % 250, 1 + i % 250, port }'
}
collect() { # STARTS-FILE OPTION...: leaves $work/summary and $work/time
  local starts=$1
  shift
  rm -rf "$work/home"
  /usr/bin/time -f '%e %U %S %M' -o "$work/time" "$quenlar" --home "$work/home" collect --from "$starts" --name bench \
    --assume-online --summary "$work/summary" "$@" >"$work/found" 2>"$work/messages"
}
of_summary() { sed -E "s/.*\"$1\":([0-9.]+).*/\1/" "$work/summary"; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.3f", a / b }'; }
median() { sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

printf '\n## Collections\n'

pages=2000
serve "$pages" 0
hosts 1 >"$work/one"
start=$(cat "$work/one")
: >"$work/results"
measure() { # NAME COMMAND...
  local name=$1
  shift
  rm -rf "$work/run"
  mkdir -p "$work/run"
  (cd "$work/run" && /usr/bin/time -f '%e %U %S %M' -o "$work/time" "$@" >"$work/output" 2>&1) || true
  tail -n 1 "$work/time" | awk -v name="$name" -v n="$pages" \
    '{ printf "%s\t%.0f\t%.4f\t%.1f\n", name, n / $1, ($2 + $3) * 1000 / n, $4 / 1024 }' >>"$work/results"
}
for _ in $(seq "$rounds"); do
  measure "quenlar collect" "$quenlar" --home "$work/run" collect "$start" --delay 0 --pages-per-host "$pages" --assume-online
  [ "$(wc -l <"$work/output")" -ge "$pages" ] || { echo "collect has found too little" >&2; exit 1; }
  measure "wget2 -r, 1 thread" wget2 -q -r -l 9 --max-threads=1 "$start"
  measure "Scrapy, a spider of 30 lines" /usr/bin/python3 "$PWD/bench/spider.py" "$start" "$work/run/found.jsonl"
  [ "$(wc -l <"$work/run/found.jsonl")" = "$pages" ] || { echo "the spider has found too little" >&2; exit 1; }
done
value() { awk -F'\t' -v n="$1" '$1 == n' "$work/results" | cut -f"$2" | median; }
printf '\n### One host, %s pages, no pause\n\nDatabase and robots.txt included; wget2 keeps the pages as files, and no addresses.\n' "$pages"
printf '\n| client | pages/s (median) | processor s per 1,000 pages | memory MB |\n|---|---|---|---|\n'
cut -f1 "$work/results" | awk '!seen[$0]++' | while read -r name; do
  echo "| $name | $(value "$name" 2) | $(value "$name" 3) | $(value "$name" 4) |"
done
us=$(value "quenlar collect" 3)
bench/goal.sh "collect: processor time a page, share of a Scrapy spider's" at-most 0.1 \
  "$(ratio "$us" "$(value "Scrapy, a spider of 30 lines" 3)")"
bench/goal.sh "collect: processor time a page, times wget2's" at-most 1 "$(ratio "$us" "$(value "wget2 -r, 1 thread" 3)")"

# What connections can give: of each host one answer after the other, robots.txt too.
printf '\n### Many hosts\n\n| hosts | pages a host | pause | pages | seconds | seconds that the connections and pauses take |\n|---|---|---|---|---|---|\n'
share() { # GOAL HOSTS PAGES PAUSE LEAST
  serve "$3" 50
  hosts "$2" >"$work/starts"
  collect "$work/starts" --hosts "$2" --delay "$4" --pages-per-host "$3"
  local least
  least=$(awk -v n="$3" -v pause="$4" 'BEGIN { print (n + 1) * 0.05 + n * pause }')
  echo "| $2 | $3 | $4 s | $(of_summary pages) | $(of_summary seconds) | $least |"
  [ "$(of_summary pages)" = $(($2 * $3)) ] || { echo "collect has not read every page" >&2; exit 1; }
  echo "$1 at-least $5 $(ratio "$least" "$(of_summary seconds)")" >>"$work/goals"
}
share "busy" 64 300 0 0.95
share "paused" 1000 60 1 0.98
while read -r which way wanted measured; do
  case "$which" in
    busy) what="collect: 64 hosts that answer in 50 ms, share of what 64 connections can give" ;;
    paused) what="collect: 1,000 hosts with a pause of 1 s, share of what the pauses allow" ;;
  esac
  bench/goal.sh "$what" "$way" "$wanted" "$measured"
done <"$work/goals"

# The long crawl: ten pages a host. How many pages are done, and its processor time and memory, are noted on the way.
serve 10 0
hosts "$long_hosts" >"$work/starts"
rm -rf "$work/home"
"$quenlar" --home "$work/home" collect --from "$work/starts" --name bench --assume-online --delay 0 --hosts 256 \
  --summary "$work/summary" >"$work/found" 2>"$work/messages" &
crawl=$!
: >"$work/course"
while sleep 0.2 && [ -r "/proc/$crawl/stat" ]; do
  found=$(wc -l <"$work/found")
  ticks=$(cut -d' ' -f14,15 "/proc/$crawl/stat" 2>/dev/null | tr ' ' '+') || break
  memory=$(sed -n 's/^VmRSS:[^0-9]*\([0-9]*\).*/\1/p' "/proc/$crawl/status" 2>/dev/null) || break
  [ -n "$memory" ] && echo "$found $((ticks)) $memory" >>"$work/course"
done
wait "$crawl"
total=$((long_hosts * 10))
[ "$(of_summary pages)" = "$total" ] || { echo "the long crawl has not read every page" >&2; exit 1; }
printf '\n### %s pages on %s hosts\n\n%s s, a database of %s MB.\n\n| pages done | processor ms a page since the row before | memory MB |\n|---|---|---|\n' \
  "$total" "$long_hosts" "$(of_summary seconds)" "$(($(stat -c %s "$work/home/data/bench.sqlite") >> 20))"
awk -v total="$total" -v hz="$(getconf CLK_TCK)" '
  { while ($1 >= (step + 1) * total / 10 && $1 > pages) {
      printf "| %d | %.3f | %.0f |\n", $1, ($2 - ticks) * 1000 / hz / ($1 - pages), $3 / 1024
      pages = $1; ticks = $2; step = int($1 * 10 / total) } }' "$work/course"
awk -v total="$total" -v hz="$(getconf CLK_TCK)" -f bench/course.awk "$work/course" >docs/images/long-crawl.svg
printf '\n![Memory and cost of a page from first to last](images/long-crawl.svg)\n'
bench/goal.sh "collect, the long crawl: megabytes of memory at most" at-most 200 \
  "$(awk '$3 > most { most = $3 } END { print most / 1024 }' "$work/course")"
# The cost of the last tenth of the pages to that of the second: the first one holds the start of the program.
bench/goal.sh "collect, the long crawl: cost a page at its end, times that near its beginning" at-most 1.3 \
  "$(awk -v total="$total" '
    !a && $1 >= total * 0.1 { a = $1; at = $2 }  a && !b && $1 >= total * 0.4 { b = $1; bt = $2 }
    !c && $1 >= total * 0.6 { c = $1; ct = $2 }  $1 <= total * 0.95 { d = $1; dt = $2 }
    END { print (dt - ct) / (d - c) / ((bt - at) / (b - a)) }' "$work/course")"
