#!/usr/bin/env bash
# The Debian package of the cluster: it holds the whole package, its command runs from there, and the manual page knows
# every option. usage: cluster.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
failures=0
fail() {
  echo "[  FAILED  ] $*"
  failures=$((failures + 1))
}

package=$(packaging/build.sh cluster)
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
dpkg-deb --extract "$package" "$root"
modules=$root/usr/lib/python3/dist-packages
diff -r -x __pycache__ cluster/quenlar_cluster "$modules/quenlar_cluster" || fail "the modules are not those of the sources"
depends=$(dpkg-deb --field "$package" Depends)
case $depends in *"quenlar (= "*python3-distributed*) ;; *) fail "the package depends on: $depends" ;; esac
manual=$(gzip -dc "$root/usr/share/man/man1/quenlar-cluster.1.gz" | sed 's/\\-/-/g')
export PYTHONPATH=$modules PYTHONDONTWRITEBYTECODE=1
commands=$("$root/usr/bin/quenlar-cluster" --help | sed -nE 's/^    ([a-z]+) .*/\1/p')
[ -n "$commands" ] || fail "the command names no commands"
for command in $commands; do
  options=$("$root/usr/bin/quenlar-cluster" "$command" --help | grep -oE -- '--[a-z-]+' | grep -vx -e --help | sort -u)
  for word in "$command" $options; do
    grep -qE -- "(^|[^a-z-])$word([^a-z-]|\$)" <<<"$manual" || fail "the manual page does not know: $command $word"
  done
done

[ "$failures" -eq 0 ] && echo "[  PASSED  ] $package"
exit "$failures"
