#!/usr/bin/env bash
# Installs what is missing of the Debian packages that a task needs. usage: scripts/install.sh TASK
# Each line of packages_for is one task: the task that it includes, and its own packages.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

packages_for() {
  case "$1" in
    run)     echo g++ cmake ninja-build ccache googletest libcurl4-openssl-dev zlib1g-dev libcli11-dev nlohmann-json3-dev \
                  libboost1.81-dev libfmt-dev libidn2-dev publicsuffix libsqlite3-dev \
                  libdeflate-dev libisal-dev libssl-dev libbrotli-dev libzstd-dev ;;
    windows) packages_for run; echo g++-mingw-w64-x86-64-posix libz-mingw-w64-dev wine64 dpkg-dev make tcl ;;
    window)  packages_for windows; echo xvfb xauth openbox imagemagick fonts-dejavu-core ;;
    cluster) packages_for run; echo python3-distributed ;;
    test)    packages_for window; packages_for cluster; echo libpcre2-dev clang-format openssl git nsis dpkg-dev \
                  python3-protego python3-html5lib libpsl5 chromium searx \
                  python3-pytest black mypy parallel ;;
    bench)   packages_for run; echo pkg-config libbenchmark-dev libpcre2-dev libre2-dev libhyperscan-dev libxml2-dev \
                  libgumbo-dev wget wget2 curl nginx-light mawk time dpkg python3-scrapy libdeflate-tools isal grep \
                  python3-html5lib openssl ;;
    fuzz)    packages_for run; echo clang libclang-rt-14-dev ;;
    *)       echo "install.sh: unknown task: $1" >&2; exit 2 ;;
  esac
}

missing=()
for package in $(packages_for "${1:?usage: scripts/install.sh TASK}" | tr ' ' '\n' | sort -u); do
  state=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
  [ "$state" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

root=()
if [ "$(id -u)" -ne 0 ]; then root=(sudo); fi
export DEBIAN_FRONTEND=noninteractive
"${root[@]}" apt-get update -q | "$here/one_line.sh" "Fetching the lists of packages"
"${root[@]}" apt-get install -y -q --no-install-recommends "${missing[@]}" |
  "$here/one_line.sh" "Installing ${missing[*]} and what they need"
