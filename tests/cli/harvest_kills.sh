#!/usr/bin/env bash
# harvest from outside: the same bytes whatever the number of cores, and a harvest into a collection that is killed again
# and again and still prints every row once; what is told when it is started again. usage: harvest_kills.sh PROGRAM
#   QUENLAR_KILLS=1000     after that so many kills at random instants, in one collection after the other
#   KILL_WITHIN_MS=1500    the latest of these instants, from the start of the program on
set -uo pipefail
program=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export QUENLAR_HOME=$work/home
failed=0
expect() {  # WHAT WANTED FOUND
  [ "$2" = "$3" ] && return
  echo "[  FAILED  ] $1: expected '$2', got '$3'"
  failed=1
}

# An archive of many small answers; the addresses, and so the rows, are all different.
records() {  # FIRST LAST
  LC_ALL=C awk -v first="$1" -v last="$2" 'BEGIN {
    for (i = first; i <= last; ++i) {
      page = sprintf("<title>Page %d</title><p>a%d@firma.de, b%d@firma.de and <a href=\"mailto:c%d@firma.de\">c</a>", i, i, i, i)
      block = "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n" page
      printf "WARC/1.1\r\nWARC-Type: response\r\nWARC-Date: 2026-11-22T13:20:32Z\r\n"
      printf "WARC-Target-URI: http://www.firma.de/%d\r\nContent-Length: %d\r\n\r\n%s\r\n\r\n", i, length(block), block
    }
  }'
}
mkdir "$work/in"
records 1 20000 >"$work/in/a.warc"
records 20001 40000 | gzip >"$work/in/b.warc.gz"
for ((i = 0; i < 40; ++i)); do records $((40001 + i * 20)) $((40020 + i * 20)) | gzip; done >"$work/in/c.warc.gz"

for format in lines csv jsonl; do
  "$program" harvest --jobs 1 --format $format "$work/in" >"$work/$format.1" 2>/dev/null
  expect "exit status" 0 $?
  for jobs in 2 3 4; do
    "$program" harvest --jobs $jobs --format $format "$work/in" >"$work/$format.$jobs" 2>/dev/null
    cmp -s "$work/$format.1" "$work/$format.$jobs" || expect "$format with $jobs cores" "the same bytes" "others"
  done
  "$program" harvest --format $format "$work/in" >"$work/$format.all" 2>/dev/null
  cmp -s "$work/$format.1" "$work/$format.all" || expect "$format with all cores" "the same bytes" "others"
  expect "rows of $format" 122400 "$(wc -l <"$work/$format.1")"
done

harvest() { # begins one; $running is its process
  rm -f "$work/out" "$work/err"
  "$program" harvest --name all --format jsonl "$work/in" >"$work/out" 2>"$work/err" &
  running=$!
}
check_collection() {
  expect "rows that came twice" 0 "$(sort "$work/rows" | uniq -d | wc -l)"
  "$program" addresses all --format lines 2>/dev/null | sort >"$work/held"
  cmp -s "$work/held" "$work/wanted" || expect "addresses in the collection" "all" "$(wc -l <"$work/held")"
}

# Killed as soon as it has printed something, until there is nothing more to print.
kills=0
: >"$work/rows"
for ((round = 0; round < 200; ++round)); do
  harvest
  while [ ! -s "$work/out" ] && kill -0 $running 2>/dev/null; do read -rt 0.02 <> <(:) || true; done
  kill -KILL $running 2>/dev/null && kills=$((kills + 1))
  wait $running 2>/dev/null
  # A row that was cut off by the kill was in the collection already, as its beginning shows.
  cat "$work/out" >>"$work/rows"
  grep -q 'This harvest is finished' "$work/err" && break
done
expect "the last message" "This harvest is finished: everything in its inputs is in the collection." "$(cat "$work/err")"
sort "$work/lines.1" >"$work/wanted"
check_collection
echo "$kills kills, $(wc -l <"$work/rows") rows printed before them"

# What is new alone is printed.
records 50001 50002 >"$work/in/d.warc"
expect "rows of a new file" 6 "$("$program" harvest --name all --format csv "$work/in" 2>/dev/null | wc -l)"

# An end that leaves nothing to a later run is remembered, with the damage that was found; any other input is tried again.
mkdir "$work/odd"
ln -s "$work/in/a.warc" "$work/odd/link.warc"
: >"$work/odd/empty"
"$program" harvest "$work/odd" "$work/odd/empty" >"$work/out" 2>"$work/err"
expect "status of nothing" 0 $?
expect "what a link in a folder leads to" "" "$(cat "$work/out")"
rm "$work/odd/link.warc" "$work/odd/empty"

# An input that has changed is read anew: by its size, or by the time of its change.
records 55001 55002 >"$work/changed.warc"
touch -d "2026-01-01 00:00:01" "$work/changed.warc"
rows() { "$program" harvest --name changed --format csv "$work/changed.warc" 2>/dev/null | wc -l; }
expect "rows of it" 6 "$(rows)"
expect "rows of it as it was" 0 "$(rows)"
touch -d "2026-01-01 00:00:02" "$work/changed.warc"
expect "rows of it with another time" 6 "$(rows)"
records 55003 55003 >>"$work/changed.warc"
touch -d "2026-01-01 00:00:02" "$work/changed.warc"
expect "rows of it with another size" 9 "$(rows)"
{ records 60001 60002; records 60003 60003 | head -c 200; records 60004 60004; } >"$work/odd/damaged.warc"
echo "filedesc://x.arc 0.0.0.0 20200101000000 text/plain 1" >"$work/odd/old.arc"
for time in first second; do
  "$program" harvest --name odd --summary "$work/summary" "$work/odd/damaged.warc" >"$work/out" 2>"$work/err"
  expect "status of damage, $time time" 1 $?
  expect "damage, $time time" 1 "$(grep -c 'damaged.warc: 1 damaged record' "$work/err")"
  expect "summary of damage, $time time" '"damaged":1,"other":0,"unread":0}' "$(grep -o '"damaged.*' "$work/summary")"
done
expect "rows of what is finished" "" "$(cat "$work/out")"
expect "the end" "This harvest is finished: everything readable in its inputs is in the collection." "$(tail -n 1 "$work/err")"
for input in "$work/odd/old.arc" "$work/missing" /proc/self/mem; do
  for time in first second; do
    "$program" harvest --name odd "$input" >/dev/null 2>"$work/err"
    expect "status of $input, $time time" 1 $?
    expect "$input, $time time" 1 "$(grep -c "$input" "$work/err")"
    expect "end of $input, $time time" 0 "$(grep -c 'is finished' "$work/err")"
  done
done
rm "$work/in/d.warc"

# Killed at random instants. The last one comes to its end in peace.
mkfifo "$work/never"
killed=0 collections=0
while [ $killed -lt "${QUENLAR_KILLS:-0}" ] && [ $failed -eq 0 ]; do
  rm -rf "$QUENLAR_HOME"
  : >"$work/rows"
  status=137
  while [ $status -eq 137 ]; do
    harvest
    if [ $killed -lt "$QUENLAR_KILLS" ]; then
      ms=$((RANDOM % ${KILL_WITHIN_MS:-1500}))
      read -r -t "$((ms / 1000)).$(printf '%03d' $((ms % 1000)))" _ <>"$work/never" 2>/dev/null || true
      kill -KILL $running 2>/dev/null
    fi
    wait $running 2>/dev/null
    status=$?
    cat "$work/out" >>"$work/rows"
    [ $status -ne 137 ] || killed=$((killed + 1))
  done
  expect "exit status of a continued harvest" 0 $status
  check_collection
  collections=$((collections + 1))
done
[ $killed -eq 0 ] || echo "$killed kills at random instants, $collections collections, $(wc -l <"$work/wanted") addresses"
[ $failed -eq 0 ] && echo "[  PASSED  ]"
exit $failed
