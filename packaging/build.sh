#!/usr/bin/env bash
# Builds the packages into build/packages: a zip for Windows that needs no installation, an installer for Windows, and
# a Debian package of the command line, and one of what divides a collection over many machines.
# usage: packaging/build.sh [zip|installer|deb|cluster ...]; without arguments all.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
[ $# -gt 0 ] || set -- zip installer deb cluster

version=$(sed -n 's/^project(Quenlar VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
name=$(sed -n 's/^set(QUENLAR_NAME "\(.*\)")$/\1/p' CMakeLists.txt)
packages=$PWD/build/packages
stage=$packages/stage
# The same sources give the same packages: no file in them carries the time of the build.
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct 2>/dev/null || stat -c %Y CMakeLists.txt)
export SOURCE_DATE_EPOCH
umask 022
mkdir -p "$packages"

age() { find "$1" -exec touch --no-dereference --date="@$SOURCE_DATE_EPOCH" {} +; }

stage_windows() {
  scripts/build.sh windows Quenlar quenlar-cli
  rm -rf "$stage/windows"
  mkdir -p "$stage/windows/Quenlar"
  for program in Quenlar.exe quenlar-cli.exe; do
    x86_64-w64-mingw32-strip -o "$stage/windows/Quenlar/$program" "build/windows/$program"
  done
  # Text files for Windows end their lines with CR LF.
  sed "s/@NAME@/$name/; s/@RELEASE@/${version%.*}/; s/\$/\r/" packaging/README.txt >"$stage/windows/Quenlar/README.txt"
  sed 's/$/\r/' LICENSE >"$stage/windows/Quenlar/LICENSE.txt"
  age "$stage/windows"
}

build_zip() {
  stage_windows
  local zip=$packages/quenlar-$version-win64.zip
  rm -f "$zip"
  (cd "$stage/windows" && TZ=UTC cmake -E tar cf "$zip" --format=zip Quenlar)
  echo "$zip"
}

build_installer() {
  stage_windows
  local installer=$packages/quenlar-$version-win64-setup.exe
  cp src/forms/win32/quenlar.ico "$stage/windows/Quenlar/"
  age "$stage/windows"
  makensis -V2 -DNAME="$name" -DVERSION="$version" -DRELEASE="${version%.*}" -DSOURCE="$stage/windows/Quenlar" \
    -DOUTPUT="$installer" packaging/quenlar.nsi >&2
  echo "$installer"
}

build_deb() {
  scripts/build.sh linux quenlar
  local root=$stage/deb architecture
  architecture=$(dpkg --print-architecture)
  rm -rf "$root"
  install -D -m 755 build/linux/quenlar "$root/usr/bin/quenlar"
  strip --remove-section=.comment --remove-section=.note "$root/usr/bin/quenlar"
  install -D -m 644 packaging/linux/quenlar.bash "$root/usr/share/bash-completion/completions/quenlar"
  install -D -m 644 packaging/linux/_quenlar "$root/usr/share/zsh/vendor-completions/_quenlar"
  install -D -m 644 packaging/linux/quenlar.fish "$root/usr/share/fish/vendor_completions.d/quenlar.fish"
  install -D -m 644 LICENSE "$root/usr/share/doc/quenlar/copyright"
  mkdir -p "$root/usr/share/man/man1"
  gzip -9 -n -c docs/quenlar.1 >"$root/usr/share/man/man1/quenlar.1.gz"
  pack_deb "$root" quenlar "$architecture" "$(shared_libraries "$root/usr/bin/quenlar")" <<DESCRIPTION
collect e-mail addresses from the web
 Starts from a keyword or a web address, follows the links that it finds and
 prints every e-mail address on the way. Runs can be stopped and continued.
DESCRIPTION
}

build_cluster() {
  local root=$stage/cluster source
  rm -rf "$root"
  install -D -m 755 cluster/quenlar-cluster "$root/usr/bin/quenlar-cluster"
  for source in cluster/quenlar_cluster/*.py; do
    install -D -m 644 "$source" "$root/usr/lib/python3/dist-packages/quenlar_cluster/${source##*/}"
  done
  install -D -m 644 LICENSE "$root/usr/share/doc/quenlar-cluster/copyright"
  mkdir -p "$root/usr/share/man/man1"
  gzip -9 -n -c docs/quenlar-cluster.1 >"$root/usr/share/man/man1/quenlar-cluster.1.gz"
  pack_deb "$root" quenlar-cluster all "quenlar (= $version), python3 (>= 3.11), python3-distributed" <<DESCRIPTION
collect e-mail addresses from the web on many machines
 Divides the sites of a collection over the processes of one or of many
 machines, and puts what they find together.
DESCRIPTION
}

# FOLDER PACKAGE ARCHITECTURE DEPENDS: builds the package and prints its path; its description is on standard input.
pack_deb() {
  local root=$1 package=$packages/$2_${version}_$3.deb
  mkdir -p "$root/DEBIAN"
  (cd "$root" && find usr -type f -exec md5sum {} + | LC_ALL=C sort -k 2 >DEBIAN/md5sums)
  {
    printf '%s\n' "Package: $2" "Version: $version" "Architecture: $3" 'Maintainer: Quenlar <maintainer@quenlar.example>' \
      "Installed-Size: $(du -sk "$root/usr" | cut -f 1)" "Depends: $4" 'Section: web' 'Priority: optional'
    printf 'Description: '
    cat
  } >"$root/DEBIAN/control"
  age "$root"
  dpkg-deb --root-owner-group --build "$root" "$package" >&2
  echo "$package"
}

# The packages that hold the libraries a program is linked to, with the versions that they need.
shared_libraries() {
  local scratch
  scratch=$(mktemp -d)
  mkdir "$scratch/debian"
  printf 'Source: quenlar\n\nPackage: quenlar\nArchitecture: any\nDescription: -\n' >"$scratch/debian/control"
  (cd "$scratch" && dpkg-shlibdeps -O "$1" 2>/dev/null | sed -n 's/^shlibs:Depends=//p')
  rm -rf "$scratch"
}

for package; do
  case $package in
    zip | installer | deb | cluster) "build_$package" ;;
    *) echo "usage: packaging/build.sh [zip|installer|deb|cluster ...]" >&2; exit 2 ;;
  esac
done
