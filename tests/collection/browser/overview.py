#!/usr/bin/env -S /usr/bin/python3 -B
# The web page of a collection in a real browser: what a person does with it, and what no visited page may do to it.
# usage: overview.py QUENLAR [PICTURES]     PICTURES: a folder for screenshots
import base64
import html
import http.server
import os
import re
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import threading

from chromium import Chromium

HOSTILE = [
    "<script>window.owned=1</script>",
    "</script><script>window.owned=2</script>",
    "<!--<script>",
    "\"><img src=x onerror='window.owned=3'>",
    "{{window.owned=4}} ${window.owned=5} &lt;b&gt; \u202egnp.exe",
    "</title></style></textarea><svg onload=window.owned=6>",
]

# The sites of the collection: host, path, title, body.
PAGES = {
    "127.0.0.1": {
        "/": ("Rose garden", '<a href="/team">Team</a> <a href="/contact">Contact</a> <a href="mailto:roses@garden.test">'
              'Write</a> <a href="/shop?q=%3Cb%3E">Shop</a>'),
        "/team": ("The team of the rose garden", "anna@garden.test bert@garden.test clara@garden.test"),
        "/contact": ("Contact", '<a href="mailto:roses@garden.test">x</a> <i data-mail="office@garden.test"></i>'
                     "<script>var m = 'press@garden.test'</script><!-- old@garden.test -->"),
        "/shop": ("B\u00e4ume & <b>Str\u00e4ucher</b> \u65e5\u672c", "anna@garden.test shop@garden.test"),
    },
    "127.0.0.2": dict(
        {"/": ("Museum", " ".join('<a href="/room/%d">Room</a>' % room for room in range(len(HOSTILE))))},
        **{"/room/%d" % room: (title, "keeper%d@museum.test" % room) for room, title in enumerate(HOSTILE)}),
    "127.0.0.3": {"/": ("Library", "books@library.test")},
}


class Web(http.server.ThreadingHTTPServer):
    asked = 0


class Visit(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        self.server.asked += 1
        pages = PAGES.get(self.headers["Host"].split(":")[0], {})
        title, body = pages.get(self.path.split("?")[0], (None, None))
        page = "<title>%s</title>%s" % (html.escape(title or "None"), body)
        answer = page.encode()
        self.send_response(200 if title else 404)
        self.send_header("Content-Type", "text/html; charset=utf-8")
        self.send_header("Content-Length", str(len(answer)))
        self.end_headers()
        self.wfile.write(answer)

    def log_message(self, *_):
        pass


# Collections, and the pages made of them, in a folder that goes with this object.
class Workshop:
    def __init__(self, quenlar):
        self.quenlar, self.folder = quenlar, tempfile.mkdtemp(prefix="quenlar-overview-")
        self.web = Web(("0.0.0.0", 0), Visit)
        threading.Thread(target=self.web.serve_forever, daemon=True).start()
        self.port = self.web.server_address[1]

    def run(self, *arguments):
        environment = {name: value for name, value in os.environ.items() if not name.lower().endswith("_proxy")}
        return subprocess.run([self.quenlar, "--home", self.folder, *arguments], check=True, capture_output=True,
                              env=environment).stdout

    def collect(self, name, *options):
        starts = ["http://%s:%d/" % (host, self.port) for host in PAGES]
        self.run("collect", *starts, "--name", name, "--delay", "0", "--assume-online", *options)

    def database(self, name):
        return os.path.join(self.folder, "data", name + ".sqlite")

    # Writes the page of a collection; gives its URL.
    def write(self, name, *options):
        path = os.path.join(self.folder, name + ".html")
        with open(path, "wb") as page:
            page.write(self.run("addresses", name, "--format", "html", *options))
        return "file://" + path

    def close(self):
        self.web.shutdown()
        self.web.server_close()
        shutil.rmtree(self.folder)


# A copy of a collection with many more addresses: `count` in all, a thousand of them on each of a site's pages, and one
# that stands on every page.
def enlarge(workshop, name, copy, count):
    shutil.copy(workshop.database(name), workshop.database(copy))
    with sqlite3.connect(workshop.database(copy)) as database:
        first = database.execute("SELECT max(id) FROM addresses").fetchone()[0] + 1
        pages = database.execute("SELECT max(id) FROM pages").fetchone()[0] + 1
        held = database.execute("SELECT count(*) FROM addresses").fetchone()[0]
        numbers = range(count - held)
        database.executemany("INSERT INTO hosts (id, origin, site) VALUES (?, ?, ?)",
                             [(1000 + n, "https://www.site%d.test" % n, "site%d.test" % n) for n in range(50)])
        database.executemany(
            "INSERT INTO pages (id, key, host, url, depth, rank, state, title) VALUES (?, ?, ?, ?, 1, 1, 'read', ?)",
            [(pages + n, n, 1000 + n % 50, "https://www.site%d.test/list/%d" % (n % 50, n), "List %d" % n)
             for n in range(len(numbers) // 1000 + 1)])
        database.executemany("INSERT INTO addresses (id, address, first_seen) VALUES (?, ?, ?)",
                             [(first + n, "person%06d@site%d.test" % (n, n % 50), 1700000000 + n) for n in numbers])
        sighting = "INSERT INTO sightings (address, page, place, written, first_seen, last_seen) VALUES (?, ?, ?, '', ?, ?)"
        database.executemany(sighting, [(first + n, pages + n // 1000, "text" if n % 3 else "mailto", 1700000000 + n,
                                         1700000000 + n) for n in numbers])
        database.executemany(sighting, [(first, page, "comment", 1700000000, 1700500000)
                                        for (page,) in database.execute("SELECT id FROM pages WHERE state = 'read'").fetchall()])


ROWS = "[...document.querySelectorAll('#rows > .row')]"
FIRST = "document.getElementById('row-0')?.querySelector('.address').textContent"
COUNT = "document.getElementById('count')?.textContent"
ACTIVE = "document.getElementById('grid').getAttribute('aria-activedescendant')"
SIGHTINGS = "[...document.querySelectorAll('.sightings li')]"
# The addresses of the list, in the order in which they stand below each other.
LISTED = ("(%s).sort((a, b) => a.dataset.position - b.dataset.position)"
          ".map((row) => row.querySelector('.address').textContent)" % ROWS)


def sort_by(page, title):
    page.click("[...document.querySelectorAll('#columns button')].find((b) => b.textContent.startsWith('%s'))" % title)


def search(page, text):
    page.get("document.getElementById('search').select()")
    page.get("document.getElementById('search').focus()")
    page.type(text)


def figures_and_charts(browser, urls):
    page = browser.open(urls["small"])
    page.wait(FIRST)
    page.expect("document.title", "small \u2013 addresses")
    page.expect("document.getElementById('name').textContent", "small")
    figures = dict(page.get("[...document.querySelectorAll('#figures div')].map((d) => [d.children[0].textContent,"
                            " d.children[1].textContent])"))
    assert figures == {"Addresses": "15", "Sites with addresses": "3", "Sightings": "17", "Pages read": "12",
                       "Pages left to visit": "0"}, figures
    page.expect("[...document.querySelectorAll('#sites li')].map((li) => li.textContent)",
                ["127.0.0.18", "127.0.0.26", "127.0.0.31"])
    page.expect("[...document.querySelectorAll('#places li')].map((li) => li.textContent)",
                ["text11", "attribute1", "comment1", "mailto1", "script1"])
    page.expect("document.querySelectorAll('#runs tbody tr').length", 1)
    widths = page.get("[...document.querySelectorAll('#sites .bar')].map((bar) => bar.getBoundingClientRect().width)")
    assert widths[0] > widths[1] > widths[2] > 0, widths
    page.click("document.querySelectorAll('#places button')[3]")
    page.expect("document.getElementById('search').value", "place:mailto")
    page.expect(COUNT, "1 of 15 addresses")
    page.expect(FIRST, "roses@garden.test")
    assert page.complaints() == [], page.complaints()


def search_and_sorting(browser, urls):
    page = browser.open(urls["small"])
    page.wait(FIRST)
    page.press("/")
    page.expect("document.activeElement.id", "search")
    page.type("garden.test TEAM")
    page.expect(COUNT, "3 of 15 addresses")
    page.expect(LISTED, ["anna@garden.test", "bert@garden.test", "clara@garden.test"])
    search(page, "str\u00e4ucher")  # a word of the second page on which Anna stands
    page.expect(LISTED, ["anna@garden.test", "shop@garden.test"])
    for site in ("127.0.0.3", "\uff11\uff12\uff17.0.0.3"):  # letters beyond ASCII are coded as in a link
        search(page, "site:" + site)
        page.expect(LISTED, ["books@library.test"])
    search(page, "no such word")
    page.expect("document.getElementById('none').hidden", False)
    page.click("document.getElementById('clear')")
    page.expect(COUNT, "15 addresses")
    found = page.get(LISTED)
    order = "document.querySelector('#columns [role=columnheader]').getAttribute('aria-sort')"
    sort_by(page, "Address")
    page.expect(LISTED, sorted(found))
    page.expect(order, "ascending")
    sort_by(page, "Address")
    page.expect(LISTED, sorted(found, reverse=True))
    page.expect(order, "descending")
    sort_by(page, "Address")
    page.expect(LISTED, found)
    page.expect(order, "none")
    sort_by(page, "Sightings")
    sort_by(page, "Sightings")
    page.expect("new Set((%s).slice(0, 2)).size" % LISTED, 2)
    assert set(page.get(LISTED)[:2]) == {"anna@garden.test", "roses@garden.test"}, page.get(LISTED)


def sightings(browser, urls):
    page = browser.open(urls["small"])
    page.wait(FIRST)
    search(page, "anna@garden.test")
    page.expect(LISTED, ["anna@garden.test"])
    page.expect(SIGHTINGS + ".length", 0)
    page.click("document.querySelector('#row-0 .address')")
    page.expect(SIGHTINGS + ".map((li) => li.querySelector('.page').textContent)",
                ["The team of the rose garden", "B\u00e4ume & <b>Str\u00e4ucher</b> \u65e5\u672c"])
    links = page.get("[...document.querySelectorAll('a')].map((a) => [a.protocol, a.rel, a.target])")
    assert links and all(link == ["http:", "noreferrer", "_blank"] for link in links), links
    page.expect("document.getElementById('row-0').getAttribute('aria-expanded')", "true")
    page.click("document.querySelector('#row-0 .address')")
    page.expect(SIGHTINGS + ".length", 0)


def keyboard(browser, urls):
    page = browser.open(urls["large"])
    page.wait(FIRST)
    page.press("/")
    page.expect("document.activeElement.id", "search")
    page.press("ArrowDown")
    page.expect("document.activeElement.id", "grid")
    page.expect(ACTIVE, "row-0")
    page.press("ArrowDown", "ArrowDown", "ArrowUp")
    page.expect(ACTIVE, "row-1")
    page.press("Enter")
    page.wait(SIGHTINGS + ".length > 0")
    page.press("Tab")
    page.expect("document.activeElement.closest('.sightings') !== null", True)
    page.press("Escape")
    page.expect(SIGHTINGS + ".length", 0)
    page.expect("document.activeElement.id", "grid")
    page.press("ArrowRight")
    page.wait(SIGHTINGS + ".length > 0")
    page.press("ArrowLeft")
    page.expect(SIGHTINGS + ".length", 0)
    page.press("End")
    page.expect(ACTIVE, "row-99999")
    # The active row lies whole between the headings and the lower edge.
    seen = ("(() => { const row = document.querySelector('[aria-selected=true]').getBoundingClientRect(), head ="
            " document.getElementById('columns').getBoundingClientRect();"
            " return row.top >= head.bottom - 1 && row.bottom <= innerHeight + 1; })()")
    page.expect(seen, True)
    page.press("PageUp")
    page.expect(seen, True)
    page.press("Home")
    page.expect(ACTIVE, "row-0")
    page.expect(seen, True)
    roles = page.get("[...new Set([...document.querySelectorAll('#grid [role]')].map((e) => e.getAttribute('role')))]")
    assert set(roles) == {"rowgroup", "row", "columnheader", "gridcell"}, roles
    page.expect("document.getElementById('grid').getAttribute('aria-rowcount')", "100001")


def hundred_thousand(browser, urls):
    page = browser.open(urls["large"])
    page.wait(FIRST)
    page.expect(COUNT, "100,000 addresses")
    few = page.get(ROWS + ".length")
    assert few < 100, few
    page.get("scrollTo(0, document.body.scrollHeight / 2)")
    page.wait("!document.getElementById('row-0')")
    row = page.get("Number(%s[0].dataset.position)" % ROWS)
    assert 40000 < row < 60000, row
    assert page.get(ROWS + ".length") < 100
    search(page, "person077777")
    page.expect(LISTED, ["person077777@site27.test"])
    search(page, "@site27.test list")
    page.expect(COUNT, "2,000 of 100,000 addresses")
    search(page, "")
    page.call("Input.dispatchKeyEvent", type="keyDown", key="Delete", windowsVirtualKeyCode=46)
    page.expect(COUNT, "100,000 addresses")
    for title, wanted in (("Address", "anna@garden.test"), ("First seen", "person000000@site0.test"),
                          ("Place", "office@garden.test")):
        page.get("scrollTo(0, document.getElementById('listing').offsetTop)")
        sort_by(page, title)
        page.expect(FIRST, wanted)
    page.get("dispatchEvent(new Event('beforeprint'))")
    page.expect("document.querySelectorAll('#print tbody tr').length", 5000)
    page.expect("document.querySelector('#print caption').textContent",
                "The first 5,000 are printed; a search chooses others.")
    page.get("dispatchEvent(new Event('afterprint'))")
    search(page, "person000000")
    page.expect(LISTED, ["person000000@site0.test"])
    page.get("document.getElementById('grid').focus()")
    page.press("Enter")
    page.expect(SIGHTINGS + ".length", 100)
    more = page.get("document.querySelector('.sightings button').textContent")
    assert re.fullmatch(r"Show more \(\d+ left\)", more), more
    page.get("document.querySelector('.sightings button').click()")
    page.expect("document.querySelector('.sightings button').hidden", True)
    assert page.get(SIGHTINGS + ".length") > 100


def titles_stay_text(browser, urls):
    page = browser.open(urls["small"])
    page.wait(FIRST)
    search(page, "keeper")
    page.expect(COUNT, "6 of 15 addresses")
    shown = page.get("(%s).map((row) => row.querySelector('.cell-2').textContent)" % ROWS)
    assert sorted(shown) == sorted(HOSTILE), shown
    for position in range(len(HOSTILE)):
        page.get("document.getElementById('row-%d').click()" % position)
        page.expect(SIGHTINGS + ".length", 1)
    page.expect("window.owned ?? null", None)
    page.expect("document.querySelectorAll('script').length", 2)
    page.expect("document.querySelectorAll('img, svg, iframe, link, object, embed').length", 0)
    assert page.complaints() == [], page.complaints()


def saved_copy(browser, urls, workshop):
    page = browser.open(urls["small"])
    page.wait("document.querySelector('#count')?.textContent")
    shown = page.get("document.getElementById('main').innerText")
    path = os.path.join(workshop.folder, "copy.html")
    with open(path, "w") as copy:
        copy.write("<!DOCTYPE html>\n" + page.get("document.documentElement.outerHTML"))
    page = browser.open("file://" + path)
    page.wait("document.querySelector('#count')?.textContent")
    page.expect("document.getElementById('main').innerText", shown)
    page.get("scrollTo(0, document.getElementById('listing').offsetTop)")
    page.wait(FIRST)
    # The policy holds for the sizes that the browser has written into the copy, too; the script sets them again.
    unexpected = [complaint for complaint in page.complaints() if "Applying inline style" not in str(complaint)]
    assert unexpected == [], unexpected


def nothing_else_runs(browser, urls, web):
    page = browser.open(urls["small"])
    page.wait(FIRST)
    asked = web.asked
    origin = "http://127.0.0.1:%d/" % web.server_address[1]
    policy = page.get("document.querySelector('meta[http-equiv]').content")
    assert policy.startswith("default-src 'none'; "), policy
    # Even a script that had found its way in may load nothing, run nothing new, and write no markup.
    page.expect("fetch('%s').then(() => 'answered', () => 'refused')" % origin, "refused")
    page.expect("new Promise((end) => { const image = new Image(); image.onload = () => end('loaded');"
                " image.onerror = () => end('refused'); image.src = '%s'; })" % origin, "refused")
    for attempt in ("document.body.innerHTML = '<p>'", "document.createElement('script').text = '1'",
                    "document.write('<p>')"):
        page.expect("(() => { try { %s; } catch (error) { return error.name; } })()" % attempt, "TypeError")
    page.expect("(() => { const style = document.createElement('style'); style.textContent = 'h1 { color: red }';"
                " document.head.append(style);"
                " return getComputedStyle(document.querySelector('h1')).color === 'rgb(255, 0, 0)'; })()", False)
    assert web.asked == asked, "the page has asked for something"


def narrow_screen(browser, urls, pictures):
    page = browser.open(urls["small"], 360, 740)
    page.wait("document.querySelector('#count')?.textContent")
    pictures.take(page, "narrow")
    page.get("document.getElementById('tools').scrollIntoView()")
    page.wait(FIRST)
    page.expect("document.documentElement.scrollWidth <= innerWidth", True)
    page.get("document.getElementById('row-0').click()")
    page.wait(SIGHTINGS + ".length > 0")
    page.expect("document.documentElement.scrollWidth <= innerWidth", True)
    # No row covers the next one, and its content stays within it.
    page.expect("(%s).every((row) => [...row.children].every((cell) => cell.scrollHeight <= row.clientHeight + 1))" % ROWS,
                True)
    pictures.take(page, "narrow-list")


LUMINANCE = ("(() => { const light = (text) => { const [r, g, b] = text.match(/\\d+/g).map((n) => { const c = n / 255;"
             " return c <= 0.03928 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4; });"
             " return 0.2126 * r + 0.7152 * g + 0.0722 * b; };"
             " const paper = light(getComputedStyle(document.body).backgroundColor);"
             " const inks = ['body', '#about', 'a', '.cell-1', '#columns button'].map((name) =>"
             "   light(getComputedStyle(document.querySelector(name)).color));"
             " return [paper, Math.min(...inks.map((ink) => (Math.max(ink, paper) + 0.05) / (Math.min(ink, paper) + 0.05)))];"
             "})()")


def dark_and_light(browser, urls, pictures):
    for dark in (False, True):
        page = browser.open(urls["small"], dark=dark)
        page.wait(FIRST)
        paper, contrast = page.get(LUMINANCE)
        assert (paper < 0.05) if dark else (paper > 0.9), paper
        assert contrast >= 4.5, contrast
        pictures.take(page, "dark" if dark else "light")
        page.get("document.getElementById('tools').scrollIntoView()")
        search(page, "garden")
        page.wait("%s !== '15 addresses'" % COUNT)
        page.press("ArrowDown", "ArrowDown", "Enter")
        page.wait(SIGHTINGS + ".length > 0")
        pictures.take(page, "dark-list" if dark else "light-list")


def high_contrast(browser, urls, pictures):
    page = browser.open(urls["small"])
    page.call("Emulation.setEmulatedMedia", features=[{"name": "forced-colors", "value": "active"}])
    page.wait(FIRST)
    bar = page.get("(() => { const bar = getComputedStyle(document.querySelector('.bar'));"
                   " return [bar.backgroundColor, getComputedStyle(document.body).backgroundColor]; })()")
    assert bar[0] != bar[1], bar
    pictures.take(page, "contrast")


def printing(browser, urls, pictures):
    page = browser.open(urls["small"], dark=True)
    page.wait(FIRST)
    page.get("addEventListener('beforeprint', () => { window.printed = document.getElementById('print').innerText;"
             " window.paper = getComputedStyle(document.body).backgroundColor; })")
    everything = base64.b64decode(page.call("Page.printToPDF")["data"])
    assert everything.startswith(b"%PDF"), everything[:20]
    for address in ("anna@garden.test", "books@library.test", "keeper5@museum.test"):
        assert address in page.get("window.printed"), address
    search(page, "museum.test")
    page.expect(COUNT, "6 of 15 addresses")
    filtered = base64.b64decode(page.call("Page.printToPDF")["data"])
    assert filtered.startswith(b"%PDF") and len(filtered) < len(everything)
    printed = page.get("window.printed")
    assert "museum.test" in printed and "garden.test" not in printed, printed
    page.expect("document.getElementById('print').childElementCount", 0)
    if pictures.folder:
        page.call("Emulation.setEmulatedMedia", media="print")
        page.get("dispatchEvent(new Event('beforeprint'))")
        pictures.take(page, "print")
    pictures.keep("print.pdf", everything)


def chosen(browser, workshop):
    for options, count, sentence in ((["--place", "mailto"], "1 address", "in the place mailto"),
                                     (["--site", "127.0.0.2"], "6 addresses", "on the site 127.0.0.2"),
                                     (["--since", "2000-01-01"], "15 addresses", "first seen on 2000-01-01 00:00 UTC")):
        page = browser.open(workshop.write("small", *options))
        page.expect(COUNT, count)
        assert sentence in page.get("document.getElementById('about').textContent")
        page.close()
    page = browser.open(workshop.write("small", "--since", "2100-01-01"))
    page.expect(COUNT, "0 addresses")
    page.close()


def gone(browser, workshop):
    PAGES["127.0.0.1"]["/team"] = ("The team", "bert@garden.test")
    workshop.collect("small", "--again")
    page = browser.open(workshop.write("small"))
    page.expect(COUNT, "14 addresses")  # Clara stands nowhere any more
    search(page, "anna@garden.test")
    page.expect(LISTED, ["anna@garden.test"])
    page.get("document.getElementById('row-0').click()")
    page.expect(SIGHTINGS + ".map((li) => li.className)", ["", "gone"])
    page.expect("document.querySelectorAll('#runs tbody tr').length", 2)
    page.close()
    page = browser.open(workshop.write("small", "--sources"))
    page.expect(COUNT, "15 addresses")
    page.expect("document.querySelector('.row.gone .address').textContent", "clara@garden.test")


class Pictures:
    def __init__(self, folder):
        self.folder = folder
        if folder:
            os.makedirs(folder, exist_ok=True)

    def take(self, page, name):
        self.keep(name + ".png", base64.b64decode(page.call("Page.captureScreenshot")["data"]) if self.folder else b"")

    def keep(self, name, data):
        if self.folder:
            with open(os.path.join(self.folder, name), "wb") as file:
                file.write(data)


def main():
    workshop = Workshop(sys.argv[1])
    pictures = Pictures(sys.argv[2] if len(sys.argv) > 2 else None)
    browser = Chromium()
    failed = []
    try:
        workshop.collect("small")
        enlarge(workshop, "small", "large", 100000)
        urls = {name: workshop.write(name) for name in ("small", "large")}
        tests = {
            "figures and charts": lambda: figures_and_charts(browser, urls),
            "search and sorting": lambda: search_and_sorting(browser, urls),
            "sightings of a row": lambda: sightings(browser, urls),
            "keyboard": lambda: keyboard(browser, urls),
            "a hundred thousand addresses": lambda: hundred_thousand(browser, urls),
            "titles stay text": lambda: titles_stay_text(browser, urls),
            "a copy that was saved": lambda: saved_copy(browser, urls, workshop),
            "nothing else runs": lambda: nothing_else_runs(browser, urls, workshop.web),
            "a narrow screen": lambda: narrow_screen(browser, urls, pictures),
            "dark and light": lambda: dark_and_light(browser, urls, pictures),
            "high contrast": lambda: high_contrast(browser, urls, pictures),
            "printing": lambda: printing(browser, urls, pictures),
            "what was chosen": lambda: chosen(browser, workshop),
            "what is gone": lambda: gone(browser, workshop),
        }
        for name, test in tests.items():
            try:
                test()
                print("ok      " + name, flush=True)
            except AssertionError as error:
                failed.append(name)
                print("FAILED  %s: %s" % (name, error), flush=True)
    finally:
        browser.close()
        workshop.close()
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
