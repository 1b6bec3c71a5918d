"""A small web on this machine: hosts of 127.0.0.0/8, each a site with an address and a port of its own."""

import threading
from collections import Counter
from collections.abc import Callable
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer


class SmallWeb:
    """Serves pages, and keeps what was asked for. Use it in a `with` block."""

    def __init__(self, hosts: int) -> None:
        self._lock = threading.Lock()
        self._pages: dict[tuple[int, str], str] = {}
        self._redirects: dict[tuple[int, str], str] = {}
        self._texts: dict[tuple[int, str], str] = {}
        self._busy: set[tuple[int, str]] = set()
        self._broken: set[tuple[int, str]] = set()
        self._under_way: Counter[int] = Counter()
        self._gates: dict[tuple[int, str], threading.Event] = {}
        self.reached = threading.Condition(self._lock)
        self.asked: Counter[tuple[int, str]] = Counter()
        self.most_at_once = 0
        self._servers = [self._serve(number) for number in range(hosts)]
        self.origins = [
            f"http://127.0.1.{number + 1}:{s.server_port}" for number, s in enumerate(self._servers)
        ]

    def page(self, host: int, path: str, body: str) -> None:
        """Puts a page in."""
        self._pages[host, path] = f"<title>{host}{path}</title>{body}"

    def text(self, host: int, path: str, body: str) -> None:
        """Puts a text in, such as a robots.txt."""
        self._texts[host, path] = body

    def keep_waiting(self, host: int, path: str) -> None:
        """From now on the page asks to come again in 3000 seconds."""
        self._busy.add((host, path))

    def break_off(self, host: int, path: str) -> None:
        """From now on the page is never answered: the connection is closed."""
        self._broken.add((host, path))

    def redirect(self, host: int, path: str, target: str) -> None:
        """Puts a redirect in."""
        self._redirects[host, path] = target

    def close_gate(self, host: int, path: str) -> threading.Event:
        """From now on requests for the page are not answered until the event that this gives is set."""
        gate = self._gates[host, path] = threading.Event()
        return gate

    def wait_until(self, what: Callable[[], bool], seconds: float = 60) -> None:
        """Waits for a condition on `asked`."""
        with self.reached:
            assert self.reached.wait_for(what, seconds), "nobody asks for it"

    def __enter__(self) -> "SmallWeb":
        for server in self._servers:
            threading.Thread(target=server.serve_forever, args=(0.05,), daemon=True).start()
        return self

    def __exit__(self, *_: object) -> None:
        for gate in self._gates.values():
            gate.set()
        for server in self._servers:
            server.shutdown()
            server.server_close()

    def _serve(self, host: int) -> ThreadingHTTPServer:
        web = self

        class Handler(BaseHTTPRequestHandler):
            """Answers for one host."""

            protocol_version = "HTTP/1.1"

            def do_GET(self) -> None:
                """Answers one request."""
                web.answer(self, host)

            def log_message(self, *_: object) -> None:
                """Says nothing."""

        server = ThreadingHTTPServer((f"127.0.1.{host + 1}", 0), Handler)
        server.daemon_threads = True
        return server

    def answer(self, request: BaseHTTPRequestHandler, host: int) -> None:
        """Answers a request for a page of a host."""
        key = (host, request.path)
        with self._lock:
            self._under_way[host] += 1
            self.most_at_once = max(self.most_at_once, self._under_way[host])
            self.asked[key] += 1
            gate = self._gates.get(key)
            self.reached.notify_all()
        try:
            if gate is not None and not self._wait_or_hang_up(gate, request):
                return
            if key in self._broken:
                request.close_connection = True
                return
            self._send(request, key)
        except (BrokenPipeError, ConnectionResetError):
            request.close_connection = True
        finally:
            with self._lock:
                self._under_way[host] -= 1

    @staticmethod
    def _wait_or_hang_up(gate: threading.Event, request: BaseHTTPRequestHandler) -> bool:
        """Waits for the gate. False when the one who asked has gone away before."""
        request.connection.setblocking(False)
        while not gate.wait(0.02):
            try:
                if request.connection.recv(1) == b"":
                    request.close_connection = True
                    return False
            except BlockingIOError:
                continue
            except OSError:
                request.close_connection = True
                return False
        request.connection.setblocking(True)
        return True

    def _send(self, request: BaseHTTPRequestHandler, key: tuple[int, str]) -> None:
        target = self._redirects.get(key)
        body = (self._pages.get(key) or self._texts.get(key, "")).encode()
        found = key in self._pages or key in self._texts
        busy = key in self._busy
        request.send_response(301 if target else 429 if busy else 200 if found else 404)
        if target:
            request.send_header("Location", target)
        if busy:
            request.send_header("Retry-After", "3000")
        kind = "plain" if key in self._texts else "html"
        request.send_header("Content-Type", f"text/{kind}; charset=utf-8")
        request.send_header("Content-Length", str(len(body)))
        request.end_headers()
        request.wfile.write(body)


def fill(web: SmallWeb, pages: int = 4) -> list[str]:
    """Chains of sites, each with `pages` pages, and what is awkward between them. Gives the starts."""
    origins = web.origins
    last = len(origins) - 1
    for host in range(len(origins)):
        links = "".join(f'<a href="/p{number}">p</a>' for number in range(1, pages))
        onward = f'<a href="{origins[host + 2]}/">on</a>' if host + 2 <= last else ""
        web.page(host, "/", f"home{host}@site{host}.test {links} {onward}")
        for number in range(1, pages):
            web.page(
                host,
                f"/p{number}",
                f'p{number}@site{host}.test shared@everywhere.test <a href="/">home</a>',
            )
    # A page that only another site links to, found when its own site has long been visited.
    web.page(
        0,
        "/hidden",
        f'hidden@site0.test <a href="/hidden2">more</a> <a href="{origins[1]}/p1">known</a>',
    )
    web.page(0, "/hidden2", "hidden2@site0.test")
    web.page(last, "/p1", f'p1@site{last}.test <a href="{origins[0]}/hidden">hidden</a>')
    # A page that redirects to another site.
    web.page(1, "/p2", 'p2@site1.test <a href="/away">away</a>')
    web.redirect(1, "/away", f"{origins[0]}/landing")
    web.page(0, "/landing", "landing@site0.test")
    return [f"{origins[0]}/", origins[1].removeprefix("http://") + "/"]
