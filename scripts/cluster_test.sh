#!/usr/bin/env bash
# Format, types and tests of the Python package in cluster/, with build/linux/quenlar.
# usage: scripts/cluster_test.sh [PYTEST-ARGUMENTS ...]
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../cluster"
export PYTHONDONTWRITEBYTECODE=1
black --check --quiet . || { echo "cluster_test.sh: black would write cluster/ differently" >&2; exit 1; }
mypy --cache-dir=/dev/null quenlar_cluster
# Dask's programs are those of Debian, and only Debian's own Python sees them.
exec /usr/bin/python3 -m pytest -q "$@"
