#!/usr/bin/env bash
# The Debian package of the command line: it holds what it should, its program runs, and the manual page and the
# completions know every command and every option that the program tells of itself. usage: command_line.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
failures=0
fail() {
  echo "[  FAILED  ] $*"
  failures=$((failures + 1))
}

package=$(packaging/build.sh deb)
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
dpkg-deb --extract "$package" "$root"
expected="usr/bin/quenlar usr/share/bash-completion/completions/quenlar usr/share/doc/quenlar/copyright \
usr/share/fish/vendor_completions.d/quenlar.fish usr/share/man/man1/quenlar.1.gz \
usr/share/zsh/vendor-completions/_quenlar"
held=$(cd "$root" && find usr -type f | LC_ALL=C sort | tr '\n' ' ')
[ "$held" = "$expected " ] || fail "the package holds: $held"
depends=$(dpkg-deb --field "$package" Depends)
case $depends in *libc6*libcurl4*) ;; *) fail "the package depends on: $depends" ;; esac
version=$(dpkg-deb --field "$package" Version)
# The program tells the first two numbers alone.
[ "$("$root/usr/bin/quenlar" --version)" = "quenlar ${version%.*}" ] || fail "the program is not of version $version"

gzip -dc "$root/usr/share/man/man1/quenlar.1.gz" | sed 's/\\-/-/g' >"$root/manual"
documents=("$root/manual" "$root/usr/share/bash-completion/completions/quenlar"
  "$root/usr/share/zsh/vendor-completions/_quenlar" "$root/usr/share/fish/vendor_completions.d/quenlar.fish")
knows() {  # DOCUMENT WORD: fish writes long options without dashes
  grep -qE -- "(^|[^a-z-])($2|-l ${2#--})([^a-z-]|\$)" "$1"
}
program=$root/usr/bin/quenlar
commands=$("$program" --help | sed -n '/^Subcommands:/,$s/^  \([a-z]\+\) .*/\1/p')
[ "$(wc -w <<<"$commands")" -ge 10 ] || fail "the program names too few commands: $commands"
for command in '' $commands; do
  # shellcheck disable=SC2086
  options=$("$program" $command --help | grep -oE '^ +(-[a-zA-Z],)?--[a-z-]+' | grep -oE -- '--[a-z-]+' | sort -u)
  [ -n "$options" ] || fail "no options of: quenlar $command"
  for document in "${documents[@]}"; do
    for word in $command $options; do
      knows "$document" "$word" || fail "${document##*/} does not know: quenlar $command $word"
    done
  done
done

[ "$failures" -eq 0 ] && echo "[  PASSED  ] $package"
exit "$failures"
