#!/usr/bin/env bash
# Rules of the house that no compiler checks: format, layering, sizes, banned calls, headers that stand alone.
# A waiver stands on its line as "check: <rule> <reason>".
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
failures=0
report() {  # RULE LINES: nothing to say without lines
  [ -n "$2" ] || return 0
  printf '%s\n' "$2" | sed "s/^/check: $1: /" >&2
  failures=$((failures + 1))
}
sources() {
  git ls-files --cached --others --exclude-standard -- "$@" | while read -r f; do [ ! -f "$f" ] || echo "$f"; done
}
grep_in() {  # FILES GREP-ARGUMENTS ...: no match is no failure
  local files=$1
  shift
  printf '%s\n' "$files" | xargs grep -n "$@" /dev/null || true
}

all=$(sources '*.cpp' '*.h')
product=$(printf '%s\n' "$all" | grep '^src/')
portable=$(printf '%s\n' "$product" | grep -vE '/(posix|win32)/')

# 1. Format.
report format "$({ printf '%s\n' "$all"; sources 'src/*.js'; } | xargs clang-format --dry-run -Werror 2>&1 | grep -E 'error:' | head -20 || true)"

# 2. Operating-system headers and conditionals only where the operating system is known.
os='windows|win[a-z0-9]*|shl[a-z]*|comm[a-z]*|sys/.*|unistd|fcntl|poll|netinet/.*|arpa/.*|net/.*|pthread|signal|dirent|curl/.*'
report os-headers "$(grep_in "$portable" -E "^[[:blank:]]*#[[:blank:]]*include[[:blank:]]*[<\"]($os)\.h[>\"]")"
report platform-conditionals "$(grep_in "$portable" -E '^[[:blank:]]*#[[:blank:]]*(el)?if.*(_WIN32|WIN32|__linux__|__unix__|__MINGW)' |
  grep -v 'check: platform-conditionals' || true)"

# 3. Layering. The table of docs/architecture.md lists the rooms below src/ from the bottom up, each with the rooms that it
# uses. Every file that includes something lies in a room and keeps to that list; only the main functions are free. A room
# uses rooms that stand before it, and a list names no room that is not used.
rooms=$(awk -F'|' '/^## / { here = $0 == "## The rooms" }
  here && /^\| `/ { gsub(/[` ]/, "", $2); sub(/nothing/, "", $4); gsub(/[,` ]+/, " ", $4)
    n = split($2, names, ","); for (i = 1; i <= n; i++) print names[i] "|" $4 }' docs/architecture.md)
includes=$(sources 'src/*' | grep -vE '^src/(cli|forms/win32)/main_(posix|win32)\.cpp$' |
  xargs grep -nIE '^[[:blank:]]*#[[:blank:]]*(include|import)' || true)
report layering "$({ printf '%s\n' "$rooms" "" "$includes"; printf '%s\n' "$product"; } | awk '
  !table_read && /^$/ { table_read = 1; next }
  !table_read {
    split($0, row, "|")
    n = split(row[2], used, " ")
    for (i = 1; i <= n; i++) {
      if (!(used[i] in known)) print "docs/architecture.md: " row[1] " uses " used[i] ", which does not stand before it"
      listed[row[1] " " used[i]]
    }
    known[row[1]]
    if (row[1] !~ /\//) names = names (names ? "|" : "") row[1]
    next
  }
  {
    room = $0
    sub(/:.*/, "", room)
    sub(/^src\//, "", room)
    sub(/\/?[^\/]*$/, "", room)
    if (!(room in known)) { print $0 ": no room of docs/architecture.md"; next }
    if ($0 !~ /:[0-9]+:/) next  # a file without includes
    target = $0
    sub(/^[^:]*:[0-9]+:[ \t]*#[ \t]*[a-z_]*[ \t]*/, "", target)
    if (target ~ /^</ && target !~ "[</](" names "|[.]+)/") next
    if (target !~ /^"[a-z0-9_\/]+\/[a-z0-9_]+\.h"/) { print; next }
    split(target, part, "\"")
    target = part[2]
    sub(/\/[^\/]*$/, "", target)
    if (target != room && !(room " " target in listed)) print
    seen[room " " target]
  }
  END { for (pair in listed) if (!(pair in seen)) print "docs/architecture.md: " pair ": the first does not use the second" }')"

# 4. Sizes: files of 800 lines at most, functions of 80 (a function begins and ends at the left margin).
report file-length "$(printf '%s\n' "$product" | xargs wc -l | awk '$2 != "total" && $1 > 800 { print $2 ": " $1 " lines" }')"
report function-length "$(printf '%s\n' "$product" | grep '\.cpp$' | xargs awk '
  FNR == 1 { open = 0 }
  /^[A-Za-z_~:<].*\{$/ && !/^(namespace|class|struct|enum|union|extern|constexpr [^(]*=|const [^(]*=)/ { open = FNR }
  /^\}/ { if (open && FNR - open > 80) print FILENAME ":" open ": " FNR - open " lines"; open = 0 }')"

# 5. Banned calls.
ban() {  # RULE PATTERN FILES
  report "$1" "$(grep_in "$3" -E "$2" | grep -vE '^[^:]*:[0-9]*: *(//|\*)' | grep -v "check: $1" || true)"
}
ban std-regex 'std::w?regex|#include <regex>' "$product"
ban raw-new '(^|[^a-zA-Z_])new [A-Za-z_:]+[({;]' "$portable"
ban unbounded-copy '(^|[^a-zA-Z_:])(strcpy|strcat|sprintf|vsprintf|gets)\(' "$product"
ban printing '(^|[^a-zA-Z_])(std::cout|std::cerr|printf\(|puts\()' "$(printf '%s\n' "$portable" | grep -v '^src/cli/')"
# Time that people read; everything that waits or measures takes the clock that is never set.
ban wall-clock 'system_clock|[^a-zA-Z_](std::)?time\((nullptr|NULL|&)|gettimeofday|CLOCK_REALTIME|Get(Local|System)Time' \
  "$(printf '%s\n' "$product" | grep -vE '^src/platform/(posix|win32)/[a-z_]*clock\.cpp$')"
ban sleeping 'sleep_for|sleep_until|[^a-zA-Z_]usleep\(|[^a-zA-Z_]Sleep\(' "$product"

# 6. Headers stand alone: a source includes its own header first; a header without a source is compiled by itself.
for source in $(printf '%s\n' "$portable" | grep '\.cpp$'); do
  header=${source%.cpp}.h
  if [ -f "$header" ] && [ "$(grep -m1 '^#include' "$source")" != "#include \"${header#src/}\"" ]; then
    report own-header-first "$source"
  fi
done
alone() {  # HEADER: named where it does not compile by itself
  [ -f "${1%.h}.cpp" ] || g++ -std=c++20 -fsyntax-only -Isrc -x c++ - <<<"#include \"${1#src/}\"" || echo "$1"
}
export -f alone
report header-alone "$(printf '%s\n' "$portable" | grep '\.h$' | xargs -P "$(nproc)" -n 1 bash -c 'alone "$1"' alone)"

# 7. Every header opens with its purpose, and nothing unfinished is left.
for file in $(printf '%s\n' "$product" | grep '\.h$'); do
  case "$(head -1 "$file")" in //* | "/*"*) ;; *) report purpose "$file" ;; esac
done
report unfinished "$(grep_in "$all" -E 'TODO|FIXME|(^|[^X])XXX([^X]|$)|HACK|GTEST_SKIP|DISABLED_' | grep -v 'check: unfinished' || true)"

# 8. Every test that the pages on reliability and on kept behaviour name is there. The code and the latter page name the
# same tests ("Kept: Suite.Test."), and no comment leaves it at the word that used to stand for a reason.
tests=$(sources 'tests/*.cpp' | xargs sed -nE 's/^TEST(_F|_P)?\(([A-Za-z0-9_]+), *([A-Za-z0-9_]+).*/\2.\3/p' | sort -u)
named_on() {  # PAGE: the tests that it names
  grep -oE '`[A-Z][A-Za-z0-9]+\.[A-Z][A-Za-z0-9]+`' "$1" | tr -d '`' | grep -v '^Suite\.Test$' | sort -u
}
for page in docs/reliability.md docs/kept.md; do
  report tests-named "$(named_on "$page" | comm -23 - <(printf '%s\n' "$tests") | sed "s|^|$page: |")"
done
kept=$(printf '%s\n' "$product" | xargs sed -nE 's/.*Kept: ([A-Za-z0-9]+\.[A-Za-z0-9]+).*/\1/p' | sort -u)
report kept "$(comm -23 <(printf '%s\n' "$kept") <(named_on docs/kept.md) | sed 's|$| is not on docs/kept.md|')"
report kept "$(comm -13 <(printf '%s\n' "$kept") <(named_on docs/kept.md) | sed 's|$| is on docs/kept.md and not in the code|')"
report kept "$(grep_in "$all" -E '(^|[^A-Za-z])[Mm]eant([^A-Za-z]|$)|Kept:$' || true)"

# 9. The pages that are not made by the build name the version of CMakeLists.txt.
release=$(sed -nE 's/^project\(Quenlar VERSION ([0-9]+\.[0-9]+).*/\1/p' CMakeLists.txt)
for page in docs/manners.md docs/quenlar-cluster.1; do
  report version "$(grep -noE 'Quenlar[ /][0-9.]*[0-9]' "$page" | grep -vE "[ /]$release\$" | sed "s|^|$page:|" || true)"
done

# 10. What takes the protections out of the program to see them missed still finds them.
report protections "$(tests/reliability/protections.sh --dry 2>&1 || true)"

if [ "$failures" -gt 0 ]; then
  echo "check: rules are broken" >&2
  exit 1
fi
echo "check: all rules hold"
