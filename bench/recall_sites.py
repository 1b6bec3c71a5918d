# Makes sites that are laid out like those of companies, shops, societies, towns, schools, university institutes, projects
# and magazines: a bar on top, a menu that may unfold, a page with teasers, a footer. Where addresses stand, and which pages
# have none, follows such sites. The same number makes the same site. Invented names and addresses only.
import html
import os
import random

import recall_words

# How many of the sites speak each language.
LANGUAGES = "en en en de de de fr it es ja".split()
PLACES = "nord sued centro lyon leeds ulm porto oslo basel gent".split()


class Page:
    def __init__(self, site, kind, title, word):
        self.site, self.kind, self.title, self.word = site, kind, title, word
        self.children, self.addresses, self.teasers = [], [], []
        self.parent = None

    def path(self):
        if self.kind == "home":
            return "/"
        number = self.site.pages.index(self)
        if self.site.urls == "number":
            return "/node/%d/" % number
        word = self.word
        if self.site.urls == "nested" and self.parent is not None:
            word = "%s/%s" % (self.parent.path().strip("/"), word)
        return "/%s.html" % word if self.site.urls == "file" else "/%s/" % word


class Site:
    def __init__(self, number, kind):
        self.rng = random.Random(number * 7919 + 17)
        self.language = self.rng.choice(LANGUAGES)
        self.domain = "%s-%d.test" % (kind, number)
        self.names = recall_words.vocabulary()[self.language]
        self.roles = recall_words.roles()[self.language]
        self.urls = self.rng.choice("word word nested nested file number".split())
        self.unfolds = self.rng.random() < 0.5  # the menu shows the pages below its own, on every page
        self.footer_address = self.rng.random() < 0.3
        self.person_style = self.rng.choice(["%s.%s", "%.1s.%s", "%.1s%s", "%s.%s"])
        self.pages, self.top, self.menu, self.footer = [], [], [], []
        self.staff, self.told = [], []
        self.home = self.page("home")
        KINDS[kind][1](self)
        # Whom pages of services and news name is mostly one of those who stand in the lists of people too.
        for page in self.told:
            page.addresses.append(self.rng.choice(self.staff) if self.staff and self.chance(0.8) else self.person())

    def chance(self, share):
        return self.rng.random() < share

    # A page of that kind: in the bar on "top", in the "menu", in the "footer", or below another page. One with a title of
    # its own is called after that.
    def page(self, kind, where=None, title=None):
        label, word = self.rng.choice(self.names[kind])
        if title is not None:
            word = "-".join(title.lower().split())
        words = {page.word for page in self.pages}
        while word in words:
            word += "-%d" % len(self.pages)
        page = Page(self, kind, title or label, word)
        self.pages.append(page)
        if isinstance(where, Page):
            page.parent = where
            where.children.append(page)
        elif where is not None:
            getattr(self, where).append(page)
        return page

    def role(self, page, name):
        page.addresses.append((None, "%s@%s" % (self.rng.choice(self.roles[name][:1] * 2 + self.roles[name]), self.domain)))

    def person(self):
        first, last = (part.split() for part in recall_words.NAMES[self.language].split("/"))
        first, last = self.rng.choice(first), self.rng.choice(last)
        domain = self.domain if self.chance(0.95) else "mail.example"
        return "%s %s" % (first.title(), last.title()), "%s@%s" % (self.person_style % (first, last), domain)

    # People with their addresses: in a list, or each on a page of his own.
    def people(self, page, least, most, own_pages=0.25):
        alone = self.chance(own_pages)
        for _ in range(self.rng.randint(least, most)):
            name, address = self.person()
            holder = self.page(page.kind, page, name) if alone else page
            holder.addresses.append((name, address))
            self.staff.append((name, address))

    def topic(self):
        return " ".join(self.rng.sample(recall_words.FILLER[self.language].split(), 3)).capitalize()

    # Pages of one kind below another page: of each the share `told` names somebody.
    def below(self, page, least, most, told=0.0, addresses=1):
        for _ in range(self.rng.randint(least, most)):
            child = self.page(page.kind, page, self.topic())
            self.told += [child] * (addresses if self.chance(told) else 0)

    def news(self, most, told=0.06):
        news = self.page("news", "menu")
        self.below(news, 4, most, told)
        self.home.teasers += news.children[:4]

    # What nearly every site has.
    def usual(self, contact="menu", terms=0.3):
        self.role(self.page("contact", contact), "contact")
        imprint = self.page("imprint", "footer")
        if self.chance(0.8):
            self.role(imprint, "contact")
        privacy = self.page("privacy", "footer")
        if self.chance(0.6):
            self.role(privacy, "privacy")
        if self.chance(terms):
            self.page("terms", "footer")
        if self.chance(0.2):
            self.page("sitemap", "footer")

    def write(self, folder):
        for page in self.pages:
            path = folder + page.path()
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path if path.endswith(".html") else path + "index.html", "w", encoding="utf-8") as file:
                file.write(self.text(page))

    def link(self, page, text=None):
        return '<a href="%s">%s</a>' % (page.path(), html.escape(text or page.title))

    def shown(self, name, address):
        way = self.rng.random()
        if way < 0.2:
            return "<li>%s %s" % (name or "", address)
        return '<li>%s <a href="mailto:%s">%s</a>' % (name or "", address, address if way < 0.85 else name or "E-Mail")

    def filler(self, sentences):
        words = recall_words.FILLER[self.language].split()
        return " ".join(" ".join(self.rng.choices(words, k=12)).capitalize() + "." for _ in range(sentences))

    def text(self, page):
        menu = "".join("<li>%s%s" % (self.link(entry), "<ul>%s</ul>" % "".join(
            "<li>" + self.link(child) for child in entry.children[:12]) if self.unfolds and entry.children else "")
                       for entry in self.menu)
        # A picture leads there first, then a title, then a word such as "more".
        teasers = "".join('<div><a href="%s"><img src="/i.png" alt=""></a><h3>%s</h3><p>%s %s</div>' % (
            teaser.path(), self.link(teaser), self.filler(2), self.link(teaser, "...")) for teaser in page.teasers)
        below = "".join("<li>" + self.link(child) for child in page.children)
        people = "".join(self.shown(name, address) for name, address in page.addresses)
        address = "<p>" + self.home.addresses[0][1] if self.footer_address and self.home.addresses else ""
        return ("<!DOCTYPE html><html lang=%s><meta charset=utf-8><title>%s</title><body><header>%s<a href='/'>"
                "<img src='/logo.png' alt=''></a></header><nav><ul>%s</ul></nav><main><h1>%s</h1><p>%s%s<ul>%s</ul><ul>%s</ul>"
                "</main><footer>%s%s</footer></html>") % (
                    self.language, html.escape(page.title), " ".join(map(self.link, self.top)), menu, html.escape(page.title),
                    self.filler(4), teasers, people, below, " | ".join(map(self.link, self.footer)), address)


# Where the people of a company are shown: in the menu, below "about us", or nowhere.
def team(site, about, least, most, own_pages=0.25):
    where = site.rng.random()
    if where < 0.85:
        site.people(site.page("team", "menu" if where < 0.5 else about), least, most, own_pages)


def company(site):
    about = site.page("about", "menu")
    site.below(site.page("services", "menu"), 3, 8, 0.15)
    site.home.teasers += site.menu[-1].children[:3]
    if site.chance(0.6):
        site.below(site.page("references", "menu"), 3, 12)
    team(site, about, 3, 14)
    site.news(25)
    if site.chance(0.7):
        site.role(site.page("jobs", "menu" if site.chance(0.5) else "footer"), "jobs")
    if site.chance(0.3):
        places = site.page("places", "menu" if site.chance(0.5) else about)
        for place in site.rng.sample(PLACES, site.rng.randint(2, 5)):
            places.addresses.append((place, "%s@%s" % (place, site.domain)))
    if site.chance(0.3):
        site.page("history", about)
    site.usual()


def software(site):
    site.below(site.page("products", "menu"), 3, 9)
    site.below(site.page("docs", "menu"), 8, 30)
    site.page("login", "top")
    site.role(site.page("support", "top" if site.chance(0.4) else "menu"), "support")
    about = site.page("about", "menu" if site.chance(0.5) else "footer")
    team(site, about, 4, 12)
    site.news(40, 0.02)
    for kind, share in (("jobs", 0.8), ("press", 0.6), ("security", 0.6)):
        if site.chance(share):
            site.role(site.page(kind, "footer"), kind)
    site.page("faq", "footer")
    site.usual("menu" if site.chance(0.5) else "footer", 0.9)
    site.role(next(page for page in site.pages if page.kind == "contact"), "sales")


def shop(site):
    for kind in ("login", "cart"):
        site.page(kind, "top")
    for _ in range(site.rng.randint(5, 12)):
        category = site.page("products", "menu", site.topic())
        site.below(category, 3, 9)
        site.home.teasers.append(category.children[0])
    site.role(site.page("shipping", "footer"), "support")
    if site.chance(0.6):
        site.role(site.page("support", "footer"), "support")
    about = site.page("about", "footer")
    if site.chance(0.3):
        site.people(site.page("team", about), 3, 8)
    for kind, share in (("jobs", 0.5), ("press", 0.4)):
        if site.chance(share):
            site.role(site.page(kind, "footer"), kind)
    if site.chance(0.4):
        site.below(site.page("places", "footer"), 2, 6, 1)
    site.page("newsletter", "footer")
    site.usual("footer" if site.chance(0.7) else "top", 1)


def institute(site):
    about = site.page("about", "menu")
    staff = site.page("staff", "menu" if site.chance(0.8) else about)
    if site.chance(0.4):
        for kind in ("professors", "staff"):
            site.people(site.page(kind, staff), 6, 30, 0.3)
    else:
        site.people(staff, 12, 60, 0.3)
    site.below(site.page("research", "menu"), 4, 12, 0.8, 2)
    site.below(site.page("teaching", "menu"), 4, 15, 0.3)
    site.news(25, 0.15)
    site.page("events", "menu")
    if site.chance(0.6):
        site.role(site.page("secretariat", "menu"), "secretariat")
    site.usual("menu" if site.chance(0.5) else "footer", 0)


def society(site):
    about = site.page("about", "menu")
    site.people(site.page("board", "menu" if site.chance(0.5) else about), 4, 9, 0.05)
    site.below(site.page("groups", "menu"), 3, 14, 0.8)
    site.news(30, 0.1)
    for kind, share in (("events", 0.9), ("membership", 0.8), ("donate", 0.3)):
        if site.chance(share):
            page = site.page(kind, "menu")
            if site.chance(0.4):
                site.role(page, kind)
    for kind in ("history", "gallery", "downloads", "links"):
        if site.chance(0.5):
            site.page(kind, about if site.chance(0.5) else "menu")
    site.usual("menu", 0)


def town(site):
    offices = site.page("offices", "menu")
    site.below(offices, 8, 25, 0.9, 2)
    if site.chance(0.5):
        site.people(site.page("staff", offices), 20, 60, 0.1)
    site.people(site.page("council", "menu"), 9, 30, 0.1)
    site.below(site.page("services", "menu"), 15, 40, 0.6)
    site.home.teasers += site.menu[-1].children[:5]
    site.news(40, 0.15)
    for kind in ("events", "history", "gallery", "downloads", "faq"):
        site.page(kind, "menu" if site.chance(0.5) else "top")
    if site.chance(0.5):
        site.role(site.page("press", "top"), "press")
    site.usual("top" if site.chance(0.5) else "footer", 0)


def school(site):
    about = site.page("about", "menu")
    site.people(site.page("teachers", "menu" if site.chance(0.5) else about), 10, 50, 0.05)
    site.role(site.page("secretariat", "menu" if site.chance(0.6) else about), "secretariat")
    site.below(site.page("groups", "menu"), 4, 12, 0.2)
    site.news(40, 0.05)
    for kind in ("events", "downloads", "gallery", "teaching"):
        site.page(kind, "menu")
    site.usual("menu", 0)


def project(site):
    docs = site.page("docs", "menu")
    site.below(docs, 10, 40, 0.05)
    for kind in ("downloads", "faq"):
        site.page(kind, "menu")
    about = site.page("about", "menu")
    community = site.page("community", "menu")
    for name in site.rng.sample("users devel announce bugs translators".split(), site.rng.randint(2, 5)):
        community.addresses.append((name, "%s@lists.%s" % (name, site.domain)))
    site.people(site.page("contributors", about if site.chance(0.5) else community), 4, 30, 0)
    if site.chance(0.6):
        site.role(site.page("security", "footer"), "security")
    if site.chance(0.4):
        site.role(site.page("support", "menu"), "support")
    site.news(25, 0.1)
    if site.chance(0.5):
        site.role(site.page("contact", "footer"), "contact")


def conference(site):
    site.people(site.page("chairs", "menu"), 4, 20, 0)
    for kind in ("papers", "registration", "sponsors"):
        site.role(site.page(kind, "menu"), kind)
    site.below(site.page("program", "menu"), 3, 20)
    for kind in ("places", "events", "faq"):
        site.page(kind, "menu")
    site.news(10)
    site.usual("menu" if site.chance(0.5) else "footer", 0)


def practice(site):
    about = site.page("about", "menu")
    site.people(site.page("team", "menu" if site.chance(0.8) else about), 3, 15, 0.5)
    site.below(site.page("services", "menu"), 5, 15, 0.2)
    site.news(20, 0.2)
    if site.chance(0.5):
        site.below(site.page("places", "menu"), 2, 5, 0.9)
    if site.chance(0.6):
        site.role(site.page("jobs", "menu"), "jobs")
    site.usual()


def magazine(site):
    for _ in range(site.rng.randint(5, 10)):
        category = site.page("news", "menu", site.topic())
        site.below(category, 5, 15, 0.03)
        site.home.teasers += category.children[:3]
    site.page("login", "top")
    site.people(site.page("masthead", "footer"), 5, 20, 0.1)
    if site.chance(0.5):
        site.people(site.page("contributors", "footer"), 5, 20, 0.7)
    if site.chance(0.6):
        site.role(site.page("jobs", "footer"), "jobs")
    site.page("newsletter", "footer")
    site.usual("footer", 0.9)


def charity(site):
    about = site.page("about", "menu")
    team(site, about, 5, 20, 0.15)
    site.people(site.page("board", about), 4, 8, 0)
    site.below(site.page("references", "menu"), 4, 15, 0.1)
    if site.chance(0.5):
        site.below(site.page("places", "menu" if site.chance(0.5) else about), 3, 12, 0.9)
    for kind, share in (("jobs", 0.7), ("press", 0.8), ("donate", 0.9), ("events", 0.5)):
        if site.chance(share):
            site.role(site.page(kind, "menu" if site.chance(0.5) else "footer"), kind)
    site.news(40, 0.1)
    site.usual("menu" if site.chance(0.5) else "footer")


# How many sites of each kind there are.
KINDS = {"company": (16, company), "software": (6, software), "shop": (8, shop), "institute": (8, institute),
         "society": (8, society), "town": (5, town), "school": (4, school), "project": (4, project),
         "conference": (3, conference), "practice": (5, practice), "magazine": (4, magazine), "charity": (5, charity)}


# Writes the sites below `folder`. Returns their names with the folders of their pages.
def make(folder):
    made = []
    for kind, (count, _) in KINDS.items():
        for _ in range(count):
            site = Site(len(made) + 1, kind)
            for page in site.pages:
                if page.kind == "contact" and site.footer_address:
                    site.home.addresses.append(page.addresses[0])
            name = site.domain.removesuffix(".test")
            site.write(os.path.join(folder, name))
            made.append((name, os.path.join(folder, name)))
    return made
