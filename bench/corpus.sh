#!/usr/bin/env bash
# Makes the benchmark corpus below build/bench/corpus (or $QUENLAR_CORPUS): the HTML pages of Debian documentation
# packages, downloaded and unpacked but not installed, as one file of pages behind each other with an index of lengths.
# A second call finds everything done. usage: bench/corpus.sh [quick|full]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
size=${1:-full}
corpus=${QUENLAR_CORPUS:-$PWD/build/bench/corpus}

# package, and which pages are taken: every n-th
full="python3.11-doc:1 libstdc++-12-doc:2 openjdk-17-doc:3 libboost1.81-doc:1 debian-policy:1 developers-reference:1
      debian-handbook:1 postgresql-doc-15:1 linux-doc-6.1:1 erlang-doc:5 qtbase5-doc-html:1 apt-doc:1 exim4-doc-html:1
      r-doc-html:1 ghc-doc:4 debian-faq:1 docbook-xsl-doc-html:1 cppreference-doc-en-html:3"
quick="python3.11-doc:1 debian-policy:1 postgresql-doc-15:1 exim4-doc-html:1"
case "$size" in
  full) wanted=$full ;;
  quick) wanted=$quick ;;
  *) echo "usage: bench/corpus.sh [quick|full]" >&2; exit 2 ;;
esac

mkdir -p "$corpus/packages" "$corpus/pages"
for entry in $wanted; do
  package=${entry%:*}
  every=${entry#*:}
  list="$corpus/$package.list"
  [ ! -s "$list" ] || continue
  if ! (cd "$corpus/packages" && apt-get download -q "$package" >/dev/null 2>&1); then
    echo "bench/corpus.sh: $package cannot be had; the corpus goes without it" >&2
    continue
  fi
  mkdir -p "$corpus/pages/$package"
  dpkg-deb -x "$corpus"/packages/"$package"_*.deb "$corpus/pages/$package"
  rm -f "$corpus"/packages/"$package"_*.deb
  find "$corpus/pages/$package" -type f \( -name '*.html' -o -name '*.htm' -o -name '*.xhtml' \) | LC_ALL=C sort |
    awk -v n="$every" 'NR % n == 1 || n == 1' >"$list.part"
  mv "$list.part" "$list"
done
: >"$corpus/$size.pages.part"
for entry in $wanted; do
  [ ! -s "$corpus/${entry%:*}.list" ] || cat "$corpus/${entry%:*}.list" >>"$corpus/$size.pages.part"
done
mv "$corpus/$size.pages.part" "$corpus/$size.pages"
echo "$(wc -l <"$corpus/$size.pages") pages, $(xargs -d '\n' cat <"$corpus/$size.pages" | wc -c) bytes: $corpus/$size.pages"
