"""What is handed along from the coordinator's machine to every worker: filters, suppression, the stored contact."""

from pathlib import Path

from quenlar_cluster import files
from quenlar_cluster.program import home_of

# Below the program folder, and below the folder of the settings.
_SUPPRESSED = "suppressed.txt"
_OF_THE_HOME = (_SUPPRESSED, "data/ExtractFilter.dat")
_OF_THE_SETTINGS = ("quenlar.conf",)


def hand_out(home: str | None, handed: Path) -> None:
    """Puts the files of the coordinator's program folder into `handed`; what is not there any more is taken away."""
    program_folder, settings_folder = home_of(home)
    sources = [(program_folder / name, handed / name) for name in _OF_THE_HOME]
    sources += [(settings_folder / name, handed / name) for name in _OF_THE_SETTINGS]
    for source, target in sources:
        target.parent.mkdir(parents=True, exist_ok=True)
        if source.is_file():
            files.copy_whole(source, target)
        else:
            target.unlink(missing_ok=True)


def take_over(handed: Path, home: Path) -> None:
    """Puts what was handed out into a worker's own program folder, which is empty."""
    for name in _OF_THE_HOME + _OF_THE_SETTINGS:
        (home / name).parent.mkdir(parents=True, exist_ok=True)
        if (handed / name).is_file():
            files.copy_whole(handed / name, home / name)


def suppresses(home: Path) -> bool:
    """Whether a program folder has a suppression list."""
    return (home / _SUPPRESSED).is_file()
