#!/usr/bin/env bash
# Reading archives of pages against unpacking them alone, grep and Python, in turns: processor time, and the time by the
# clock with two cores. Tells the lowest of the rounds, because whatever else runs can only add to it.
# usage: bench/archives.sh LIST-OF-PAGES MOST-BYTES ROUNDS
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
pages=$1
most=${2:-500000000}
rounds=${3:-5}
quenlar=${QUENLAR:-$PWD/build/bench/quenlar}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
read -r count bytes < <(/usr/bin/python3 bench/make_archive.py "$pages" "$most" "$work/pages")
plain=$work/pages.warc
members=$work/pages.warc.gz
single=$work/pages.one.warc.gz

for file in "$plain" "$members" "$single"; do
  "$quenlar" harvest --jobs 2 "$file" 2>/dev/null | cmp - <("$quenlar" harvest --jobs 1 "$plain" 2>/dev/null) >&2
done
found=$("$quenlar" harvest "$plain" 2>/dev/null | wc -l)
[ "$found" -gt 0 ] || { echo "no address has been found" >&2; exit 1; }

measure() { # NAME COMMAND...: adds name, processor seconds, seconds by the clock, megabytes
  local name=$1
  shift
  /usr/bin/time -f '%U %S %e %M' -o "$work/time" "$@" >/dev/null 2>"$work/messages"
  tail -n 1 "$work/time" | awk -v name="$name" '{ printf "%s\t%.2f\t%.2f\t%.0f\n", name, $1 + $2, $3, $4 / 1024 }' >>"$work/results"
}
pattern='[A-Za-z0-9._%+-]+@[A-Za-z0-9.-]+\.[A-Za-z]{2,}'
for round in $(seq "$rounds"); do
  measure "libdeflate-gunzip -c" libdeflate-gunzip -c "$members"
  measure "quenlar harvest --jobs 1" "$quenlar" harvest --jobs 1 "$members"
  measure "quenlar harvest --jobs 2" "$quenlar" harvest --jobs 2 "$members"
  measure "quenlar harvest --jobs 1 --format jsonl" "$quenlar" harvest --jobs 1 --format jsonl "$members"
  rm -rf "$work/home"
  measure "quenlar harvest --jobs 1 --name" "$quenlar" --home "$work/home" harvest --jobs 1 --name bench "$members"
  measure "quenlar harvest --jobs 1, one gzip member" "$quenlar" harvest --jobs 1 "$single"
  measure "igzip -dc, one gzip member" igzip -dc "$single"
  measure "quenlar harvest --jobs 1, plain" "$quenlar" harvest --jobs 1 "$plain"
  # These take long.
  [ $((round % 3)) = 1 ] || continue
  measure "igzip -dc, grep -aoE" bash -c "igzip -dc '$members' | LC_ALL=C grep -aoE '$pattern'"
  measure "zcat, grep -aoE" bash -c "zcat '$members' | LC_ALL=C grep -aoE '$pattern'"
  measure "Python, gzip and re" /usr/bin/python3 bench/archive_with_re.py "$members"
done

lowest() { awk -F'\t' -v n="$1" -v c="$2" '$1 == n && (m == "" || $c < m) { m = $c } END { print m }' "$work/results"; }
share() { awk -v a="$(lowest "$1" "$3")" -v b="$(lowest "$2" "$3")" 'BEGIN { printf "%.3f", a / b }'; } # NAME NAME COLUMN
megabytes() { echo $(($(stat -c %s "$1") / 1000000)); }
printf '\n## Archives\n\n%s pages, %s MB of text: %s MB in a gzip member a record, %s MB in a single one. %s addresses. The lowest of %s rounds in turns.\n' \
  "$count" "$((bytes / 1000000))" "$(megabytes "$members")" "$(megabytes "$single")" "$found" "$rounds"
printf '\n| way | processor s | MB/s of text | s by the clock | memory MB |\n|---|---|---|---|---|\n'
cut -f1 "$work/results" | awk '!seen[$0]++' | while read -r name; do
  awk -v name="$name" -v s="$(lowest "$name" 2)" -v clock="$(lowest "$name" 3)" -v m="$(lowest "$name" 4)" -v b="$bytes" \
    'BEGIN { printf "| %s | %.2f | %.0f | %.2f | %d |\n", name, s, b / 1e6 / s, clock, m }'
done

us="quenlar harvest --jobs 1"
bench/goal.sh "archives, a gzip member a record: processor time, times libdeflate-gunzip's" at-most 1.35 "$(share "$us" "libdeflate-gunzip -c" 2)"
bench/goal.sh "archives: zcat and grep, times the program's processor time" at-least 4.5 "$(share "zcat, grep -aoE" "$us" 2)"
bench/goal.sh "archives: Python with a regular expression, times the program's processor time" at-least 18 "$(share "Python, gzip and re" "$us" 2)"
bench/goal.sh "archives: two cores, share of the time of one by the clock" at-most 0.55 "$(share "quenlar harvest --jobs 2" "$us" 3)"
bench/goal.sh "archives, one gzip member: processor time, times igzip's" at-most 1.5 "$(share "$us, one gzip member" "igzip -dc, one gzip member" 2)"
bench/goal.sh "archives, plain: pace, times that of libdeflate-gunzip" at-least 1.29 "$(share "libdeflate-gunzip -c" "$us, plain" 2)"
bench/goal.sh "archives: JSON lines, times the processor time of plain lines" at-most 1.1 "$(share "$us --format jsonl" "$us" 2)"
bench/goal.sh "archives: a collection, times the processor time of lines" at-most 1.5 "$(share "$us --name" "$us" 2)"
bench/goal.sh "archives: megabytes of memory at most" at-most 200 \
  "$(awk -F'\t' '$1 ~ /^quenlar/ && $4 > most { most = $4 } END { print most }' "$work/results")"
