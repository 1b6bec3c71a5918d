#!/usr/bin/env python3
"""Compares the request `read` of `quenlar analyze` with python3-html5lib on random and hostile pages.

usage: read.py QUENLAR [CASES] [SEED]

The reference's tree builder drives its tokenizer, and the tokens are what is compared: the title, the targets of links, and
which addresses stand in text, attributes, scripts and comments. What needs the whole tree, which the program does not build, is
not compared: <select> and <frameset>, in which tags are thrown away, are not generated, and a page on which the two differ is
excused if a tag met svg or math that are out of joint with HTML (before_end_tag, before_anchor). Ends with status 1 and the other
pages where the two differ.
"""
import json
import random
import re
import subprocess
import sys

import html5lib
from html5lib.constants import tokenTypes

FOLDER = "http://www.firma.de/a/"
PAGE = FOLDER + "b.html"
BLANKS = "\t\n\f\r "
# Other targets come of pages that are out of joint; what URLs they make is for other tests.
SIMPLE_TARGET = re.compile("l[0-9]+>?")
SIMPLE_LINK = re.compile(re.escape(FOLDER) + "l[0-9]+(%3E)?")
INLINE = ("a abbr b bdi bdo big cite code del em font i ins kbd label mark q s samp small span strong sub sup tt u var "
          "wbr").split()
TAGS = INLINE + ("p div ul li table tr td h1 br hr pre form body html head noscript section object custom-tag template "
                 "title textarea style script xmp iframe noembed noframes svg math path").split()


class Generator:
    def __init__(self, seed):
        self.random = random.Random(seed)
        self.count = 0

    def choice(self, items):
        return self.random.choice(items)

    def address(self):
        self.count += 1
        return "n%d@firma.de" % self.count

    def link(self):
        self.count += 1
        return "l%d" % self.count

    def value(self, text):
        form = self.choice(['"%s"', "'%s'", "%s", ' "%s"', "\n'%s'"])
        return form % text

    def attribute(self):
        name = self.choice(["href", "HREF", "title", "rel", "x", "data-y", "=", "a/b", '"'])
        kind = self.random.randrange(6)
        if kind == 0:
            return " " + name
        if kind == 1:
            return " %s=%s" % (name, self.value(self.link() + ">"))
        if kind == 2:
            return " title=%s" % self.value(self.address())
        return self.choice([" ", "\n", "/", "  "]) + "%s=%s" % (name, self.value(self.link()))

    def tag(self):
        name = self.choice(TAGS)
        if self.random.random() < 0.1:
            name = name.upper()
        attributes = "".join(self.attribute() for _ in range(self.random.randrange(3)))
        return "<%s%s%s>" % (name, attributes, self.choice(["", "", "", "/", " /", " "]))

    def anchor(self):
        return "<%s href=%s>" % (self.choice(["a", "A"]), self.value(self.link()))

    def end(self):
        return "</%s%s>" % (self.choice(TAGS), self.choice(["", "", " ", "/", " x='>'"]))

    def text(self):
        return self.choice([" %s ", " %s,", "<p>%s</p>", " %s<br>", "&lt;%s&gt;"]) % self.address()

    def comment(self):
        return self.choice(["<!-- %s -->", "<!-- %s --!>", "<!--><i>%s</i>", "<!---> %s ", "<! %s >", "<? %s ?>", "</ %s >",
                            "<!-- <!-- %s -->", "<!--- -> %s --->"]) % self.address()

    def script(self):
        return self.choice([
            "<script> %s </script>", "<script><!-- <script> %s </script> --></script>", "<script><!-- %s </script>",
            "<script><!--> <script> %s </script>", "<SCRIPT> '</scrip' %s </script >", "<script><!-- <script> %s --></script>",
            "<script><!--<script></script %s </script>"]) % self.address()

    def raw(self):
        name = self.choice(["title", "textarea", "style", "xmp", "iframe", "noembed", "noframes"])
        inner = self.choice([" %s ", "<b> %s </b>", "<!-- %s ", "</x> %s ", "&amp; %s &#65;"]) % self.address()
        return "<%s>%s</%s>" % (name, inner, name)

    def foreign(self):
        inner = "".join(self.piece(1) for _ in range(self.random.randrange(3)))
        return self.choice(["<svg>%s<![CDATA[ " + self.address() + " ]]></svg>", "<svg><title> %s </title></svg>", "<math><mi> %s </mi></math>",
                            "<svg><foreignObject> %s </foreignObject></svg>", "<svg><style> %s </style></svg>"]) % inner

    def noise(self):
        return self.choice(["<", ">", "</", "<!", "<!-", "--", "-->", "'", '"', "=", "&", "&#", "<a href='", "]]>", "\r\n",
                            "<![CDATA[", "<1", "< a>", "<a<b>", "</>", "<!doctype html>", "<!DOCTYPE x '>'>"])

    def piece(self, depth=0):
        kinds = [self.tag, self.anchor, self.anchor, self.text, self.text, self.comment, self.script, self.raw]
        if depth == 0:
            kinds += [self.end, self.foreign, self.noise]
        return self.choice(kinds)()

    def page(self):
        self.count = 0
        text = "".join(self.piece() for _ in range(self.random.randrange(1, 14)))
        return text[: self.random.randrange(len(text) + 1)] if self.random.random() < 0.1 else text


class Recorder(html5lib.HTMLParser):
    """Notes what the tokenizer hands to the tree builder."""

    def read(self, page):
        self.title = None
        self.links = []
        self.addresses = set()
        self.raw = None  # the element whose raw text is being read
        self.text = ""
        self.in_title = False
        self.out_of_joint = False
        self.parse(page)
        self.end_text()
        return self.title, self.links, self.addresses

    def mainLoop(self):
        note = self.note_all

        class NotedTokenizer(type(self.tokenizer)):
            def __iter__(self):
                return note(super().__iter__())

        self.tokenizer.__class__ = NotedTokenizer
        super().mainLoop()

    def note_all(self, tokens):
        for token in tokens:
            kind = token["type"]
            if kind in (tokenTypes["Characters"], tokenTypes["SpaceCharacters"]):
                self.text += token["data"]
            elif kind != tokenTypes["ParseError"]:
                self.end_text()
                self.note(kind, token)
            name = token.get("name")
            if kind == tokenTypes["EndTag"]:
                self.before_end_tag(name)
            elif kind == tokenTypes["StartTag"] and name == "a":
                self.before_anchor()
            yield token
            # What the tree builder made of a start tag shows in the tokenizer's state.
            if kind == tokenTypes["StartTag"]:
                raw_states = (self.tokenizer.rcdataState, self.tokenizer.rawtextState, self.tokenizer.scriptDataState,
                              self.tokenizer.plaintextState)
                self.raw = name if self.tokenizer.state in raw_states else None
                self.in_title = self.raw == "title" and self.title is None
                if self.in_title:
                    self.title = ""

    def is_html(self, element):
        return element.namespace == self.tree.defaultNamespace

    def begins_html(self, element):
        return self.isHTMLIntegrationPoint(element) or self.isMathMLTextIntegrationPoint(element)

    def before_anchor(self):
        # In HTML in svg or math, <a> ends an open <a> around them, and with it svg or math.
        elements = self.tree.openElements
        in_html = elements and (self.is_html(elements[-1]) or self.begins_html(elements[-1]))
        if in_html and not all(map(self.is_html, elements)) and self.tree.elementInActiveFormattingElements("a"):
            self.out_of_joint = True

    def before_end_tag(self, name):
        elements = self.tree.openElements
        if not elements or all(map(self.is_html, elements)):
            return
        current = elements[-1]
        if self.is_html(current):
            # HTML in svg or math: only an end tag of the innermost element leaves the rest of the tree as it was.
            self.out_of_joint |= current.name != name
        elif name in ("p", "br"):
            # The reference is older than this rule of the standard: the two end svg and math.
            while not self.is_html(elements[-1]) and not self.begins_html(elements[-1]):
                elements.pop()
        else:
            # The end tag of an HTML element around ends svg and math, too.
            met = next(element for element in reversed(elements) if self.is_html(element) or element.name.lower() == name)
            self.out_of_joint |= self.is_html(met)

    def note(self, kind, token):
        if kind == tokenTypes["Comment"]:
            self.find("comment", token["data"])
        elif kind == tokenTypes["StartTag"]:
            for value in token["data"].values():
                self.find("attribute", value)
            href = token["data"].get("href", "").strip(BLANKS)
            if token["name"] == "a" and SIMPLE_TARGET.fullmatch(href):
                self.links.append(FOLDER + href.replace(">", "%3E"))

    def end_text(self):
        if self.raw == "script":
            self.find("script", self.text)
        elif self.raw != "style":
            self.find("text", self.text)
        if self.in_title:
            self.title = " ".join(self.text.split())
        self.text = ""
        self.in_title = False
        self.raw = None

    def find(self, place, text):
        for address in re.findall(r"n[0-9]+@firma\.de", text):
            self.addresses.add((place, address))


def ask(process, page):
    process.stdin.write(json.dumps({"read": page, "page": PAGE}) + "\n")
    process.stdin.flush()
    reply = json.loads(process.stdout.readline())
    links = [link["url"] for link in reply["links"] if SIMPLE_LINK.fullmatch(link["url"])]
    return reply["title"], links, {(found["place"], found["address"]) for found in reply["addresses"]}


def main():
    program, cases = sys.argv[1], int(sys.argv[2]) if len(sys.argv) > 2 else 2000
    generator = Generator(int(sys.argv[3]) if len(sys.argv) > 3 else 1)
    recorder = Recorder()
    process = subprocess.Popen([program, "analyze", "--jsonl"], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                               encoding="utf-8")
    wrong = excused = 0
    for _ in range(cases):
        page = generator.page()
        theirs = recorder.read(page)
        ours = ask(process, page)
        if ours == (theirs[0], list(dict.fromkeys(theirs[1])), theirs[2]):
            continue
        if recorder.out_of_joint:
            excused += 1
            continue
        wrong += 1
        if wrong <= 10:
            print(json.dumps(page), "\n  reference", theirs[0], theirs[1], sorted(theirs[2]), "\n  program  ", ours[0], ours[1],
                  sorted(ours[2]))
    process.stdin.close()
    process.wait()
    print("%d pages, %d differ, %d more are excused" % (cases, wrong, excused))
    sys.exit(1 if wrong else 0)


if __name__ == "__main__":
    main()
