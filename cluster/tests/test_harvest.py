"""Whole harvests over archives, with workers, schedulers and coordinators that are killed."""

import gzip
import hashlib
import json
import os
import re
import signal
import subprocess
import urllib.parse
import urllib.request
from collections.abc import Sequence
from pathlib import Path

import pytest

from quenlar_cluster.suppression import Suppression
from running import PROGRAM, Machines, cluster, free_port, parent_of, quenlar, wait_until

ARCHIVES = 12
FILES = 5  # in the folder


def record(number: int, body: bytes) -> bytes:
    """A WARC record with a page."""
    block = b"HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n" + body
    head = (
        "WARC/1.1\r\nWARC-Type: response\r\nWARC-Date: 2026-11-22T13:20:32Z\r\n"
        f"WARC-Record-ID: <urn:uuid:00000000-0000-4000-8000-{number:012}>\r\n"
        f"WARC-Target-URI: http://www.site{number}.example.net/\r\n"
        f"Content-Type: application/http;msgtype=response\r\nContent-Length: {len(block)}\r\n\r\n"
    )
    return head.encode() + block + b"\r\n\r\n"


@pytest.fixture(name="inputs")
def _inputs(tmp_path: Path) -> Path:
    """A list of archives, pages and a folder, with addresses that come again in other letters."""
    (tmp_path / "in" / "folder" / "a").mkdir(parents=True)
    names = []
    for archive in range(ARCHIVES):
        pages = [
            record(
                archive * 100 + page,
                b'<title>T, "%d"</title>Shared%d@Firma.de shared%d@firma.de own%d.%d@firma.de'
                % (page, page, page % 3, archive, page),
            )
            for page in range(20)
        ]
        path = tmp_path / "in" / f"{archive}.warc.gz"
        path.write_bytes(b"".join(map(gzip.compress, pages)))
        names.append(f"in/{archive}.warc.gz")
    (tmp_path / "in" / "folder" / "a.html").write_text("a@folder.de", encoding="utf-8")
    (tmp_path / "in" / "folder" / "b.html").write_text("SHARED1@firma.de", encoding="utf-8")
    # By name, bytewise, what lies in `a` among them; a picture is passed over, and what a link leads to.
    (tmp_path / "in" / "folder" / "a" / "deep.html").write_text("deep@folder.de", encoding="utf-8")
    (tmp_path / "in" / "folder" / "Zä.txt").write_text("z@folder.de", encoding="utf-8")
    (tmp_path / "in" / "folder" / "picture.html").write_bytes(b"\x89PNG\0p@folder.de")
    (tmp_path / "in" / "folder" / "link").symlink_to(tmp_path / "in" / "0.warc.gz")
    inputs = tmp_path / "inputs.txt"
    names.insert(3, "in/folder")
    inputs.write_text("\n".join(names) + "\n", encoding="utf-8")
    return inputs


def harvested_by_one(inputs: Path, *options: str, check: bool = True) -> bytes:
    """What one `quenlar harvest` over the list prints."""
    names = inputs.read_text(encoding="utf-8").split("\n")[:-1]
    home = str(inputs.parent / "one")
    command = [PROGRAM, "--home", home, "harvest", *options, *names]
    return subprocess.run(
        command, check=check, stdout=subprocess.PIPE, cwd=inputs.parent, timeout=120
    ).stdout


def harvest_arguments(inputs: Path, *more: str) -> Sequence[str]:
    """Arguments of a harvest of the list."""
    folder = str(inputs.parent / "run")
    return ["harvest", "--program", PROGRAM, "--out", folder, *more, str(inputs)]


@pytest.mark.parametrize(
    ("list_format", "name"), [("lines", "txt"), ("csv", "csv"), ("jsonl", "jsonl")]
)
def test_the_bytes_are_those_of_one_harvest(inputs: Path, list_format: str, name: str) -> None:
    """Whatever the format; and the same command does nothing more."""
    run = harvest_arguments(inputs, "--workers", "3", "--format", list_format)
    assert cluster(*run, folder=inputs.parent).wait(120) == 0
    expected = harvested_by_one(inputs, "--format", list_format)
    assert len(expected.splitlines()) >= ARCHIVES * 20
    assert (inputs.parent / "run" / f"addresses.{name}").read_bytes() == expected
    parts = {part: part.stat().st_mtime_ns for part in (inputs.parent / "run" / "parts").iterdir()}
    assert len(parts) == ARCHIVES + FILES
    assert cluster(*run, folder=inputs.parent).wait(120) == 0
    assert parts == {part: part.stat().st_mtime_ns for part in parts}


def slow_program(folder: Path) -> Path:
    """A program that holds the third archive back until the file `go` is there."""
    slow = folder / "slow"
    slow.write_text(
        "#!/bin/sh\n"
        f'case "$*" in *in/2.warc.gz) echo $$ >>"{folder}/held"; '
        f'while [ ! -e "{folder}/go" ]; do sleep 0.05; done;; esac\n'
        f'exec "{PROGRAM}" "$@"\n',
        encoding="utf-8",
    )
    slow.chmod(0o755)
    return slow


def held(folder: Path) -> list[int]:
    """The processes that were held back, in their order."""
    path = folder / "held"
    return [int(line) for line in path.read_text().split()] if path.exists() else []


def test_workers_and_schedulers_may_be_killed(inputs: Path) -> None:
    """A worker, then the scheduler with its workers and the coordinator; finished parts stay."""
    folder = inputs.parent
    run = harvest_arguments(inputs, "--program", str(slow_program(folder)))
    with Machines(folder, free_port()) as machines:
        coordinator = cluster(*run, "--scheduler", machines.address, folder=folder)
        wait_until(lambda: len(held(folder)) == 1)
        os.kill(parent_of(held(folder)[0]), signal.SIGKILL)
        wait_until(lambda: len(held(folder)) == 2)
        done = ARCHIVES + FILES - 1
        wait_until(lambda: len(list((folder / "run" / "parts").glob("input-*"))) == done)
        coordinator.kill()
        coordinator.wait()
        machines.kill_all()
    parts = {part: part.stat().st_mtime_ns for part in (folder / "run" / "parts").glob("input-*")}
    (folder / "go").touch()
    assert cluster(*run, "--workers", "3", folder=folder).wait(120) == 0
    assert (folder / "run" / "addresses.txt").read_bytes() == harvested_by_one(inputs)
    assert parts == {part: part.stat().st_mtime_ns for part in parts}


def test_the_cluster_can_be_looked_at_where_it_is_said_to(inputs: Path) -> None:
    """The address that is printed answers with figures for as long as the run goes on."""
    folder = inputs.parent
    said = folder / "said"
    run = harvest_arguments(inputs, "--program", str(slow_program(folder)), "--workers", "1")
    with open(said, "wb") as output:
        coordinator = cluster(*run, folder=folder, output=output)
    wait_until(lambda: len(held(folder)) == 1)
    printed = re.search(r"The cluster: (http://\S+) \(", said.read_text(encoding="utf-8"))
    assert printed is not None
    with urllib.request.urlopen(
        urllib.parse.urljoin(printed[1], "/json/counts.json"), timeout=60
    ) as answer:
        assert json.load(answer)["workers"] == 1
    (folder / "go").touch()
    assert coordinator.wait(120) == 0


def test_what_cannot_be_read_is_named(inputs: Path) -> None:
    """An input that is not there is set aside, a damaged one is read as far as it goes."""
    folder = inputs.parent
    damaged = folder / "in" / "0.warc.gz"
    whole = damaged.read_bytes()
    damaged.write_bytes(whole[:100] + b"\0" * 50 + whole[150:])
    (folder / "in" / "1.warc.gz").rename(folder / "away")
    run = harvest_arguments(inputs, "--workers", "2")
    with open(folder / "said", "wb") as said:
        assert cluster(*run, folder=folder, output=said).wait(120) == 1
    text = (folder / "said").read_text(encoding="utf-8")
    assert "Set aside: in/1.warc.gz: " in text
    assert "in/0.warc.gz: 1 damaged record" in text
    found = (folder / "run" / "addresses.txt").read_text(encoding="utf-8").split()
    assert "own0.9@firma.de" in found
    assert "own11.19@firma.de" in found
    assert "own1.9@firma.de" not in found
    (folder / "away").rename(folder / "in" / "1.warc.gz")
    assert cluster(*run, folder=folder).wait(120) == 1
    found = (folder / "run" / "addresses.txt").read_text(encoding="utf-8").split()
    assert "own1.9@firma.de" in found


def test_a_program_that_could_not_work_leaves_no_part(inputs: Path) -> None:
    """Status 1 is damage only where the program has come to the end of its input: otherwise the task is tried again."""
    folder = inputs.parent
    inputs.write_text("in/0.warc.gz\nin/1.warc.gz\n/proc/self/mem\n", encoding="utf-8")
    broken = folder / "broken"
    # An archive whose rows do not fit on the disk at the first try, and that has something to say then.
    broken.write_text(
        "#!/bin/sh\n"
        f'case "$*" in *in/0.warc.gz) echo tried >>"{folder}/tries"\n'
        f'[ $(wc -l <"{folder}/tries") = 1 ] && exec "{PROGRAM}" "$@" >/dev/full;; esac\n'
        f'exec "{PROGRAM}" "$@"\n',
        encoding="utf-8",
    )
    broken.chmod(0o755)
    run = harvest_arguments(inputs, "--workers", "2", "--program", str(broken))
    with open(folder / "said", "wb") as said:
        assert cluster(*run, folder=folder, output=said).wait(120) == 1
    text = (folder / "said").read_text(encoding="utf-8")
    assert len((folder / "tries").read_text().split()) == 2
    assert "Set aside: /proc/self/mem: " in text
    assert "Set aside: in/" not in text
    assert (folder / "run" / "addresses.txt").read_bytes() == harvested_by_one(inputs, check=False)
    assert len(list((folder / "run" / "parts").iterdir())) == 2


def test_what_is_told_of_an_input_is_that_of_the_last_attempt(inputs: Path) -> None:
    """A message that a killed attempt has left does not count; notices are told though nothing is damaged."""
    folder = inputs.parent
    undated = record(1, b"undated@firma.de").replace(b"WARC-Date: 2026-11-22T13:20:32Z\r\n", b"")
    (folder / "in" / "0.warc.gz").write_bytes(undated)
    run = harvest_arguments(inputs, "--workers", "2")
    assert cluster(*run, folder=folder).wait(120) == 0
    for left in (folder / "run" / "parts").glob("input-0000002.*"):
        left.unlink()
    stale = folder / "run" / "tasks" / "input-0000002.json"
    stale.write_text('{"damaged": true, "said": ["stale"]}')
    with open(folder / "said", "wb") as said:
        assert cluster(*run, folder=folder, output=said).wait(120) == 0
    text = (folder / "said").read_text(encoding="utf-8")
    assert "in/0.warc.gz: Records without a date count as seen now." in text
    assert not stale.exists()


@pytest.mark.parametrize("list_format", ["lines", "csv", "jsonl"])
def test_who_is_suppressed_later_is_left_out(inputs: Path, list_format: str) -> None:
    """Though the parts that were made before have the address."""
    folder, home = inputs.parent, inputs.parent / "one"
    named = record(1, b"<title>Own1.2@firma.de|Home</title>t@firma.de +hotline@firma.de")
    visited = record(2, b"v@firma.de").replace(b".net/", b".net/own1.2@firma.de")
    (folder / "in" / "11.warc.gz").write_bytes(named + visited)
    quenlar(home, "filter", "--remove", "^own3")
    quenlar(home, "options", "RemoveFilter", "1")
    options = ("--format", list_format)
    run = harvest_arguments(inputs, *options, "--workers", "2", "--home", str(home))
    name = f"addresses.{'txt' if list_format == 'lines' else list_format}"
    assert cluster(*run, folder=folder).wait(120) == 0
    before = harvested_by_one(inputs, *options)
    assert (folder / "run" / name).read_bytes() == before
    assert b"own3." not in before
    digest = hashlib.sha256(b"own5.6@firma.de").hexdigest()
    quenlar(
        home, "suppress", "Own1.2@FIRMA.de", "@folder.de", "+hotline@firma.de", f"sha256:{digest}"
    )
    assert cluster(*run, folder=folder).wait(120) == 0
    after = harvested_by_one(inputs, *options)
    assert (folder / "run" / name).read_bytes() == after
    for gone in (b"own1.2@", b"own5.6@", b"@folder.de", b"hotline@", b"v@firma.de"):
        assert gone in before.lower()
        assert gone not in after.lower()
    assert b"t@firma.de" in after


def test_a_text_names_an_address_where_the_program_says_so(tmp_path: Path) -> None:
    """Whatever stands around it; a longer address does not name a shorter one."""
    texts = [
        around.replace("A", address)
        for address in ("anna@garden.de", "Anna%40GARDEN.de", "%61nna@garden.d%65")
        for around in (
            "A",
            "A|Home",
            "Write to A!",
            "*A*",
            "'A'",
            "{A}",
            "A\u2013Home",
            "\u201eA\u201c",
            "?mail=A&x=1",
            "A.html",
            "A.html.",
            "A.com",
            "A-b",
            "Ab",
            "joA",
            "j.A",
            "+A",
            "_A",
            "\u00e4A",
            "%A",
            "A%41",
            "A%2Fx",
            "x%2FA",
            "A@x.de",
            "x@A",
        )
    ]
    digest = "sha256:" + hashlib.sha256(b"bert@garden.de").hexdigest()
    texts += [
        "x@berry.fr|y",
        "x@berry.fr.html",
        "x@b.berry.fr",
        "bert@garden.de!",
        "no one",
        "@",
        "%40",
    ]
    texts += ["a" * 64 + "@berry.fr", "a" * 65 + "@berry.fr", "a" * 65 + "*b@berry.fr"]
    home = tmp_path / "home"
    archive = tmp_path / "a.warc"
    archive.write_bytes(
        b"".join(
            record(number, f"<title>{text}</title>row{number}@rows.de".encode())
            for number, text in enumerate(texts)
        )
    )

    def harvested_titles() -> list[str]:
        rows = quenlar(home, "harvest", "--format", "jsonl", str(archive)).splitlines()
        return [row["title"] for row in map(json.loads, rows) if "@rows.de" in row["address"]]

    titles = harvested_titles()
    assert len(titles) == len(texts)
    quenlar(home, "suppress", "anna@garden.de", "@berry.fr", digest)
    kept = harvested_titles()
    suppression = Suppression(PROGRAM, home)
    named = [title for title, now in zip(titles, kept, strict=True) if not now]
    assert [title for title in titles if suppression.is_named_in(title)] == named
    assert 40 < len(named) < len(texts) - 15


def test_options_of_the_program_hold(inputs: Path) -> None:
    """Those that are handed on, and with them the bytes are those of one harvest."""
    folder = inputs.parent
    hidden = b'<meta name="robots" content="noindex">no@firma.de'
    protected = b"<p>anna [at] verein [dot] de"
    (folder / "in" / "0.warc.gz").write_bytes(record(1, hidden) + record(2, protected))
    options = (
        "--robots=ignore",
        "--decode-protected",
        "--remove=^own1",
        "--extract=@fi",
        "--extract=@ve",
    )
    run = harvest_arguments(inputs, "--workers", "2", "--jobs", "2", *options)
    assert cluster(*run, folder=folder).wait(120) == 0
    found = (folder / "run" / "addresses.txt").read_bytes()
    assert found == harvested_by_one(inputs, *options)
    assert {b"no@firma.de", b"anna@verein.de"} < set(found.split())
    assert b"own1" not in found
    assert b"@folder.de" not in found


def test_parallel_does_the_same_without_an_engine(inputs: Path) -> None:
    """As docs/scale.md tells it: rows of all inputs in their order, then each address once."""
    names = inputs.read_text(encoding="utf-8").split("\n")[:-1]
    command = ["parallel", "--keep-order", PROGRAM, "--home", "one", "harvest", "--jobs", "1"]
    environment = {**os.environ, "HOME": str(inputs.parent)}
    done = subprocess.run(
        [*command, "--format", "jsonl", "{}", ":::", *names],
        check=True,
        stdout=subprocess.PIPE,
        cwd=inputs.parent,
        env=environment,
        timeout=120,
    )
    assert done.stdout == harvested_by_one(inputs, "--format", "jsonl")
