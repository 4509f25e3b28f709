"""Makes the pictures in Docs: pictures.py QUORLIN. They show the sample, no real machine. Needs python3-pil as well."""

import pathlib
import subprocess
import sys
import tempfile

from browser import Browser
from PIL import Image

FOLDER = pathlib.Path(__file__).parents[2] / "Docs"
TOP = "return document.querySelector(arguments[0]).getBoundingClientRect().top + scrollY;"

with tempfile.TemporaryDirectory() as scratch:
    page = pathlib.Path(scratch) / "sample.html"
    subprocess.run([sys.argv[1], "report", page, "--sample"], check=True)
    browser = Browser(pathlib.Path(scratch) / "profile")
    browser.set_width(960)
    for name, scheme, part, height in (("memory", "light", "#memory", 484), ("structure", "dark", "#s-0400-11", 468)):
        browser.set_scheme(scheme)
        browser.open(page, part)
        path = FOLDER / f"report-{name}.png"
        browser.picture(path, {"x": 0, "y": browser.run(TOP, part) - 8, "width": 960, "height": height})
        # Few colours make a small file.
        Image.open(path).convert("RGB").quantize(48).save(path, optimize=True)
    browser.quit()
