#!/usr/bin/env python3
"""Checks that the installed Python package gives the facts that the program gave as JSON: same-facts.py IMAGE FACTS."""
import json
import sys

import quorlin


def flat(fact):
    if fact.kind == "list" and fact.value is not None:
        return [{key: flat(part) for key, part in record.items()} for record in fact.value]
    return fact.value.hex().upper() if fact.kind == "bytes" and fact.value is not None else fact.value


image, facts = sys.argv[1:]
with open(facts, encoding="utf-8") as file:
    expected = [structure["facts"] for structure in json.load(file)["structures"]]
shown = [{key: flat(fact) for key, fact in structure.facts.items()} for structure in quorlin.open(image)]
for place, (ours, theirs) in enumerate(zip(shown, expected)):
    if ours != theirs:
        print(f"structure {place}: {ours}\nexpected: {theirs}")
sys.exit(not shown or shown != expected)
