"""A browser without a window, driven through its own driver. Nothing of it is kept, and it asks no network."""

import base64
import json
import shutil
import socket
import subprocess
import tempfile
import time
import urllib.error
import urllib.request

_ARGUMENTS = ("--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
              "--disable-background-networking", "--disable-component-update", "--disable-sync",
              "--disable-dev-shm-usage", "--hide-scrollbars", "--allow-file-access-from-files")


class Browser:
    def __init__(self):
        self._folder = tempfile.mkdtemp(prefix="umlmm-browser-")
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            port = free.getsockname()[1]
        self._driver = subprocess.Popen(["chromedriver", f"--port={port}"], stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)
        self._address = f"http://127.0.0.1:{port}"
        self._open = urllib.request.build_opener(urllib.request.ProxyHandler({})).open
        options = {"args": [*_ARGUMENTS, f"--user-data-dir={self._folder}"]}
        wanted = {"browserName": "chrome", "goog:chromeOptions": options, "goog:loggingPrefs": {"browser": "ALL"},
                  "unhandledPromptBehavior": "ignore"}
        for _ in range(100):
            try:
                self._ask("GET", "/status")
                break
            except (urllib.error.URLError, ConnectionError):
                time.sleep(.1)
        session = self._ask("POST", "/session", {"capabilities": {"alwaysMatch": wanted}})
        self._address += f"/session/{session['sessionId']}"

    def close(self):
        try:
            self._ask("DELETE", "")
        finally:
            self._driver.terminate()
            self._driver.wait()
            shutil.rmtree(self._folder, ignore_errors=True)

    def _ask(self, method, path, body=None):
        request = urllib.request.Request(self._address + path, method=method, headers={"Content-Type": "application/json"},
                                         data=json.dumps(body or {}).encode() if method == "POST" else None)
        try:
            with self._open(request, timeout=120) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise RuntimeError(json.load(error)["value"]["message"]) from None

    def command(self, name, **parameters):
        """A command of the browser's own protocol."""
        return self._ask("POST", "/goog/cdp/execute", {"cmd": name, "params": parameters})

    def show(self, path, width=1400, height=900):
        self.command("Emulation.setDeviceMetricsOverride", width=width, height=height, deviceScaleFactor=1,
                     mobile=width < 600)
        self._ask("POST", "/url", {"url": path if isinstance(path, str) else path.absolute().as_uri()})

    def run(self, script, *arguments):
        """What a function with that body answers; a promise is waited for."""
        return self._ask("POST", "/execute/sync", {"script": script, "args": list(arguments)})

    def soon(self, script, until=bool, seconds=5):
        """What a function answers once that is as it should be, or after that time."""
        end = time.monotonic() + seconds
        while not until(answer := self.run(script)) and time.monotonic() < end:
            time.sleep(.05)
        return answer

    def press(self, keys):
        """Keys go to what has the focus."""
        actions = [{"type": kind, "value": key} for key in keys for kind in ("keyDown", "keyUp")]
        self._ask("POST", "/actions", {"actions": [{"type": "key", "id": "keys", "actions": actions}]})

    def complaints(self):
        """What has come to the console since the last time."""
        return [each["message"] for each in self._ask("POST", "/se/log", {"type": "browser"})
                if each["level"] in ("SEVERE", "WARNING")]

    def has_dialog(self):
        try:
            self._ask("GET", "/alert/text")
        except RuntimeError:
            return False
        return True

    def picture(self, path):
        """For eyes: what the page looks like."""
        path.write_bytes(base64.b64decode(self.command("Page.captureScreenshot", captureBeyondViewport=True)["data"]))
