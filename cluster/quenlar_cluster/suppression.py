"""The suppression list, for what was listed before an entry was added."""

import hashlib
import re
from collections.abc import Iterator
from pathlib import Path

from quenlar_cluster import program

# As the program does (src/page/unwanted_addresses.cpp): any character of an address may be percent-encoded.
_SIGN = re.compile("@|%40")
_CODE = re.compile("%[0-9A-Fa-f]{2}")
_LETTERS = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"
_NAME_PARTS = frozenset(_LETTERS + "_.-+")
# What may stand in a name as well as before one.
_ODD_PARTS = frozenset("!#$%&'*/=?^`{|}~")
_DOMAIN_PARTS = frozenset(_LETTERS + "-.")
_LONGEST_LOCAL_PART = 64  # RFC 5321, 4.5.3.1.1
_LONGEST_ADDRESS = 254  # RFC 5321, 4.5.3.1.3 without the angle brackets


class Suppression:
    """Who is not to be listed. The program reads the list, which may be written in many ways."""

    def __init__(self, quenlar: str, home: Path) -> None:
        """`home` is the program folder with the list. Raises ClusterError where it cannot be read."""
        entries = program.check([quenlar, "--home", str(home), "suppress"]).splitlines()
        self._quenlar = quenlar
        self._entries = frozenset(entries)
        self._has_digests = any(entry.startswith(b"sha256:") for entry in entries)
        self._top_level: dict[str, bool] = {}

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
        """Whether a text, such as a title or a web address, names an address that is on the list.

        A longer address does not name a shorter one: "joanna@x.de" and "anna@x.de.com" do not name "anna@x.de", but
        "?mail=anna@x.de" and "anna@x.de.html" do.
        """
        return any(
            self._is_named_around(text, sign.start(), sign.end()) for sign in _SIGN.finditer(text)
        )

    def _is_named_around(self, text: str, begin: int, end: int) -> bool:
        locals_ = list(_local_parts(text, begin))
        longer: list[str] = []
        for domain in _domains(text, end) if locals_ else ():
            if not all(self.keeps(f"{local}@{domain}") for local in locals_):
                # A domain that ends in a top-level domain is the only one: it does not name a shorter one.
                return not any(self._is_top_level(one.rpartition(".")[2]) for one in longer)
            longer.append(domain)
        return False

    def _is_top_level(self, label: str) -> bool:
        """Whether there is such a top-level domain. The program is asked once a label."""
        if label not in self._top_level:
            page = {"read": f"a@b.{label}", "page": "http://c.de/", "content_type": "text/plain"}
            (answer,) = program.ask(self._quenlar, [page])
            self._top_level[label] = bool(answer["addresses"])
        return self._top_level[label]


def _local_parts(text: str, end: int) -> Iterator[str]:
    """The local parts that may end before `end`."""
    part = ""
    while True:
        code = _CODE.fullmatch(text, max(end - 3, 0), end)
        before = chr(int(code[0][1:], 16)) if code else text[end - 1 : end] if end > 0 else ""
        goes_on = before in _NAME_PARTS or before in _ODD_PARTS
        if part and (not goes_on or before in _ODD_PARTS):
            yield part
        if not goes_on or len(part) == _LONGEST_LOCAL_PART:
            return
        part = before + part
        end -= len(code[0]) if code else 1


def _domains(text: str, begin: int) -> Iterator[str]:
    """The domains that may begin at `begin`, the longest first."""
    run = ""
    while len(run) < _LONGEST_ADDRESS:
        code = _CODE.match(text, begin)
        after = chr(int(code[0][1:], 16)) if code else text[begin : begin + 1]
        if after not in _DOMAIN_PARTS:
            break
        run += after.lower()
        begin += len(code[0]) if code else 1
    while run := run.rstrip(".-"):
        yield run
        run = run.rpartition(".")[0]
