"""A page in a real browser: headless Chromium, controlled through its DevTools protocol over two
pipes."""

import base64
import fcntl
import json
import os
import shutil
import subprocess
import time

from lumo_testing import HANG_SECONDS

KEYS = {"Enter": 13, "Escape": 27, "ArrowDown": 40, "ArrowUp": 38, "Home": 36, "End": 35}


def find_browser():
    """The path of Chromium; None if it is not installed."""
    for name in ("chromium", "chromium-browser", "google-chrome"):
        if shutil.which(name):
            return shutil.which(name)
    return None


class Browser:
    """A browser with one page."""

    def __init__(self, folder):
        to_read, self.to_write = os.pipe()
        self.to_read, to_write = os.pipe()
        ends = [fcntl.fcntl(end, fcntl.F_DUPFD, 10) for end in (to_read, to_write)]

        def use_ends():  # the browser reads from 3 and writes to 4
            os.dup2(ends[0], 3)
            os.dup2(ends[1], 4)

        words = [find_browser(), "--headless", "--remote-debugging-pipe", "--disable-gpu",
                 "--hide-scrollbars", "--no-first-run", "--disable-background-networking",
                 "--disable-dev-shm-usage", f"--user-data-dir={folder}/profile",
                 "--window-size=1280,900"]
        if os.geteuid() == 0:
            words.append("--no-sandbox")
        self.process = subprocess.Popen(words, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL, pass_fds=(3, 4),
                                        preexec_fn=use_ends)
        for end in (*ends, to_read, to_write):
            os.close(end)
        self.number, self.pending, self.events, self.session = 0, b"", [], None
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        attached = self.call("Target.attachToTarget", targetId=target, flatten=True)
        self.session = attached["sessionId"]
        for domain in ("Page", "Runtime", "Log"):
            self.call(f"{domain}.enable")
        self.call("Performance.enable", timeDomain="threadTicks")

    def close(self):
        self.session = None
        self.call("Browser.close")
        self.process.wait(60)
        os.close(self.to_write)
        os.close(self.to_read)

    def message(self):
        while b"\0" not in self.pending:
            piece = os.read(self.to_read, 1 << 20)
            if not piece:
                raise RuntimeError("the browser ended")
            self.pending += piece
        text, self.pending = self.pending.split(b"\0", 1)
        return json.loads(text)

    def call(self, method, **parameters):
        self.number += 1
        request = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            request["sessionId"] = self.session
        os.write(self.to_write, json.dumps(request).encode() + b"\0")
        while True:
            answer = self.message()
            if answer.get("id") == self.number:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']}")
                return answer["result"]
            if "method" in answer:
                self.events.append(answer)

    def load(self, path):
        """Opens a file and waits until its page has loaded."""
        self.events.clear()
        self.call("Page.navigate", url=path.as_uri())
        self.wait_for("document.readyState === 'complete' && location.protocol === 'file:'")

    def run(self, script):
        """The value of a JavaScript expression. Waits for a promise."""
        answer = self.call("Runtime.evaluate", expression=script, returnByValue=True,
                           awaitPromise=True)
        if "exceptionDetails" in answer:
            raise RuntimeError(f"{script}: {answer['exceptionDetails']}")
        return answer["result"].get("value")

    def wait_for(self, script):
        end = time.monotonic() + HANG_SECONDS
        while not self.run(script):
            if time.monotonic() > end:
                raise AssertionError(f"this never became true: {script}")
            time.sleep(0.02)

    def busy(self):
        """Seconds of CPU time that the page has used in the browser's main thread."""
        metrics = self.call("Performance.getMetrics")["metrics"]
        return next(one["value"] for one in metrics if one["name"] == "TaskDuration")

    def complaints(self):
        """The errors and warnings in the console, and uncaught exceptions."""
        self.run("0")  # reads the events up to here
        return [event["params"] for event in self.events
                if event["method"] == "Runtime.exceptionThrown" or
                (event["method"] == "Runtime.consoleAPICalled" and
                 event["params"]["type"] in ("error", "warning", "assert")) or
                (event["method"] == "Log.entryAdded" and
                 event["params"]["entry"]["level"] in ("error", "warning"))]

    def press(self, key):
        """Presses and releases a key."""
        common = {"key": key, "text": {"Enter": "\r"}.get(key, key if len(key) == 1 else "")}
        if key in KEYS:
            common["windowsVirtualKeyCode"] = KEYS[key]
        self.call("Input.dispatchKeyEvent", type="keyDown", **common)
        self.call("Input.dispatchKeyEvent", type="keyUp", **common)

    def type(self, text):
        for key in text:
            self.press(key)

    def media(self, media="", **features):
        self.call("Emulation.setEmulatedMedia", media=media,
                  features=[{"name": name.replace("_", "-"), "value": value}
                            for name, value in features.items()])

    def picture(self, path, width=1280, height=900):
        """Writes a PNG of the visible part of the page."""
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height,
                  deviceScaleFactor=1, mobile=False)
        self.run("new Promise(done => requestAnimationFrame(() => requestAnimationFrame(done)))")
        data = self.call("Page.captureScreenshot", format="png")["data"]
        path.write_bytes(base64.b64decode(data))
