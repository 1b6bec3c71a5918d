"""`python3 -m quenlar_cluster` is the command `quenlar-cluster`."""

import sys

from quenlar_cluster.command import main

if __name__ == "__main__":
    sys.exit(main())
