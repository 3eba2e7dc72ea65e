"""A real browser on a live wall, driven over its own protocol."""

import os
import shutil
import tempfile

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service

from harness import LIMIT

SWITCHES = (
    "--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--hide-scrollbars",
    "--no-first-run", "--disable-quic", "--disable-sync", "--disable-background-networking",
    "--disable-component-update",
)

# Connections that are lost when a test ends a server: the page tells of them itself.
LOST = ("ERR_CONNECTION_REFUSED", "ERR_INCOMPLETE_CHUNKED")

# Answers once `holds` is true: asked now, and whenever the page has shown something new.
WAIT = """
const done = arguments[arguments.length - 1];
const ask = () => {
  let value;
  try { value = (() => { %s })(); } catch { return; }
  if (!value) return;
  document.removeEventListener("wall-shown", ask);
  done(value);
};
document.addEventListener("wall-shown", ask);
ask();
"""


class Browser:
    def __init__(self, width=1280, height=800):
        self.profile = tempfile.mkdtemp(prefix="quivord-chromium-")
        options = Options()
        options.binary_location = os.environ["QUIVORD_CHROMIUM"]
        for switch in (*SWITCHES, f"--user-data-dir={self.profile}", f"--window-size={width},{height}"):
            options.add_argument(switch)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
        service = Service(os.environ["QUIVORD_CHROMEDRIVER"])
        self.driver = webdriver.Chrome(service=service, options=options)
        self.driver.set_script_timeout(LIMIT)
        self.size(width, height)

    def size(self, width, height):
        metrics = {"width": width, "height": height, "deviceScaleFactor": 1, "mobile": False}
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", metrics)

    def open(self, url):
        self.driver.get(url)
        self.until("liveWall.scene !== null && !liveWall.moving")

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def until(self, holds):
        """Waits until the page has shown something for which this expression is true; its value."""
        return self.driver.execute_async_script(WAIT % f"return {holds};")

    def complaints(self):
        """What the console has said since this was asked last, but for lost connections."""
        said = [entry["message"] for entry in self.driver.get_log("browser")]
        return [message for message in said if not any(lost in message for lost in LOST)]

    def close(self):
        self.driver.quit()
        shutil.rmtree(self.profile, ignore_errors=True)
