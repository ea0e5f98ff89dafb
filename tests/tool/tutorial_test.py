#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Runs every command of docs/TUTORIAL.md, in a folder of its own, and compares what it prints with
what the tutorial shows.

    tutorial_test.py VOXTOOL SOURCES            runs them
    tutorial_test.py VOXTOOL SOURCES --write    puts what they print into the tutorial

The commands of a block "sh" print the block "text" that follows it, and nothing when none does.
They end with 0 unless they show "$?". What stands before the second heading has been done when
this runs: it builds or installs voxtool.
"""
import difflib
import os
import re
import shutil
import subprocess
import sys
import tempfile

BLOCK = re.compile(r"(?<=^```sh\n)(?P<commands>.*?)^```\n(\n```text\n(?P<shown>.*?)^```\n)?", re.M | re.S)
PATIENCE = 60
# A tutorial that lost its blocks would pass.
FEWEST_BLOCKS = 20


def run(commands, place, environment):
    """What they print, and the folder that they end in."""
    script = commands if "$?" in commands else "set -e\n" + commands
    kept = os.path.join(place["home"], "folder")
    done = subprocess.run(["bash", "-c", f"trap 'pwd >\"{kept}\"' EXIT\n{script}"], cwd=place["folder"],
                          env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, encoding="utf-8", timeout=PATIENCE, check=False)
    if done.returncode != 0:
        sys.exit(f"ends with {done.returncode}:\n{commands}{done.stdout}")
    with open(kept, encoding="utf-8") as file:
        place["folder"] = file.read().rstrip("\n")
    return done.stdout.replace(place["home"], "/home/me")


def without_times(text):
    return re.sub(r" in \d+(\.\d+)? m?s\b", " in ... s", text)


def compare(commands, shown, printed):
    if without_times(shown) == without_times(printed):
        return True
    lines = difflib.unified_diff(shown.splitlines(), printed.splitlines(), "shown", "printed", lineterm="")
    print(commands + "\n".join(lines) + "\n")
    return False


def whole_block(found, printed):
    return f"{found['commands']}```\n" + (f"\n```text\n{printed}```\n" if printed else "")


def main():
    voxtool, sources = map(os.path.abspath, sys.argv[1:3])
    name = os.path.join(sources, "docs", "TUTORIAL.md")
    with open(name, encoding="utf-8") as file:
        text = file.read()
    begin = text.index("\n## ", text.index("\n## ") + 1)
    with tempfile.TemporaryDirectory() as home:
        shutil.copytree(os.path.join(sources, "samples"), os.path.join(home, "voxplay", "samples"))
        place = {"home": home, "folder": os.path.join(home, "voxplay")}
        environment = {"PATH": f"{os.path.dirname(voxtool)}:/usr/bin:/bin", "HOME": home, "LC_ALL": "C.UTF-8"}
        blocks = [(found, run(found["commands"], place, environment)) for found in BLOCK.finditer(text, begin)]
    if "--write" in sys.argv:
        printed = iter(blocks)
        text = text[:begin] + BLOCK.sub(lambda found: whole_block(found, next(printed)[1]), text[begin:])
        with open(name, "w", encoding="utf-8") as file:
            file.write(text)
        return
    if len(blocks) < FEWEST_BLOCKS:
        sys.exit(f"the tutorial has {len(blocks)} blocks only")
    equal = [compare(found["commands"], found["shown"] or "", printed) for found, printed in blocks]
    if not all(equal):
        sys.exit(f"{equal.count(False)} of {len(equal)} blocks print something else")
    print(f"{len(blocks)} blocks print what the tutorial shows")


main()
