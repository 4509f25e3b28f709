"""What a page shows, read from its DOM, and what it should show by `facts`."""

import re

# All of a page in one call: a call for each of its thousands of elements would take minutes.
READ = r"""
const text = (element) => element?.textContent ?? "";
const structures = [...document.querySelectorAll("details.structure")].map((each) => ({
  id: each.id, data: {...each.dataset}, summary: text(each.querySelector("summary")),
  facts: [...each.querySelectorAll("tbody tr")].map((row) => ({
    data: {...row.dataset},
    cells: Array.from({length: Math.max(7, row.cells.length)}, (_, i) => text(row.cells[i])),
    value: row.cells[1]?.dataset.value ?? text(row.cells[1]),
  })),
}));
const rows = [...document.querySelectorAll("#raw tbody tr")];
const elements = [...document.querySelectorAll("*")];
const ids = elements.map((each) => each.id).filter(Boolean);
return {
  structures,
  raw: rows.map((row) => [row.dataset.offset, text(row.cells[0]), text(row.cells[1])]),
  title: document.title, heading: text(document.querySelector("h1")), header: text(document.querySelector("header")),
  text: text(document.body), findings: text(document.querySelector("#findings")),
  slots: text(document.querySelector("#slots")), differences: text(document.querySelector("#differences")),
  tags: [...new Set(elements.map((each) => each.tagName.toLowerCase()))],
  once: elements.filter((each) => each.matches("script, style, h1, main, title:not(svg title)")).length,
  attributes: [...new Set(elements.flatMap((each) => each.getAttributeNames()))],
  links: [...new Set(elements.filter((each) => each.hasAttribute("href") || each.hasAttribute("src"))
    .map((each) => each.getAttribute("href") ?? each.getAttribute("src")))],
  ids: ids.length - new Set(ids).size,
  lost: [...document.querySelectorAll("a[href^='#']")].map((each) => each.getAttribute("href").slice(1))
    .filter((id) => !document.getElementById(id)),
};
"""

# Characters that steer a terminal or the direction of text.
STEERING = re.compile("[\x00-\x1F\x7F-\x9F\u2028-\u202E\u2066-\u2069]")


def clean(text):
    return STEERING.sub(" ", text).rstrip(" ")


def expected_facts(members, record=None, name=None):
    """The rows of a structure, of its members in the JSON of `facts --full`."""
    for key, fact in members.items():
        value = fact.get("value")
        records = value if isinstance(value, list) and value and isinstance(value[0], dict) else []
        if records:
            text = str(len(records))
        elif value == []:
            # An empty list of records is a number, and an empty list of words is nothing.
            text = "" if "raw" in fact or "from" in fact else "0"
        elif isinstance(value, list):
            text = clean(", ".join(value))
        else:
            text = None if value is None else clean(str(value))
        yield {
            "key": key, "state": fact["state"], "value": text, "unit": fact.get("unit", ""), "raw": fact.get("raw", ""),
            "offset": f"{fact['offset']:02X}h" if "offset" in fact else "", "size": str(fact.get("size", "")),
            "record": record, "list": name,
        }
        for number, each in enumerate(records):
            yield from expected_facts(each, str(number), key)


def shown_fact(row):
    data, cells = row["data"], row["cells"]
    state = data.get("state", "value")
    has_value = state not in ("none", "absent", "broken")
    fact = {
        "key": data["key"], "state": state, "value": row["value"] if has_value else None, "unit": cells[2],
        "raw": cells[6], "offset": cells[4], "size": cells[5], "record": data.get("record"), "list": data.get("list"),
    }
    # People see the state too, or a value that says it, and a name.
    is_told = cells[3] == state or (cells[3] == "" and state in ("value", cells[1]))
    if not is_told or not cells[0] or len(cells) != 7 or (not has_value and not cells[1]):
        fact["problem"] = cells
    return fact


def differences(page, facts, table):
    """What of a page isn't as in the JSON of `facts`, or in the table's bytes."""
    structures = facts["structures"]
    if len(structures) != len(page["structures"]):
        yield f"{len(page['structures'])} structures of {len(structures)}"
    for number, (shown, told) in enumerate(zip(page["structures"], structures)):
        head = {"id": f"s-{told['handle']:04X}-{number}",
                "data": {"type": str(told["type"]), "handle": str(told["handle"]), "instance": str(told["instance"])}}
        if {"id": shown["id"], "data": shown["data"]} != head:
            yield f"{shown['id']} {shown['data']} instead of {head}"
        if not shown["summary"].startswith(f"{told['name']} type {told['type']}, handle {told['handle']:04X}h"):
            yield f"{shown['id']} is headed {shown['summary']}"
        rows = [shown_fact(row) for row in shown["facts"]]
        wanted = list(expected_facts(told["facts"]))
        if len(rows) != len(wanted):
            yield f"{shown['id']} has {len(rows)} facts of {len(wanted)}"
        for row, want in zip(rows, wanted):
            if row != want:
                yield f"{shown['id']}: {row} instead of {want}"
    for number, (offset, text, digits) in enumerate(page["raw"]):
        row = table[number * 16 : number * 16 + 16]
        if (offset, text, digits) != (str(number * 16), f"{number * 16:04X}", row.hex(" ").upper()):
            yield f"raw row {number} is {offset} {text} {digits}"
    if len(page["raw"]) != (len(table) + 15) // 16:
        yield f"{len(page['raw'])} raw rows for {len(table)} bytes"
    yield from inert(page)


TAGS = set("""html head meta title style body a header h1 h2 h3 h4 p nav ul li main section div dl dt dd span strong b
    small table thead tbody tr th td details summary form label input select option button output svg desc path g text
    u footer script""".split())
ATTRIBUTES = set("""lang http-equiv content charset name class href aria-label aria-labelledby id tabindex role width
    height viewBox d x y transform type autocomplete spellcheck value for open""".split())


def inert(page):
    """What of a page isn't the program's own markup."""
    yield from (f"element {tag}" for tag in page["tags"] if tag not in TAGS)
    yield from (f"attribute {each}" for each in page["attributes"]
                if each not in ATTRIBUTES and not each.startswith("data-"))
    yield from (f"link to {link}" for link in page["links"] if not link.startswith("#"))
    yield from (f"no {link} for a link" for link in page["lost"])
    if page["once"] != 5 or page["ids"]:
        yield "not one script, style, title, main and h1, or one of an id"
    if STEERING.search(page["text"].replace("\n", " ")) or STEERING.search(page["title"]):
        yield "characters that steer"
