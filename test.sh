#!/usr/bin/env bash
# Installs what is missing, builds and runs the tests, in stages: the rules of the house, everything on Linux, the same
# under the sanitizers, the Windows programs under Wine, and the cluster.
#   QUENLAR_TEST_ONLY="check linux"   some of the stages
#   QUENLAR_FUZZ_MINUTES=10           fuzz for that long as well, all targets together
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"
stages=${QUENLAR_TEST_ONLY:-check linux asan windows cluster}

echo "Stages: $stages. All of them take about half an hour on two cores where nothing is built yet, later about half of" \
  "that, and installing the packages comes first; each stage tells its time."
scripts/install.sh test
for stage in $stages; do
  started=$SECONDS
  echo "== $stage"
  case "$stage" in
    check)
      scripts/check.sh
      ;;
    linux | asan | windows)
      scripts/build.sh "$stage"
      scripts/ctest.sh "$stage"
      ;;
    cluster)
      scripts/build.sh linux quenlar
      scripts/cluster_test.sh
      tests/packaging/cluster.sh
      ;;
    *)
      echo "test.sh: unknown stage: $stage" >&2
      exit 2
      ;;
  esac
  echo "== $stage: $((SECONDS - started)) s"
done
if [ -n "${QUENLAR_FUZZ_MINUTES:-}" ]; then
  ./fuzz.sh "$QUENLAR_FUZZ_MINUTES"
fi
echo "All stages have passed: $stages."
