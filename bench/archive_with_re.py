#!/usr/bin/env python3
"""Lists the addresses in a gzip file with a regular expression. usage: archive_with_re.py FILE"""
import gzip
import re
import sys

ADDRESS = re.compile(rb"[A-Za-z0-9._%+-]+@[A-Za-z0-9.-]+\.[A-Za-z]{2,}")
PIECE = 1 << 20
OVERLAP = 256

found = set()
with gzip.open(sys.argv[1]) as text:
    kept = b""
    while piece := text.read(PIECE):
        found.update(ADDRESS.findall(kept + piece))
        kept = piece[-OVERLAP:]
sys.stdout.buffer.write(b"\n".join(found) + b"\n")
