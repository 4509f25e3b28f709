"""Checks of an open page. Each returns what is wrong."""

import re
import subprocess

import page
from selenium.common.exceptions import TimeoutException
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.select import Select
from selenium.webdriver.support.wait import WebDriverWait


def quiet(browser):
    """The page alone was loaded, and neither it nor its policy had anything to say."""
    own = browser.driver.current_url.split("#")[0]
    others = [url for url in browser.requests() if url.split("#")[0] != own]
    return [f"request of {url}" for url in others] + browser.console()


def inert(browser, shown):
    ran = browser.run("return window.hostile !== undefined || document.querySelector('hostile, img, iframe') !== null;")
    return (["a payload ran or is there"] if ran else []) + list(page.inert(shown))


OPEN = "for (const each of document.querySelectorAll('details')) each.open = arguments[0];"


def widths(browser):
    """The page scrolls in one direction alone."""
    wrong = []
    for width, is_open in ((360, False), (360, True), (1280, True), (2560, True)):
        browser.set_width(width)
        browser.run(OPEN, is_open)
        used = browser.run("return document.documentElement.scrollWidth;")
        if used > width:
            wrong.append(f"{used} pixels wide at {width}, {'unfolded' if is_open else 'folded'}")
    browser.set_width(1280)
    return wrong


# axe doesn't judge texts of pictures, as these are drawn on shapes.
CONTRAST = r"""
const numbers = (colour) => colour.match(/[\d.]+/g).map(Number);
const light = (colour) => numbers(colour).slice(0, 3).map((c) => c / 255)
  .map((c) => c <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4)
  .reduce((sum, c, i) => sum + c * [0.2126, 0.7152, 0.0722][i], 0);
const isSolid = (colour) => colour.startsWith("rgb") && (numbers(colour)[3] ?? 1) === 1;
const ground = (text) => {
  const box = text.parentNode.querySelector(".box");
  if (box && isSolid(getComputedStyle(box).fill)) return getComputedStyle(box).fill;
  let each = text.closest("svg");
  while (each && !isSolid(getComputedStyle(each).backgroundColor)) each = each.parentElement;
  return each ? getComputedStyle(each).backgroundColor : "rgb(255, 255, 255)";
};
return [...document.querySelectorAll("svg text")].map((text) => {
  const [low, high] = [light(getComputedStyle(text).fill), light(ground(text))].sort((a, b) => a - b);
  return [text.textContent, (high + 0.05) / (low + 0.05)];
}).filter(([, contrast]) => contrast < 4.5);
"""
AXE = """
const [options, done] = arguments;
const isPicture = (node) => document.querySelector(node.target.join(" ")).matches("svg text");
axe.run({resultTypes: ["violations", "incomplete"], ...options}).then(({violations, incomplete}) =>
  done([...violations, ...incomplete].flatMap(({id, nodes}) => nodes
    .filter((node) => id !== "color-contrast" || !isPicture(node))
    .map((node) => `${id}: ${node.target.join(" ")}: ${node.failureSummary ?? ""}`))),
  (error) => done([String(error)]));
"""


# The rows of the raw table are all alike; hundreds of them would take minutes.
FEW_ROWS = "for (const each of document.querySelectorAll('#raw tr:nth-child(n+20)')) each.hidden = true;"
# Nothing is scrolled out of a box, which would hide it from axe's judgement of colours.
SPREAD = """
for (const each of document.querySelectorAll(".wide")) each.style.maxHeight = "none";
for (const each of document.querySelectorAll(".cards")) each.style.display = "block";
"""


def accessibility(browser, axe, schemes=("light", "dark")):
    """By the rules of axe, in both colour schemes, folded and unfolded. What axe can't tell counts, too."""
    browser.run(axe)
    browser.run(FEW_ROWS)
    others = {"rules": {"color-contrast": {"enabled": False}}}
    runs = [("light", is_open, others) for is_open in (False, True) if "light" in schemes]
    runs += [(scheme, is_open, {"runOnly": ["color-contrast"]}) for scheme in schemes for is_open in (False, True)]
    for scheme, is_open, options in runs:
        browser.set_scheme(scheme)
        browser.run(OPEN, is_open)
        if "runOnly" in options:
            browser.run(SPREAD)
        found = browser.driver.execute_async_script(AXE, options)
        found += [f"contrast {contrast:.1f} of '{text}'" for text, contrast in browser.run(CONTRAST)]
        if found:
            break
    browser.set_scheme("light")
    return [f"{scheme}, {'unfolded' if is_open else 'folded'}: {each}" for each in found]


SHOWN = """return [...document.querySelectorAll("details.structure")].filter((each) => each.checkVisibility())
  .map((each) => each.id);"""
IS_UNFOLDED = """
const target = document.getElementById(arguments[0]), row = target.querySelector("p");
return target.checkVisibility() && row.checkVisibility({contentVisibilityAuto: true}) &&
  row.getClientRects().length > 0;
"""


def unfolded(browser, name):
    return browser.run(IS_UNFOLDED, name)


def unfolds(browser, name):
    """After a click on a link: pages hear of it a little later."""
    try:
        return WebDriverWait(browser.driver, 3, 0.02).until(lambda _: unfolded(browser, name))
    except TimeoutException:
        return False


def search(browser, shown):
    """Typing finds and clears, the type filters, and links unfold."""
    driver, wrong = browser.driver, []
    texts = {each["id"]: " ".join([each["summary"]] + [cell for row in each["facts"] for cell in row["cells"]]).lower()
             for each in shown["structures"]}
    types = {each["id"]: each["data"]["type"] for each in shown["structures"]}
    field, kind = driver.find_element(By.ID, "search"), Select(driver.find_element(By.ID, "type"))

    def expect(what, wanted):
        told = driver.find_element(By.ID, "found").text
        if browser.run(SHOWN) != wanted or told != f"{len(wanted)} of {len(texts)} structures":
            wrong.append(f"{what}: {told}, not {len(wanted)}")

    expect("opened", list(texts))
    some_type = next(number for number in types.values() if list(types.values()).count(number) > 1)
    for query in ("type 17", "HVB2 vendor", "47", "no such words", "dimm  A", "("):
        field.send_keys(Keys.CONTROL + "a")
        field.send_keys(query)
        words = query.lower().split()
        found = [name for name, text in texts.items() if all(word in text for word in words)]
        expect(query, found)
        kind.select_by_value(some_type)
        expect(f"{query} of one type", [name for name in found if types[name] == some_type])
        kind.select_by_value("")
    field.send_keys(Keys.CONTROL + "a")
    field.send_keys(Keys.BACKSPACE)
    expect("cleared", list(texts))
    kind.select_by_value(some_type)
    some = [name for name, number in types.items() if number == some_type]
    expect("filtered", some)
    if wrong:
        return wrong
    driver.find_element(By.ID, "unfold").click()
    opened = browser.run("return [...document.querySelectorAll('details.structure[open]')].map((each) => each.id);")
    if opened != some or not all(unfolded(browser, name) for name in some):
        wrong.append("unfolds others than the shown ones")
    driver.find_element(By.ID, "fold").click()
    if any(unfolded(browser, name) for name in some):
        wrong.append("folding leaves some open")
    if wrong:
        return wrong
    # A type that no link leads to, so that all targets are hidden.
    kind.select_by_value(types[list(texts)[-1]])
    for section in ("memory", "slots", "processors", "firmware", "findings"):
        links = driver.find_elements(By.CSS_SELECTOR, f"#{section} a[href^='#s-']")
        if not links:
            wrong.append(f"no link in {section}")
            continue
        target = links[0].get_attribute("href").split("#")[1]
        for what in ("first", "second"):
            links[0].click()
            if not unfolds(browser, target):
                return wrong + [f"a {what} click on a link in {section} doesn't unfold {target}"]
            driver.find_element(By.CSS_SELECTOR, f"#{target} > summary").click()
            if unfolded(browser, target):
                return wrong + [f"{target} doesn't fold"]
    kind.select_by_value("")
    expect("all", list(texts))
    return wrong


def without_script(browser, shown, differences):
    wrong = list(differences)
    if browser.run("return document.documentElement.classList.contains('script');"):
        wrong.append("the script ran")
    if any(each.is_displayed() for each in browser.driver.find_elements(By.CSS_SELECTOR, "#search, #type, button")):
        wrong.append("what needs the script is shown")
    name = shown["structures"][0]["id"]
    browser.driver.find_element(By.CSS_SELECTOR, f"#{name} > summary").click()
    if not unfolded(browser, name):
        wrong.append(f"a click doesn't unfold {name}")
    link = next(each for each in browser.driver.find_elements(By.CSS_SELECTOR, "#memory a, #firmware a")
                if each.get_attribute("href").split("#")[1] != name)
    link.click()
    if not unfolds(browser, link.get_attribute("href").split("#")[1]):
        wrong.append("a link doesn't unfold")
    return wrong


def printed(pdf, shown):
    """All structures are open, and all words are large enough."""
    text = subprocess.run(["pdftotext", pdf, "-"], check=True, capture_output=True, text=True).stdout
    wrong = []
    if text.count("Raw bytes at") != len(shown["structures"]):
        wrong.append(f"{text.count('Raw bytes at')} structures are open in print")
    # Chromium makes all smaller if something is too wide for the paper.
    boxes = subprocess.run(["pdftotext", "-bbox", pdf, "-"], check=True, capture_output=True, text=True).stdout
    ends = re.findall(r'yMin="([\d.]+)" xMax=.* yMax="([\d.]+)"', boxes)
    heights = [float(end) - float(begin) for begin, end in ends]
    if min(heights) < 7:
        wrong.append(f"words are {min(heights):.1f} points high")
    return wrong
