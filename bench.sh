#!/usr/bin/env bash
# Installs what Quenlar is compared with, fetches the corpus, runs every comparison, writes docs/performance.md and
# prints how each measured value stands to its goal. Full takes about ten minutes on an idle machine, and the corpus to fetch.
# usage: ./bench.sh [quick|full]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
size=${1:-quick}
case "$size" in
  quick) keys="100000" most=$((4 << 20)) lines=1000000 dense=32000000 every=4 long_hosts=20000 archive=100000000 ;;
  full) keys="100000 1000000 10000000" most=$((64 << 20)) lines=10000000 dense=171000000 every=8 long_hosts=100000 archive=500000000 ;;
  *) echo "usage: ./bench.sh [quick|full]" >&2; exit 2 ;;
esac
rounds=3

scripts/install.sh bench
scripts/build.sh bench quenlar compare_harvest compare_page compare_tables compare_files growth delay_proxy web_of_hosts
corpus=${QUENLAR_CORPUS:-$PWD/build/bench/corpus}
bench/corpus.sh "$size" >&2
# The slow parsers go through one page in so many.
awk -v n=$every 'NR % n == 1' "$corpus/$size.pages" >"$corpus/$size.some-pages"
bin=build/bench
out=build/bench/performance.md
parts=build/bench/parts
rm -rf "$parts"
mkdir -p "$parts"

part() { # NAME COMMAND...: a part that fails is told of in the page, not left out
  local name=$1 start=$SECONDS
  shift
  printf 'bench: %s ... ' "$name" >&2
  if ! "$@" >"$parts/$name.md" 2>"$parts/$name.log"; then
    printf '\nGoal: %s (runs to its end). Measured: it does not, **not met**.\n' "$name" >>"$parts/$name.md"
    printf 'FAILED, see %s/%s.log; ' "$parts" "$name" >&2
  fi
  echo "$((SECONDS - start)) s" >&2
}
tables() {
  printf '\n## Duplicate tests\n'
  for count in $keys; do "$bin/compare_tables" "$count" $((count > 1000000 ? 1 : rounds)) || return 1; done
}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
part harvest "$bin/compare_harvest" "$corpus/$size.pages" $dense $rounds
part page "$bin/compare_page" "$corpus/$size.some-pages" $rounds
part growth "$bin/growth" $most
part tables tables
part files "$bin/compare_files" "$scratch" 9
part crawl bench/crawl.sh $rounds
part collect bench/collect.sh $rounds $long_hosts
part recall bench/recall.py "$bin/quenlar"
part merge bench/merge.sh $lines $rounds
part archives bench/archives.sh "$corpus/$size.pages" $archive 7
part window bench/window.sh
names="harvest page growth tables files crawl collect recall merge archives window"

goals() { # "Goal: NAME (at least W). Measured: M, met." as rows
  for name in $names; do cat "$parts/$name.md"; done |
    sed -nE 's/^Goal: (.*) \(([^()]*)\)\. Measured: (.*), (met|\*\*not met\*\*)\.$/| \1 | \2 | \3 | \4 |/p'
}
{
  cat <<HEAD
# Performance

How fast Quenlar is next to others, measured on one machine in one go, in turns (A B A B), by \`./bench.sh $size\`. Ratios carry
over from machine to machine, absolute figures hardly do. Processor time is counted, not elapsed time, unless a row says
otherwise. Corpus: $(wc -l <"$corpus/$size.pages") HTML pages out of Debian documentation packages (\`bench/corpus.sh\`), and generated
mailing-list archives (\`bench/pages.cpp\`). How the harvest works: [harvest.md](harvest.md).

- Machine: $(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -1), $(nproc) cores; one core per run; load when the run ended: $(cut -d' ' -f1 /proc/loadavg).
- Compiler: $(g++ --version | head -1).
- Compared with: $(dpkg-query -W -f='${Package} ${Version}; ' libpcre2-dev libre2-dev libhyperscan-dev libxml2-dev libgumbo-dev wget wget2 curl coreutils mawk nginx-light libdeflate-tools isal grep python3 2>/dev/null)

## Goals

| goal | wanted | measured | |
|---|---|---|---|
HEAD
  goals
  [ ! -f docs/performance-notes.md ] || cat docs/performance-notes.md
  for name in $names; do cat "$parts/$name.md"; done | grep -v '^Goal: ' | cat -s
} >"$out"
cp "$out" docs/performance.md
goals | sed -E 's/^\| (.*) \| (.*) \| (.*) \| (.*) \|$/\4\t\1: \3 (\2)/; s/\*\*not met\*\*/MISSED/' | awk -F'\t' '{ printf "%-7s %s\n", $1, $2 }'
echo "docs/performance.md is written."
