#!/usr/bin/env -S /usr/bin/python3 -B
# Takes the pictures of docs/collecting.md: the web page of a collection of the small web.
# usage: pictures.py QUENLAR FOLDER
import base64
import os
import subprocess
import sys

from examples import Terminal

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../collection/browser"))
from chromium import Chromium  # noqa: E402

COLLECT = "quenlar collect www.societies.example --scope anywhere --name societies"


def take(page, folder, name):
    picture = base64.b64decode(page.call("Page.captureScreenshot")["data"])
    subprocess.run(["convert", "-", "-colors", "64", "PNG8:" + os.path.join(folder, name)], input=picture, check=True)


def main():
    quenlar, folder = sys.argv[1:3]
    terminal, browser = Terminal(quenlar), Chromium()
    try:
        for options in (" --depth 1", " --pages 28", "", " --again"):
            terminal.run(COLLECT + options)
        terminal.run("quenlar addresses societies --format html >societies.html")
        url = "file://" + os.path.join(terminal.desk, "societies.html")
        page = browser.open(url, 1200, 1200)
        page.wait("document.querySelector('#count')?.textContent")
        take(page, folder, "overview.png")
        page = browser.open(url, 1200, 700, dark=True)
        page.wait("document.querySelector('#count')?.textContent")
        page.press("/")
        page.type("choir members")
        page.wait("document.getElementById('count').textContent.includes(' of ')")
        page.get("document.querySelector('#columns button').click()")
        page.get("document.getElementById('grid').focus()")
        page.press("ArrowDown", "ArrowDown", "Enter")
        page.wait("document.querySelector('.sightings li')")
        page.get("scrollTo(0, document.getElementById('tools').offsetTop)")
        take(page, folder, "overview-dark.png")
    finally:
        browser.close()
        terminal.close()


if __name__ == "__main__":
    main()
