#!/usr/bin/env python3
"""Writes Docs/Items.md from the decoders' own tables: every key of every structure type, and how it reads.

    Docs/make-items.py            writes the page
    Docs/make-items.py --check    fails when the page isn't what would be written
    Docs/make-items.py --compare PROGRAM
                                  fails when the program's sample shows a key that the page lacks under its type
"""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGE = ROOT / "Docs" / "Items.md"
TEXT = r'"((?:[^"\\]|\\.)*)"'

HEX = {"Hex8": 2, "Hex16": 4, "Hex32": 8, "Hex64": 16}
VIEWS = {
    "FormattedArea": "A field that the structure's Length doesn't hold reads 0.",
    "WholeRecord": "A field that the structure's Length doesn't hold reads the bytes that follow in the record.",
    "FixedBytes": "A field that the structure's Length doesn't hold reads the bytes that follow in the table.",
}
COLUMNS = 118


def unescape(text):
    return text.encode().decode("unicode_escape")


def code(text):
    """A text as Markdown's code, which keeps blanks but for one at each end of a text that has one at both."""
    text = text.replace("\t", "\\t")
    return f"` {text} `" if text.strip() and text[0] == text[-1] == " " else f"`{text}`"


def split_top(text):
    """The parts between commas that stand in no bracket and no string."""
    parts, depth, part, quoted = [], 0, "", False
    for index, letter in enumerate(text):
        if letter == '"' and text[index - 1] != "\\":
            quoted = not quoted
        if not quoted:
            depth += letter in "({[<"
            depth -= letter in ")}]>"
            if letter == "," and depth == 0:
                parts.append(part.strip())
                part = ""
                continue
        part += letter
    return parts + [part.strip()]


def comment_text(lines):
    return re.sub(r"\s*\n\s*// ?", " ", lines.strip()).removeprefix("// ")


class Source:
    """One decoder's file, and what it takes from shared ones."""

    def __init__(self, path, shared=None):
        self.shared = shared
        self.text = path.read_text()
        if shared is None:
            self.text += (ROOT / "Sources" / "Rows.cpp").read_text()
        for name in re.findall(r'#include "Sources/(ProbeItems|ProcessorFamilies)\.h"', self.text):
            self.text = (ROOT / "Sources" / f"{name}.h").read_text() + self.text
        # Adjoining literals are one.
        self.text = re.sub(r'"\s*\n\s*"', "", self.text)
        self.lists = {}
        for name, body in re.findall(r"_t (k\w+)\[\] = \{\n(.*?)\n\};", self.text, re.S):
            if rows := re.findall(r"^ +\{\s*(0x[0-9A-Fa-f]+|\d+|\"\S+\"),\s*" + TEXT + r"\s*\}", body, re.M):
                self.lists[name] = {value.strip('"'): unescape(text) for value, text in rows}
                if len(self.lists[name]) != len(re.findall(r"^ +\{", body, re.M)):
                    raise SystemExit(f"{path.name}: {name} has a row that can't be read, or a value twice")
        self.numbers = dict(re.findall(r"\b(k\w+) = (0x[0-9A-Fa-f]+|\d+)\b", self.text))
        self.makers = dict(re.findall(r"constexpr Rendering_t (\w+)\((?:uint32_t|std::string_view) \w+\) \{ return ([^\n]*); \}", self.text))
        self.renderings = {}
        for declaration in re.findall(r"constexpr Rendering_t ([^(;]*?[={].*?);\n", self.text, re.S):
            for part in split_top(declaration.replace("\n", " ")):
                if named := re.match(r"(\w+)(?:\s*=\s*|(?=\{))(.*)$", part):
                    self.renderings[named[1]] = re.sub(r"\s+", " ", named[2])
        self.functions, self.comments = {}, {}
        function = (r"((?:^//[^\n]*\n)*)^[\w:<>&*][\w:<>&* ]* \*?(?:ClSMBIOSType\d*::)?(\w+)\([^;{}]*\)(?: const)? "
                    r"\{(?: ([^\n]*) \}$|\n(.*?)^\})")
        for comment, name, line, body in re.findall(function, self.text, re.M | re.S):
            self.functions[name] = re.sub(r"\w*TRACE\(.*?\);|//[^\n]*", "", line or body, flags=re.S)
            self.comments[name] = comment_text(comment)
        self.shown_in_rows = set()  # lists of two words, which need no index below the table

    def value_of(self, name, value):
        """A list's value as the page shows it: the standard's enumerations in hexadecimal, bits by their number."""
        if not value[0].isdigit():
            return code(value)
        if re.search(r"(BitsText|CharacteristicsText)\(" + name + r"\b|CodeText_t& \w+ : " + name + r"\b", self.text):
            return f"bit {int(value, 0)}"
        if "SettingText" in self.text and not value.startswith("0x"):
            return value  # read from decimal text
        return f"{int(value, 0):02X}h"

    def list_lines(self, name):
        """A list of values and words, a run of values with one word as one."""
        runs = []
        for value, text in self.lists[name].items():
            shown = self.value_of(name, value)
            if runs and runs[-1][2] == text and value[0].isdigit() and int(value, 0) == runs[-1][3] + 1:
                runs[-1][1:] = shown, text, int(value, 0)
            else:
                runs.append([shown, shown, text, int(value, 0) if value[0].isdigit() else None])
        lines, line = [], f"**{name[1:]}**:"
        for place, (first, last, text, _) in enumerate(runs):
            values = first if first == last else f"{first} to {last}"
            entry = f"{values} {code(text)}" + ("." if place == len(runs) - 1 else ",")
            if len(line) + 1 + len(entry) > COLUMNS:
                lines.append(line)
                line = entry
            else:
                line += " " + entry
        return lines + [line, ""]

    def bits_of(self, name, bit):
        self.shown_in_rows.add(name)
        return f"bit {bit}: set {code(self.lists[name]['1'])}, clear {code(self.lists[name]['0'])}"

    def used_by(self, function):
        """The lists and the texts that a function's value comes from, those of the functions that it calls included."""
        body, lists, texts = self.functions[function], [], []
        for quoted, word in re.findall(TEXT + r"|\b(\w+)\b", body):
            if quoted:
                texts.append(unescape(quoted))
            elif word in self.lists:
                lists.append(word[1:])
            elif word in self.functions and word != function:
                inner = self.used_by(word)
                lists, texts = lists + inner[0], texts + inner[1]
            elif self.shared and re.fullmatch(r"Get(?!Hex|Decimal)\w+String", word) and word in self.shared.functions:
                inner = self.shared.used_by(word)
                lists, texts = lists + inner[0], texts + inner[1]
        return list(dict.fromkeys(lists)), list(dict.fromkeys(texts))

    def words_of(self, function):
        """How a field reads that a function shows: what the function's comment says, its texts and its lists."""
        if function not in self.functions:
            return self.shared.words_of(function)
        lists, texts = self.used_by(function)
        comment = self.comments[function] or self.header_comment(function)
        if not comment:
            if len(lists) != 1 or len(texts) > 1:
                raise SystemExit(f"{function} has no comment that says how its field reads")
            field = "bits 0 to 6: " if "& 0x7F" in self.functions[function] else ""
            return f"{field}a word of {lists[0]}" + "".join(f", else {code(text)}" for text in texts)
        told = re.findall(r'"([^"]*)"', comment)
        used = [code(text) for text in texts if text not in told] + [f"the words of {name}" for name in lists]
        comment = re.sub(r'"([^"]*)"', lambda quoted: code(quoted[1]), comment)
        return comment + (f" Shows {', '.join(used)}." if used else "")

    def header_comment(self, member):
        header = (ROOT / "Sources" / "Decoders.h").read_text()
        found = re.search(r"((?:^ +//[^\n]*\n)+) +(?:static )?[\w:]+ " + member + r"\(", header, re.M)
        return comment_text(found[1]) if found else ""

    def reads_as(self, rendering):
        """The words for a row's last cell."""
        rendering = rendering.strip()
        if rendering in self.renderings:
            return self.reads_as(self.renderings[rendering])
        if rendering in HEX:
            return f"hexadecimal, {HEX[rendering]} digits"
        if rendering in ("Dec8", "Dec16", "Dec32"):
            return "decimal"
        plain = {
            "String": "string; number 0 gives the first one",
            "StringOrNone": "string; `None` for number 0",
            "Group": "opens a sub-group",
            "ParsedText": "string; `None` for number 0 and for a number that names no string",
        }
        if rendering in plain:
            return plain[rendering]
        if rendering in ("ErrorType", "ErrorGranularity", "ErrorOperation"):
            return self.shared.words_of(f"Get{rendering}String")
        if call := re.match(r"(\w+)\((.*)\)$", rendering):
            name, arguments = call[1], split_top(call[2])
            if name in ("YesNo8", "YesNo16", "YesNo32"):
                return f"bit {arguments[0]}: set `Yes`, clear `No`"
            if name in ("Hex8Digits", "Hex16Digits"):
                return f"hexadecimal, {arguments[0]} digits or more" if arguments[0] != "0" else "hexadecimal"
            if name == "Dec16WithUnit":
                return f"decimal, then {code(unescape(arguments[0][1:-1]))}"
            if name == "Dec16AndHex":
                return f"decimal, then hexadecimal of {arguments[0]} digits or more in parentheses"
            if name == "Enum8":
                return f"a word of {arguments[0][1:]}, else {code(unescape(arguments[1][1:-1]))}"
            if name in ("Bit8", "Bit32"):
                return self.bits_of(arguments[0], arguments[1])
            if name in self.makers:
                body = self.makers[name]
                if inner := re.match(r"(Bit\d+)\((\w+), \w+\)", body):
                    return self.bits_of(inner[2], arguments[0])
                shown = self.words_of(re.match(r"\{(\w+)", body)[1])
                return shown if name != "Masked" else f"{shown} The mask is {arguments[0]}."
        if text := re.match(r"Text\d+<\w+::(\w+)>$", rendering):
            return self.words_of(text[1])
        if shown := re.match(r"\{(\w+)", rendering):
            literal = re.search(r", \{\}, " + TEXT, rendering)
            return self.words_of(shown[1]) + (f" The row's text is {code(unescape(literal[1]))}." if literal else "")
        if self.shared and f"Show{rendering}" in self.shared.functions:
            return self.shared.words_of(f"Show{rendering}")
        raise SystemExit(f"no words for {rendering}")

    def tables(self):
        """The arrays of rows in the file's order, which is the output's: what stands above one, and its rows."""
        array = r"((?:^//[^\n]*\n)*)^ *(?:inline |static )*(?:constexpr|const) (\w+Row_t) \w+\[\] = \{\n(.*?)^ *\};"
        for comment, kind, body in re.findall(array, self.text, re.M | re.S):
            rows = {"ItemRow_t": self.item_rows, "FieldRow_t": self.field_rows, "PairRow_t": self.pair_rows}[kind]
            yield re.sub(r'"([^"]*)"', lambda quoted: code(quoted[1]), comment_text(comment)), list(rows(body))
        for key, count in re.findall(r"PrintStrings\(" + TEXT + r", ([^,]*),", self.text):
            yield "", [(code(unescape(key)), "", "the first string" if count == "1" else "string; one item for each")]

    def item_rows(self, body):
        for key, offset, rendering in re.findall(r"\{" + TEXT + r',\s*([^,{}"]+),\s*([^\n]*?)\s*\}[,;]', body):
            yield code(unescape(key)), self.offset_of(offset.strip()), self.reads_as(rendering)

    def field_rows(self, body):
        for key, offset, translation, mark in re.findall(r"\{" + TEXT + r",\s*(\d+),\s*(\w+),\s*(k\w+)\}", body):
            none = "`None` without one" + (", then as a group item" if mark == "kGroupItem" else "")
            yield code(key), f"{int(offset):02X}h", f"{self.translated(translation)}; {none}"

    def pair_rows(self, body):
        yield "`Platform`", "04h", "string; `Not Available` without one"
        for offset, translation in re.findall(r"^    \{(\d+),\s*(\w+)\s*\},$", body, re.M):
            key = f"(the string numbered at {int(offset) - 1:02X}h)"
            yield key, f"{int(offset):02X}h", f"{self.translated(translation)}; `None` without one"

    def translated(self, translation):
        call, function = re.search(r"Translation_t " + translation + r"\{(\w+)<&?\w+::(\w+)>", self.text).groups()
        if translation == "Text":
            return "string"
        where = ", where it begins with a number other than 0," if call == "CallIfNumber" else ""
        if self.comments[function]:
            told = re.sub(r'"([^"]*)"', lambda quoted: code(quoted[1]), self.comments[function])
            return f"string{where} put into words by {function}: {told}".removesuffix(".")
        lists = [f"the words of {name}" for name in self.used_by(function)[0]]
        return f"string{where} put into words by {function}" + (f": {', '.join(lists)}" if lists else "")

    def offset_of(self, offset):
        variable, _, more = offset.partition(" + ")
        if steps := re.search(rf"size_t {variable} = (k\w+);.*?\b{variable} \+= (k\w+)\)", self.text, re.S):
            first = int(self.numbers[steps[1]], 0) + int(more or 0)
            return f"{first:02X}h, and on in steps of {self.numbers[steps[2]]}"
        offset = self.numbers.get(offset, offset)
        return offset[2:].upper() + "h" if re.fullmatch(r"0x[0-9A-Fa-f]+", offset) else ""


def row_line(key, offset, words):
    return "| " + " | ".join(cell.replace("|", "\\|") for cell in (key, offset, words)) + " |"


def page_of(path, shared):
    number = int(path.stem[-3:])
    source = Source(path, shared)
    titles = re.findall(r'"([^"]*\{Type \d+\})"', source.text)
    lines = [f"## Type {number}: {titles[0].rsplit(' {', 1)[0]}", ""]
    for view, words in VIEWS.items():
        if f"ClStructure::{view}" in source.text:
            lines += [words, ""]
            break
    head = number not in (14, 148, 221, 222)
    lines += ["Begins with `Type`, `Length` and `Handle`, in decimal." if head else "Has no head items.", ""]
    tables = list(source.tables())
    if number in (14, 221):
        keys = "(strings of a member)" if number == 14 else "(strings of the structure)"
        words = source.words_of("VersionText") + " A string `Disabled`" + (
            " is passed over." if number == 14 else " gives no item, nor does an empty one.")
        tables = [("", [(keys, "07h, and on in steps of 7", words)])]
    for place, (note, rows) in enumerate(tables):
        if note:
            lines += ([""] if place else []) + [note, ""]
        if note or place == 0:
            lines += ["| key | offset | reads as |", "|---|---|---|"]
        lines += [row_line(*row) for row in rows]
    lines.append("")
    for name in source.lists:
        if name not in source.shown_in_rows:
            lines += source.list_lines(name)
    return lines


def page():
    lines = [
        "# Items of each structure type", "",
        "Written by `Docs/make-items.py` from the decoders' own tables; a test holds it against them. Each structure begins",
        "with a group item, its title, with `_2`, `_3` and so on behind it from the second structure of its type on. Type 14 has",
        "one title alone: the members of all groups stand under it.", "",
        "Types 5, 6, 31, 40, 42, 126 and 127 give no items. Type 148 is shown only when it is asked for.", "",
        "Keys and texts stand as the items hold them, blanks included; `\\t` is a tab. The lists of words stand below the",
        "table of their type, and those that types share at the page's end. Hexadecimal is in capitals, filled up with zeros,",
        "with an `h` behind it, unless it is said otherwise. A string number that the structure doesn't hold reads",
        "`(no such string)`, and each one of a structure without strings `(null string)`.", ""]
    shared = Source(ROOT / "Sources" / "SMBIOSType.cpp")
    for path in sorted((ROOT / "Sources").glob("SMBIOSType[0-9]*.cpp")):
        lines += page_of(path, shared)
    lines += ["## Shared lists", ""]
    for name in shared.lists:
        lines += shared.list_lines(name)
    return "\n".join(lines).rstrip() + "\n"


def keys_of_page():
    """The keys under each type; None stands for keys that the structure itself names."""
    keys, current = {}, None
    for line in page().splitlines():
        if title := re.match(r"## Type (\d+):", line):
            current = keys.setdefault(int(title[1]), {"Type", "Length", "Handle"})
        elif row := re.match(r"\| ` ?(.*?)` \| ", line):
            current.add(row[1])
        elif line.startswith("| (") and current is not None:
            current.add(None)
    return keys


def compare(program):
    known, shown, missing = keys_of_page(), {}, []
    runs = [[], *(["--type", "148", "--signature", signature] for signature in ("0", "30670", "506C0"))]
    for run in runs:
        output = subprocess.run([program, "--sample", "--format", "lines", *run], capture_output=True, check=True).stdout
        for line in output.decode("utf-8", "replace").splitlines():
            key = line[1:line.rindex('", "')]
            if title := re.search(r"\{Type (\d+)\}(_\d+)?#GROUPNAME$", key):
                current = int(title[1])
                continue
            key = key.removesuffix("#GROUPNAME")
            shown.setdefault(current, set()).add(key)
            if key not in known[current] and None not in known[current]:
                missing.append(f"type {current}: the page lacks {key!r}")
    for number, keys in known.items():
        for key in sorted(keys - shown.get(number, set()) - {"Type", "Length", "Handle", None}):
            missing.append(f"type {number}: the sample doesn't show {key!r}")
    return missing


def main(arguments):
    if arguments[:1] == ["--check"]:
        if PAGE.read_text() != page():
            raise SystemExit("Docs/Items.md isn't what the decoders say; run Docs/make-items.py")
    elif arguments[:1] == ["--compare"]:
        if missing := compare(arguments[1]):
            raise SystemExit("\n".join(missing))
    else:
        PAGE.write_text(page())


main(sys.argv[1:])
