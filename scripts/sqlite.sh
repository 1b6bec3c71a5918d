#!/usr/bin/env bash
# Makes SQLite for the Windows build: the version that Debian's libsqlite3-dev has, out of Debian's own source package, as
# one C file. usage: scripts/sqlite.sh FOLDER: FOLDER/sqlite3.c and FOLDER/sqlite3.h are there afterwards.
# The source package is asked for by a sources list that is made for the occasion; apt checks the signatures.
set -euo pipefail
folder=${1:?usage: scripts/sqlite.sh FOLDER}
version=$(dpkg-query -W -f='${source:Version}' libsqlite3-dev)
# Not "version": the folder is on the include path, where <version> is a header of C++.
stamp=$folder/debian_version
if [ "$(cat "$stamp" 2>/dev/null)" = "$version" ]; then exit 0; fi

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/parts" "$work/lists/partial" "$work/source"
codename=$(. /etc/os-release && echo "$VERSION_CODENAME")

# The machine's own lists of this release, asked for sources in the place of packages. Both of apt's formats.
shopt -s nullglob
for list in /etc/apt/sources.list /etc/apt/sources.list.d/*.list; do
  [ -f "$list" ] || continue
  sed -nE "s/^deb((\s+\[[^]]*\])?\s+\S+\s+$codename(-updates|-security)?\s)/deb-src\1/p" "$list" >>"$work/parts/machine.list"
done
for list in /etc/apt/sources.list.d/*.sources; do
  awk -v RS= -v ORS='\n\n' -v suites="(^|\n)Suites:[^\n]*[ \t]$codename([ \t\n-]|$)" \
    '$0 ~ suites { sub(/Types:[^\n]*/, "Types: deb-src"); print }' "$list" >>"$work/parts/machine.sources"
done
[ -s "$work/parts/machine.list" ] || rm -f "$work/parts/machine.list"

apt=(-o Dir::Etc::sourcelist=/dev/null -o "Dir::Etc::sourceparts=$work/parts" -o "Dir::State::lists=$work/lists"
     -o "Dir::Cache::srcpkgcache=$work/src.bin" -o "Dir::Cache::pkgcache=$work/pkg.bin" -o APT::Sandbox::User=root -q)
fail() { echo "sqlite.sh: $1" >&2; tail -n 20 "$work/log" >&2; exit 1; }
apt-get "${apt[@]}" update >"$work/log" 2>&1 || fail "the list of source packages could not be fetched"
(cd "$work/source" && apt-get "${apt[@]}" source --download-only "sqlite3=$version") >"$work/log" 2>&1 ||
  fail "the source package sqlite3 $version could not be fetched"
(cd "$work/source" && dpkg-source --no-check -x sqlite3_*.dsc tree) >"$work/log" 2>&1 || fail "the source package could not be unpacked"
(cd "$work/source/tree" && ./configure && make sqlite3.c) >"$work/log" 2>&1 || fail "sqlite3.c could not be made"
rm -rf "$folder"
mkdir -p "$folder"
cp "$work/source/tree/sqlite3.c" "$work/source/tree/sqlite3.h" "$folder/"
echo "$version" >"$stamp"
