"""The coordinator of a crawl: rounds of tasks, and in the end one collection and one list."""

import json
import os
import re
import sys
import tempfile
from collections.abc import Callable, Iterable, Iterator
from dataclasses import dataclass
from pathlib import Path

from quenlar_cluster import files, program, settings
from quenlar_cluster.collect_task import CollectJob, collect_share
from quenlar_cluster.engine import Engine
from quenlar_cluster.errors import ClusterError
from quenlar_cluster.folder import Folder
from quenlar_cluster.frontier import Frontier, Link
from quenlar_cluster.lease import Lease
from quenlar_cluster.lists import read_lines
from quenlar_cluster.merge import merge_collections
from quenlar_cluster.suppression import Suppression
from quenlar_cluster.told import Figures, counted, figures_of, kept_notices, notices

# A share is one program that visits many hosts at the same time. How many workers come, and how many sites links lead
# to, is not known when it is fixed. Shares without a site cost nothing.
_SITES_A_SHARE = 1000
_LEAST_SHARES = 64
_LEAST_SHARES_A_WORKER = 16

_SCHEME = re.compile("([A-Za-z0-9+.-]+)://")


@dataclass(frozen=True)
class CollectOrder:
    """What a person asks for."""

    folder: Folder
    starts: Path
    program: str
    home: str | None
    scheduler: str | None
    workers: int | None
    rounds: int | None  # None: until nothing new is found
    shares: int | None  # None: by the number of sites and workers
    list_format: str  # lines, csv or jsonl
    archives: bool  # whether what is fetched is kept
    options: tuple[str, ...]  # of `quenlar collect`


def collect(order: CollectOrder, say: Callable[[str], None]) -> int:
    """Runs the crawl, or goes on with it. Returns the exit status."""
    links = list(resolve_starts(order.program, read_starts(order.starts)))
    with tempfile.TemporaryDirectory(prefix="quenlar-cluster-") as scratch:
        seed, told = _make_seed(order, Path(scratch))
        for notice in told:
            say(notice)
        with Engine(order.scheduler, order.workers, say) as engine:
            say(f"The cluster: {engine.dashboard} (plain figures: /json/counts.json there).")
            engine.wait_for_workers()
            set_aside, figures = _run(order, engine, links, seed, say)
    for notice in [*kept_notices(order.folder, told), *figures.refused_starts]:
        say(notice)
    for share in sorted(set_aside):
        say(f"Set aside: share {share}: {set_aside[share]}")
    if set_aside:
        say("The same command tries again what was set aside.")
    elif not figures.a_start_answers:
        say("None of the starts could be visited.")
    say(figures.line("--decode-protected" in order.options))
    return 0 if figures.a_start_answers and not set_aside else 1


def _run(
    order: CollectOrder, engine: Engine, links: list[Link], seed: Path, say: Callable[[str], None]
) -> tuple[dict[int, str], Figures]:
    folder = order.folder
    folder.root.mkdir(parents=True, exist_ok=True)
    shares = order.shares or _known_shares(folder) or _shares_for(links, engine.workers)
    options = list(order.options)
    folder.claim(
        {"command": "collect", "options": options, "rounds": order.rounds, "shares": shares}
    )
    with Lease(
        folder.coordinator_lease,
        on_wait=lambda: say(f"Another is at work in {folder.root}; waiting."),
    ):
        settings.hand_out(order.home, folder.handed)
        if not folder.seed.exists():
            files.copy_whole(seed, folder.seed)
        frontier = Frontier(folder.frontier, shares)
        try:
            frontier.add_starts(_not_suppressed(order, links, say))
            set_aside = _run_rounds(order, engine, frontier, say)
            figures = _finish(order, frontier, say)
            if not set_aside:
                folder.remove_leftovers()
        finally:
            frontier.close()
    return set_aside, figures


def _not_suppressed(
    order: CollectOrder, links: Iterable[Link], say: Callable[[str], None]
) -> Iterator[Link]:
    """The starts that do not name an address of the suppression list; the others are told."""
    suppression = Suppression(order.program, order.folder.handed)
    for link in links:
        if suppression and suppression.is_named_in(f"{link.start} {link.url}"):
            say(f"{link.start}: it names an address of the suppression list, and is not visited.")
        else:
            yield link


def read_starts(path: Path) -> list[str]:
    """The starts of a file, each once. Keywords, and schemes that cannot be visited, are refused."""
    starts = list(dict.fromkeys(read_lines(path)))
    for start in starts:
        scheme = _scheme_of(start)
        if scheme not in ("", "http", "https"):
            raise ClusterError(f"{start}: only http and https can be visited")
        if not scheme and ("." not in start or " " in start or "\t" in start):
            raise ClusterError(
                f"{start}: a keyword cannot be divided; `quenlar collect` asks a search service for it"
            )
    return starts


def _scheme_of(start: str) -> str:
    """The scheme that is typed, in lower case. Empty without one."""
    found = _SCHEME.match(start)
    return found[1].lower() if found else ""


def resolve_starts(quenlar: str, starts: Iterable[str]) -> Iterable[Link]:
    """The pages of starts and their sites, as the program sees them. Without a scheme https is tried first."""
    starts = list(starts)
    typed = [_scheme_of(start) != "" for start in starts]
    requests = [
        {"url": start if known else f"https://{start}"} for start, known in zip(starts, typed)
    ]
    urls: list[str] = []
    for start, answer in zip(starts, program.ask(quenlar, requests)):
        if answer.get("url") is None:
            raise ClusterError(f"{start}: this is not a web address")
        urls.append(answer["url"])
    hosts = [_host_of(url) for url in urls]
    sites = [
        answer.get("site") for answer in program.ask(quenlar, [{"site": host} for host in hosts])
    ]
    for start, known, url, host, site in zip(starts, typed, urls, hosts, sites):
        yield Link(url, site or host, private=True, https_first=not known, start=start)


def _host_of(url: str) -> str:
    """The host of a URL in its serialised form."""
    authority = url.split("/", 3)[2].rpartition("@")[2]
    return (
        authority[: authority.index("]") + 1]
        if authority.startswith("[")
        else authority.partition(":")[0]
    )


def _known_shares(folder: Folder) -> int | None:
    try:
        return json.loads(folder.facts.read_text(encoding="utf-8")).get("shares")
    except (OSError, ValueError):
        return None


def _shares_for(links: list[Link], workers: int) -> int:
    sites = len({link.site for link in links})
    return max(_LEAST_SHARES, _LEAST_SHARES_A_WORKER * workers, -(-sites // _SITES_A_SHARE))


def _make_seed(order: CollectOrder, home: Path) -> tuple[Path, list[str]]:
    """An empty collection: shares that begin with it number equal pages and bodies equally, and can be merged.

    It is made each time, if only to hear what the program has to say of the options and settings: the other result.
    """
    settings.hand_out(order.home, home)
    with open(os.devnull, "wb") as nobody:
        status, said = program.run(
            [*_idle_run(order, home), "--name", "seed"], nobody, lambda: True
        )
    if status != 0:
        raise ClusterError(said)
    return home / "data" / "seed.sqlite", notices(said)


def _idle_run(order: CollectOrder, home: Path) -> list[str]:
    """The command of a run that has nothing to visit."""
    nothing = home / "nothing.jsonl"
    nothing.touch()
    command = [order.program, "--home", str(home), "collect", "--links", str(nothing)]
    return [*command, *dict.fromkeys([*order.options, "--assume-online"])]


def _run_rounds(
    order: CollectOrder, engine: Engine, frontier: Frontier, say: Callable[[str], None]
) -> dict[int, str]:
    """Round after round until nothing new is found. Gives the shares that were set aside, with the reason."""
    folder = order.folder
    set_aside: dict[int, str] = {}
    _merge_finished(order, frontier)
    done = 0
    while True:
        round_number = frontier.last_round()
        finished = folder.finished()
        shares = frontier.open_tasks(round_number, finished)
        if not shares or round_number == done:
            return {share: set_aside.get(share, "its part is not there") for share in shares}
        done = round_number
        say(f"Round {round_number}: {counted(len(shares), 'task')}.")
        jobs = [_make_task(order, frontier, round_number, share, finished) for share in shares]
        for outcome in engine.run(collect_share, jobs):
            if outcome.failure is None:
                set_aside.pop(outcome.job.share, None)
            else:
                set_aside[outcome.job.share] = outcome.failure
                say(f"{outcome.job.name} has failed: {outcome.failure}")
        found = _merge_finished(order, frontier)
        folder.drop_old_shares()
        links = counted(found, "new or nearer link")
        say(f"Round {round_number} is done: {links} to other sites.")


def _make_task(
    order: CollectOrder,
    frontier: Frontier,
    round_number: int,
    share: int,
    finished: dict[int, list[int]],
) -> CollectJob:
    folder = order.folder
    with files.replacing(folder.task(round_number, share)) as stream:
        for link in frontier.links(share, max(finished.get(share, [0])), round_number):
            stream.write(
                json.dumps(link.row(), ensure_ascii=False, separators=(",", ":")).encode() + b"\n"
            )
    return CollectJob(folder, order.program, order.options, order.archives, round_number, share)


def _merge_finished(order: CollectOrder, frontier: Frontier) -> int:
    """Takes in the links of all finished parts, in their order. Gives how many are new."""
    most_distance = (order.rounds or sys.maxsize) - 1
    parts = sorted(
        (number, share) for share, rounds in order.folder.finished().items() for number in rounds
    )
    next_round = max((number for number, _ in parts), default=0) + 1
    return sum(
        frontier.merge_part(
            order.folder.part(number, share), number, share, next_round, most_distance
        )
        for number, share in parts
    )


def _finish(order: CollectOrder, frontier: Frontier, say: Callable[[str], None]) -> Figures:
    """One collection, and one list out of it."""
    folder = order.folder
    shares = {
        share: folder.share(max(rounds), share)
        for share, rounds in sorted(folder.finished().items())
    }
    # Databases are written on a local disk: network folders lack what SQLite needs for it.
    with tempfile.TemporaryDirectory(prefix="quenlar-cluster-") as scratch:
        collection = Path(scratch) / "data" / folder.collection.name
        collection.parent.mkdir()
        merge_collections(folder.seed, shares, frontier.shares, frontier.starts(), collection)
        _erase_suppressed(order, Path(scratch), collection.stem)
        command = [order.program, "--home", scratch, "addresses", collection.stem]
        target = folder.addresses(order.list_format)
        addresses = Path(scratch) / target.name
        with open(addresses, "wb") as stream:
            status, said = program.run(
                [*command, "--format", order.list_format], stream, lambda: True
            )
        if status != 0:
            raise ClusterError(said)
        figures = figures_of(collection)
        files.copy_whole(collection, folder.collection)
        files.copy_whole(addresses, target)
        with open(addresses, "rb") as rows:
            count = sum(1 for _ in rows)
    say(f"{counted(count, 'address', 'es')} in {target}, everything in {folder.collection}.")
    return figures


def _erase_suppressed(order: CollectOrder, home: Path, name: str) -> None:
    """Takes out what was suppressed after its share had been visited: every run begins with that."""
    settings.take_over(order.folder.handed, home)
    if settings.suppresses(home):
        program.check([*_idle_run(order, home), "--name", name])
