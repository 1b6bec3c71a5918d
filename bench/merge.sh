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

us="quenlar merge"
sort="sort -fu"
awk="awk, one line"
measure() { # NAME COMMAND...
  local name=$1
  shift
  /usr/bin/time -f '%e %U %S %M' -o "$work/time" "$@" >/dev/null
  awk -v name="$name" '{ printf "%s\t%.2f\t%.2f\t%.0f\n", name, $1, $2 + $3, $4 / 1024 }' "$work/time" >>"$work/results"
}
for _ in $(seq "$rounds"); do
  measure "$us" "$quenlar" --home "$work" merge "$work/book.txt" --output "$work/out.txt" --force
  measure "$sort" env LC_ALL=C sort -fu "$work/book.txt" -o "$work/sorted.txt"
  measure "$awk" env LC_ALL=C awk '!seen[tolower($0)]++' "$work/book.txt"
done
printf '\n## Merge\n\n%s lines, %s rounds in turns.\n\n| tool | seconds (median) | processor seconds | memory MB |\n|---|---|---|---|\n' "$lines" "$rounds"
value() { # NAME COLUMN: the median of the rounds
  awk -F'\t' -v n="$1" '$1 == n' "$work/results" | cut -f"$2" | sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'
}
times() { awk -v a="$(value "$1" "$2")" -v b="$(value "$us" "$2")" 'BEGIN { printf "%.3f", a / b }'; } # NAME COLUMN
for name in "$us" "$sort" "$awk"; do
  echo "| $name | $(value "$name" 2) | $(value "$name" 3) | $(value "$name" 4) |"
done
printf '\n%s distinct addresses by quenlar, %s lines by sort.\n' "$(wc -l <"$work/out.txt")" "$(wc -l <"$work/sorted.txt")"
bench/goal.sh "merge: sort -fu, times the program's processor time" at-least 5 "$(times "$sort" 3)"
bench/goal.sh "merge: sort -fu, times the program's elapsed time" at-least 5 "$(times "$sort" 2)"
bench/goal.sh "merge: awk, times the program's processor time" at-least 3 "$(times "$awk" 3)"
bench/goal.sh "merge: awk, times the program's elapsed time" at-least 3 "$(times "$awk" 2)"
bench/goal.sh "merge: memory of sort -fu, times the program's" at-least 1 "$(times "$sort" 4)"
bench/goal.sh "merge: memory of awk, times the program's" at-least 1 "$(times "$awk" 4)"
