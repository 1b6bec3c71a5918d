#!/usr/bin/env bash
# Configures and builds one preset. Says that it builds, on standard error, where anything is to be done; on a terminal the
# build's own progress stands below. usage: scripts/build.sh PRESET [TARGET ...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
preset=${1:?usage: scripts/build.sh PRESET [TARGET ...]}
shift
mkdir -p build
log=build/$preset.log

failed() {
  tail -n 60 "$log" >&2
  echo "The build of '$preset' has failed; the whole log is in $log." >&2
  exit 1
}
progress() {
  { grep --line-buffered '^\[[1-9]' || true; } | scripts/one_line.sh "Building build/$preset (log: $log)"
}

cmake --preset "$preset" >"$log" 2>&1 || failed
cmake --build --preset "$preset" ${1:+--target "$@"} 2>&1 | tee -a "$log" | progress || failed
