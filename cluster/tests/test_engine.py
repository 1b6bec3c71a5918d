"""What the engine makes of tasks that only seem to be done, and of machines that do not fit together."""

import warnings
from pathlib import Path

import pytest
from distributed import Client

from quenlar_cluster import files
from quenlar_cluster.engine import Engine
from quenlar_cluster.errors import ClusterError
from quenlar_cluster.folder import Folder
from quenlar_cluster.harvest_task import HarvestJob


def _job(folder: Path, number: int) -> HarvestJob:
    return HarvestJob(Folder(folder), "quenlar", (), "jsonl", folder, number, "a.warc", True)


def test_a_task_that_leaves_no_part_has_failed(
    tmp_path: Path, monkeypatch: pytest.MonkeyPatch
) -> None:
    """A worker may have another folder under the name. A part that is there counts, whoever has made it."""
    monkeypatch.setattr(files, "_APPEARS_SECONDS", 0)
    Folder(tmp_path).make()
    there, missing = _job(tmp_path, 1), _job(tmp_path, 2)
    there.part.touch()
    with Engine(None, 1, lambda text: None) as engine:
        outcomes = {outcome.job: outcome.failure for outcome in engine.run(repr, [there, missing])}
    assert outcomes[there] is None
    assert "is the folder shared?" in (outcomes[missing] or "")


def test_machines_with_different_versions_are_refused(monkeypatch: pytest.MonkeyPatch) -> None:
    """Also where workers have come after the coordinator."""
    with Engine(None, 1, lambda text: None) as engine:
        engine.wait_for_workers()
        monkeypatch.setattr(
            Client, "get_versions", lambda *_, **__: warnings.warn("python: 3.11, 3.9")
        )
        with pytest.raises(ClusterError, match="different versions: python: 3.11, 3.9"):
            engine.wait_for_workers()
