#!/usr/bin/python3
"""Reads what `quenlar collect --warc` has written by means of its own, and compares it with the server's log of the wire.

usage: wire.py QUENLAR

The server answers in the ways that servers do: by length, in chunks, until the connection closes, compressed, with redirects,
without a body. It notes every byte that it gets and sends. Each record must be a gzip member of its own and say of itself what
is true; the requests and answers must be those of the log. The archive is also read by `quenlar harvest`, which must find what
the run has found. Then a run is killed, one is short of space, and a later one goes on.
"""
import gzip
import hashlib
import re
import resource
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import zlib
from pathlib import Path

failures = []


def expect(what, condition, shown=""):
    """Notes a failure where the condition does not hold."""
    if not condition:
        failures.append(what)
        print(f"[  FAILED  ] {what} {shown}")


class Server:
    """Serves PAGES on a free port of 127.0.0.1 and keeps the bytes of each exchange."""

    def __init__(self, answers):
        self.answers = answers
        self.log = []  # (path, request, answer as far as it was sent)
        self.lock = threading.Lock()
        self.reached = threading.Semaphore(0)
        self.socket = socket.create_server(("127.0.0.1", 0))
        self.address = f"http://127.0.0.1:{self.socket.getsockname()[1]}"
        threading.Thread(target=self.accept, daemon=True).start()

    def accept(self):
        while True:
            connection, _ = self.socket.accept()
            threading.Thread(target=self.serve, args=(connection,), daemon=True).start()

    def serve(self, connection):
        kept = b""
        with connection:
            while True:
                while b"\r\n\r\n" not in kept:
                    try:
                        more = connection.recv(65536)
                    except OSError:
                        return
                    if not more:
                        return
                    kept += more
                end = kept.index(b"\r\n\r\n") + 4
                request, kept = kept[:end], kept[end:]
                path = request.split(b" ", 2)[1].decode()
                answer, closes = self.answers.get(path, (b"HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n", False))
                with self.lock:
                    self.log.append((path, request, answer))
                if answer is None:
                    self.reached.release()
                    threading.Event().wait()
                try:
                    connection.sendall(answer)
                except OSError:
                    return
                if closes:
                    return


def page(body, *fields, coding=None, chunked=False, length=True):
    """An answer with a page."""
    head = ["HTTP/1.1 200 OK", "Content-Type: text/html; charset=utf-8", *fields]
    if coding == "gzip":
        body = gzip.compress(body)
        head.append("Content-Encoding: gzip")
    if coding == "deflate":
        body = zlib.compress(body)
        head.append("Content-Encoding: deflate")
    if chunked:
        head.append("Transfer-Encoding: chunked")
        pieces = [body[at : at + 100] for at in range(0, len(body), 100)]
        body = b"".join(b"%x;name=value\r\n%s\r\n" % (len(piece), piece) for piece in pieces) + b"0\r\nTrailer: t\r\n\r\n"
    elif length:
        head.append(f"Content-Length: {len(body)}")
    return "\r\n".join(head).encode() + b"\r\n\r\n" + body, not chunked and not length


def small_site():
    """Pages of every kind that a server sends."""
    long = b"<p>" + b"word " * 500 + b"</p>"
    links = b"".join(b"<a href=/%s>x</a>" % name for name in
                     (b"chunked", b"gzip", b"both", b"deflate", b"close", b"moved", b"picture", b"missing", b"empty", b"gone"))
    return {
        "/robots.txt": (b"HTTP/1.1 200 OK\r\nContent-Type: text/plain\r\nContent-Length: 37\r\n\r\n"
                        b"User-agent: *\nDisallow: /r@firma.test", False),
        "/": page(b"home@firma.test " + links),
        "/chunked": page(b"chunked@firma.test " + long, chunked=True),
        "/gzip": page(b"gzip@firma.test " + long, coding="gzip"),
        "/both": page(b"both@firma.test " + long, coding="gzip", chunked=True),
        "/deflate": page(b"deflate@firma.test " + long, coding="deflate"),
        "/close": page(b"close@firma.test " + long, length=False),
        "/moved": (b"HTTP/1.1 301 Moved\r\nLocation: /target\r\nContent-Length: 5\r\n\r\nmoved", False),
        "/target": page(b"target@firma.test", "X-Odd:  two   blanks ", "x-odd: again"),
        "/picture": (b"HTTP/1.1 200 OK\r\nContent-Type: image/png\r\nContent-Length: 14\r\n\r\npng@firma.test", False),
        "/empty": page(b""),
        "/gone": (b"HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: 1000\r\n\r\ncut@firma.test", True),
    }


class Record:
    """A record as it lies in a member."""

    def __init__(self, member):
        head, _, rest = member.partition(b"\r\n\r\n")
        lines = head.decode().split("\r\n")
        expect("the first line is the version", lines[0] == "WARC/1.1", lines[0])
        self.fields = dict(line.split(": ", 1) for line in lines[1:])
        expect("no field comes twice", len(self.fields) == len(lines) - 1, head)
        self.type = self.fields["WARC-Type"]
        self.target = self.fields.get("WARC-Target-URI", "")
        length = int(self.fields["Content-Length"])
        self.block = rest[:length]
        expect("the record ends with two empty lines", rest[length:] == b"\r\n\r\n", self.fields)
        self.check_digest("WARC-Block-Digest", self.block)

    def check_digest(self, name, content):
        """Compares a digest with the bytes."""
        digest = "sha256:" + hashlib.sha256(content).hexdigest()
        expect(f"{name} of {self.target}", self.fields.get(name) == digest, self.fields.get(name))

    def payload(self):
        """The body without its chunks."""
        head, _, body = self.block.partition(b"\r\n\r\n")
        if b"\r\ntransfer-encoding: chunked" not in head.lower():
            return body
        payload = b""
        while body:
            size, _, body = body.partition(b"\r\n")
            count = int(size.split(b";")[0], 16)
            if count == 0:
                break
            payload, body = payload + body[:count], body[count + 2 :]
        return payload


def members(data):
    """The gzip members of a file, and what is left behind the last whole one."""
    found = []
    while data:
        inflater = zlib.decompressobj(31)
        try:
            member = inflater.decompress(data)
        except zlib.error:
            return found, data
        if not inflater.eof:
            return found, data
        found.append(member)
        data = inflater.unused_data
    return found, b""


def records(paths, may_be_torn=False):
    """The records of files in their order."""
    found = []
    for path in paths:
        whole, rest = members(path.read_bytes())
        expect(f"{path.name} ends with a whole record", may_be_torn or not rest)
        mine = [Record(member) for member in whole]
        expect(f"{path.name} begins with its own record", mine and mine[0].type == "warcinfo")
        expect("and that has its name", mine[0].fields.get("WARC-Filename") == path.name)
        found += mine
    ids = [record.fields["WARC-Record-ID"] for record in found]
    expect("ids are unique", len(set(ids)) == len(ids))
    expect("ids are UUIDs", all(re.fullmatch(r"<urn:uuid:[0-9a-f-]{36}>", one) for one in ids))
    return found


def run(quenlar, home, *arguments, **options):
    """Runs the program; gives status and output."""
    done = subprocess.run([quenlar, "--home", str(home), *arguments], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          timeout=120, check=False, **options)
    return done.returncode, done.stdout.decode(), done.stderr.decode()


def collect(server, prefix, *more):
    """The arguments of a crawl of the server."""
    return ["collect", server.address + "/", "--delay", "0", "--assume-online", "--warc", str(prefix), *more]


def the_wire_is_kept(quenlar, folder):
    """Every request and answer, byte for byte, and the addresses of the run in the archive."""
    server = Server(small_site())
    status, listed, _ = run(quenlar, folder / "home", *collect(server, folder / "run"))
    expect("the run ends well", status == 0, status)
    expect("addresses of the run", len(listed.split()) == 7, listed)
    archive = sorted(folder.glob("run-*.warc.gz"))
    expect("there is one file", [path.name for path in archive] == ["run-00000.warc.gz"])
    kept = records(archive)
    with server.lock:
        log = list(server.log)
    requests = [record for record in kept if record.type == "request"]
    expect("as many requests as the server got", len(requests) == len(log), f"{len(requests)} {len(log)}")
    for record, (path, request, _) in zip(requests, log):
        expect(f"target of the request for {path}", record.target == server.address + path, record.target)
        expect(f"request for {path}", record.block == request, record.block)
    answers = {record.target: record for record in kept if record.type == "response"}
    for path, _, answer in log:
        if path == "/gone":
            expect("an answer that was cut is not there", server.address + path not in answers)
            continue
        record = answers[server.address + path]
        if "WARC-Truncated" in record.fields:
            expect(f"beginning of the answer for {path}", answer.startswith(record.block), record.block)
            expect(f"only what is no page is cut: {path}", path in ("/picture", "/moved"))
        else:
            expect(f"answer for {path}", record.block == answer, record.block[:300])
        record.check_digest("WARC-Payload-Digest", record.payload())
        expect(f"address of the server for {path}", record.fields.get("WARC-IP-Address") == "127.0.0.1")
    pairs = {record.fields["WARC-Concurrent-To"] for record in requests if "WARC-Concurrent-To" in record.fields}
    expect("requests name their answers", pairs == {record.fields["WARC-Record-ID"] for record in answers.values()})
    status, harvested, told = run(quenlar, folder / "other", "harvest", *map(str, archive))
    expect("harvest ends well", status == 0, told)
    expect("harvest finds what the run has found", sorted(harvested.split()) == sorted(listed.split()), harvested)


def many_pages(count, body):
    """A chain of pages."""
    pages = {f"/{n}": page(b"p%d@firma.test <a href=/%d>next</a>" % (n, n + 1) + body(n)) for n in range(count)}
    pages["/"] = page(b"<a href=/0>first</a>")
    return pages


def a_killed_run_leaves_whole_records(quenlar, folder):
    """And the next one begins a file of its own; together they have everything."""
    site = many_pages(30, lambda n: b"<!-- %d -->" % n)
    whole = dict(site)
    site["/20"] = (None, False)
    server = Server(site)
    command = [quenlar, "--home", str(folder / "home"), *collect(server, folder / "run", "--depth", "99")]
    with subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as process:
        expect("the run comes to its 20th page", server.reached.acquire(timeout=60))
        process.kill()
    first = records([folder / "run-00000.warc.gz"], may_be_torn=True)
    kept = {record.target for record in first if record.type == "response"}
    expect("what was answered before the kill is there", server.address + "/19" in kept, sorted(kept))
    server.answers = whole
    status, _, told = run(quenlar, folder / "home", *collect(server, folder / "run", "--depth", "99"))
    expect("the next run ends well", status == 0, told)
    archive = sorted(folder.glob("run-*.warc.gz"))
    expect("it has begun a file", [path.name for path in archive] == ["run-00000.warc.gz", "run-00001.warc.gz"], archive)
    _, harvested, _ = run(quenlar, folder / "other", "harvest", *map(str, archive))
    expect("both files have all addresses", sorted(set(harvested.split())) == sorted(f"p{n}@firma.test" for n in range(30)))


def a_full_disk_ends_the_run_in_order(quenlar, folder):
    """With what was found so far; the next run goes on, and nothing is missing in the archives."""
    noise = hashlib.shake_256(b"noise").hexdigest(400_000).encode()
    server = Server(many_pages(30, lambda n: b"<!-- %d %s -->" % (n, noise[n * 1000 :])))

    def little_space():
        signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        resource.setrlimit(resource.RLIMIT_FSIZE, (3_000_000, 3_000_000))

    arguments = collect(server, folder / "run", "--depth", "99")
    status, first, told = run(quenlar, folder / "home", *arguments, preexec_fn=little_space)
    expect("the status is 1", status == 1, f"{status} {told}")
    expect("a message names the archive", "run-00000.warc.gz" in told, told)
    expect("some addresses were found", 0 < len(first.split()) < 30, first)
    kept = [record.target for record in records([folder / "run-00000.warc.gz"]) if record.type == "response"]
    for address in first.split():
        number = address[1 : address.index("@")]
        expect(f"the page of {address} is in the archive", f"{server.address}/{number}" in kept)
    status, second, told = run(quenlar, folder / "home", *arguments)
    expect("the next run ends well", status == 0, told)
    everything = sorted(f"p{n}@firma.test" for n in range(30))
    expect("no address is found twice or lost", sorted((first + second).split()) == everything)
    archive = sorted(folder.glob("run-*.warc.gz"))
    _, harvested, _ = run(quenlar, folder / "other", "harvest", *map(str, archive))
    expect("the archives have all addresses", sorted(harvested.split()) == everything)


def a_folder_that_is_missing_is_told(quenlar, folder):
    """Before anything is asked for."""
    server = Server(small_site())
    status, _, told = run(quenlar, folder / "home", *collect(server, folder / "none" / "run"))
    expect("status without a folder", status == 1, told)
    expect("nothing was asked for", not server.log)


def main():
    """Runs all of it."""
    quenlar = sys.argv[1]
    for test in (the_wire_is_kept, a_killed_run_leaves_whole_records, a_full_disk_ends_the_run_in_order,
                 a_folder_that_is_missing_is_told):
        with tempfile.TemporaryDirectory() as folder:
            started = time.monotonic()
            test(quenlar, Path(folder))
            print(f"{test.__name__}: {time.monotonic() - started:.1f} s")
    print("[  FAILED  ]" if failures else "[  PASSED  ]")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
