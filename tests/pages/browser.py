"""A headless Chromium, driven over a pipe: what the tests of the pages look through."""
import base64
import json
import os
import select
import shutil
import struct
import tempfile
import time
import zlib

LIMIT = 120.0  # seconds for one answer; a loaded machine draws slowly


class BrowserError(Exception):
    pass


def program():
    for name in ("chromium", "chromium-browser", "google-chrome"):
        if found := shutil.which(name):
            return found
    raise BrowserError("no chromium on this machine: install the package chromium")


class Browser:
    """One browser with one page."""

    def __init__(self, webgl=True):
        self.profile = tempfile.mkdtemp(prefix="zelmPages")
        to_browser, self.write_end = os.pipe()
        self.read_end, from_browser = os.pipe()
        os.set_inheritable(to_browser, True)
        arguments = [program(), "--headless=new", "--no-sandbox", "--disable-gpu", "--remote-debugging-pipe",
                     "--user-data-dir=" + self.profile, "--no-first-run", "--disable-extensions",
                     "--disable-background-networking", "--disable-component-update", "--hide-scrollbars",
                     "--force-color-profile=srgb"]
        arguments += ["--use-gl=angle", "--use-angle=swiftshader", "--enable-unsafe-swiftshader"] if webgl else [
            "--disable-3d-apis"]
        null = os.open(os.devnull, os.O_RDWR)
        # The browser reads from 3 and writes to 4. Copied past both first, as either may stand in the other's place.
        high_in, high_out = 40, 41
        actions = [(os.POSIX_SPAWN_DUP2, to_browser, high_in), (os.POSIX_SPAWN_DUP2, from_browser, high_out),
                   (os.POSIX_SPAWN_DUP2, high_in, 3), (os.POSIX_SPAWN_DUP2, high_out, 4),
                   (os.POSIX_SPAWN_DUP2, null, 1), (os.POSIX_SPAWN_DUP2, null, 2)]
        self.process = os.posix_spawn(arguments[0], arguments, os.environ, file_actions=actions)
        for end in (to_browser, from_browser, null):
            os.close(end)
        self.bytes = b""
        self.number = 0
        self.events = []
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.call(domain + ".enable")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        try:
            self.session = None
            self.call("Browser.close")
        except (BrowserError, OSError):
            pass
        os.close(self.write_end)
        os.close(self.read_end)
        for _ in range(100):
            if os.waitpid(self.process, os.WNOHANG)[0]:
                break
            time.sleep(0.1)
        else:
            os.kill(self.process, 9)
            os.waitpid(self.process, 0)
        shutil.rmtree(self.profile, ignore_errors=True)

    def _message(self):
        end = time.monotonic() + LIMIT
        while b"\0" not in self.bytes:
            if not select.select([self.read_end], [], [], max(0.0, end - time.monotonic()))[0]:
                raise BrowserError("the browser does not answer")
            more = os.read(self.read_end, 1 << 20)
            if not more:
                raise BrowserError("the browser has ended")
            self.bytes += more
        message, self.bytes = self.bytes.split(b"\0", 1)
        return json.loads(message)

    def call(self, method, **parameters):
        self.number += 1
        message = {"id": self.number, "method": method, "params": parameters}
        if getattr(self, "session", None):
            message["sessionId"] = self.session
        text = json.dumps(message).encode() + b"\0"
        while text:
            text = text[os.write(self.write_end, text):]
        while True:
            answer = self._message()
            if answer.get("id") == self.number:
                if "error" in answer:
                    raise BrowserError(method + ": " + answer["error"]["message"])
                return answer["result"]
            self.events.append(answer)

    def evaluate(self, expression):
        answer = self.call("Runtime.evaluate", expression=expression, awaitPromise=True, returnByValue=True)
        if "exceptionDetails" in answer:
            raise BrowserError(json.dumps(answer["exceptionDetails"]))
        return answer["result"].get("value")

    def wait_for(self, condition, seconds=60.0):
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            if self.evaluate(condition):
                return True
            time.sleep(0.05)
        return False

    def open(self, path, width=1200, height=900, scheme="light", mobile=False, script=True):
        """Loads a file and waits until it is there; what the page asked for and complained of is in `events`."""
        self.events.clear()
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1, mobile=mobile)
        self.call("Emulation.setEmulatedMedia", media="",
                  features=[{"name": "prefers-color-scheme", "value": scheme}])
        self.call("Emulation.setScriptExecutionDisabled", value=not script)
        self.call("Page.navigate", url="file://" + os.path.abspath(path))
        end = time.monotonic() + LIMIT
        while not any(event.get("method") == "Page.loadEventFired" for event in self.events):
            if time.monotonic() > end:
                raise BrowserError(path + ": does not load")
            self.events.append(self._message())

    def complaints(self):
        """Errors and warnings of the console, and exceptions."""
        texts = []
        for event in self.events:
            parameters = event.get("params", {})
            if event.get("method") == "Runtime.exceptionThrown":
                texts.append(json.dumps(parameters["exceptionDetails"].get("exception", parameters)))
            elif event.get("method") == "Runtime.consoleAPICalled" and parameters["type"] in ("error", "warning"):
                texts.append(" ".join(str(a.get("value", a.get("description"))) for a in parameters["args"]))
            elif event.get("method") == "Log.entryAdded" and parameters["entry"]["level"] in ("error", "warning"):
                texts.append(parameters["entry"]["text"])
        # Reading the picture back for a screenshot is slow, says the driver: no fault of the page.
        return [text for text in texts if "GL Driver Message" not in text]

    def requests(self):
        """What was asked for beside the page itself and data that it holds."""
        urls = [event["params"]["request"]["url"] for event in self.events
                if event.get("method") == "Network.requestWillBeSent"]
        return [url for url in urls[1:] if not url.startswith(("data:", "blob:"))]

    def screenshot(self, whole=False, clip=None):
        parameters = {"format": "png", "captureBeyondViewport": whole}
        if clip:
            parameters["clip"] = dict(clip, scale=1)
        elif whole:
            size = self.call("Page.getLayoutMetrics")["cssContentSize"]
            parameters["clip"] = {"x": 0, "y": 0, "width": size["width"], "height": size["height"], "scale": 1}
        return base64.b64decode(self.call("Page.captureScreenshot", **parameters)["data"])

    def pdf(self):
        return base64.b64decode(self.call("Page.printToPDF", preferCSSPageSize=True, paperWidth=8.27, paperHeight=11.69,
                                          printBackground=True)["data"])


def png_pixels(png):
    """Width, height and a list of rows of (r, g, b) of a PNG as the browser writes it: 8 bits, no interlacing."""
    at, data, channels, width, height = 8, b"", 3, 0, 0
    while at < len(png):
        size, kind = struct.unpack(">I4s", png[at:at + 8])
        chunk = png[at + 8:at + 8 + size]
        if kind == b"IHDR":
            width, height, _, colour = struct.unpack(">IIBB", chunk[:10])
            channels = {2: 3, 6: 4}[colour]
        elif kind == b"IDAT":
            data += chunk
        at += 12 + size
    raw = zlib.decompress(data)
    stride = channels * width
    previous = bytearray(stride)
    rows = []
    for y in range(height):
        start = y * (stride + 1)
        row = bytearray(raw[start + 1:start + 1 + stride])
        _unfilter(raw[start], row, previous, channels)
        rows.append([tuple(row[x:x + 3]) for x in range(0, stride, channels)])
        previous = row
    return width, height, rows


def _unfilter(kind, row, above, channels):
    for i in range(len(row)):
        left = row[i - channels] if i >= channels else 0
        up = above[i]
        corner = above[i - channels] if i >= channels else 0
        if kind == 1:
            row[i] = (row[i] + left) & 255
        elif kind == 2:
            row[i] = (row[i] + up) & 255
        elif kind == 3:
            row[i] = (row[i] + (left + up) // 2) & 255
        elif kind == 4:
            guess = left + up - corner
            near = min((abs(guess - left), 0, left), (abs(guess - up), 1, up), (abs(guess - corner), 2, corner))[2]
            row[i] = (row[i] + near) & 255
