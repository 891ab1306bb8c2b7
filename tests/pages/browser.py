"""A headless Chromium, asked over a pair of pipes: each message is JSON and ends with a zero byte."""

import base64
import json
import os
import shutil
import subprocess
import tempfile

CHROMIUM = shutil.which("chromium") or shutil.which("chromium-browser") or shutil.which("google-chrome")


class Browser:
    """One page in a browser of its own. Use it in a `with` statement: the browser ends with it."""

    def __init__(self):
        self.profile = tempfile.TemporaryDirectory(prefix="vostrel-browser-", ignore_cleanup_errors=True)
        to_browser, self.commands = os.pipe()
        answers, from_browser = os.pipe()
        self.answers = os.fdopen(answers, "rb")
        # The browser reads descriptor 3 and writes descriptor 4.
        redirect = f'exec "$@" 3<&{to_browser} 4>&{from_browser}'
        self.process = subprocess.Popen(
            ["bash", "-c", redirect, "bash", CHROMIUM, "--headless", "--no-sandbox", "--disable-gpu",
             "--disable-dev-shm-usage", "--hide-scrollbars", "--remote-debugging-pipe", f"--user-data-dir={self.profile.name}", "about:blank"],
            pass_fds=(to_browser, from_browser), stderr=subprocess.DEVNULL)
        os.close(to_browser)
        os.close(from_browser)
        self.last = 0
        self.session = None
        self.unread = b""
        self.events = []
        target = self.ask("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.ask("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.ask(f"{domain}.enable")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        os.close(self.commands)
        self.answers.close()
        self.profile.cleanup()

    def _next(self):
        while b"\0" not in self.unread:
            piece = self.answers.read1(1 << 20)
            if not piece:
                raise ConnectionError("the browser ended")
            self.unread += piece
        message, _, self.unread = self.unread.partition(b"\0")
        return json.loads(message)

    def ask(self, method, **parameters):
        self.last += 1
        message = {"id": self.last, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.commands, json.dumps(message).encode() + b"\0")
        while (answer := self._next()).get("id") != self.last:
            self.events.append(answer)
        if "error" in answer:
            raise RuntimeError(f"{method}: {answer['error']['message']}")
        return answer["result"]

    def open(self, path):
        """Loads the file afresh, however it was shown before."""
        self.events.clear()
        self.ask("Page.navigate", url=f"{path.as_uri()}?{self.last}")
        while not any(event.get("method") == "Page.loadEventFired" for event in self.events):
            self.events.append(self._next())

    def value(self, expression):
        """What the script expression gives; of a promise what it comes to."""
        result = self.ask("Runtime.evaluate", expression=expression, returnByValue=True, awaitPromise=True)
        if "exceptionDetails" in result:
            raise RuntimeError(f"{expression}: {result['exceptionDetails']['exception'].get('description')}")
        return result["result"].get("value")

    def press(self, key):
        for kind in ("rawKeyDown", "keyUp"):
            self.ask("Input.dispatchKeyEvent", type=kind, key=key)
        self.settle()

    def click(self, element):
        """Clicks on the middle of the element that the script expression gives."""
        self.value(f"{element}.scrollIntoView({{block: 'nearest'}})")
        box = self.value(f"{element}.getBoundingClientRect().toJSON()")
        self.click_at(box["x"] + box["width"] / 2, box["y"] + box["height"] / 2)

    def click_at(self, x, y):
        for kind in ("mouseMoved", "mousePressed", "mouseReleased"):
            self.ask("Input.dispatchMouseEvent", type=kind, x=x, y=y, button="left", clickCount=1)
        self.settle()

    def settle(self):
        """Lets the page answer what it was sent."""
        self.value("new Promise((done) => setTimeout(done, 50))")

    def complaints(self):
        """Errors and warnings of the console, uncaught exceptions, and what the page asked the network for."""
        found = []
        for event in self.events:
            parameters = event.get("params", {})
            match event.get("method"):
                case "Runtime.exceptionThrown":
                    found.append(parameters["exceptionDetails"].get("exception", {}).get("description"))
                case "Runtime.consoleAPICalled" if parameters["type"] in ("error", "warning", "assert"):
                    found.append(str(parameters["args"]))
                case "Log.entryAdded":
                    found.append(parameters["entry"]["text"])
                case "Network.requestWillBeSent" if not parameters["request"]["url"].startswith(("file:", "data:")):
                    found.append(parameters["request"]["url"])
        return found

    def window(self, width, height, dark=False):
        self.ask("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=False)
        scheme = {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}
        self.ask("Emulation.setEmulatedMedia", features=[scheme])
        self.settle()

    def picture(self):
        """The whole page as a PNG."""
        return base64.b64decode(self.ask("Page.captureScreenshot", captureBeyondViewport=True)["data"])
