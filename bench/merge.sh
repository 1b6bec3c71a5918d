#!/usr/bin/env bash
# Merging address books against sort and awk on the same lines. usage: bench/merge.sh LINES ROUNDS
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
lines=${1:-10000000}
rounds=${2:-3}
quenlar=${QUENLAR:-$PWD/build/bench/quenlar}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# A third of the lines are spelled differently, a third are repeated.
awk -v n="$lines" 'BEGIN { for (i = 0; i < n; ++i) { k = i % 3 == 2 ? i - 2 : i; a = "person" k * 7919 % n "@mail" k % 977 ".example.org";
  if (i % 3 == 1) a = toupper(a); print a } }' >"$work/book.txt"

measure() { # NAME COMMAND...
  local name=$1
  shift
  /usr/bin/time -f '%e %U %S %M' -o "$work/time" "$@" >/dev/null
  awk -v name="$name" '{ printf "%s\t%.2f\t%.2f\t%.0f\n", name, $1, $2 + $3, $4 / 1024 }' "$work/time" >>"$work/results"
}
for _ in $(seq "$rounds"); do
  measure "quenlar merge" "$quenlar" --home "$work" merge "$work/book.txt" --output "$work/out.txt" --force
  measure "sort -fu" env LC_ALL=C sort -fu "$work/book.txt" -o "$work/sorted.txt"
  measure "awk, one line" env LC_ALL=C awk '!seen[tolower($0)]++' "$work/book.txt"
done
printf '\n## Merge\n\n%s lines, %s rounds in turns.\n\n| tool | seconds (median) | processor seconds | memory MB |\n|---|---|---|---|\n' "$lines" "$rounds"
cut -f1 "$work/results" | awk '!seen[$0]++' | while read -r name; do
  awk -F'\t' -v n="$name" '$1 == n' "$work/results" >"$work/one"
  median() { cut -f"$1" "$work/one" | sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
  echo "| $name | $(median 2) | $(median 3) | $(median 4) |"
done
printf '\n%s distinct addresses by quenlar, %s lines by sort.\n' "$(wc -l <"$work/out.txt")" "$(wc -l <"$work/sorted.txt")"
