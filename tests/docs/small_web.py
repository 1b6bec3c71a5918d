# The small web of the examples: a proxy that answers for a few invented hosts, a search service among them.
import collections
import http.server
import json
import threading
import urllib.error
import urllib.parse
import urllib.request

TITLES_AND_BODIES = {
    "www.garden.example/": ("Rose garden", """
        <a href="/team">Our team</a> <a href="/shop">Shop</a> <a href="/contact">Contact</a>
        <a href="/private/members">Members</a> <a href="http://www.museum.example/">The museum</a>
        <a href="mailto:roses@garden.example?subject=Roses">Write to us</a>"""),
    "www.garden.example/team": ("The team", """
        <p>Anna Berg, anna@garden.example</p><p>Bert Ek, bert&#64;garden.example</p>
        <p>Clara Holm, clara [at] garden [dot] example</p>"""),
    "www.garden.example/shop": ("Shop", """
        <form data-mail="orders@garden.example"></form><p>Questions? anna@garden.example</p>"""),
    "www.garden.example/contact": ("Contact", """
        <a href="mailto:roses@garden.example">Mail</a> <script>var press = "press\\u0040garden.example"</script>
        <!-- old: post@garden.example -->"""),
    "www.museum.example/": ("The museum", '<a href="/staff">Staff</a> <a href="http://www.library.example/">Library</a>'),
    "www.museum.example/staff": ("Staff of the museum", "curator@museum.example guide@museum.example"),
    "www.library.example/": ("Library", "books@library.example"),
}


# A directory of societies, each with a site of three pages.
def add_societies():
    towns = ["bergen", "ghent", "harrow", "kyoto", "lindau", "nantes", "siena", "toledo"]
    kinds = {"choir": "Choir", "rowers": "Rowing Club", "stamps": "Stamp Society"}
    names = ["anna", "bert", "clara", "david", "eva", "frank", "greta", "henry", "ida", "jan", "karin", "lars"]
    links = []
    for number, (town, kind) in enumerate((town, kind) for town in towns for kind in kinds):
        host, name = "%s-%s.example" % (town, kind), "%s %s" % (town.title(), kinds[kind])
        site = "www." + host
        links.append('<a href="http://%s/">%s</a>' % (site, name))
        members = [names[(number * 5 + at) % len(names)] for at in range(1 + number % 7)]
        TITLES_AND_BODIES.update({
            site + "/": (name, '<a href="/contact">Contact</a> <a href="/members">Members</a> <a href="mailto:info@%s">Write'
                         "</a>" % host),
            site + "/contact": ("Contact - " + name, 'info@%s <i data-mail="%s@%s"></i>' % (host, members[0], host)),
            site + "/members": ("The members of the " + name, " ".join("%s@%s" % (member, host) for member in members)),
        })
    TITLES_AND_BODIES["www.societies.example/"] = ("Directory of societies", " ".join(links))


add_societies()
# What a page shows when it is visited again.
LATER = {"www.museum.example/staff": ("Staff of the museum", "director@museum.example guide@museum.example")}
ROBOTS = {"www.garden.example": "User-agent: *\nDisallow: /private/\n"}
FOUND = [{"url": "http://www.museum.example/", "title": "The museum"},
         {"url": "http://www.library.example/", "title": "Library"}]


# With `search_service`, the origin of one that runs, requests for search.example go there.
class SmallWeb(http.server.ThreadingHTTPServer):
    def __init__(self, search_service=None):
        super().__init__(("127.0.0.1", 0), Visit)
        self.search_service = search_service
        self.visits = collections.Counter()
        threading.Thread(target=self.serve_forever, daemon=True).start()

    @property
    def proxy(self):
        return "http://127.0.0.1:%d" % self.server_address[1]

    # The status, type and body of a page.
    def answer(self, host, path, query):
        if host == "search.example" and self.search_service:
            return passed_on(self.search_service + path + "?" + query)
        if host == "search.example":
            first = urllib.parse.parse_qs(query).get("pageno", ["1"])[0] == "1"
            return 200, "application/json", json.dumps({"results": FOUND if first else []})
        if path == "/robots.txt" and host in ROBOTS:
            return 200, "text/plain", ROBOTS[host]
        place = host + path
        self.visits[place] += 1
        pages = LATER if self.visits[place] > 1 and place in LATER else TITLES_AND_BODIES
        if place not in pages:
            return 404, "text/html", "<title>Not found</title>"
        return 200, "text/html", "<title>%s</title>%s" % pages[place]

    # A visitor that goes away before the answer is nothing to speak of.
    def handle_error(self, request, client_address):
        pass

    def close(self):
        self.shutdown()
        self.server_close()


def passed_on(url):
    try:
        with urllib.request.build_opener(urllib.request.ProxyHandler({})).open(url) as answer:
            return answer.status, answer.headers["Content-Type"], answer.read().decode()
    except urllib.error.HTTPError as error:
        return error.code, error.headers["Content-Type"], error.read().decode()


class Visit(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        url = urllib.parse.urlsplit(self.path)
        status, kind, body = self.server.answer(url.hostname, url.path or "/", url.query)
        self.send_response(status)
        self.send_header("Content-Type", kind)
        self.send_header("Content-Length", str(len(body.encode())))
        self.end_headers()
        self.wfile.write(body.encode())

    # No host of this web speaks TLS.
    def do_CONNECT(self):
        self.send_response(200)
        self.end_headers()
        self.close_connection = True

    def log_message(self, *_):
        pass
