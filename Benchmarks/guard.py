#!/usr/bin/env python3
"""Guards against slower runs: guard.py BIN RATIOS [--update]

Counts the instructions of ten runs of the program, divided by those of dmidecode on the same image in the same run, and
compares them with the file RATIOS. Fails if a ratio is more than 3 % worse. With --update it writes the file instead.
BIN is a folder with quorlin and write_images.
"""

import concurrent.futures
import os
import pathlib
import sys
import tempfile

from bench import DMIDECODE, checked, instructions

MOST = 3.0  # percent
UPDATE = "make guard-update"

# The image, and the program's arguments after it.
RUNS = {
    "newest/lines": ("newest", "--format lines"),
    "newest/text": ("newest", "--format text"),
    "newest/json": ("newest", "--format json"),
    "newest/csv": ("newest", "--format csv"),
    "newest/memory": ("newest", "--type 17"),
    "newest/facts": ("newest", "facts --format json"),
    "newest/check": ("newest", "check"),
    "old-laptop/text": ("old-laptop", "--format text"),
    "odd-strings/summary": ("odd-strings", "summary"),
    "no-end/types": ("no-end", "types"),
}


def ratios(binaries):
    """The ratio of each run by its name."""
    program = binaries / "quorlin"
    with tempfile.TemporaryDirectory() as work, concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        checked([binaries / "write_images", work])
        image_of = {name: f"{work}/{image}.bin" for name, (image, _) in RUNS.items()}
        ours = [pool.submit(instructions, [program, *arguments.split(), "--image", image_of[name]])
                for name, (_, arguments) in RUNS.items()]
        peers = {image: pool.submit(instructions, [DMIDECODE, "--from-dump", image]) for image in image_of.values()}
        return {name: run.result() / peers[image_of[name]].result() for name, run in zip(RUNS, ours)}


def main(arguments):
    if len(arguments) not in (2, 3) or arguments[2:] not in ([], ["--update"]):
        sys.exit(__doc__)
    path = pathlib.Path(arguments[1])
    found = ratios(pathlib.Path(arguments[0]))
    if len(arguments) == 3:
        path.write_text("".join(f"{name} {ratio:.4f}\n" for name, ratio in found.items()))
        return 0
    kept = {name: float(ratio) for name, ratio in (line.split() for line in path.read_text().splitlines())}
    if kept.keys() != found.keys():
        sys.exit(f"{path} lists other runs; try {UPDATE}")
    is_worse = False
    for name, new in found.items():
        change = 100 * (new / kept[name] - 1)
        verdict = ""
        if change > MOST:
            verdict = f"  worse by more than {MOST:g} %: make it faster, or {UPDATE} and give the reason in the commit"
            is_worse = True
        elif change < -MOST:
            verdict = f"  better: keep it by {UPDATE}"
        print(f"{name:24} {kept[name]:8.4f} {new:8.4f} {change:+6.1f} %{verdict}")
    return 1 if is_worse else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
