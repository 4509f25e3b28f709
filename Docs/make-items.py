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


def unescape(text):
    return text.encode().decode("unicode_escape")


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


class Source:
    """One decoder's file, and what it takes from shared ones."""

    def __init__(self, path):
        self.text = path.read_text()
        for name in re.findall(r'#include "Sources/(ProbeItems|ProcessorFamilies)\.h"', self.text):
            self.text = (ROOT / "Sources" / f"{name}.h").read_text() + self.text
        # Adjoining literals are one.
        self.text = re.sub(r'"\s*\n\s*"', "", self.text)
        self.tables = {
            name: re.findall(r"\{\s*(0x[0-9A-Fa-f]+|\d+),\s*" + TEXT + r"\s*\}", body)
            for name, body in re.findall(r"CodeText_t (k\w+)\[\] = \{(.*?)\n\};", self.text, re.S)
        }
        self.makers = dict(re.findall(r"constexpr Rendering_t (\w+)\(uint32_t \w+\) \{ return ([^\n]*); \}", self.text))
        self.renderings = {}
        for declaration in re.findall(r"constexpr Rendering_t ([^(;]*?[={].*?);\n", self.text, re.S):
            for part in split_top(declaration.replace("\n", " ")):
                if named := re.match(r"(\w+)(?:\s*=\s*|(?=\{))(.*)$", part):
                    self.renderings[named[1]] = re.sub(r"\s+", " ", named[2])
        self.members = dict(re.findall(r"ClSMBIOSType\d+::(Get\w+)\([^)]*\)(?: const)? \{\n(.*?)\n\}", self.text, re.S))

    def comment_of(self, function):
        found = re.search(r"((?:^//[^\n]*\n)+)ClText " + function + r"\(", self.text, re.M)
        if not found:
            raise SystemExit(f"{function} has no comment that says how its field reads")
        return re.sub(r"\s*\n// ?", " ", found[1].strip()).removeprefix("// ")

    def words_of(self, table):
        return ", ".join(f"{int(code, 0)} {unescape(text)!r}" for code, text in self.tables[table])

    def bits_of(self, table, bit):
        words = {int(code, 0): unescape(text) for code, text in self.tables[table]}
        return f'bit {bit}: set "{words[1]}", clear "{words[0]}"'

    def table_in(self, text):
        named = re.search(r"\b(k\w+)\b", text)
        return named[1] if named and named[1] in self.tables else None

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
            "StringOrNone": 'string; "None" for number 0',
            "Group": "opens a sub-group",
            "ErrorType": "a memory error's type, or \"Error: Invalid Type\"",
            "ErrorGranularity": "a memory error's granularity, or \"Error: Invalid Granularity\"",
            "ErrorOperation": "a memory error's operation, or \"Error: Invalid Operation\"",
        }
        if rendering in plain:
            return plain[rendering]
        if call := re.match(r"(\w+)\((.*)\)$", rendering):
            name, arguments = call[1], split_top(call[2])
            if name in ("YesNo8", "YesNo32", "YesNo16"):
                return f'bit {arguments[0]}: set "Yes", clear "No"'
            if name in ("Hex8Digits", "Hex16Digits"):
                return f"hexadecimal, {arguments[0]} digits or more" if arguments[0] != "0" else "hexadecimal"
            if name == "Dec16WithUnit":
                return f"decimal, then {arguments[0]}"
            if name == "Dec16AndHex":
                return f"decimal, then hexadecimal of {arguments[0]} digits or more in parentheses"
            if name == "NumberedString":
                return "string; one item for each"
            if name == "Enum8":
                return f"one of {len(self.tables[arguments[0]])} words, else {arguments[1]}"
            if name in ("Bit8", "Bit16", "Bit32"):
                return self.bits_of(arguments[0], arguments[1])
            if name in self.makers:
                body = self.makers[name]
                if inner := re.match(r"(Bit\d+)\((\w+), \w+\)", body):
                    return self.bits_of(inner[2], arguments[0])
                shown = self.comment_of(re.match(r"\{(\w+)", body)[1])
                return shown if name != "Masked" else f"{shown} The mask is {arguments[0]}."
        if text := re.match(r"Text\d+<\w+::(\w+)>$", rendering):
            body = self.members.get(text[1])
            if body is None:
                return "an onboard device's type, bit 7 left out, or \"Error: Invalid Type\""
            if table := self.table_in(body):
                other = re.search(TEXT + r"\)?;$", body.strip())
                return f"one of {len(self.tables[table])} words" + (f', else "{other[1]}"' if other else "")
            return self.member_words(text[1])
        if shown := re.match(r"\{(\w+)", rendering):
            text = self.comment_of(shown[1])
            literal = re.search(r", \{\}, " + TEXT, rendering)
            return text if not literal else f"{text} (\"{literal[1]}\")"
        raise SystemExit(f"no words for {rendering}")

    def member_words(self, member):
        header = (ROOT / "Sources" / "Decoders.h").read_text()
        found = re.search(r"((?:^ +//[^\n]*\n)+) +(?:static )?[\w:]+ " + member + r"\(", header, re.M)
        if not found:
            raise SystemExit(f"{member} has no comment in Decoders.h")
        return re.sub(r"\s*\n\s*// ?", " ", found[1].strip()).removeprefix("// ")

    def rows(self):
        """Key, offset and rendering of each row, in the file's order, which is the output's."""
        row = r"\{" + TEXT + r',\s*([^,{}"]+),\s*([^\n]*?)\s*\}[,;]'
        for key, offset, rendering in re.findall(row, self.text):
            if rendering.endswith(("kPlainItem", "kGroupItem")):
                continue
            yield unescape(key), offset.strip(), rendering

    def fields(self):
        """Rows of the structure whose fields are string numbers: key, offset, translation, group mark."""
        return re.findall(r"\{" + TEXT + r",\s*(\d+),\s*(\w+),\s*(k\w+)\}", self.text)


def offset_of(source, offset):
    if constant := re.search(rf"constexpr size_t {offset} = (0x[0-9A-Fa-f]+)", source.text):
        offset = constant[1]
    if re.fullmatch(r"0x[0-9A-Fa-f]+", offset):
        return offset[2:].upper() + "h"
    return ""


def cell(text):
    return text.replace("|", "\\|").replace("\t", "(tab)")


def page_of(path):
    number = int(path.stem[-3:])
    source = Source(path)
    titles = re.findall(r'"([^"]*\{Type \d+\})"', source.text)
    lines = [f"## Type {number}: {titles[0].rsplit(' {', 1)[0]}", ""]
    for view, words in VIEWS.items():
        if f"ClStructure::{view}" in source.text:
            lines += [words, ""]
            break
    head = number not in (14, 148, 221, 222)
    lines += ['Begins with "Type", "Length" and "Handle", in decimal.' if head else "Has no head items.", ""]
    lines += ["| key | offset | reads as |", "|---|---|---|"]
    for key, offset, rendering in source.rows():
        lines.append(f"| {cell(key)} | {offset_of(source, offset)} | {cell(source.reads_as(rendering))} |")
    for key, offset, translation, mark in source.fields():
        words = "string" if translation == "Text" else f"string, put into words ({translation})"
        words += '; "None" without one' + (", then as a group item" if mark == "kGroupItem" else "")
        lines.append(f"| {key} | {int(offset):02X}h | {words} |")
    if number == 148:
        lines.append("| Platform | 04h | string, in the layout whose keys come from the structure |")
        lines.append("| (strings of the structure) | | 25 pairs of key and value, in the same layout |")
    if number in (14, 221):
        lines.append("| (strings of the structure) | | a blank, then the version's four parts, joined by points |")
    lines.append("")
    for table in source.tables:
        if table in ("kYesNo",):
            continue
        lines += [f"{table[1:]}: {cell(source.words_of(table))}.", ""]
    return lines


def page():
    lines = [
        "# Items of each structure type", "",
        "Written by `Docs/make-items.py` from the decoders' own tables; a test holds it against them. Each structure begins",
        "with a group item, its title, with `_2`, `_3` and so on behind it from the second structure of its type on.", "",
        "Types 5, 6, 31, 40, 42, 126 and 127 give no items. Type 148 is shown only when it is asked for.", ""]
    for path in sorted((ROOT / "Sources").glob("SMBIOSType[0-9]*.cpp")):
        lines += page_of(path)
    return "\n".join(lines).rstrip() + "\n"


def keys_of_page():
    """The keys under each type; None stands for keys that the structure itself names."""
    keys, current = {}, None
    for line in page().splitlines():
        if title := re.match(r"## Type (\d+):", line):
            current = keys.setdefault(int(title[1]), {"Type", "Length", "Handle"})
        elif row := re.match(r"\| (.*?) \| (?:[0-9A-F]*h )? ?\| ", line):
            current.add(row[1])
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
            key = key.removesuffix("#GROUPNAME").replace("|", "\\|").replace("\t", "(tab)")
            shown.setdefault(current, set()).add(key)
            if key not in known[current] and "(strings of the structure)" not in known[current]:
                missing.append(f"type {current}: the page lacks {key!r}")
    for number, keys in known.items():
        for key in sorted(keys - shown.get(number, set()) - {"Type", "Length", "Handle", "(strings of the structure)"}):
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
