#!/usr/bin/env bash
# Configures and builds one preset, quietly unless something goes wrong. usage: scripts/build.sh PRESET [TARGET ...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
preset=${1:?usage: scripts/build.sh PRESET [TARGET ...]}
shift
mkdir -p build
log=build/$preset.log

if ! { cmake --preset "$preset" && cmake --build --preset "$preset" ${1:+--target "$@"}; } >"$log" 2>&1; then
  tail -n 60 "$log" >&2
  echo "The build of '$preset' has failed; the whole log is in $log." >&2
  exit 1
fi
