"""A headless Chromium that shows one page at a time, and tells what the page did."""

import base64
import json
import pathlib

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service


class Browser:
    def __init__(self, profile, has_script=True):
        options = Options()
        options.binary_location = "/usr/bin/chromium"
        # Root can't have Chromium's sandbox, and a container's /dev/shm may be small.
        for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                         "--hide-scrollbars", f"--user-data-dir={profile}"):
            options.add_argument(argument)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        if not has_script:
            options.add_experimental_option("prefs", {"profile.managed_default_content_settings.javascript": 2})
        self.driver = webdriver.Chrome(options=options, service=Service("/usr/bin/chromedriver"))
        self.driver.set_script_timeout(120)
        self.set_width(1280)

    def quit(self):
        self.driver.quit()

    def command(self, name, **parameters):
        return self.driver.execute_cdp_cmd(name, parameters)

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def set_width(self, width):
        self.command("Emulation.setDeviceMetricsOverride", width=width, height=1000, deviceScaleFactor=1,
                     mobile=width < 500)

    def set_scheme(self, scheme):
        self.command("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])

    def open(self, path, fragment=""):
        """Forgets what earlier pages did."""
        self.driver.get("about:blank")
        self.driver.get_log("browser")
        self.driver.get_log("performance")
        self.driver.get(pathlib.Path(path).resolve().as_uri() + fragment)

    def requests(self):
        """The addresses of all requests since the page was opened, or since the last call."""
        messages = [json.loads(entry["message"])["message"] for entry in self.driver.get_log("performance")]
        return [message["params"].get("url") or message["params"]["request"]["url"] for message in messages
                if message["method"] in ("Network.requestWillBeSent", "Network.webSocketCreated")]

    def console(self):
        return [entry["message"] for entry in self.driver.get_log("browser")]

    def picture(self, path, clip=None, most=8000):
        """The whole page, or a part of it."""
        if clip is None:
            width, height = self.run("const e = document.documentElement; return [e.clientWidth, e.scrollHeight];")
            clip = {"x": 0, "y": 0, "width": width, "height": min(height, most)}
        data = self.command("Page.captureScreenshot", captureBeyondViewport=True, clip={**clip, "scale": 1})["data"]
        pathlib.Path(path).write_bytes(base64.b64decode(data))

    def pdf(self, path, width, height):
        data = self.command("Page.printToPDF", paperWidth=width, paperHeight=height)["data"]
        pathlib.Path(path).write_bytes(base64.b64decode(data))
