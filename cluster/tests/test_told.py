"""What a crawl says, and what it leaves alone."""

import re
import subprocess
from pathlib import Path

from running import PROGRAM, cluster, collect_arguments, free_port, quenlar
from small_web import SmallWeb


def _told_by_one(home: Path, starts: Path) -> list[str]:
    """What one `quenlar collect` says, but for the two lines that sum it up."""
    common = ["--delay", "0", "--assume-online"]
    command = [PROGRAM, "--home", str(home), "collect", "--from", str(starts), *common]
    done = subprocess.run(command, check=False, capture_output=True, text=True, timeout=120)
    return _steady(done.stderr)[:-2]


def _steady(said: str) -> list[str]:
    """The lines without what is another each time."""
    return re.sub(r"after \d+ ms", "at once", said).splitlines()


def _told(run: list[str], said: Path, status: int) -> list[str]:
    """What a crawl that ends with this status says."""
    with open(said, "wb") as output:
        assert cluster(*run, output=output).wait(120) == status
    return _steady(said.read_text(encoding="utf-8"))


def test_what_the_tasks_have_to_say_is_told(tmp_path: Path) -> None:
    """In the program's words, each once, with the sums of all; a start that is dead or refused is named."""
    with SmallWeb(3) as web:
        web.page(0, "/", 'a@a.test p [at] a [dot] test <a href="/gone">x</a>')
        web.text(1, "/robots.txt", "User-agent: *\nDisallow: /\n")
        web.keep_waiting(2, "/")
        dead = f"http://127.0.1.9:{free_port()}/"
        starts = tmp_path / "starts.txt"
        starts.write_text("\n".join([*web.origins, dead]) + "\n", encoding="utf-8")
        expected = _told_by_one(tmp_path / "one", starts)
        run = collect_arguments(tmp_path / "run", starts, "--workers", "2")
        run[run.index("anywhere")] = "site"
        told = _told(run, tmp_path / "said", 0)
    for line in expected:
        assert told.count(line) == 1
    for words in ("--contact TEXT", dead[:-1], web.origins[2], f"robots.txt of {web.origins[1]}"):
        assert [line for line in expected if words in line]
    sums = (
        "1 page read, 2 pages left to visit, 1 failed, 1 refused, 1 protected address not listed."
    )
    assert told[-1] == sums
    assert [line for line in told if line.startswith("1 address in ")]


def test_when_no_start_answers_the_status_is_1(tmp_path: Path) -> None:
    """It says so, and names the starts. With a contact nobody asks for one."""
    starts = tmp_path / "starts.txt"
    starts.write_text(f"http://127.0.1.9:{free_port()}/\n", encoding="utf-8")
    options = ("--workers", "1", "--contact", "me@x.de")
    told = _told(collect_arguments(tmp_path / "run", starts, *options), tmp_path / "said", 1)
    assert "Round 1: 1 task." in told
    assert "None of the starts could be visited." in told
    assert [line for line in told if line.startswith("1 page is left on http://127.0.1.9:")]
    assert told[-1] == "0 pages read, 1 page left to visit."
    assert "--contact" not in "".join(told)


def test_a_start_that_names_a_suppressed_address_is_not_visited(tmp_path: Path) -> None:
    """As one program says it."""
    quenlar(tmp_path / "home", "suppress", "b@x.de")
    starts = tmp_path / "starts.txt"
    with SmallWeb(2) as web:
        web.page(0, "/", "a@a.test")
        web.page(1, "/u/b@x.de", "b@a.test")
        starts.write_text(f"{web.origins[0]}/\n{web.origins[1]}/u/b%40x.de\n", encoding="utf-8")
        options = ("--workers", "1", "--home", str(tmp_path / "home"))
        told = _told(collect_arguments(tmp_path / "run", starts, *options), tmp_path / "said", 0)
    named = f"{web.origins[1]}/u/b%40x.de: it names an address of the suppression list"
    assert f"{named}, and is not visited." in told
    assert not [path for host, path in web.asked if host == 1]


def test_what_is_left_is_not_asked_for_without_its_task(tmp_path: Path) -> None:
    """Nor by the coordinator, nor by who goes on with the collection before a host wants to be asked again."""
    with SmallWeb(3) as web:
        web.page(0, "/", "a@a.test")
        web.keep_waiting(1, "/")
        web.break_off(2, "/robots.txt")
        home = tmp_path / "home"
        starts = tmp_path / "starts.txt"
        starts.write_text("\n".join(web.origins) + "\n", encoding="utf-8")
        run = collect_arguments(tmp_path / "run", starts, "--workers", "1", "--home", str(home))
        assert cluster(*run).wait(120) == 0
        asked = web.asked.copy()
        assert asked[1, "/"] > 0 and asked[2, "/robots.txt"] > 0
        quenlar(home, "suppress", "b@x.de")
        assert cluster(*run).wait(120) == 0
        assert web.asked == asked
        common = ["--delay", "0", "--assume-online", "--scope", "anywhere"]
        quenlar(tmp_path / "run", "collect", "--name", "collection", "--from", str(starts), *common)
        assert web.asked[1, "/"] == asked[1, "/"]
