#!/usr/bin/python3 -B
# How much of what a human reader finds on sites a collection finds. The sites are of two kinds: the HTML documentation of
# Debian packages, downloaded and unpacked but not installed, and made-up ones that are laid out like those of companies,
# societies, towns and universities (recall_sites.py). Each is a host of its own and served over https. What is there to
# find is read by other means than the program's: html5lib builds the trees, and links, visible text and mail links are
# taken out of them here.
# usage: recall.py QUENLAR [PACKAGE ...]     the manuals lie below $QUENLAR_CORPUS, or build/bench/corpus; "made" among the
#                                            packages, or none: the made-up sites too
import collections
import functools
import html
import mimetypes
import os
import re
import socket
import socketserver
import sqlite3
import ssl
import statistics
import subprocess
import sys
import tempfile
import threading
import urllib.parse

import html5lib

import recall_sites

MADE = "made"
PACKAGES = """apt-doc aptitude-doc-en bind9-doc debian-faq debian-policy developers-reference exim4-doc-html mailman3-doc
    ntpsec-doc postfix-doc privoxy slony1-2-doc""".split()
CORPUS = os.environ.get("QUENLAR_CORPUS") or os.path.join(os.path.dirname(__file__), "..", "build", "bench", "corpus")
FEW_PAGES = 10
FEWEST = 5  # addresses of a site that counts for the median
SHOWN = 12  # examples of what is missed or wrong

# Elements that do not end a word where they begin and end.
INLINE = set("a b i em strong span font u s small big mark code tt kbd samp var sub sup abbr cite q wbr label ins del".split())
UNSEEN = set("head script style template".split())
LINKS = {"a": "href", "area": "href", "frame": "src", "iframe": "src", "link": "href"}
ADDRESS = re.compile(r"(?<![\w.@/%+'&=*$!-])[A-Za-z0-9](?:[\w.+'-]*\w)?@(?:[A-Za-z0-9](?:[A-Za-z0-9-]*[A-Za-z0-9])?\.)+[A-Za-z]{2,24}"
                     r"(?![\w@-])", re.ASCII)
# The e-mail pattern of the HTML Standard; and local parts that are mostly numbers of messages, or stand for many.
PATTERN = re.compile(r"[a-z0-9.!#$%&'*+/=?^_`{|}~-]{1,64}@(?:[a-z0-9](?:[a-z0-9-]{0,61}[a-z0-9])?\.)+[a-z0-9-]{2,24}")
STRANGE = re.compile(r"[*$%!#{}|?/=]|^-|^\W|\d{8}|\d+\.\d+\.|^[^a-z]*@")
# Names for examples: addresses under them count on hosts of such names alone.
RESERVED = re.compile(r"[@.](?:example\.(?:com|net|org)|test|example|invalid|localhost)$")
CODES = re.compile(r"\\u([0-9a-fA-F]{4})|\\x([0-9a-fA-F]{2})")


@functools.cache
def top_level_names():
    names = {"test", "example", "invalid", "localhost"}
    with open("/usr/share/publicsuffix/public_suffix_list.dat", encoding="utf-8") as rules:
        for rule in rules:
            if rule.strip() and not rule.startswith("//"):
                names.add(rule.strip().rsplit(".", 1)[-1].lower())
    return names


# What a person takes for addresses in a text: not the user of a URL, not the place of a repository.
def addresses_in(text):
    found = set()
    for match in ADDRESS.finditer(text):
        address = match.group().lower()
        local = address.split("@")[0]
        word = re.split(r"[\s<>\"()]", text[max(0, match.start() - 200):match.start()])[-1]
        if ".." in local or "://" in word or address.rsplit(".", 1)[-1] not in top_level_names():
            continue
        if local == "git" and text[match.end():match.end() + 1] == ":":
            continue
        found.add(address)
    return found


def text_of(element, words):
    name = element.tag if isinstance(element.tag, str) else None
    if name is not None and name not in UNSEEN:
        edge = "" if name in INLINE else "\n"
        words.append(edge)
        words.append(element.text or "")
        for child in element:
            text_of(child, words)
        words.append(edge)
    words.append(element.tail or "")


def mail_targets(target):
    rest = urllib.parse.urlsplit(target)
    receivers = [rest.path] + [value for name, value in re.findall(r"(?i)(?:^|&)(to|cc|bcc)=([^&]*)", rest.query)]
    return addresses_in(" ".join(re.split("[,;]", urllib.parse.unquote(" ".join(receivers)))))


class Page:
    def __init__(self, url, kind, body):
        self.links, self.visible = [], set()
        if kind == "text/plain":
            text = body.decode("utf-8", "replace")
            self.visible, self.source = addresses_in(text), text
            return
        tree = html5lib.parse(body, namespaceHTMLElements=False)
        words = []
        text_of(tree, words)
        self.visible |= addresses_in("".join(words))
        base = next((urllib.parse.urljoin(url, b.get("href")) for b in tree.iter("base") if b.get("href")), url)
        for element in tree.iter():
            target = element.get(LINKS.get(element.tag, "")) if isinstance(element.tag, str) else None
            if not target:
                continue
            if target.strip().lower().startswith("mailto:"):
                self.visible |= mail_targets(target.strip())
            elif self.leads(element.tag, set((element.get("rel") or "").lower().split())):
                try:
                    self.links.append(urllib.parse.urljoin(base, target.strip()).split("#")[0])
                except ValueError:
                    pass
        self.source = body.decode("utf-8", "replace")

    # What asks programs not to follow it is not in scope.
    @staticmethod
    def leads(tag, relations):
        return not relations & {"nofollow", "ugc", "sponsored"} and (tag != "link" or relations & {"next", "canonical"})

    # Whether the address stands anywhere in the page, whole: attributes, scripts and comments included.
    def shows(self, address):
        whole = re.compile(r"(?<![\w.+-])" + re.escape(address) + r"(?![\w-]|\.\w)", re.IGNORECASE)
        return any(whole.search(text) for text in self.texts)

    @functools.cached_property
    def texts(self):
        text = CODES.sub(lambda code: chr(int(code.group(1) or code.group(2), 16)), html.unescape(self.source))
        return text, urllib.parse.unquote(text), re.sub("<[^>]*>", "", text)


class Site:
    def __init__(self, package, folder, group):
        self.package, self.folder, self.group = package, folder, group
        # Nothing is asked of the real host of that name: all hosts stand behind a proxy of this program.
        self.host = "www.%s.%s" % (re.sub("[^a-z0-9]", "-", package), "test" if group in recall_sites.KINDS else "museum")

    # The file of a URL's path, its media type, or the path to which it redirects.
    def find(self, path):
        name = os.path.normpath("/" + urllib.parse.unquote(path))
        file = os.path.realpath(self.folder + name)
        if os.path.isdir(file):
            if not path.endswith("/"):
                return None, None, path + "/"
            file = next((f for f in (os.path.join(file, i) for i in ("index.html", "index.htm")) if os.path.isfile(f)), file)
        if not os.path.isfile(file):
            return None, None, None
        kind, packed = mimetypes.guess_type(file)
        return file, "application/gzip" if packed else kind or "application/octet-stream", None

    # All pages that links lead to from the start, by their paths.
    def read(self):
        self.pages, queue = {}, collections.deque(["/"])
        while queue:
            path = queue.popleft()
            if path in self.pages:
                continue
            file, kind, to = self.find(path)
            if to:
                queue.append(to)
            if kind not in ("text/html", "application/xhtml+xml", "text/plain"):
                continue
            with open(file, "rb") as body:
                page = self.pages[path] = Page("https://%s%s" % (self.host, path), kind, body.read())
            for link in page.links:
                parts = urllib.parse.urlsplit(link)
                if parts.scheme in ("http", "https") and parts.netloc == self.host and not parts.query:
                    queue.append(urllib.parse.unquote(parts.path) or "/")
        self.visible = {a for page in self.pages.values() for a in page.visible if self.counts(a)}

    def counts(self, address):
        return bool(RESERVED.search(self.host)) or not RESERVED.search(address)

    # Whether an address that was listed on these pages is one by the pattern, and stands there.
    def has(self, address, paths):
        if address in self.visible:
            return True
        if not self.counts(address) or not PATTERN.fullmatch(address) or address.rsplit(".", 1)[-1] not in top_level_names():
            return False
        return any(path in self.pages and self.pages[path].shows(address) for path in paths)


# A proxy whose tunnels end here: behind each of them is one of the sites.
class Web(socketserver.ThreadingTCPServer):
    daemon_threads, request_queue_size = True, 128

    def __init__(self, sites, folder):
        self.sites = {site.host: site for site in sites}
        self.certificate = os.path.join(folder, "certificate.pem")
        key = os.path.join(folder, "key.pem")
        names = ",".join("DNS:" + site.host for site in sites)
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes", "-days",
                        "2", "-subj", "/CN=recall", "-addext", "subjectAltName=" + names, "-keyout", key, "-out",
                        self.certificate], check=True, stderr=subprocess.DEVNULL)
        self.tls = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        self.tls.load_cert_chain(self.certificate, key)
        super().__init__(("127.0.0.1", 0), Tunnel)
        threading.Thread(target=self.serve_forever, daemon=True).start()


class Tunnel(socketserver.StreamRequestHandler):
    def head(self, lines):
        first = lines.readline().decode("latin-1").split()
        while lines.readline().strip():
            pass
        return first

    def handle(self):
        asked = self.head(self.rfile)
        if len(asked) < 2 or asked[0] != "CONNECT":
            return self.wfile.write(b"HTTP/1.1 400 Bad\r\nContent-Length: 0\r\nConnection: close\r\n\r\n")
        site = self.server.sites.get(asked[1].rsplit(":", 1)[0])
        self.wfile.write(b"HTTP/1.1 200 OK\r\n\r\n")
        try:
            with self.server.tls.wrap_socket(self.connection, server_side=True) as secure:
                lines = secure.makefile("rb")
                while (asked := self.head(lines)) and site:
                    secure.sendall(self.answer(site, asked[1]))
        except OSError:
            pass  # the client has gone

    def answer(self, site, target):
        file, kind, to = site.find(urllib.parse.urlsplit(target).path)
        status, more, body = "404 Not Found", "", b"no such page"
        if to:
            status, more = "301 Moved Permanently", "Location: %s\r\n" % to
        elif file:
            status, more = "200 OK", "Content-Type: %s\r\n" % kind
            with open(file, "rb") as page:
                body = page.read()
        return ("HTTP/1.1 %s\r\n%sContent-Length: %d\r\n\r\n" % (status, more, len(body))).encode("utf-8") + body


# The folder with the most pages below an index, among the highest ones.
def unpack(package):
    folder = os.path.join(CORPUS, "sites", package)
    if not os.path.isdir(folder):
        os.makedirs(folder + ".part", exist_ok=True)
        with tempfile.TemporaryDirectory() as scratch:
            got = subprocess.run(["apt-get", "download", "-q", package], cwd=scratch, capture_output=True)
            for name in os.listdir(scratch):
                subprocess.run(["dpkg-deb", "-x", os.path.join(scratch, name), folder + ".part"], check=True)
        if got.returncode != 0:
            os.rmdir(folder + ".part")
            print("recall.py: %s cannot be had; it is left out" % package, file=sys.stderr)
            return None
        os.rename(folder + ".part", folder)
    best = (0, None)
    for place, folders, files in os.walk(folder):
        if "index.html" in files or "index.htm" in files:
            folders.clear()
            pages = sum(name.endswith((".html", ".htm")) for _, _, names in os.walk(place) for name in names)
            best = max(best, (pages, place))
    return best[1]


# A collection of all sites, by host: the addresses with their pages, and the pages that were read.
def collect(quenlar, web, sites, folder, *options):
    environment = {**os.environ, "SSL_CERT_FILE": web.certificate}
    starts = "".join("https://%s/\n" % site.host for site in sites)
    proxy = "http://127.0.0.1:%d" % web.server_address[1]
    subprocess.run([quenlar, "--home", folder, "collect", "--from", "-", "--name", "sites", "--delay", "0", "--assume-online",
                    "--depth", "1000", "--proxy", proxy, *options], input=starts, text=True, env=environment, check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    listed, read = collections.defaultdict(lambda: collections.defaultdict(set)), collections.defaultdict(set)
    with sqlite3.connect(os.path.join(folder, "data", "sites.sqlite")) as database:
        for address, url in database.execute("SELECT a.address, p.url FROM sightings s JOIN addresses a ON a.id = s.address"
                                             " JOIN pages p ON p.id = s.page"):
            parts = urllib.parse.urlsplit(url)
            listed[parts.hostname][address.lower()].add(urllib.parse.unquote(parts.path))
        for (url,) in database.execute("SELECT url FROM pages WHERE state = 'read'"):
            parts = urllib.parse.urlsplit(url)
            read[parts.hostname].add(urllib.parse.unquote(parts.path))
    return listed, read


def share(part, whole):
    return "%.1f %%" % (100 * len(part) / len(whole)) if whole else "-"


def goal(name, measured, at_least=None, at_most=None):
    wanted = "at least %.2f" % at_least if at_most is None else "at most %.2f" % at_most
    met = measured >= at_least if at_most is None else measured <= at_most
    print("\nGoal: %s (%s). Measured: %.2f, %s." % (name, wanted, measured, "met" if met else "**not met**"))


def show(what, of_sites):
    examples = sorted("%s: %s" % (site.package, thing) for site, thing in of_sites)
    if examples:
        print("\n%s: %d\n\n    %s" % (what, len(examples), "\n    ".join(examples[:SHOWN])))


# The sites of a group, as the collections found them.
class Finding:
    def __init__(self, sites, listed, read, few):
        self.sites = sites
        self.every = [(site, address) for site in sites for address in site.visible]
        self.found = [(site, address) for site, address in self.every if address in listed[site.host]]
        self.listed = [(site, address) for site in sites for address in listed[site.host]]
        self.none = [(s, address) for s, address in self.listed if not s.has(address, listed[s.host][address])]
        self.strange = [(s, a) for s, a in sorted(set(self.listed) - set(self.none), key=lambda pair: (pair[0].host, pair[1]))
                        if a not in s.visible and STRANGE.search(a)]
        self.pages = [(site, path) for site in sites for path in site.pages]
        self.visited = [(site, path) for site, path in self.pages if path in read[site.host]]
        self.shares = [len(site.visible & set(few[site.host])) / len(site.visible) for site in sites
                       if len(site.visible) >= FEWEST]

    def row(self, name):
        few = "%.1f %%" % (100 * statistics.median(self.shares)) if self.shares else "-"
        print("| %s | %d | %d | %s | %d | %s | %d | %d | %d | %s |" % (
            name, len(self.sites), len(self.pages), share(self.visited, self.pages), len(self.every),
            share(self.found, self.every), len(self.listed), len(self.none), len(self.strange), few))


# Both collections of some sites, next to what stands there.
def measure(quenlar, what, sites):
    for site in sites:
        site.read()
    with tempfile.TemporaryDirectory(prefix="quenlar-recall-") as work:
        web = Web(sites, work)
        listed, read = collect(quenlar, web, sites, os.path.join(work, "all"), "--pages-per-host", "1000000")
        few, _ = collect(quenlar, web, sites, os.path.join(work, "few"), "--pages-per-host", str(FEW_PAGES))
        web.shutdown()
    print("| %s | sites | pages | visited | addresses | found | listed | none | strange | found on %d pages, median |" % (
        what, FEW_PAGES))
    print("|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|")
    groups = collections.defaultdict(list)
    for site in sites:
        groups[site.group].append(site)
    for group, members in groups.items():
        Finding(members, listed, read, few).row(group)
    all_sites = Finding(sites, listed, read, few)
    all_sites.row("**all**")
    goal("addresses of %s that are found, percent" % what, 100 * len(all_sites.found) / len(all_sites.every), at_least=98)
    goal("listed of %s that are none, percent" % what, 100 * len(all_sites.none) / len(all_sites.listed), at_most=1)
    goal("pages of %s that are visited, percent" % what, 100 * len(all_sites.visited) / len(all_sites.pages), at_least=100)
    if all_sites.shares:
        goal("addresses found on %d pages of the median of %s, percent" % (FEW_PAGES, what),
             100 * statistics.median(all_sites.shares), at_least=80)
    print("\nThe median is that of %d sites with %d addresses or more." % (len(all_sites.shares), FEWEST))
    show("Missed", set(all_sites.every) - set(all_sites.found))
    show("None", all_sites.none)
    show("Strange: by the pattern an address, and to a reader hardly one", all_sites.strange)
    show("Not visited", set(all_sites.pages) - set(all_sites.visited))


def main():
    quenlar, packages = os.path.abspath(sys.argv[1]), sys.argv[2:] or [*PACKAGES, MADE]
    sys.setrecursionlimit(20000)
    print("\n## Addresses of sites\n\nOver https, next to what html5lib reads there (`bench/recall.py`). \"None\" is no address by "
          "the HTML Standard's\npattern, \"strange\" is one that a reader would hardly write to.")
    folders = [(package, unpack(package)) for package in packages if package != MADE]
    manuals = [Site(package, folder, package) for package, folder in folders if folder]
    if manuals:
        print("\n### Manuals: documentation of Debian packages\n")
        measure(quenlar, "manuals", manuals)
    if MADE in packages:
        print("\n### Sites laid out like those of companies, societies, towns and universities\n\nMade up, the same at every run "
              "(`bench/recall_sites.py`), in six languages.\n")
        with tempfile.TemporaryDirectory(prefix="quenlar-recall-") as work:
            made = [Site(name, folder, name.split("-")[0]) for name, folder in recall_sites.make(work)]
            measure(quenlar, "made-up sites", made)


if __name__ == "__main__":
    main()
