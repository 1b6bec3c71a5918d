#!/usr/bin/env bash
# Builds the Windows packages and tests the installer and the zip. Run on a screen: scripts/screen.sh tests/window/packages.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
zip=$(packaging/build.sh zip)
contents=$(cmake -E tar tf "$zip" | LC_ALL=C sort | tr '\n' ' ')
expected='Quenlar/ Quenlar/LICENSE.txt Quenlar/Quenlar.exe Quenlar/README.txt Quenlar/quenlar-cli.exe '
[ "$contents" = "$expected" ] || { echo "[  FAILED  ] the zip holds: $contents"; exit 1; }

# No other DLL than the system's own.
for program in Quenlar.exe quenlar-cli.exe; do
  others=$(x86_64-w64-mingw32-objdump -p "build/packages/stage/windows/Quenlar/$program" | sed -n 's/.*DLL Name: //p' |
    grep -viE '^(kernel32|msvcrt|user32|gdi32|comctl32|comdlg32|shell32|advapi32|ole32|uxtheme|winhttp|iphlpapi|ws2_32|sensapi|normaliz|bcrypt)\.dll$' || true)
  [ -z "$others" ] || { echo "[  FAILED  ] $program needs $others"; exit 1; }
done

QUENLAR_INSTALLER=$(packaging/build.sh installer)
export QUENLAR_INSTALLER
exec scripts/wine.sh build/windows/window_test.exe --gtest_filter='InstallerTest.*'
