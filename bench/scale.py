#!/usr/bin/python3
"""Measures what docs/scale.md reckons with, and prints it as a table.

usage: scale.py QUENLAR FARM_SERVER [HOSTS]

A generated web of HOSTS sites of 25 pages each is collected through one loopback port, without pauses, so that the processor is
what bounds it; once with small pages and once with large ones. Then the same sites are divided over a local cluster. Processor
time is counted, that of the server left out: it hardly depends on what else the machine does. Memory is the largest that a
process held.
"""
import json
import os
import resource
import sqlite3
import subprocess
import sys
import tempfile
from pathlib import Path

PAGES = 24  # of a host, beside its start page


class Farm:
    """The generated web."""

    def __init__(self, server, hosts, addresses):
        command = [server, str(hosts), str(PAGES), str(addresses), "0"]
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.proxy = f"http://127.0.0.1:{int(self.process.stdout.readline())}"

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()


def measured(command, **options):
    """Runs a command: its processor time with that of its children in seconds, and the largest memory of one in MB."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    with subprocess.Popen(command, stderr=subprocess.DEVNULL, **options) as process:
        _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        raise SystemExit(f"{command} ends with status {process.returncode}")
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    seconds = after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime
    return seconds, usage.ru_maxrss / 1024


def starts_file(folder, hosts):
    """All sites as starts."""
    path = folder / "starts.txt"
    path.write_text("".join(f"http://www.h{host}.example/\n" for host in range(hosts)))
    return path


def crawl(quenlar, server, hosts, addresses):
    """The figures of one `quenlar collect` and of a harvest of its archive."""
    with tempfile.TemporaryDirectory() as scratch, Farm(server, hosts, addresses) as farm:
        folder = Path(scratch)
        common = ["--from", starts_file(folder, hosts), "--delay", "0", "--assume-online", "--proxy", farm.proxy]
        command = [quenlar, "--home", folder / "home", "collect", "--name", "c", *common]
        with open(os.devnull, "wb") as nowhere:
            seconds, memory = measured([*command, "--summary", folder / "summary"], stdout=nowhere)
            summary = json.loads((folder / "summary").read_text())
            kept = [quenlar, "--home", folder / "kept", "collect", "--name", "c", *common, "--warc", folder / "w"]
            archived, _ = measured(kept, stdout=nowhere)
            archives = sorted(folder.glob("w-*"))
            harvest = [quenlar, "--home", folder / "none", "harvest", "--jobs", "1", *archives]
            harvested, harvest_memory = measured(harvest, stdout=nowhere)
        database = folder / "home" / "data" / "c.sqlite"
        return {
            "pages": summary["pages"],
            "addresses": summary["addresses"],
            "page": summary["bytes"] / summary["pages"],
            "seconds": seconds,
            "memory": memory,
            "disk": database.stat().st_size,
            "archived": archived,
            "archive": sum(path.stat().st_size for path in archives),
            "harvested": harvested,
            "harvest_memory": harvest_memory,
        }


def divided(quenlar, server, hosts, addresses):
    """The same by a local cluster of two workers: processor time, memory of the coordinator, pages."""
    package = Path(__file__).resolve().parent.parent / "cluster"
    with tempfile.TemporaryDirectory() as scratch, Farm(server, hosts, addresses) as farm:
        folder = Path(scratch)
        command = [package / "quenlar-cluster", "collect", "--program", quenlar, "--out", folder / "run"]
        command += ["--workers", "2", "--shares", "8", "--delay", "0", "--assume-online", "--proxy", farm.proxy]
        seconds, memory = measured([*command, starts_file(folder, hosts)])
        again, _ = measured([*command, starts_file(folder, hosts)])  # nothing to visit: what begins and ends it
        database = sqlite3.connect(folder / "run" / "data" / "collection.sqlite")
        pages = database.execute("SELECT count(*) FROM pages WHERE state = 'read'").fetchone()[0]
        database.close()
        return seconds, memory, pages, again


def main():
    """Prints the table."""
    quenlar, server = map(os.path.abspath, sys.argv[1:3])
    hosts = int(sys.argv[3]) if len(sys.argv) > 3 else 1000
    small, large = (crawl(quenlar, server, hosts, addresses) for addresses in (3, 400))
    more = crawl(quenlar, server, 2 * hosts, 3)
    rows = [("", "small pages", "large pages", "small, twice as many sites")]
    three = (small, large, more)

    def row(name, show):
        rows.append((name, *(show(one) for one in three)))

    row("pages read", lambda f: f"{f['pages']:,}")
    row("bytes a page on the wire", lambda f: f"{f['page']:,.0f}")
    row("addresses found", lambda f: f"{f['addresses']:,}")
    row("collect: pages a second of one core", lambda f: f"{f['pages'] / f['seconds']:,.0f}")
    row("collect: addresses a second of one core", lambda f: f"{f['addresses'] / f['seconds']:,.0f}")
    row("collect: memory, MB", lambda f: f"{f['memory']:,.0f}")
    row("collection: bytes a page on disk", lambda f: f"{f['disk'] / f['pages']:,.0f}")
    row("with --warc: processor time, times that without", lambda f: f"{f['archived'] / f['seconds']:.2f}")
    row("archive: bytes a page on disk", lambda f: f"{f['archive'] / f['pages']:,.0f}")
    row("harvest of it: pages a second of one core", lambda f: f"{f['pages'] / f['harvested']:,.0f}")
    row("harvest of it: memory, MB", lambda f: f"{f['harvest_memory']:,.0f}")
    for number, cells in enumerate(rows):
        print("| " + " | ".join(cells) + " |")
        if number == 0:
            print("|---" * len(cells) + "|")
    seconds, memory, pages, again = divided(quenlar, server, hosts, 3)
    print(f"\nDivided over two workers, 8 tasks: {seconds:.1f} s of processor time for {pages:,} pages ({small['seconds']:.1f} s for"
          f" {small['pages']:,} by one `quenlar collect`); {again:.1f} s of it begin and end the run. The coordinator held"
          f" {memory:.0f} MB.")


if __name__ == "__main__":
    main()
