"""Whole crawls over a small web, with workers, schedulers and coordinators that are killed."""

import json
import os
import signal
import sqlite3
from collections.abc import Iterator
from pathlib import Path

import pytest

from quenlar_cluster.frontier import share_of
from running import (
    PROGRAM,
    Machines,
    addresses_of,
    cluster,
    collect_arguments,
    collected_by_one,
    crawling,
    free_port,
    parent_of,
    quenlar,
    wait_until,
)
from small_web import SmallWeb, fill


@pytest.fixture(name="web")
def _web() -> Iterator[SmallWeb]:
    with SmallWeb(9) as web:
        yield web


@pytest.fixture(name="starts")
def _starts(web: SmallWeb, tmp_path: Path) -> Path:
    starts = tmp_path / "starts.txt"
    starts.write_text("# two sites\n" + "\n".join(fill(web)) + "\n", encoding="utf-8")
    return starts


@pytest.fixture(name="expected")
def _expected(web: SmallWeb, starts: Path, tmp_path: Path) -> list[str]:
    """What one `quenlar collect` finds; the web forgets that it was asked."""
    expected = collected_by_one(tmp_path / "one", starts)
    assert len(expected) == 9 * 4 + 1 + 3
    web.asked.clear()
    return expected


def nothing_was_fetched_twice(web: SmallWeb, but: int = 1) -> bool:
    """Pages of a task that was killed are asked for once more, all others once."""
    return all(count <= but for (_, path), count in web.asked.items() if path != "/robots.txt")


def test_a_divided_crawl_finds_what_one_finds(
    web: SmallWeb, starts: Path, expected: list[str], tmp_path: Path
) -> None:
    """Also what only another site links to; no page is asked for twice, and the same command does nothing more."""
    run = collect_arguments(tmp_path / "run", starts, "--workers", "3")
    assert cluster(*run).wait(120) == 0
    assert addresses_of(tmp_path / "run") == expected
    assert nothing_was_fetched_twice(web)
    assert web.most_at_once == 1
    asked = web.asked.total()
    assert cluster(*run).wait(120) == 0
    assert web.asked.total() == asked
    assert addresses_of(tmp_path / "run") == expected


def test_the_merged_collection_is_one_like_any_other(
    web: SmallWeb, starts: Path, expected: list[str], tmp_path: Path
) -> None:
    """It has the pages and sightings of one crawl, `why` explains it, and `collect` finds nothing left to do."""
    run = tmp_path / "run"
    assert cluster(*collect_arguments(run, starts, "--workers", "3")).wait(120) == 0
    assert sorted(quenlar(run, "addresses", "collection").splitlines()) == expected
    one = next((tmp_path / "one" / "data").glob("*.sqlite"))
    question = (
        "SELECT p.url, p.depth, p.state, p.title, t.url, h.state FROM pages p JOIN hosts h ON h.id = p.host"
        " LEFT JOIN pages t ON t.id = p.moved_to ORDER BY 1"
    )
    sightings = (
        "SELECT a.address, p.url, s.place, s.written FROM sightings s JOIN addresses a ON a.id = s.address"
        " JOIN pages p ON p.id = s.page ORDER BY 1, 2, 3"
    )
    links = "SELECT p.url, length(l.keys) FROM links l JOIN pages p ON p.id = l.page ORDER BY p.url"
    for sql in (question, sightings, links):
        assert rows_of(run / "data" / "collection.sqlite", sql) == rows_of(one, sql)
    assert rows_of(run / "data" / "collection.sqlite", "PRAGMA integrity_check") == [("ok",)]
    assert rows_of(run / "data" / "collection.sqlite", "PRAGMA foreign_key_check") == []
    why = quenlar(run, "why", "collection", f"{web.origins[2]}/")
    assert f"{web.origins[0]}/" in why
    asked = web.asked.total()
    arguments = [
        "collect",
        "--name",
        "collection",
        "--scope",
        "anywhere",
        "--assume-online",
        "--delay",
        "0",
    ]
    assert quenlar(run, *arguments, "--from", str(starts)) == ""
    assert web.asked.total() == asked


def rows_of(database: Path, sql: str) -> list[tuple]:
    """The rows of a question to a collection."""
    connection = sqlite3.connect(database)
    try:
        return connection.execute(sql).fetchall()
    finally:
        connection.close()


def test_a_worker_that_is_killed_takes_its_program_along(
    web: SmallWeb, starts: Path, expected: list[str], tmp_path: Path
) -> None:
    """Another worker does its task again; no host is ever asked by two."""
    gate = web.close_gate(2, "/p1")
    coordinator = cluster(*collect_arguments(tmp_path / "run", starts, "--workers", "3"))
    web.wait_until(lambda: web.asked[2, "/p1"] == 1)
    (program,) = crawling(tmp_path / "run", web.origins[2])
    os.kill(parent_of(program), signal.SIGKILL)
    wait_until(lambda: parent_of(program) == 0)
    web.wait_until(lambda: web.asked[2, "/p1"] == 2)
    gate.set()
    assert coordinator.wait(120) == 0
    assert addresses_of(tmp_path / "run") == expected
    assert nothing_was_fetched_twice(web, but=2)
    assert web.most_at_once == 1


def test_a_scheduler_that_is_killed_and_started_again_is_found_again(
    web: SmallWeb, starts: Path, expected: list[str], tmp_path: Path
) -> None:
    """The coordinator lives on. What the old workers had in hand they still finish, and nobody does it again."""
    gate = web.close_gate(2, "/p1")
    with Machines(tmp_path, free_port()) as machines:
        run = collect_arguments(tmp_path / "run", starts, "--scheduler", machines.address)
        coordinator = cluster(*run)
        web.wait_until(lambda: web.asked[2, "/p1"] == 1)
        machines.kill_scheduler()
        machines.start()
        gate.set()
        assert coordinator.wait(120) == 0
    assert addresses_of(tmp_path / "run") == expected
    assert nothing_was_fetched_twice(web)
    assert web.most_at_once == 1


def test_everything_may_be_killed_and_started_again(
    web: SmallWeb, starts: Path, expected: list[str], tmp_path: Path
) -> None:
    """The scheduler and the coordinator too; finished parts are not done again."""
    gate = web.close_gate(5, "/p1")
    run = collect_arguments(tmp_path / "run", starts)
    with Machines(tmp_path, free_port()) as machines:
        coordinator = cluster(*run, "--scheduler", machines.address)
        web.wait_until(lambda: web.asked[5, "/p1"] == 1)
        coordinator.kill()
        coordinator.wait()
        machines.kill_all()
    before = {
        part.name: part.stat().st_mtime_ns for part in (tmp_path / "run" / "parts").glob("round-*")
    }
    assert before
    gate.set()
    assert cluster(*run, "--workers", "3").wait(120) == 0
    for name, written in before.items():
        assert (tmp_path / "run" / "parts" / name).stat().st_mtime_ns == written
    assert addresses_of(tmp_path / "run") == expected
    assert nothing_was_fetched_twice(web, but=2)
    assert web.most_at_once == 1


def test_a_task_that_fails_is_set_aside_and_named(
    web: SmallWeb, starts: Path, tmp_path: Path
) -> None:
    """The others go on; the status is 1, and the same command tries again."""
    broken = tmp_path / "broken"
    # A program that fails for the share with the first site, until it is mended.
    broken.write_text(
        "#!/bin/sh\n"
        f'if [ ! -e "{tmp_path}/mended" ]; then for word; do case "$word" in\n'
        f'*/tasks/*) grep -q "127.0.1.1:" "$word" && {{ echo tried >>"{tmp_path}/tries"; echo out of order >&2; exit 7; }};;\n'
        "esac; done; fi\n"
        f'exec "{PROGRAM}" "$@"\n',
        encoding="utf-8",
    )
    broken.chmod(0o755)
    run = collect_arguments(tmp_path / "run", starts, "--workers", "3", "--program", str(broken))
    with open(tmp_path / "said", "wb") as said:
        assert cluster(*run, output=said).wait(120) == 1
    text = (tmp_path / "said").read_text(encoding="utf-8")
    assert "Set aside: share" in text
    assert "status 7: out of order" in text
    found = addresses_of(tmp_path / "run")
    assert "home1@site1.test" in found
    assert "home0@site0.test" not in found
    (tmp_path / "mended").touch()
    assert cluster(*run).wait(120) == 0
    assert addresses_of(tmp_path / "run") == collected_by_one(tmp_path / "one", starts)


def _found_by_one(home: Path, starts: Path, depth: int) -> list[str]:
    common = ["--delay", "0", "--assume-online", "--scope", "anywhere", "--depth", str(depth)]
    return sorted(quenlar(home, "collect", "--from", str(starts), *common).splitlines())


def test_the_nearest_way_counts_whatever_is_visited_first(tmp_path: Path) -> None:
    """Site b is three clicks from one start and one from another, or two over a site that is visited later."""
    with SmallWeb(7) as web:
        # By share, so that the parts come in this order.
        a, c, b, d, e, *_ = sorted(range(7), key=lambda host: share_of(f"127.0.1.{host + 1}", 5))
        assert share_of(f"127.0.1.{a + 1}", 5) < share_of(f"127.0.1.{c + 1}", 5)
        origins = web.origins
        for depth in range(3):
            onward = f'<a href="{origins[b]}/">b</a>' if depth == 2 else f'<a href="/{depth + 1}">'
            web.page(a, f"/{depth or ''}", f"a{depth}@a.test {onward}")
        for depth in range(4):
            onward = f'<a href="/{depth + 1}">on</a> <a href="{origins[e]}/{depth}">e</a>'
            web.page(b, f"/{depth or ''}", f"b{depth}@b.test {onward}")
            web.page(e, f"/{depth}", f"e{depth}@e.test")
        web.page(d, "/", f'd@d.test <a href="{origins[b]}/">b</a>')
        starts = tmp_path / "starts.txt"
        starts.write_text(f"{origins[a]}/\n{origins[c]}/\n", encoding="utf-8")
        for name, target in (("straight", b), ("round", d)):
            web.page(c, "/", f'c@c.test <a href="{origins[target]}/">x</a>')
            run = collect_arguments(tmp_path / name, starts, "--workers", "2")
            run[run.index("--depth") + 1] = "3"
            assert cluster(*run).wait(120) == 0
            found = addresses_of(tmp_path / name)
            assert found == _found_by_one(tmp_path / f"{name}-one", starts, 3)
            assert ("b2@b.test" in found, "b1@b.test" in found) == (target == b, True)
            assert ("e0@e.test" in found, "e1@e.test" in found) == (True, target == b)


def test_lists_and_archives_are_made_as_asked_for(
    web: SmallWeb, starts: Path, expected: list[str], tmp_path: Path
) -> None:
    """The archives hold what the run has found; the collections of old rounds are gone."""
    run = tmp_path / "run"
    options = ("--workers", "2", "--format", "lines", "--warc")
    assert cluster(*collect_arguments(run, starts, *options)).wait(120) == 0
    assert sorted((run / "addresses.txt").read_text(encoding="utf-8").split()) == expected
    assert not list(run.glob("addresses.j*"))
    archived = quenlar(tmp_path / "other", "harvest", str(run / "archives"))
    assert sorted(archived.split()) == expected
    rounds: dict[str, int] = {}
    for share in (run / "shares").glob("round-*"):
        rounds[share.name[-12:]] = rounds.get(share.name[-12:], 0) + 1
    assert max(rounds.values()) == 2


def test_the_scope_of_a_host_holds(tmp_path: Path) -> None:
    """Another port is another host; and a start alone is not left."""
    with SmallWeb(2) as web:
        web.page(0, "/", f'a@a.test <a href="/in">in</a> <a href="{web.origins[1]}/">out</a>')
        web.page(0, "/in", "in@a.test")
        web.page(1, "/", "b@b.test")
        starts = tmp_path / "starts.txt"
        starts.write_text(f"{web.origins[0]}/\n", encoding="utf-8")
        run = collect_arguments(tmp_path / "run", starts, "--workers", "1")
        run[run.index("anywhere")] = "host"
        del run[run.index("--shares") : run.index("--shares") + 2]
        assert cluster(*run).wait(120) == 0
        assert addresses_of(tmp_path / "run") == ["a@a.test", "in@a.test"]
        assert web.asked.keys().isdisjoint({(1, "/"), (1, "/robots.txt")})
        facts = json.loads((tmp_path / "run" / "run.json").read_text(encoding="utf-8"))
        assert facts["shares"] == 64


def test_a_task_that_kills_its_worker_is_set_aside(
    web: SmallWeb, starts: Path, tmp_path: Path
) -> None:
    """After three times in a round; the others go on."""
    deadly = tmp_path / "deadly"
    # Kills the worker, its parent, for the share with the first site.
    deadly.write_text(
        "#!/bin/sh\n"
        'for word; do case "$word" in\n'
        f'*/tasks/*) grep -q "127.0.1.1:" "$word" && {{ echo tried >>"{tmp_path}/tries"; kill -9 $PPID; }};;\n'
        "esac; done\n"
        f'exec "{PROGRAM}" "$@"\n',
        encoding="utf-8",
    )
    deadly.chmod(0o755)
    options = ("--workers", "2", "--rounds", "1", "--program", str(deadly))
    run = collect_arguments(tmp_path / "run", starts, *options)
    with open(tmp_path / "said", "wb") as said:
        assert cluster(*run, output=said).wait(120) == 1
    assert "Set aside: share" in (tmp_path / "said").read_text(encoding="utf-8")
    assert len((tmp_path / "tries").read_text(encoding="utf-8").split()) == 3
    assert "home1@site1.test" in addresses_of(tmp_path / "run")
    assert web.asked[0, "/"] == 0


@pytest.mark.parametrize("how", [signal.SIGINT, signal.SIGTERM])
def test_a_run_that_is_stopped_goes_on(
    web: SmallWeb, starts: Path, expected: list[str], tmp_path: Path, how: signal.Signals
) -> None:
    """It says so, with status 130, and takes its programs along."""
    gate = web.close_gate(2, "/p1")
    run = collect_arguments(tmp_path / "run", starts, "--workers", "2")
    with open(tmp_path / "said", "wb") as said:
        coordinator = cluster(*run, output=said)
        web.wait_until(lambda: web.asked[2, "/p1"] == 1)
        coordinator.send_signal(how)
        assert coordinator.wait(120) == 130
    assert "Stopped. The same command goes on." in (tmp_path / "said").read_text(encoding="utf-8")
    wait_until(lambda: not crawling(tmp_path / "run", web.origins[2]))
    gate.set()
    assert cluster(*run).wait(120) == 0
    assert addresses_of(tmp_path / "run") == expected


def test_filters_suppression_and_rounds_hold(web: SmallWeb, starts: Path, tmp_path: Path) -> None:
    """What is stored on the coordinator's machine goes to the workers."""
    home = tmp_path / "home"
    quenlar(home, "filter", "--remove", "^p2@")
    quenlar(home, "options", "RemoveFilter", "1")
    run = collect_arguments(
        tmp_path / "run", starts, "--workers", "2", "--home", str(home), "--rounds", "2"
    )
    assert cluster(*run).wait(120) == 0
    found = addresses_of(tmp_path / "run")
    assert "home2@site2.test" in found
    assert "home4@site4.test" not in found
    assert "p1@site0.test" in found
    assert not [address for address in found if address.startswith("p2@")]


def test_the_suppression_list_holds(web: SmallWeb, starts: Path, tmp_path: Path) -> None:
    """For what is visited from then on, and for what was found before."""
    home = tmp_path / "home"
    quenlar(home, "suppress", "p1@site0.test", "@site3.test")
    run = collect_arguments(tmp_path / "run", starts, "--workers", "2", "--home", str(home))
    assert cluster(*run).wait(120) == 0
    found = addresses_of(tmp_path / "run")
    assert "home0@site0.test" in found
    assert "p1@site0.test" not in found
    assert not [address for address in found if address.endswith("@site3.test")]
    for part in (tmp_path / "run" / "parts").iterdir():
        assert "@site3.test" not in part.read_text(encoding="utf-8")
    quenlar(home, "suppress", "home0@site0.test")
    asked = web.asked.total()
    assert cluster(*run).wait(120) == 0
    assert web.asked.total() == asked
    assert addresses_of(tmp_path / "run") == [one for one in found if one != "home0@site0.test"]
    listed = quenlar(tmp_path / "run", "addresses", "collection").split()
    assert "home0@site0.test" not in listed
