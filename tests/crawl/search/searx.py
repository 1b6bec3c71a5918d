#!/usr/bin/env -S /usr/bin/python3 -B
# Keywords through a real search service: searx, with an engine of this test's own, so that it needs no internet. And
# services that give no results in JSON.
# usage: searx.py QUENLAR
import http.server
import json
import os
import shutil
import socket
import subprocess
import sys
import tempfile
import threading
import time
import urllib.error
import urllib.parse
import urllib.request

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../docs"))
from small_web import FOUND, SmallWeb  # noqa: E402

PATIENCE = 120  # seconds until searx is taken for broken

SETTINGS = """\
general: {debug: false, instance_name: "local"}
search: {safe_search: 0, autocomplete: "", default_lang: "", ban_time_on_fail: 1, max_ban_time_on_fail: 1,
         formats: [html, json]}
server: {port: @PORT@, bind_address: "127.0.0.1", secret_key: "any", base_url: false, image_proxy: false,
         http_protocol_version: "1.0", method: "GET"}
ui: {static_path: "/usr/share/python3-searx/static", templates_path: "/usr/share/python3-searx/templates",
     default_theme: oscar, default_locale: ""}
outgoing: {request_timeout: 20.0, enable_http2: false}
engines:
  - {name: local, engine: json_engine, shortcut: lo, categories: general, paging: true, enable_http: true,
     disabled: false, search_url: "@INDEX@/find?q={query}&page={pageno}", results_query: results, url_query: url,
     title_query: title, content_query: text}
locales: {en: English}
doi_resolvers: {oadoi.org: "https://oadoi.org/"}
default_doi_resolver: "oadoi.org"
"""


# A server on this machine that answers as `answer` says: from the path and the query to status, type and body.
class Server(http.server.ThreadingHTTPServer):
    def __init__(self, answer):
        super().__init__(("127.0.0.1", 0), Asked)
        self.answer, self.asked = answer, []
        self.origin = "http://127.0.0.1:%d" % self.server_address[1]
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def handle_error(self, request, client_address):
        pass

    def close(self):
        self.shutdown()
        self.server_close()


class Asked(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        url = urllib.parse.urlsplit(self.path)
        query = {name: values[0] for name, values in urllib.parse.parse_qs(url.query).items()}
        self.server.asked.append((url.path, query))
        status, kind, body = self.server.answer(url.path, query)
        self.send_response(status)
        self.send_header("Content-Type", kind)
        self.send_header("Content-Length", str(len(body.encode())))
        self.end_headers()
        self.wfile.write(body.encode())

    def log_message(self, *_):
        pass


# What the engine of searx finds: two sites for one keyword, on its first page.
def index(path, query):
    found = FOUND if query.get("q") == "garden societies" and query.get("page") == "1" else []
    results = [{"url": result["url"], "title": result["title"], "text": ""} for result in found]
    return 200, "application/json", json.dumps({"results": results})


def forbids_json(path, query):
    if query.get("format") == "json":
        return 403, "text/html", "<title>403 Forbidden</title>"
    return 200, "text/html", "<title>Search</title>"


class Searx:
    def __init__(self, folder, engine):
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            port = free.getsockname()[1]
        settings = os.path.join(folder, "settings.yml")
        with open(settings, "w") as file:
            file.write(SETTINGS.replace("@PORT@", str(port)).replace("@INDEX@", engine))
        self.log = open(os.path.join(folder, "searx.log"), "w+")
        self.process = subprocess.Popen(["/usr/bin/python3", "/usr/bin/searx-run"], stdout=self.log, stderr=self.log,
                                        env={**without_proxies(), "SEARX_SETTINGS_PATH": settings})
        self.origin = "http://127.0.0.1:%d" % port
        self.wait()

    # Until it answers.
    def wait(self):
        opener = urllib.request.build_opener(urllib.request.ProxyHandler({}))
        end = time.monotonic() + PATIENCE
        while self.process.poll() is None and time.monotonic() < end:
            try:
                opener.open(self.origin + "/").close()
                return
            except OSError:
                time.sleep(0.1)
        self.log.seek(0)
        raise AssertionError("searx does not answer:\n" + self.log.read()[-2000:])

    def close(self):
        self.process.terminate()
        self.process.wait()
        self.log.close()


def without_proxies():
    return {name: value for name, value in os.environ.items() if not name.lower().endswith("_proxy")}


# Gives the status, the lines of standard output, and the messages.
def collect(quenlar, home, *arguments):
    done = subprocess.run([quenlar, "--home", home, "collect", *arguments, "--delay", "0", "--assume-online"],
                          env=without_proxies(), capture_output=True, text=True)
    return done.returncode, sorted(done.stdout.splitlines()), done.stderr


def expect(what, wanted, found):
    if wanted != found:
        raise AssertionError("%s: expected %r, got %r" % (what, wanted, found))


def keyword_becomes_sites(quenlar, folder):
    engine = Server(index)
    searx = Searx(folder, engine.origin)
    web = SmallWeb(searx.origin)
    home = os.path.join(folder, "home")
    through = ["--search", "http://search.example", "--proxy", web.proxy]
    try:
        status, addresses, messages = collect(quenlar, home, "garden societies", "--language", "en", *through)
        expect("status", 0, status)
        expect("addresses", ["books@library.example", "curator@museum.example", "guide@museum.example"], addresses)
        asked = [(query["q"], query["page"]) for path, query in engine.asked]
        expect("searches", [("garden societies", "1"), ("garden societies", "2")], asked)
        collect(quenlar, home, "garden societies", "--language", "en", *through)
        expect("searches after the second run", 2, len(engine.asked))
        status, addresses, messages = collect(quenlar, home, "nothing of this kind", *through)
        expect("addresses of a keyword that nothing is found for", [], addresses)
        engine.answer = lambda path, query: (500, "text/plain", "out of order")
        status, addresses, messages = collect(quenlar, home, "another keyword", *through)
        if "local" not in messages or status != 1:
            raise AssertionError("an engine that fails is not named: %d %s" % (status, messages))
    finally:
        web.close()
        searx.close()
        engine.close()


def service_without_json(quenlar, folder):
    for answer, part in ((forbids_json, "formats"), (lambda *_: (200, "text/html", "<p>no JSON"), "SearXNG interface"),
                         (lambda *_: (404, "text/plain", "nothing here"), "404")):
        service = Server(answer)
        try:
            status, addresses, messages = collect(quenlar, os.path.join(folder, "other"), "garden societies",
                                                  "--name", part, "--search", service.origin)
            expect("status", 1, status)
            expect("addresses", [], addresses)
            if part not in messages:
                raise AssertionError("%r does not say %r" % (messages, part))
            expect("what was asked", ("/search", "json"), (service.asked[0][0], service.asked[0][1]["format"]))
        finally:
            service.close()


def main():
    folder = tempfile.mkdtemp(prefix="quenlar-search-")
    failed = False
    try:
        for test in (service_without_json, keyword_becomes_sites):
            try:
                test(sys.argv[1], folder)
                print("ok      " + test.__name__, flush=True)
            except AssertionError as error:
                failed = True
                print("FAILED  %s: %s" % (test.__name__, error), flush=True)
    finally:
        shutil.rmtree(folder)
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
