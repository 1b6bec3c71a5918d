#!/usr/bin/env bash
# Builds the hot-path benchmarks of two commits and compares the medians. usage: bench/compare_commits.sh OLD [NEW]
# For those who change a hot path: a row above 1.05 deserves a reason.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
old=${1:?usage: bench/compare_commits.sh OLD [NEW]}
new=${2:-HEAD}
scripts/install.sh bench
work=$(mktemp -d)
cleanup() {
  git worktree remove --force "$work/old" 2>/dev/null || true
  git worktree remove --force "$work/new" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
for side in old new; do
  git worktree add -q --detach "$work/$side" "${!side}"
  (cd "$work/$side" && scripts/build.sh bench hot_paths)
done
for round in 1 2 3; do
  for side in old new; do
    "$work/$side/build/bench/hot_paths" --benchmark_repetitions=3 --benchmark_report_aggregates_only=true \
      --benchmark_format=csv 2>/dev/null | grep '_median"' | awk -F, -v s=$side '{ print s "," $1 "," $4 }' >>"$work/results"
  done
done
echo "| hot path | new over old (processor time, median of medians) |"
echo "|---|---|"
cut -d, -f2 "$work/results" | sort -u | while read -r name; do
  median() { awk -F, -v s="$1" -v n="$name" '$1 == s && $2 == n { print $3 }' "$work/results" | sort -g | sed -n 2p; }
  awk -v a="$(median new)" -v b="$(median old)" -v n="${name//\"/}" 'BEGIN { printf "| %s | %.3f |\n", n, a / b }'
done
