# SPDX-License-Identifier: Apache-2.0
"""What the tests of the module share. Each test works in a folder of its own, with the sample."""

import pathlib
import shutil

import numpy as np
import pytest

import voxplay

TREE = pathlib.Path(__file__).resolve().parents[2]
SAMPLE = TREE / "samples" / "Test.kst"


@pytest.fixture(autouse=True)
def folder(tmp_path, monkeypatch):
    monkeypatch.chdir(tmp_path)
    shutil.copy(SAMPLE, tmp_path / "speech.kst")
    return tmp_path


@pytest.fixture
def noise():
    """Makes int16 frames of any number of channels that no two places have in common."""
    def make(frames, channels=1, seed=1):
        shape = (frames,) if channels == 1 else (frames, channels)
        return np.random.default_rng(seed).integers(-32768, 32768, shape, dtype=np.int16)
    return make


@pytest.fixture
def all_notes():
    """Something of every kind, with more than one of what comes in lists."""
    return voxplay.Notes(
        events=[voxplay.Event(100, 3, 4), voxplay.Event(900, 65535, 65535)],
        silence=[voxplay.Range(0, 50), voxplay.Range(500, 20)],
        regions=[voxplay.Range(200, 30)],
        cues=[voxplay.Cue(7, 333), voxplay.Cue(9, 1, 444, chunk_start=2, block_start=3)],
        labels=[voxplay.Label(7, "second word"), voxplay.Label(7, "unclear", "note"),
                voxplay.Label(9, "größer")],
        region_texts=[voxplay.RegionText(9, 55, "noise", country=49, language=9, dialect=1,
                                         code_page=850)],
        loops=[voxplay.Loop(10, 20, id=1), voxplay.Loop(30, 40, id=2, type=1, fraction=5,
                                                        play_count=6)],
        sampler=voxplay.Sampler(1, 2, 62500, 60, 3, 25, 4, b"more"),
        chunks=[voxplay.Chunk("priv", b"\0\1\2"), voxplay.Chunk("bext", b"")])
