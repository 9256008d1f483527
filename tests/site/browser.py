"""A headless browser, driven over WebDriver."""
import contextlib
import json
import socket
import subprocess
import time
import urllib.error
import urllib.request

DOWN, ENTER, ESCAPE, CONTROL = "\ue015", "\ue007", "\ue00c", "\ue009"
ELEMENT = "element-6066-11e4-a52e-4f735466cecf"
OPTIONS = {"args": ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                    "--window-size=1200,900"]}
CAPABILITIES = {"browserName": "chrome", "goog:chromeOptions": OPTIONS,
                "goog:loggingPrefs": {"browser": "ALL", "performance": "ALL"}}


def free_port():
    with socket.socket() as made:
        made.bind(("127.0.0.1", 0))
        return made.getsockname()[1]


class Browser:
    def __init__(self, address):
        self.address = address
        made = self.call("POST", "/session", {"capabilities": {"alwaysMatch": CAPABILITIES}})
        self.address += "/session/" + made["sessionId"]

    def call(self, method, path, body=None):
        data = json.dumps(body or {}).encode() if method == "POST" else None
        request = urllib.request.Request(self.address + path, data, method=method,
                                         headers={"Content-Type": "application/json"})
        try:
            with urllib.request.urlopen(request, timeout=60) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise AssertionError(json.load(error)["value"]["message"]) from None

    def run(self, script, *arguments):
        return self.call("POST", "/execute/sync", {"script": script, "args": list(arguments)})

    def wait(self, script):
        """Until the expression holds."""
        for _ in range(1000):
            if value := self.run(f"return {script}"):
                return value
            time.sleep(0.01)
        raise AssertionError(f"never true: {script}; the page shows: {self.text()[:500]}")

    def open(self, url, title):
        """A page anew, until it has the title."""
        self.call("POST", "/url", {"url": "about:blank"})
        self.call("POST", "/url", {"url": url})
        self.shows(title)

    def shows(self, title):
        self.wait(f"document.title === {json.dumps(title)} && document.readyState === 'complete'")

    def text(self):
        return self.run("return document.getElementById('main')?.innerText ?? ''")

    def type(self, keys):
        """To what has the focus."""
        active = self.call("GET", "/element/active")[ELEMENT]
        self.call("POST", f"/element/{active}/value", {"text": keys})

    def click(self, selector):
        found = self.call("POST", "/element", {"using": "css selector", "value": selector})[ELEMENT]
        self.call("POST", f"/element/{found}/click")

    def tell(self, command, **parameters):
        return self.call("POST", "/goog/cdp/execute", {"cmd": command, "params": parameters})

    def complaints(self):
        """What the console has received since the last call."""
        return [entry["message"] for entry in self.call("POST", "/se/log", {"type": "browser"})]

    def requests(self):
        """The addresses that were asked for since the last call."""
        found = []
        for entry in self.call("POST", "/se/log", {"type": "performance"}):
            message = json.loads(entry["message"])["message"]
            if message["method"] == "Network.requestWillBeSent":
                found.append(message["params"]["request"]["url"])
        return found


@contextlib.contextmanager
def started():
    port = free_port()
    driver = subprocess.Popen(["chromedriver", f"--port={port}"], stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL)
    address = f"http://127.0.0.1:{port}"
    try:
        for _ in range(500):
            with contextlib.suppress(OSError):
                urllib.request.urlopen(address + "/status").close()
                break
            time.sleep(0.02)
        browser = Browser(address)
        yield browser
        browser.call("DELETE", "")
    finally:
        driver.terminate()
        driver.wait()
