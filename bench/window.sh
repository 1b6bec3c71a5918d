#!/usr/bin/env bash
# Measures Quenlar.exe under Wine on a virtual screen: start, processor share while idle, memory and time for many rows.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/install.sh window
scripts/build.sh windows Quenlar Quenlar_idle window_bench
QUENLAR_PROGRAM=$PWD/build/windows/Quenlar.exe scripts/screen.sh scripts/wine.sh build/windows/window_bench.exe | tr -d '\r'
