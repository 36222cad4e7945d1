"""Chromium without a screen, driven over a pipe by its DevTools protocol."""
import fcntl
import json
import os
import select
import shutil
import subprocess
import sys
import tempfile
import time

LONGEST = 40  # seconds of one answer

# The browser reads from 3 and writes to 4, which are others' numbers where it is started.
START = """import os, sys
os.dup2(int(sys.argv[1]), 3)
os.dup2(int(sys.argv[2]), 4)
os.execvp(sys.argv[3], sys.argv[3:])"""


class Browser:
    def __init__(self):
        self.profile = tempfile.mkdtemp()
        reading, self.to_browser = os.pipe()
        self.from_browser, writing = os.pipe()
        # Beyond 4, so that none of them is in the way of the other.
        ends = [fcntl.fcntl(end, fcntl.F_DUPFD, 10) for end in (reading, writing)]
        self.process = subprocess.Popen(
            [sys.executable, "-c", START, *map(str, ends), "chromium", "--headless",
             "--remote-debugging-pipe", "--no-sandbox", "--disable-gpu",
             "--disable-dev-shm-usage", "--disable-background-networking",
             "--disable-component-update", f"--user-data-dir={self.profile}", "about:blank"],
            pass_fds=ends, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL)
        for end in (reading, writing, *ends):
            os.close(end)
        self.read = b""
        self.last = 0
        self.events = []
        self.session = None
        target = next(each for each in self.ask("Target.getTargets")["targetInfos"]
                      if each["type"] == "page")
        self.session = self.ask("Target.attachToTarget", targetId=target["targetId"],
                                flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network", "Accessibility"):
            self.ask(f"{domain}.enable")

    def close(self):
        self.process.terminate()
        self.process.wait(LONGEST)
        shutil.rmtree(self.profile, ignore_errors=True)

    def message(self, end):
        while b"\0" not in self.read:
            if not select.select([self.from_browser], [], [], max(end - time.monotonic(), 0))[0]:
                raise TimeoutError("the browser does not answer")
            block = os.read(self.from_browser, 1 << 20)
            if not block:
                raise EOFError("the browser has ended")
            self.read += block
        text, self.read = self.read.split(b"\0", 1)
        return json.loads(text)

    def ask(self, method, **parameters):
        self.last += 1
        question = {"id": self.last, "method": method, "params": parameters}
        if self.session:
            question["sessionId"] = self.session
        os.write(self.to_browser, json.dumps(question).encode() + b"\0")
        end = time.monotonic() + LONGEST
        while True:
            message = self.message(end)
            if message.get("id") == self.last:
                if "error" in message:
                    raise RuntimeError(f"{method}: {message['error']}")
                return message["result"]
            if "method" in message:
                self.events.append(message)

    def happened(self, method):
        return [event["params"] for event in self.events if event["method"] == method]

    def open(self, path):
        """Answers how many seconds it took until the page was loaded and laid out."""
        self.events.clear()
        began = time.monotonic()
        self.ask("Page.navigate", url=path.as_uri())
        while not self.happened("Page.loadEventFired"):
            message = self.message(began + LONGEST)
            if "method" in message:
                self.events.append(message)
        self.run("document.body.offsetHeight")
        return time.monotonic() - began

    def run(self, script):
        """The value of an expression in the page."""
        result = self.ask("Runtime.evaluate", expression=script, returnByValue=True,
                          awaitPromise=True)
        if "exceptionDetails" in result:
            raise RuntimeError(json.dumps(result["exceptionDetails"]))
        return result["result"].get("value")

    def complaints(self):
        """What the page has said to the console, and the requests that it made beside itself."""
        said = [str(event) for method in ("Log.entryAdded", "Runtime.consoleAPICalled",
                                          "Runtime.exceptionThrown")
                for event in self.happened(method)]
        asked = [event["request"]["url"] for event in self.happened("Network.requestWillBeSent")]
        return said + asked[1:]

    def named(self):
        """(role, name) of all that assistive technology is shown."""
        nodes = self.ask("Accessibility.getFullAXTree")["nodes"]
        return [(node["role"]["value"], node.get("name", {}).get("value", ""))
                for node in nodes if not node["ignored"]]
