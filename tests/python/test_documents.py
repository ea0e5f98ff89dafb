# SPDX-License-Identifier: Apache-2.0
"""What documents show is what happens."""

import doctest
import importlib
import os
import pathlib
import re
import subprocess
import sys

import pytest

import voxplay
from conftest import SAMPLE, TREE

MODULES = ["voxplay", "voxplay._formats", "voxplay._info", "voxplay._notes", "voxplay._sound",
           "voxplay._whole", "voxplay.kestrel"]


@pytest.mark.parametrize("name", MODULES)
def test_examples_in_docstrings_print_what_they_say(name):
    results = doctest.testmod(importlib.import_module(name))
    assert results.failed == 0 and results.attempted > 0


def test_the_document_prints_what_it_says():
    text = (TREE / "docs" / "PYTHON.md").read_text(encoding="utf-8")
    blocks = re.findall(r"```pycon\n(.*?)```", text, re.DOTALL)
    assert len(blocks) >= 5
    test = doctest.DocTestParser().get_doctest("\n".join(blocks), {}, "PYTHON.md", None, 0)
    runner = doctest.DocTestRunner(optionflags=doctest.ELLIPSIS)
    runner.run(test)
    assert runner.failures == 0 and runner.tries > 10


def test_everything_public_is_documented():
    for name in voxplay.__all__:
        thing = getattr(voxplay, name)
        if callable(thing):
            assert thing.__doc__ and not thing.__doc__.startswith(f"{name}("), name


def test_the_tutorial_runs_on_its_own_archive_and_on_a_folder(folder):
    def run(*arguments):
        return subprocess.run([sys.executable, TREE / "examples" / "python" / "tutorial.py", *arguments],
                              env={**os.environ, "MPLBACKEND": "Agg", "MPLCONFIGDIR": str(folder)},
                              check=True, capture_output=True, text=True).stdout

    text = run()
    assert "not opened: {'notes.txt': 'unknown'}" in text and "27.2 s in 6 files, 1 of them cut" in text
    for name in ("python-events.png", "python-rates.png"):
        assert (folder / name).read_bytes().startswith(b"\x89PNG")
    (folder / "archive" / "deep").mkdir(parents=True)
    (folder / "archive" / "deep" / "one.kst").write_bytes(SAMPLE.read_bytes())
    (folder / "pictures").mkdir()
    assert "5.0 s in 1 files, 0 of them cut" in run("archive", "pictures")
    assert len(list((folder / "pictures").iterdir())) == 2


def test_types_are_those_of_the_core():
    stub = pathlib.Path(voxplay.__file__).with_name("_core.pyi").read_text()
    core = importlib.import_module("voxplay._core")
    assert sorted(set(re.findall(r"^(?:class|def) (\w+)", stub, re.M)) |
                  set(re.findall(r"^([A-Z_0-9]+):", stub, re.M))) == \
        sorted(name for name in vars(core) if not name.startswith("__"))
    for name in ("Reader", "Writer", "KestrelEncoder", "KestrelDecoder"):
        body = stub.split(f"class {name}")[1].split("\nclass ")[0].split("\ndef ")[0]
        told = set(re.findall(r"def (\w+)", body)) - {"__init__"}
        assert told == {each for each in vars(getattr(core, name)) if not each.startswith("__")}
