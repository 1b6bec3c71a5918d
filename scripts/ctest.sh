#!/usr/bin/env bash
# Runs the tests of one built preset. The preset takes the system's proxies away: the tests' own servers are on this
# machine and must not be reached through anybody's proxy. usage: scripts/ctest.sh PRESET [CTEST-ARGUMENTS ...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
preset=${1:?usage: scripts/ctest.sh PRESET [CTEST-ARGUMENTS ...]}
shift
exec ctest --preset "$preset" -j "${QUENLAR_TEST_JOBS:-2}" "$@"
