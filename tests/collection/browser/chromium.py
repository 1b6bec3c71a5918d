# A headless Chromium, driven over a pipe by its DevTools protocol.
import fcntl
import json
import os
import shutil
import subprocess
import tempfile
import time

PATIENCE = 20  # seconds after which what was waited for is taken for missing


class Missing(AssertionError):
    pass


class Chromium:
    def __init__(self):
        self.folder = tempfile.mkdtemp(prefix="quenlar-browser-")
        commands, self.to_browser = os.pipe()
        self.from_browser, answers = os.pipe()
        # The browser reads from descriptor 3 and writes to 4; the copies keep the one from closing the other.
        commands_high, answers_high = (fcntl.fcntl(end, fcntl.F_DUPFD, 100) for end in (commands, answers))

        def hand_over():
            os.dup2(commands_high, 3)
            os.dup2(answers_high, 4)

        arguments = ["chromium", "--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run",
                     "--disable-extensions", "--disable-background-networking", "--disable-component-update",
                     "--hide-scrollbars", "--user-data-dir=" + self.folder, "--remote-debugging-pipe", "about:blank"]
        self.log = open(os.path.join(self.folder, "log"), "wb")
        self.process = subprocess.Popen(arguments, preexec_fn=hand_over, close_fds=False, stdin=subprocess.DEVNULL,
                                        stdout=self.log, stderr=self.log)
        for end in (commands, answers, commands_high, answers_high):
            os.close(end)
        self.waiting, self.last, self.events = b"", 0, []

    def call(self, method, session=None, **parameters):
        self.last += 1
        message = {"id": self.last, "method": method, "params": parameters}
        if session:
            message["sessionId"] = session
        os.write(self.to_browser, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.read()
            if answer.get("id") != self.last:
                self.events.append(answer)
            elif "error" in answer:
                raise AssertionError(method + ": " + answer["error"]["message"])
            else:
                return answer["result"]

    def read(self):
        while b"\0" not in self.waiting:
            piece = os.read(self.from_browser, 1 << 16)
            if not piece:
                raise AssertionError("the browser has ended: " + open(self.log.name, errors="replace").read()[-2000:])
            self.waiting += piece
        message, self.waiting = self.waiting.split(b"\0", 1)
        return json.loads(message)

    def open(self, url, width=1280, height=900, dark=False):
        return Page(self, url, width, height, dark)

    def close(self):
        try:
            self.call("Browser.close")
        except AssertionError:
            pass
        try:
            self.process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        self.log.close()
        shutil.rmtree(self.folder, ignore_errors=True)


class Page:
    KEYS = {"Enter": 13, "Escape": 27, "PageUp": 33, "PageDown": 34, "End": 35, "Home": 36, "ArrowLeft": 37, "ArrowUp": 38,
            "ArrowRight": 39, "ArrowDown": 40, "Tab": 9, "/": 191}
    TEXTS = {"Enter": "\r", "/": "/"}

    def __init__(self, browser, url, width, height, dark):
        self.browser = browser
        self.target = browser.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = browser.call("Target.attachToTarget", targetId=self.target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log"):
            self.call(domain + ".enable")
        self.resize(width, height)
        self.call("Emulation.setEmulatedMedia",
                  features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])
        self.call("Page.navigate", url=url)

    def call(self, method, **parameters):
        return self.browser.call(method, self.session, **parameters)

    def resize(self, width, height):
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1,
                  mobile=False)

    def get(self, expression):
        answer = self.call("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True,
                           userGesture=True)
        if "exceptionDetails" in answer:
            raise AssertionError(expression + ": " + json.dumps(answer["exceptionDetails"])[:500])
        return answer["result"].get("value")

    # Waits until the expression is true; gives its value.
    def wait(self, expression):
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            value = self.get(expression)
            if value not in (None, False, 0, ""):  # an element is an empty object here
                return value
            time.sleep(0.02)
        raise Missing(expression)

    # Waits until the expression has this value.
    def expect(self, expression, wanted):
        end = time.monotonic() + PATIENCE
        while True:
            value = self.get(expression)
            if value == wanted:
                return
            if time.monotonic() > end:
                raise AssertionError("%s: expected %r, got %r" % (expression, wanted, value))
            time.sleep(0.02)

    def press(self, *keys):
        for key in keys:
            for kind in ("keyDown", "keyUp"):
                event = {"type": kind, "key": key, "windowsVirtualKeyCode": self.KEYS[key]}
                if kind == "keyDown" and key in self.TEXTS:
                    event["text"] = self.TEXTS[key]
                self.call("Input.dispatchKeyEvent", **event)

    def type(self, text):
        self.call("Input.insertText", text=text)

    # Clicks the middle of the element that the expression gives.
    def click(self, expression):
        x, y = self.get("(() => { const box = (%s).getBoundingClientRect();"
                        " return [box.x + box.width / 2, box.y + box.height / 2]; })()" % expression)
        for kind in ("mousePressed", "mouseReleased"):
            self.call("Input.dispatchMouseEvent", type=kind, x=x, y=y, button="left", clickCount=1)

    # What the browser complained of since the page was opened.
    def complaints(self):
        self.get("0")
        mine = [event for event in self.browser.events if event.get("sessionId") == self.session]
        return [event["params"] for event in mine
                if event["method"] in ("Runtime.exceptionThrown", "Log.entryAdded", "Runtime.consoleAPICalled")]

    def close(self):
        self.browser.call("Target.closeTarget", targetId=self.target)
