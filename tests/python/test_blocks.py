# SPDX-License-Identifier: Apache-2.0
import subprocess
import sys

import numpy as np
import pytest
import soundfile

import voxplay


@pytest.fixture
def counted(folder):
    voxplay.write("x.wav", np.arange(10, dtype=np.int16), 8000)
    return "x.wav"


def lists(blocks):
    return [block.tolist() for block in blocks]


@pytest.mark.parametrize("how", [
    {"blocksize": 4}, {"blocksize": 5}, {"blocksize": 20}, {"blocksize": 1},
    {"blocksize": 4, "overlap": 2}, {"blocksize": 4, "overlap": 3}, {"blocksize": 3, "overlap": 1},
    {"blocksize": 4, "fill_value": 9}, {"blocksize": 4, "overlap": 1, "fill_value": 9},
    {"blocksize": 4, "frames": 6}, {"blocksize": 4, "start": 3}, {"blocksize": 4, "stop": 7},
    {"blocksize": 4, "start": 2, "stop": 9, "overlap": 1}, {"blocksize": 4, "start": -3},
    {"blocksize": 4, "start": 10},
])
def test_blocks_are_those_of_soundfile(counted, how):
    ours = lists(voxplay.blocks(counted, dtype="int16", **how))
    assert ours == lists(soundfile.blocks(counted, dtype="int16", **how))


def test_an_array_of_the_callers_holds_each_block(counted):
    out = np.zeros(4, np.int16)
    got = []
    for block in voxplay.blocks(counted, out=out, overlap=1):
        assert np.shares_memory(block, out)
        got.append(block.tolist())
    assert got == [[0, 1, 2, 3], [3, 4, 5, 6], [6, 7, 8, 9]]


def test_blocks_of_one_channel_may_have_two_dimensions(counted):
    out = np.zeros((4, 1), np.int16)
    got = [block.copy() for block in voxplay.blocks(counted, out=out, overlap=1)]
    assert [block.shape for block in got] == [(4, 1)] * 3 and got[2].ravel().tolist() == [6, 7, 8, 9]


def test_blocks_begin_where_the_sound_stands(counted):
    with voxplay.Sound(counted) as sound:
        sound.seek(7)
        assert lists(sound.blocks(2, dtype="int16")) == [[7, 8], [9]]


def test_blocks_of_channels_have_two_dimensions(noise):
    samples = noise(10, 2)
    voxplay.write("x.wav", samples, 8000)
    blocks = list(voxplay.blocks("x.wav", 4, 1, dtype="int16"))
    assert [block.shape for block in blocks] == [(4, 2), (4, 2), (4, 2)]
    assert np.array_equal(np.concatenate([blocks[0]] + [block[1:] for block in blocks[1:]]), samples)


def test_blocks_of_no_or_too_much_overlap_are_refused(counted):
    for how in ({}, {"blocksize": 0}, {"blocksize": 4, "overlap": 4},
                {"blocksize": 4, "overlap": -1}, {"blocksize": 4, "out": np.zeros(4)}):
        with pytest.raises((TypeError, ValueError)):
            list(voxplay.blocks(counted, **how))


PEAK = """
import resource, sys, voxplay
frames = 0
for block in voxplay.blocks(sys.argv[1], 16000, 160):
    frames += len(block) - 160
print(frames, resource.getrusage(resource.RUSAGE_SELF).ru_maxrss)
"""


def test_memory_does_not_grow_with_the_sound(folder):
    peaks = []
    for minutes in (1, 30):
        with voxplay.Sound(f"{minutes}.kst", "w", 16000, 1) as sound:
            for n in range(minutes * 6):
                sound.write(np.random.default_rng(n).integers(-9000, 9000, 160000, np.int16))
        done = subprocess.run([sys.executable, "-c", PEAK, f"{minutes}.kst"], check=True,
                              capture_output=True, text=True)
        frames, peak = map(int, done.stdout.split())
        assert frames > minutes * 960000 - 16000
        peaks.append(peak)
    # In KiB; the sound itself would be 110 MiB as float32.
    assert peaks[1] - peaks[0] < 1024
