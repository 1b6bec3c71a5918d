#!/usr/bin/env bash
# Fuzzes every target, two at a time, for MINUTES in all (the share of each is equal). usage: ./fuzz.sh [MINUTES [TARGET ...]]
# New inputs are kept in build/fuzz/corpus; what breaks a promise is written to build/fuzz/finds, from where it belongs
# into fuzz/finds/<target> together with the fix: the ordinary tests replay that folder for ever.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
minutes=${1:-10}
shift || true

if [ $# -gt 0 ]; then targets=("$@"); else
  targets=()
  for source in fuzz/*_fuzz.cpp; do targets+=("$(basename "${source%_fuzz.cpp}")"); done
fi
scripts/install.sh fuzz
scripts/build.sh fuzz "${targets[@]/%/_fuzz}"

jobs=2
seconds=$((minutes * 60 * jobs / ${#targets[@]}))
[ "$seconds" -ge 5 ] || seconds=5
mkdir -p build/fuzz/logs

one() {
  local name=$1
  mkdir -p "build/fuzz/corpus/$name" "build/fuzz/finds/$name" "fuzz/seeds/$name"
  local folders=("build/fuzz/corpus/$name" "fuzz/seeds/$name")
  [ ! -d "fuzz/finds/$name" ] || folders+=("fuzz/finds/$name")
  # Where an input costs much for each of its bytes, and a corpus of long ones slows everything down.
  local options=(-max_len=65536)
  case "$name" in analyze | filter_file) options=(-max_len=4096 -entropic=0) ;; esac
  if "build/fuzz/${name}_fuzz" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=4096 "${options[@]}" -print_final_stats=1 \
    -artifact_prefix="build/fuzz/finds/$name/" "${folders[@]}" >"build/fuzz/logs/$name.log" 2>&1; then
    printf '%-20s %12s executions, no finding\n' "$name" \
      "$(sed -n 's/^stat::number_of_executed_units: *//p' "build/fuzz/logs/$name.log")"
  else
    printf '%-20s FINDING, see build/fuzz/finds/%s and build/fuzz/logs/%s.log\n' "$name" "$name" "$name"
    return 1
  fi
}
export -f one
export seconds
export ASAN_OPTIONS=allocator_may_return_null=1:detect_leaks=1

printf '%s\n' "${targets[@]}" | xargs -P "$jobs" -I{} bash -c 'one {}'
