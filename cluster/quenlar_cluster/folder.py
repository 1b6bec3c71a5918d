"""The shared folder of a run: what lies where, and what is finished."""

import json
import re
from dataclasses import dataclass
from pathlib import Path

from quenlar_cluster import files
from quenlar_cluster.errors import ClusterError

_SHARE = re.compile(r"round-(\d+)-share-(\d+)\.sqlite")
_PART = re.compile(r"round-(\d+)-share-(\d+)\.jsonl")


@dataclass(frozen=True)
class Folder:
    """Paths only; it goes to the workers as it is."""

    root: Path

    @property
    def facts(self) -> Path:
        """What the run is: written once, so that nobody goes on with another run in the same folder."""
        return self.root / "run.json"

    @property
    def handed(self) -> Path:
        """Filters, suppression and settings for the workers."""
        return self.root / "handed"

    @property
    def frontier(self) -> Path:
        """The coordinator's database of links."""
        return self.root / "frontier.sqlite"

    @property
    def seed(self) -> Path:
        """An empty collection, with which every share begins."""
        return self.root / "shares" / "seed.sqlite"

    @property
    def collection(self) -> Path:
        """The one collection at the end; the folder is a program folder for `quenlar --home`."""
        return self.root / "data" / "collection.sqlite"

    @property
    def inputs(self) -> Path:
        """The files that a harvest reads, as they were when it began."""
        return self.root / "inputs.jsonl"

    @property
    def coordinator_lease(self) -> Path:
        """Held by the coordinator, so that a folder has one."""
        return self.root / "leases" / "coordinator.lease"

    @property
    def parts(self) -> Path:
        """Finished parts, and nothing else but files that are being written."""
        return self.root / "parts"

    def lease(self, share: int) -> Path:
        """Guards the domains of a share."""
        return self.root / "leases" / f"share-{share:05}.lease"

    def task(self, round_number: int, share: int) -> Path:
        """The links that a share visits in a round."""
        return self.root / "tasks" / f"{_name(round_number, share)}.jsonl"

    def task_message(self, round_number: int, share: int) -> Path:
        """What the program had to say of a task."""
        return self.root / "tasks" / f"{_name(round_number, share)}.said.json"

    def part(self, round_number: int, share: int) -> Path:
        """What came of a task: addresses, and links to other sites."""
        return self.parts / f"{_name(round_number, share)}.jsonl"

    def share(self, round_number: int, share: int) -> Path:
        """The collection of a share as it is behind a round; whole when the part is there."""
        return self.root / "shares" / f"{_name(round_number, share)}.sqlite"

    def input_part(self, number: int, row_format: str) -> Path:
        """What was found in an input of a harvest."""
        return self.parts / f"input-{number:07}.{row_format}"

    def input_message(self, number: int) -> Path:
        """What the program had to say of an input."""
        return self.root / "tasks" / f"input-{number:07}.json"

    def archives(self, round_number: int, share: int) -> Path:
        """What the names of the web archives of a task begin with."""
        return self.root / "archives" / _name(round_number, share)

    def addresses(self, list_format: str) -> Path:
        """The one list at the end."""
        return self.root / f"addresses.{'txt' if list_format == 'lines' else list_format}"

    def make(self) -> None:
        """Makes the folders below the root."""
        for name in ("archives", "data", "handed", "leases", "parts", "shares", "tasks"):
            (self.root / name).mkdir(parents=True, exist_ok=True)

    def finished(self) -> dict[int, list[int]]:
        """The rounds of which there is a part, in order, by share."""
        rounds: dict[int, list[int]] = {}
        for name in sorted(path.name for path in self.parts.iterdir()):
            if found := _PART.fullmatch(name):
                rounds.setdefault(int(found[2]), []).append(int(found[1]))
        return rounds

    def drop_old_shares(self) -> None:
        """Removes collections of rounds that nobody begins with any more: of each share the last two stay."""
        needed = {share: rounds[-2:][0] for share, rounds in self.finished().items()}
        for path in self.seed.parent.iterdir():
            found = _SHARE.fullmatch(path.name)
            if found and int(found[1]) < needed.get(int(found[2]), 0):
                path.unlink(missing_ok=True)

    def remove_leftovers(self) -> None:
        """Removes what killed writers have left. Call it when everything is done, so that nobody writes."""
        for folder in (self.root, self.parts, self.seed.parent, self.root / "tasks"):
            files.remove_leftovers(folder)

    def claim(self, facts: dict) -> None:
        """Makes this the folder of the run that `facts` describe. Raises ClusterError where it is another run's.

        The root must be there. The facts come first, so that a kill in between leaves a folder that is this run's.
        """
        try:
            known = json.loads(self.facts.read_text(encoding="utf-8"))
        except FileNotFoundError:
            # What a kill has left of the first write does not count.
            draft = f".{self.facts.name}."
            if any(not path.name.startswith(draft) for path in self.root.iterdir()):
                raise ClusterError(
                    f"{self.root} is not empty, and no run has begun in it"
                ) from None
            files.write_whole(self.facts, json.dumps(facts, indent=1).encode() + b"\n")
            known = facts
        except ValueError:
            raise ClusterError(f"{self.facts} is damaged") from None
        for name, value in facts.items():
            if known.get(name) != value:
                raise ClusterError(
                    f"{self.root} holds a run with another {name}: {known.get(name)!r}, now {value!r}"
                )
        self.make()


def _name(round_number: int, share: int) -> str:
    return f"round-{round_number:04}-share-{share:05}"
