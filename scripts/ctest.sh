#!/usr/bin/env bash
# Runs the tests of one built preset. usage: scripts/ctest.sh PRESET [CTEST-ARGUMENTS ...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
preset=${1:?usage: scripts/ctest.sh PRESET [CTEST-ARGUMENTS ...]}
shift
# The tests' own servers are on this machine and must not be reached through anybody's proxy.
unset http_proxy https_proxy all_proxy HTTP_PROXY HTTPS_PROXY ALL_PROXY
exec ctest --test-dir "build/$preset" --output-on-failure --no-tests=error -j "${QUENLAR_TEST_JOBS:-2}" "$@"
