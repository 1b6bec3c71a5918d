#!/usr/bin/env bash
# Installs what Quenlar is compared with, fetches the corpus, runs every comparison and writes docs/performance.md.
# usage: ./bench.sh [quick|full]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
size=${1:-quick}
case "$size" in
  quick) rounds=3 keys="100000" most=$((4 << 20)) lines=1000000 ;;
  full) rounds=5 keys="100000 1000000 10000000" most=$((64 << 20)) lines=10000000 ;;
  *) echo "usage: ./bench.sh [quick|full]" >&2; exit 2 ;;
esac

scripts/install.sh bench
scripts/build.sh bench
corpus=${QUENLAR_CORPUS:-$PWD/build/bench/corpus}
bench/corpus.sh "$size" >&2
bin=build/bench
out=build/bench/performance.md
parts=build/bench/parts
mkdir -p "$parts"

part() { # NAME COMMAND...: a part that fails is told of in the page, not left out
  local name=$1
  shift
  echo "bench: $name" >&2
  if ! "$@" >"$parts/$name.md" 2>"$parts/$name.log"; then
    printf '\n## %s\n\nThis part has failed; see the log.\n' "$name" >>"$parts/$name.md"
  fi
}
part harvest "$bin/compare_harvest" "$corpus/$size.pages" $rounds
part page "$bin/compare_page" "$corpus/$size.pages" $rounds
part growth "$bin/growth" $most
part tables bash -c 'echo; echo "## Duplicate tests"; for k in '"$keys"'; do '"$bin"'/compare_tables $k '$((rounds > 3 ? 3 : rounds))'; done'
scratch=$(mktemp -d)
part files "$bin/compare_files" "$scratch" $rounds
rm -rf "$scratch"
part crawl bench/crawl.sh $rounds
part merge bench/merge.sh $lines 3

{
  cat <<HEAD
# Performance

How fast Quenlar is next to others, measured on one machine in one go, in turns (A B A B), by \`./bench.sh $size\`. Ratios carry
over from machine to machine, absolute figures hardly do. Corpus: $(wc -l <"$corpus/$size.pages") HTML pages out of Debian
documentation packages (\`bench/corpus.sh\`), and generated address-dense pages.

- Machine: $(sed -n 's/^model name[^:]*: //p' /proc/cpuinfo | head -1), $(nproc) cores; one core per run.
- Compiler: $(g++ --version | head -1).
- Compared with: $(dpkg-query -W -f='${Package} ${Version}; ' libpcre2-dev libre2-dev libhyperscan-dev libxml2-dev libgumbo-dev wget wget2 curl coreutils mawk nginx-light 2>/dev/null)
HEAD
  for name in harvest page growth tables files crawl merge; do cat "$parts/$name.md"; done
  [ ! -f docs/performance-window.md ] || cat docs/performance-window.md
} >"$out"
cp "$out" docs/performance.md
echo "docs/performance.md is written."
