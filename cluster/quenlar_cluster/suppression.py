"""The suppression list, for what was listed before an entry was added."""

import hashlib
import re
from pathlib import Path
from urllib.parse import unquote

from quenlar_cluster import program

# What may be an address in a text: more than the program finds, so that nothing is overlooked.
_ADDRESS = re.compile(
    r"[^\s<>()\[\],;:\"\\/?&=#@]+@[^\s<>()\[\],;:\"\\/?&=#@]*[^\s<>()\[\],;:\"\\/?&=#@.]"
)


class Suppression:
    """Who is not to be listed. The program reads the list, which may be written in many ways."""

    def __init__(self, quenlar: str, home: Path) -> None:
        """`home` is the program folder with the list. Raises ClusterError where it cannot be read."""
        entries = program.check([quenlar, "--home", str(home), "suppress"]).splitlines()
        self._entries = frozenset(entries)
        self._has_digests = any(entry.startswith(b"sha256:") for entry in entries)

    def __bool__(self) -> bool:
        """Whether anybody is on it."""
        return bool(self._entries)

    def keeps(self, address: str) -> bool:
        """Whether an address may be listed: it is not on the list, nor its domain, nor its digest."""
        text = address.encode().lower()
        if text in self._entries or text[text.rfind(b"@") :] in self._entries:
            return False
        digest = (
            b"sha256:" + hashlib.sha256(text).hexdigest().encode() if self._has_digests else b""
        )
        return digest not in self._entries

    def is_named_in(self, text: str) -> bool:
        """Whether a text, such as a title or a web address, names an address that is on the list."""
        return any(not self.keeps(found) for found in _ADDRESS.findall(unquote(text)))
