# SPDX-License-Identifier: Apache-2.0
"""Chromium without a window, driven by chromedriver over the WebDriver protocol (W3C)."""
import base64
import json
import re
import shutil
import subprocess
import tempfile
import urllib.request

OPTIONS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
           "--disable-background-networking", "--disable-component-update", "--disable-sync",
           "--hide-scrollbars"]
ELEMENT = "element-6066-11e4-a52e-4f735466cecf"  # the key of an element's ID in the protocol
KEYS = {"Tab": "\ue004", "Enter": "\ue007", "Escape": "\ue00c", "End": "\ue010", "Home": "\ue011",
        "Left": "\ue012", "Up": "\ue013", "Right": "\ue014", "Down": "\ue015"}


class Browser:
    """A browser with an empty profile. Use it in a `with` statement."""

    def __init__(self, hasScripts=True):
        self.hasScripts = hasScripts

    def __enter__(self):
        self.profile = tempfile.mkdtemp()
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE, text=True)
        self.port = self.wait_for_port()
        self.session = self.call("POST", "/session", {"capabilities": {"alwaysMatch": self.wishes()}})
        self.path = "/session/" + self.session["sessionId"]
        return self

    def __exit__(self, *failure):
        try:
            self.call("DELETE", self.path)
        finally:
            self.driver.terminate()
            self.driver.wait()
            self.driver.stdout.close()
            shutil.rmtree(self.profile, ignore_errors=True)

    def wait_for_port(self):
        for line in self.driver.stdout:
            port = re.search(r"started successfully on port (\d+)", line)
            if port:
                return int(port[1])
        raise RuntimeError("chromedriver did not start")

    def wishes(self):
        chrome = {"args": [*OPTIONS, f"--user-data-dir={self.profile}"]}
        if not self.hasScripts:
            chrome["prefs"] = {"profile.managed_default_content_settings.javascript": 2}
        return {"browserName": "chrome", "goog:chromeOptions": chrome,
                "goog:loggingPrefs": {"browser": "ALL", "performance": "ALL"}}

    def call(self, method, path, body=None):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(f"http://127.0.0.1:{self.port}{path}", data=data,
                                         method=method, headers={"Content-Type": "application/json"})
        with urllib.request.urlopen(request, timeout=60) as answer:
            return json.load(answer)["value"]

    def devtools(self, command, **parameters):
        return self.call("POST", self.path + "/goog/cdp/execute", {"cmd": command, "params": parameters})

    def show(self, file, width=1280, height=900, scheme="light"):
        """Opens a file in a window of that size."""
        self.devtools("Emulation.setDeviceMetricsOverride", width=width, height=height,
                      deviceScaleFactor=1, mobile=False)
        self.devtools("Emulation.setEmulatedMedia",
                      features=[{"name": "prefers-color-scheme", "value": scheme}])
        self.call("POST", self.path + "/url", {"url": file.resolve().as_uri()})

    def run(self, script, *arguments):
        """Runs a function body in the page, also where its own scripts are switched off."""
        return self.call("POST", self.path + "/execute/sync", {"script": script, "args": list(arguments)})

    def find(self, selector):
        found = self.call("POST", self.path + "/element", {"using": "css selector", "value": selector})
        return found[ELEMENT]

    def click(self, selector):
        self.call("POST", f"{self.path}/element/{self.find(selector)}/click", {})

    def type(self, selector, text):
        self.call("POST", f"{self.path}/element/{self.find(selector)}/value", {"text": text})

    def press(self, key):
        key = KEYS.get(key, key)
        actions = [{"type": "keyDown", "value": key}, {"type": "keyUp", "value": key}]
        self.call("POST", self.path + "/actions",
                  {"actions": [{"type": "key", "id": "keyboard", "actions": actions}]})

    def screenshot(self, file):
        file.write_bytes(base64.b64decode(self.call("GET", self.path + "/screenshot")))

    def messages(self):
        """The messages of the console since the last call."""
        return [entry["message"] for entry in self.call("POST", self.path + "/se/log", {"type": "browser"})]

    def requests(self):
        """The addresses that were requested since the last call."""
        entries = self.call("POST", self.path + "/se/log", {"type": "performance"})
        events = [json.loads(entry["message"])["message"] for entry in entries]
        return [event["params"]["request"]["url"] for event in events
                if event["method"] == "Network.requestWillBeSent"]
