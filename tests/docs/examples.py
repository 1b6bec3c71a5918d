#!/usr/bin/env -S /usr/bin/python3 -B
# Runs the examples of a page of the documentation, in their order, and compares what they print with what the page
# says. An example is an indented line "$ COMMAND" with its output below it.
# usage: examples.py QUENLAR PAGE [--write]     --write: puts what was printed into the page
import os
import re
import shutil
import subprocess
import sys
import tempfile

from small_web import SmallWeb

INDENT = "    "
# What differs from run to run.
CHANGES = [(re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ"), "TIME"), (re.compile(r'"(seconds|bytes)":[\d.]+'), r'"\1":N')]


def same_every_time(command, lines):
    lists_addresses = command.startswith(("quenlar collect ", "quenlar addresses "))
    text = "\n".join(sorted(lines) if lists_addresses else lines)  # hosts answer in any order
    for pattern, word in CHANGES:
        text = pattern.sub(word, text)
    return text


# Runs commands as a person types them: `quenlar` works in a folder of its own, and its web is the small one.
class Terminal:
    def __init__(self, quenlar):
        self.web = SmallWeb()
        self.folder = tempfile.mkdtemp(prefix="quenlar-examples-")
        wrapper = os.path.join(self.folder, "quenlar")
        with open(wrapper, "w") as script:
            script.write('#!/bin/sh\ncommand=$1\nshift\n[ "$command" != collect ] || set -- "$@" --delay 0 --assume-online '
                         "--proxy %s\nexec '%s' --home '%s/home' \"$command\" \"$@\"\n"
                         % (self.web.proxy, os.path.abspath(quenlar), self.folder))
        os.chmod(wrapper, 0o755)
        self.desk = os.path.join(self.folder, "desk")
        os.mkdir(self.desk)
        self.environment = {name: value for name, value in os.environ.items() if not name.lower().endswith("_proxy")}
        self.environment["PATH"] = self.folder + ":" + self.environment["PATH"]

    def run(self, command):
        done = subprocess.run(["bash", "-c", command], cwd=self.desk, env=self.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        return done.stdout.replace("\t", "        ").splitlines()

    def close(self):
        self.web.close()
        shutil.rmtree(self.folder)


def main():
    quenlar, path = sys.argv[1:3]
    with open(path) as page:
        lines = page.read().splitlines()
    terminal = Terminal(quenlar)
    written, wrong, at = [], 0, 0
    try:
        while at < len(lines):
            written.append(lines[at])
            command = lines[at][len(INDENT) + 2:] if lines[at].startswith(INDENT + "$ ") else None
            at += 1
            if command is None:
                continue
            said = []
            while at < len(lines) and lines[at].startswith(INDENT) and not lines[at].startswith(INDENT + "$ "):
                said.append(lines[at][len(INDENT):])
                at += 1
            printed = terminal.run(command)
            written += [INDENT + line for line in printed]
            if same_every_time(command, said) != same_every_time(command, printed):
                wrong += 1
                print("%s: $ %s\nthe page says:\n%s\nit prints:\n%s\n" % (path, command, "\n".join(said), "\n".join(printed)))
    finally:
        terminal.close()
    if "--write" in sys.argv:
        with open(path, "w") as page:
            page.write("\n".join(written) + "\n")
    else:
        sys.exit(1 if wrong else 0)


if __name__ == "__main__":
    main()
