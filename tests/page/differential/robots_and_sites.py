#!/usr/bin/python3
"""Compares the answers of `quenlar analyze` with those of python3-protego (robots.txt) and libpsl (sites).

usage: robots_and_sites.py QUENLAR [CASES [SEED]]

Makes CASES random cases of each kind and exits with 1 when one is answered in another way. Where a reference does
something else than this program is to do, the cases are made so that it does not matter; a comment says why.
"""
import ctypes
import json
import random
import subprocess
import sys

from protego import Protego

LIST = "/usr/share/publicsuffix/public_suffix_list.dat"
AGENTS = ["quenlar", "other", "third"]  # none within another: protego looks for parts of names
BATCH = 5000


def answers(program, requests):
    lines = "".join(json.dumps(request) + "\n" for request in requests)
    done = subprocess.run([program, "analyze", "--jsonl"], input=lines.encode(), stdout=subprocess.PIPE, check=True)
    return [json.loads(line) for line in done.stdout.decode().splitlines()]


def any_case(text):
    return "".join(random.choice((c.lower(), c.upper())) for c in text)


# ---- robots.txt ----

# Few letters, so that rules and targets meet often. Not here: letters and digits that are percent-encoded (protego
# decodes them), "$" within a target (protego adds a rule of its own for a "$" that is meant literally), characters
# such as "=" in a path (protego counts them as three when it looks for the longest rule), and ";".
PIECES = ["a", "b", "ab", "/", "/a", "/b/", "-", ".", "_", "~", ".html", "%2F", "%2f", "%C3%A4", "%c3%a4", "%20", "%7E"]
RULE_PIECES = PIECES + ["*", "*", "**", "\u00e4", "/index.html"]


def target():
    path = "/" + random.choice("ab") + "".join(random.choices(PIECES, k=random.randrange(6)))
    if {".", ".."} & set(path.split("/")):
        return target()  # an address never has them
    return path + ("?" + "".join(random.choices("ab", k=random.randrange(1, 3))) if random.random() < 0.2 else "")


def rule():
    if random.random() < 0.1:
        return ""
    if random.random() < 0.1:
        return random.choice(["/", "/*", "/$", "/*$"])
    pattern = "/" + random.choice(["a", "b", "*", "a/index.html"])
    pattern += "".join(random.choices(RULE_PIECES, k=random.randrange(5)))
    return pattern + ("$" if random.random() < 0.2 else "")


def line(name, value):
    blanks = random.choice(["", " ", "\t", "  "])
    comment = random.choice(["", "", " # note", "#: /"])
    if value == "" or random.random() < 0.9:
        return any_case(name) + ":" + blanks + value + comment
    # Without a colon protego knows small names and blanks alone.
    return name.lower() + " " + value + comment


def robots():
    lines = []
    delay = 0
    for _ in range(random.randrange(4)):
        for _ in range(random.randrange(1, 3)):
            lines.append(line("User-agent", any_case(random.choice(AGENTS + ["*"]))))
        # The first line is a rule: to protego every other line ends the names of a group as well.
        lines.append(line(random.choice(["Allow", "Disallow"]), rule()))
        for _ in range(random.randrange(5)):
            lines.append(line(random.choice(["Allow", "Disallow"]), rule()))
        if random.random() < 0.3:
            # Ever larger ones: the last one counts for protego, the largest for this program.
            delay += random.choice([0.5, 1, 7, 20])
            lines.append(line("Crawl-delay", str(delay)))
        if random.random() < 0.1:
            lines.append(random.choice(["", "# note", "Sitemap: http://h/map", "Unknown: /", "Disallow"]))
    return random.choice(["\n", "\r\n", "\r"]).join(lines)


def check_robots(program, cases):
    wrong = 0
    for begin in range(0, cases, BATCH):
        count = min(BATCH, cases - begin)
        requests = [
            {"robots": robots(), "agent": random.choice(AGENTS + ["nobody"]), "url": "http://h" + target()}
            for _ in range(count)
        ]
        for request, answer in zip(requests, answers(program, requests)):
            reference = Protego.parse(request["robots"])
            delay = reference.crawl_delay(request["agent"])
            expected = {
                "allowed": reference.can_fetch(request["url"], request["agent"]),
                "delay": None if delay is None else min(delay, 30),
                "sitemaps": list(reference.sitemaps),
            }
            found = {name: answer.get(name) for name in expected}
            if found != expected:
                wrong += 1
                print("robots:", json.dumps(request), "expected", expected, "found", answer)
    return wrong


# ---- sites ----


def load_rules():
    with open(LIST, encoding="utf-8") as lines:
        words = [text.split()[0] for text in lines if text.strip() and not text.startswith("//")]
    return [word.lstrip("!") for word in words]


def label():
    # Begins with a letter: a name whose last label is a number is an IP address, or nothing.
    return random.choice("abcdwxyz") + "".join(random.choices("abc019-", k=random.randrange(4))) + random.choice("abc0")


def host(rules):
    labels = [label() if part == "*" else part for part in random.choice(rules).split(".")]
    if random.random() < 0.2:
        labels = labels[random.randrange(len(labels)) :]
    if random.random() < 0.1:
        labels[random.randrange(len(labels))] = label()
    name = ".".join([label() for _ in range(random.randrange(4))] + labels)
    return any_case(name) if name.isascii() else name


def check_sites(program, cases):
    psl = ctypes.CDLL("libpsl.so.5")
    psl.psl_load_file.restype = ctypes.c_void_p
    psl.psl_registrable_domain.restype = ctypes.c_char_p
    psl.psl_registrable_domain.argtypes = [ctypes.c_void_p, ctypes.c_char_p]
    suffixes = psl.psl_load_file(LIST.encode())
    rules = load_rules()
    # By the algorithm that the list publishes, "*.b.c" says nothing about b.c itself; libpsl takes it for a suffix.
    wild = {rule[2:] for rule in rules if rule.startswith("*.")}
    wrong = 0
    for begin in range(0, cases, BATCH):
        hosts = [host(rules) for _ in range(min(BATCH, cases - begin))]
        ascii_hosts = [name.lower() if name.isascii() else name.encode("idna").decode() for name in hosts]
        for name, plain, answer in zip(hosts, ascii_hosts, answers(program, [{"site": name} for name in hosts])):
            site = psl.psl_registrable_domain(suffixes, plain.encode())
            expected = {"site": site.decode() if site else None}
            if answer != expected and not (plain in wild and site is None):
                wrong += 1
                print("site:", name, "expected", expected, "found", answer)
    return wrong


def main():
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    cases = int(sys.argv[2]) if len(sys.argv) > 2 else 1000
    seed = int(sys.argv[3]) if len(sys.argv) > 3 else 1
    random.seed(seed)
    wrong = check_robots(sys.argv[1], cases) + check_sites(sys.argv[1], cases)
    print(f"{cases} cases of each kind, seed {seed}: {wrong} answered in another way")
    sys.exit(1 if wrong else 0)


main()
