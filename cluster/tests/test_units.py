"""The small parts of which runs are made."""

import json
import os
import shutil
import signal
import sqlite3
import subprocess
import sys
from contextlib import closing
from pathlib import Path

import pytest

from quenlar_cluster import collect_task, files, program
from quenlar_cluster.collect import _shares_for, read_starts, resolve_starts
from quenlar_cluster.collect_task import CollectJob, collect_share
from quenlar_cluster.command import main
from quenlar_cluster.errors import ClusterError, TaskFailed
from quenlar_cluster.folder import Folder
from quenlar_cluster.frontier import Frontier, Link, links_of, share_of
from quenlar_cluster.harvest_task import HarvestJob, harvest_input
from quenlar_cluster.lease import Lease
from quenlar_cluster.merge import merge_collections
from running import PROGRAM, parent_of, quenlar, wait_until


def test_a_file_is_replaced_whole_or_not_at_all(tmp_path: Path) -> None:
    """What is left of a writer that failed is taken away."""
    path = tmp_path / "f"
    files.write_whole(path, b"old")
    with pytest.raises(ZeroDivisionError), files.replacing(path) as stream:
        stream.write(b"half")
        raise ZeroDivisionError
    assert path.read_bytes() == b"old"
    files.write_whole(path, b"new")
    assert path.read_bytes() == b"new"
    assert [entry.name for entry in tmp_path.iterdir()] == ["f"]


def test_what_killed_writers_leave_is_removed(tmp_path: Path) -> None:
    """And nothing else."""
    with files.replacing(tmp_path / "f"):
        (draft,) = tmp_path.iterdir()
        (tmp_path / f"{draft.name}0").touch()  # of another thread
    (tmp_path / ".hidden").touch()
    files.remove_leftovers(tmp_path)
    assert sorted(entry.name for entry in tmp_path.iterdir()) == [".hidden", "f"]


def test_of_the_shares_the_last_two_rounds_stay(tmp_path: Path) -> None:
    """Those of a task that is not finished stay too, and the one that all begin with."""
    folder = Folder(tmp_path)
    folder.make()
    for number in (1, 2, 4, 5):
        folder.share(number, 7).touch()
        if number < 5:
            _part(folder, number, 7)
    folder.share(1, 8).touch()
    folder.seed.touch()
    folder.drop_old_shares()
    kept = [folder.share(number, share) for number, share in ((2, 7), (4, 7), (5, 7), (1, 8))]
    assert sorted(folder.seed.parent.iterdir()) == sorted([*kept, folder.seed])


def test_a_site_has_one_share_for_ever() -> None:
    """Runs of other versions and machines must come to the same one."""
    assert [share_of(site, 1000) for site in ("example.org", "firma.de", "127.0.0.1")] == [
        862,
        756,
        852,
    ]
    assert {share_of(f"site{number}.example", 7) for number in range(100)} == set(range(7))


def _part(folder: Folder, round_number: int, share: int, *rows: dict) -> Path:
    path = folder.part(round_number, share)
    path.write_text("".join(json.dumps(row) + "\n" for row in rows), encoding="utf-8")
    return path


def _link(url: str, site: str, distance: int = 1, depth: int = 1) -> dict:
    return {
        "link": url,
        "site": site,
        "distance": distance,
        "depth": depth,
        "private": False,
        "from": "http://x/",
    }


def test_links_are_handed_out_once_and_rounds_end(tmp_path: Path) -> None:
    """A link that is known, or lies too far away, makes no new round."""
    folder = Folder(tmp_path)
    folder.make()
    frontier = Frontier(folder.frontier, 1)
    frontier.add_starts([Link("http://a.example/", "a.example", private=True, start="a.example")])
    assert frontier.last_round() == 1
    assert frontier.open_tasks(1, folder.finished()) == [0]
    rows = [
        {"address": "x@a.example"},
        _link("http://b.example/", "b.example"),
        _link("http://a.example/", "a.example"),
    ]
    part = _part(folder, 1, 0, *rows, _link("http://far.example/", "far.example", 2))
    assert [link.url for link in links_of(part)][0] == "http://b.example/"
    assert frontier.merge_part(part, 1, 0, next_round=2, most_distance=1) == 1
    assert frontier.merge_part(part, 1, 0, next_round=2, most_distance=1) == 0
    assert frontier.last_round() == 2
    assert folder.finished() == {0: [1]}
    assert frontier.open_tasks(2, folder.finished()) == [0]
    assert [link.url for link in frontier.links(0, 1, 2)] == ["http://b.example/"]
    _part(folder, 2, 0)
    assert frontier.open_tasks(2, folder.finished()) == []
    assert [link.start for link in frontier.starts()] == ["a.example"]
    frontier.close()


def test_links_that_turn_out_to_be_nearer_are_handed_out_again(tmp_path: Path) -> None:
    """With the least depth, the least distance of their site, and what they are besides."""
    folder = Folder(tmp_path)
    folder.make()
    frontier = Frontier(folder.frontier, 1)
    frontier.add_starts([Link("http://a.example/", "a.example", start="a.example")])
    far = _link("http://b.example/", "b.example", distance=3, depth=5)
    near = _link("http://b.example/", "b.example", distance=2, depth=6)
    frontier.merge_part(_part(folder, 1, 0, far, near), 1, 0, next_round=2, most_distance=9)
    (link,) = frontier.links(0, 1, 2)
    assert (link.distance, link.depth, link.nearer) == (2, 5, False)
    # The same in a later round: again, and its site has come nearer.
    other = _link("http://b.example/x", "b.example", distance=1, depth=7)
    again = _part(folder, 2, 0, other, _link("http://b.example/", "b.example", 2, 4))
    assert frontier.merge_part(again, 2, 0, next_round=3, most_distance=9) == 2
    assert [(link.url[-2:], link.distance, link.depth) for link in frontier.links(0, 2, 3)] == [
        ("e/", 1, 4),
        ("/x", 1, 7),
    ]
    # Not when it is no nearer.
    last = _part(folder, 3, 0, far, other)
    assert frontier.merge_part(last, 3, 0, next_round=4, most_distance=9) == 0
    assert frontier.last_round() == 3
    # A link that is named as a start is one from then on.
    frontier.add_starts([Link("http://b.example/x", "b.example", private=True, start="b/x")])
    (link,) = frontier.links(0, 3, 4)
    assert (link.distance, link.depth, link.private, link.start) == (0, 0, True, "b/x")
    assert link.nearer
    frontier.close()


def test_files_that_are_being_written_are_no_parts(tmp_path: Path) -> None:
    """Nor is anything else that lies in the folder of parts."""
    folder = Folder(tmp_path)
    folder.make()
    for name in (
        ".round-0001-share-00001.jsonl.host.1.1",
        "round-0001-share-00002.jsonl.bak",
        "notes",
    ):
        (folder.parts / name).touch()
    _part(folder, 3, 4)
    assert folder.finished() == {4: [3]}


def test_a_part_that_is_there_is_not_made_again(tmp_path: Path) -> None:
    """A scheduler that loses a worker's answer has the task done once more."""
    folder = Folder(tmp_path)
    folder.make()
    nobody = "/there/is/no/such/program"
    harvest = HarvestJob(folder, nobody, (), "jsonl", tmp_path, 1, "a.warc", True)
    share = CollectJob(folder, nobody, (), False, 1, 0)
    for part in (harvest.part, share.part):
        part.write_bytes(b"made\n")
    assert harvest_input(harvest) == str(harvest.part)
    assert collect_share(share) == str(share.part)
    for part in (harvest.part, share.part):
        assert part.read_bytes() == b"made\n"


def test_a_worker_that_has_lost_its_lease_leaves_no_part(
    tmp_path: Path, monkeypatch: pytest.MonkeyPatch
) -> None:
    """Another one is at work on the share by then, and the part will be that one's."""
    folder = Folder(tmp_path)
    folder.make()
    folder.seed.touch()

    def collect(_job: CollectJob, _home: Path, _rows: object, lease: Lease) -> str:
        monkeypatch.setattr(lease, "held", lambda: False)
        return ""

    monkeypatch.setattr(collect_task, "_collect", collect)
    monkeypatch.setattr(collect_task, "_links", lambda *_: [])
    job = CollectJob(folder, "quenlar", (), False, 1, 0)
    with pytest.raises(TaskFailed, match="the lease was lost"):
        collect_share(job)
    assert not job.part.exists()


def test_a_folder_belongs_to_one_run(tmp_path: Path) -> None:
    """Another run, and a folder with something else in it, are refused."""
    folder = Folder(tmp_path / "run")
    folder.root.mkdir()
    folder.claim({"command": "collect", "shares": 4})
    folder.claim({"command": "collect", "shares": 4})
    with pytest.raises(ClusterError, match="another shares: 4, now 5"):
        folder.claim({"command": "collect", "shares": 5})
    other = Folder(tmp_path)
    with pytest.raises(ClusterError, match="not empty"):
        other.claim({"command": "collect"})


def test_a_kill_during_the_first_writes_does_no_harm(tmp_path: Path) -> None:
    """Whatever is there of the folder by then, the same command goes on."""
    folder = Folder(tmp_path)
    (tmp_path / ".run.json.host.1.1").write_text("{", encoding="utf-8")
    folder.claim({"command": "collect"})
    assert folder.parts.is_dir()
    for name in ("parts", "tasks", "leases"):
        (tmp_path / name).rmdir()
    folder.claim({"command": "collect"})
    assert folder.parts.is_dir()


def test_there_are_shares_enough_for_workers_that_come_later(tmp_path: Path) -> None:
    """And for many sites."""
    links = [Link(f"http://{number}.example/", f"{number}.example") for number in range(4)]
    assert _shares_for(links, 1) == 64
    assert _shares_for(links, 40) == 640
    many = [Link(f"http://{number}.example/", f"{number}.example") for number in range(64_001)]
    assert _shares_for(many, 4) == 65


def test_starts_are_read_as_the_program_reads_them(tmp_path: Path) -> None:
    """Blanks, comments and repetitions do not count; keywords cannot be divided."""
    path = tmp_path / "starts"
    path.write_text(
        "# sites\n\n  www.example.org \r\nhttp://b.example/x\nwww.example.org\n", encoding="utf-8"
    )
    assert read_starts(path) == ["www.example.org", "http://b.example/x"]
    path.write_text("HTTP://www.example.org\n", encoding="utf-8-sig")
    assert read_starts(path) == ["HTTP://www.example.org"]
    path.write_text("ftp://www.example.org/\n", encoding="utf-8")
    with pytest.raises(
        ClusterError, match="ftp://www.example.org/: only http and https can be visited"
    ):
        read_starts(path)
    path.write_text("picture search\n", encoding="utf-8")
    with pytest.raises(ClusterError, match="keyword"):
        read_starts(path)
    path.write_text("# nothing\n", encoding="utf-8")
    with pytest.raises(ClusterError, match="nothing to start from"):
        read_starts(path)
    with pytest.raises(ClusterError, match="no_such"):
        read_starts(tmp_path / "no_such")


def test_starts_are_resolved_by_the_program(tmp_path: Path) -> None:
    """The URL Standard and the public suffix list decide, not this package."""
    starts = [
        "WWW.Bücher.example",
        "http://a.b.co.uk:8080/x#y",
        "http://[::1]:8080/",
        "127.0.0.1:9",
        "HTTP://WWW.example.org",
    ]
    links = list(resolve_starts(PROGRAM, starts))
    assert [(link.url, link.site, link.https_first) for link in links] == [
        ("https://www.xn--bcher-kva.example/", "xn--bcher-kva.example", True),
        ("http://a.b.co.uk:8080/x", "b.co.uk", False),
        ("http://[::1]:8080/", "[::1]", False),
        ("https://127.0.0.1:9/", "127.0.0.1", True),
        ("http://www.example.org/", "example.org", False),
    ]
    assert [link.start for link in links] == starts
    assert all(link.private for link in links)


def test_of_what_shares_know_the_first_sighting_and_the_longest_wait_count(tmp_path: Path) -> None:
    """Whatever the order of the shares."""
    (tmp_path / "nothing").touch()
    arguments = ("--links", str(tmp_path / "nothing"), "--name", "seed", "--assume-online")
    quenlar(tmp_path, "collect", *arguments)
    seed = tmp_path / "data" / "seed.sqlite"
    sites = [f"site{number}.example" for number in range(20)]
    by_share = {share_of(site, 2): site for site in sites}
    shares = {}
    for share, seen, until in ((0, 300, 5000), (1, 200, 4000)):
        shares[share] = tmp_path / f"{share}.sqlite"
        shutil.copyfile(seed, shares[share])
        with closing(sqlite3.connect(shares[share])) as database, database:
            # Each knows both hosts; one of them is its own.
            for site in by_share.values():
                database.execute(
                    "INSERT INTO hosts (origin, site) VALUES (?, ?)", (f"http://{site}", site)
                )
                database.execute("INSERT INTO waits VALUES (last_insert_rowid(), ?)", (until,))
            database.execute(
                "INSERT INTO addresses (address, first_seen) VALUES ('a@x.de', ?)", (seen,)
            )
    merged = tmp_path / "merged.sqlite"
    merge_collections(seed, shares, 2, [], merged)
    with closing(sqlite3.connect(merged)) as database:
        assert database.execute("SELECT address, first_seen FROM addresses").fetchall() == [
            ("a@x.de", 200)
        ]
        waits = "SELECT h.site, w.until FROM waits w JOIN hosts h ON h.id = w.host ORDER BY 1"
        assert database.execute(waits).fetchall() == [
            (site, 5000) for site in sorted(by_share.values())
        ]


def test_a_program_dies_with_who_started_it(tmp_path: Path) -> None:
    """However that one ends."""
    note = tmp_path / "note"
    code = (
        "import subprocess, sys\n"
        "from quenlar_cluster.program import dying_with_us\n"
        f"child = subprocess.Popen(dying_with_us(['sh', '-c', 'echo $$ >{note}.new; mv {note}.new {note}; sleep 600']))\n"
        "child.wait()\n"
    )
    starter = subprocess.Popen([sys.executable, "-c", code])
    wait_until(note.exists)
    child = int(note.read_text(encoding="ascii"))
    assert parent_of(child) == starter.pid
    os.kill(starter.pid, signal.SIGKILL)
    starter.wait()
    wait_until(lambda: parent_of(child) != starter.pid and not _lives(child))


def _lives(process: int) -> bool:
    try:
        return (
            Path(f"/proc/{process}/stat").read_text(encoding="utf-8").rpartition(")")[2].split()[0]
            not in "ZX"
        )
    except OSError:
        return False


def test_a_program_is_killed_when_it_may_not_go_on(tmp_path: Path) -> None:
    """What it said goes to the one who asks."""
    with open(tmp_path / "out", "wb") as output:
        assert program.run(
            ["sh", "-c", "echo out; echo err >&2; exit 3"], output, lambda: True
        ) == (3, "err")
        answers = iter([True, False])
        assert program.run(["sleep", "600"], output, lambda: next(answers)) == (-signal.SIGKILL, "")
    assert (tmp_path / "out").read_bytes() == b"out\n"


@pytest.mark.parametrize(
    ("arguments", "told"),
    [
        ([], "COMMAND"),
        (["collect", "starts"], "--out"),
        (["collect", "--out", "x", "--rounds", "0", "starts"], "number"),
        (
            ["collect", "--out", "x", "--rounds", "2", "--scope", "site", "starts"],
            "--scope anywhere",
        ),
        (["collect", "--out", "x", "--pages", "5", "starts"], "--pages"),
        (["collect", "--out", "s3://store/run", "starts"], "must be a folder"),
    ],
)
def test_wrong_usage_is_status_2(
    arguments: list[str], told: str, capsys: pytest.CaptureFixture[str]
) -> None:
    """The message names what is wrong."""
    with pytest.raises(SystemExit) as ended:
        main(arguments)
    assert ended.value.code == 2
    assert told in capsys.readouterr().err


def test_what_the_program_says_of_an_option_is_told(
    tmp_path: Path, capsys: pytest.CaptureFixture[str]
) -> None:
    """Options of the program are checked by it, before anything is visited."""
    starts = tmp_path / "starts"
    starts.write_text("www.example.org\n", encoding="utf-8")
    arguments = ["collect", "--out", str(tmp_path / "run"), "--program", PROGRAM, "--workers", "1"]
    assert main([*arguments, "--depth", "deep", str(starts)]) == 1
    assert "--depth" in capsys.readouterr().err
    assert not (tmp_path / "run").exists()


def test_a_program_that_is_not_there_is_named(
    tmp_path: Path, capsys: pytest.CaptureFixture[str]
) -> None:
    """With status 1."""
    starts = tmp_path / "starts"
    starts.write_text("www.example.org\n", encoding="utf-8")
    assert (
        main(["collect", "--out", str(tmp_path / "run"), "--program", "/no/quenlar", str(starts)])
        == 1
    )
    assert "/no/quenlar" in capsys.readouterr().err
