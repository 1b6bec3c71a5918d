"""The command line of `quenlar-cluster`."""

import argparse
import re
import signal
import sqlite3
import sys
from collections.abc import Sequence
from pathlib import Path

from quenlar_cluster.collect import CollectOrder, collect
from quenlar_cluster.errors import ClusterError
from quenlar_cluster.folder import Folder
from quenlar_cluster.harvest import HarvestOrder, harvest

EXIT_DONE, EXIT_FAILED, EXIT_USAGE, EXIT_STOPPED = 0, 1, 2, 130

# Options of `quenlar collect` that are handed to every task: name, what it takes (None: nothing), help.
_COLLECT_OPTIONS: Sequence[tuple[str, str | None, str]] = (
    ("--depth", "N", "clicks from a start, counted on from site to site (5)"),
    ("--pages-per-host", "N", "pages of a host (1000)"),
    ("--hosts", "N", "hosts that one task visits at the same time (64)"),
    ("--delay", "SECONDS", "pause between two pages of a host (1)"),
    ("--robots", "obey|ignore", "whether the wishes of robots.txt and of pages are obeyed (obey)"),
    ("--contact", "TEXT", "a web or mail address of yours, sent to the sites"),
    (
        "--decode-protected",
        None,
        "also list addresses that their owners chose to hide from programs",
    ),
    ("--remove", "WORD", "drop addresses in which this word occurs (repeatable)"),
    ("--extract", "WORD", "keep only addresses in which such a word occurs (repeatable)"),
    ("--proxy", "URL", "HTTP proxy for every download"),
    ("--assume-online", None, "do not ask the workers' systems whether they are on line"),
)

# The same of `quenlar harvest`.
_HARVEST_OPTIONS: Sequence[tuple[str, str | None, str]] = (
    ("--robots", "obey|ignore", "whether pages that ask not to be indexed are left out (obey)"),
    (
        "--decode-protected",
        None,
        "also list addresses that their owners chose to hide from programs",
    ),
    ("--remove", "WORD", "drop addresses in which this word occurs (repeatable)"),
    ("--extract", "WORD", "keep only addresses in which such a word occurs (repeatable)"),
)

_COLLECT_EPILOG = """\
The work is divided by registrable domain, so that no site is visited by two programs. Links to other sites are
visited in the next round. The same command goes on where it was stopped or killed, and tries again what was set
aside. FOLDER/addresses.jsonl (.txt, .csv) is the list, FOLDER/data/collection.sqlite the collection:
quenlar --home FOLDER addresses collection.

Exit status: 0 everything is visited, 1 a task was set aside, no start answers, or the run could not be made (the
message says why), 2 wrong usage, 130 stopped.
"""

_HARVEST_EPILOG = """\
Each file, and each file in the folders of the list, is one task. FOLDER/addresses.txt (.csv, .jsonl) holds what one
quenlar harvest over all of them would print. The same command goes on where it was stopped or killed, and tries
again what was set aside.

Exit status: 0 everything is read, 1 an input was set aside or is damaged (the message names it; everything readable
is there), 2 wrong usage, 130 stopped.
"""


def main(arguments: Sequence[str] | None = None) -> int:
    """Runs the command and gives its exit status."""
    given = _parser().parse_args(arguments)
    # As the program does: a shell starts its background jobs with SIGINT ignored, and they can be
    # stopped all the same.
    for stop in (signal.SIGINT, signal.SIGTERM):
        signal.signal(stop, signal.default_int_handler)
    try:
        return given.run(given)
    except ClusterError as error:
        _say(str(error))
        return EXIT_FAILED
    except OSError as error:
        _say(f"{error.filename or given.out}: {error.strerror}")
        return EXIT_FAILED
    except sqlite3.Error as error:
        _say(f"{given.out}: {error}")
        return EXIT_FAILED
    except KeyboardInterrupt:
        _say("Stopped. The same command goes on.")
        return EXIT_STOPPED


def _parser() -> argparse.ArgumentParser:
    parser = argparse.ArgumentParser(
        prog="quenlar-cluster",
        description="Runs quenlar on many machines, with Dask.distributed as the engine.",
        allow_abbrev=False,
    )
    commands = parser.add_subparsers(required=True, metavar="COMMAND")
    _declare_collect(commands)
    _declare_harvest(commands)
    return parser


def _declare_collect(commands: "argparse._SubParsersAction[argparse.ArgumentParser]") -> None:
    verb = commands.add_parser(
        "collect",
        help="visit the sites of many starts",
        description="Visits the sites of many starts on many machines.",
        epilog=_COLLECT_EPILOG,
        formatter_class=argparse.RawDescriptionHelpFormatter,
        allow_abbrev=False,
    )
    _declare_common(verb)
    verb.add_argument(
        "starts",
        metavar="STARTS-FILE",
        type=Path,
        help="site addresses, one a line; - is standard input",
    )
    verb.add_argument(
        "--scope",
        choices=("host", "site", "anywhere"),
        help="what links may lead to (site; anywhere with --rounds)",
    )
    verb.add_argument(
        "--rounds",
        metavar="N",
        type=_positive,
        help="how many sites away from a start links may lead, itself included",
    )
    verb.add_argument(
        "--shares",
        metavar="N",
        type=_positive,
        help="parts that the sites are divided into (64, 16 a worker or one for 1,000 starts, what is most)",
    )
    verb.add_argument(
        "--format", choices=("lines", "csv", "jsonl"), default="jsonl", help="of the list (jsonl)"
    )
    verb.add_argument(
        "--warc", action="store_true", help="keep what is fetched in web archives, FOLDER/archives"
    )
    _declare_handed(verb, "options of quenlar collect", _COLLECT_OPTIONS)
    verb.set_defaults(run=_collect, parser=verb)


def _declare_harvest(commands: "argparse._SubParsersAction[argparse.ArgumentParser]") -> None:
    verb = commands.add_parser(
        "harvest",
        help="addresses out of many web archives",
        description="Reads addresses out of many web archives, files and folders on many machines.",
        epilog=_HARVEST_EPILOG,
        formatter_class=argparse.RawDescriptionHelpFormatter,
        allow_abbrev=False,
    )
    _declare_common(verb)
    verb.add_argument(
        "inputs", metavar="INPUT-LIST", type=Path, help="paths, one a line; - is standard input"
    )
    verb.add_argument(
        "--format", choices=("lines", "csv", "jsonl"), default="lines", help="of the list (lines)"
    )
    verb.add_argument(
        "--jobs", metavar="N", type=_positive, default=1, help="cores that one task uses (1)"
    )
    _declare_handed(verb, "options of quenlar harvest", _HARVEST_OPTIONS)
    verb.set_defaults(run=_harvest, parser=verb)


def _declare_handed(
    verb: argparse.ArgumentParser, title: str, options: Sequence[tuple[str, str | None, str]]
) -> None:
    handed = verb.add_argument_group(title)
    for name, takes, told in options:
        if takes is None:
            handed.add_argument(name, dest="handed", action=_Handed, nargs=0, help=told)
        else:
            handed.add_argument(name, dest="handed", action=_Handed, metavar=takes, help=told)
    verb.set_defaults(handed=())


def _declare_common(verb: argparse.ArgumentParser) -> None:
    verb.add_argument(
        "--out",
        metavar="FOLDER",
        type=_folder,
        required=True,
        help="the folder that all machines see under this name, in a file system",
    )
    verb.add_argument(
        "--scheduler",
        metavar="ADDRESS",
        help="a dask-scheduler, tcp://HOST:PORT; without it this machine's cores work",
    )
    verb.add_argument(
        "--workers", metavar="N", type=_positive, help="processes of the local cluster (one a core)"
    )
    verb.add_argument(
        "--program", metavar="PATH", default="quenlar", help="the program quenlar, on every machine"
    )
    verb.add_argument(
        "--home",
        metavar="DIR",
        help="the program folder whose filters, suppression list and stored settings hold",
    )


class _Handed(argparse.Action):
    """Keeps an option as it was given, in its order."""

    def __call__(
        self, parser: object, given: argparse.Namespace, values: object, name: str | None = None
    ) -> None:
        text = (
            f"{self.option_strings[0]}={values}"
            if isinstance(values, str)
            else self.option_strings[0]
        )
        setattr(given, self.dest, (*getattr(given, self.dest), text))


def _folder(text: str) -> Path:
    """Locks and leases need a file system: no address of a store."""
    if re.match(r"[A-Za-z][A-Za-z0-9+.-]*://", text):
        raise argparse.ArgumentTypeError(
            f"{text} is an address. It must be a folder; mount the store as one on every machine"
        )
    return Path(text)


def _positive(text: str) -> int:
    number = int(text)
    if number < 1:
        raise ValueError
    return number


_positive.__name__ = "number"  # as the message about a wrong one names it


def _collect(given: argparse.Namespace) -> int:
    scope = given.scope or ("anywhere" if given.rounds else "site")
    if given.rounds and scope != "anywhere":
        given.parser.error("--rounds goes with --scope anywhere")
    order = CollectOrder(
        folder=Folder(given.out.absolute()),
        starts=given.starts,
        program=given.program,
        home=given.home,
        scheduler=given.scheduler,
        workers=given.workers,
        rounds=given.rounds if scope == "anywhere" else 1,
        shares=given.shares,
        list_format=given.format,
        archives=given.warc,
        options=(f"--scope={'host' if scope == 'host' else 'site'}", *given.handed),
    )
    return collect(order, _say)


def _harvest(given: argparse.Namespace) -> int:
    order = HarvestOrder(
        folder=Folder(given.out.absolute()),
        inputs=given.inputs,
        program=given.program,
        home=given.home,
        scheduler=given.scheduler,
        workers=given.workers,
        list_format=given.format,
        jobs=given.jobs,
        options=given.handed,
    )
    return harvest(order, _say)


def _say(text: str) -> None:
    print(text, file=sys.stderr, flush=True)
