# SPDX-License-Identifier: Apache-2.0
"""Damaged files, file objects that fail, threads, and the user's Ctrl-C."""

import gc
import io
import os
import pathlib
import signal
import subprocess
import sys
import threading
import time

import numpy as np
import pytest

import voxplay
from voxplay import _core as core


@pytest.mark.parametrize("content, status", [
    (b"", "unknown"), (b"RIFF", "unknown"), (b"x" * 5000, "unknown"),
    (b"RIFF\x04\0\0\0WAVE", "damaged"),
])
def test_what_is_no_sound_is_refused_with_the_reason(content, status, folder):
    (folder / "x.wav").write_bytes(content)
    for file in ("x.wav", content, io.BytesIO(content)):
        with pytest.raises(voxplay.VoxplayError) as refused:
            voxplay.read(file, bare=False)
        assert refused.value.status == status and len(str(refused.value)) > 20
        if file == "x.wav":
            assert str(refused.value).startswith("x.wav: ")


def test_a_missing_file_and_a_folder_cannot_be_opened():
    for name in ("missing.kst", "."):
        with pytest.raises(voxplay.VoxplayError, match=name) as refused:
            voxplay.info(name)
        assert refused.value.status == "cannot_open"
    with pytest.raises(voxplay.VoxplayError) as refused:
        voxplay.read(os.fsdecode(b"f\xffe.kst"))
    # What is no text in a path is no text in the sentence either.
    assert os.fsencode(str(refused.value)).startswith(b"f\xffe.kst: ")


def test_a_cut_file_gives_what_is_there():
    content = pathlib.Path("speech.kst").read_bytes()[:3000]
    info = voxplay.info(content)
    assert info.is_cut and info.frames == 16000 and info.claimed_frames == 80640
    assert "cut" in str(info)
    assert np.array_equal(voxplay.read(content)[0], voxplay.read("speech.kst", 16000)[0])


def test_damaged_frames_are_counted_and_replaced():
    content = bytearray(pathlib.Path("speech.kst").read_bytes())
    content[5000:5300] = b"\xff" * 300
    with voxplay.Sound(bytes(content)) as sound:
        assert len(sound.read()) == 80640
        # Whole frames of the codec count.
        assert sound.info.damaged_frames in range(320, 6 * 320, 320)
        assert "damaged frames" in str(sound.info)


def test_every_prefix_and_many_mutations_end_well(noise, all_notes):
    random = np.random.default_rng(4)
    opened = 0
    for name in ("x.wav", "x.kst", "x.hrn", "x.vef"):
        voxplay.write(name, noise(400), 16000, notes=all_notes)
        content = pathlib.Path(name).read_bytes()
        cases = [content[:size] for size in range(0, len(content), 7)]
        for _ in range(300):
            mutated = bytearray(content)
            for place in random.integers(0, len(content), random.integers(1, 9)):
                mutated[place] = random.integers(0, 256)
            cases.append(bytes(mutated))
        for case in cases:
            try:
                with voxplay.Sound(case) as sound:
                    data = sound.read(10 ** 6, "int16", always_2d=True)
                    assert data.shape[1] == sound.channels
                    repr(sound.notes), str(sound.info)
                    opened += 1
            except voxplay.VoxplayError as error:
                assert str(error) and error.status != "internal"
    assert opened > 500


class Failing(io.BytesIO):
    """Raises at the given call of a method, counted over all of them."""

    def __init__(self, content, call):
        super().__init__(content)
        self.left = call

    def _step(self):
        self.left -= 1
        if self.left == 0:
            raise ZeroDivisionError("a method of the file object")

    def read(self, size=-1):
        self._step()
        return super().read(size)

    def write(self, data):
        self._step()
        return super().write(data)

    def seek(self, *where):
        self._step()
        return super().seek(*where)

    def tell(self):
        self._step()
        return super().tell()


@pytest.mark.parametrize("name", ["x.wav", "x.kst", "x.hrn", "x.vef"])
def test_what_a_file_object_raises_comes_out(noise, name):
    samples = noise(2000)
    voxplay.write(name, samples, 16000)
    content = pathlib.Path(name).read_bytes()
    expected = voxplay.read(name, dtype="int16")[0]
    for call in range(1, 500):
        file = Failing(content, call)
        try:
            got = voxplay.read(file, dtype="int16")[0]
        except ZeroDivisionError as error:
            assert str(error) == "a method of the file object"
            continue
        assert file.left > 0 and np.array_equal(got, expected)
        break
    else:
        pytest.fail("reading makes no end of calls")
    assert call > 4
    format = voxplay.info(content).format
    subtype = voxplay.info(content).subtype
    for call in range(1, 500):
        file = Failing(b"", call)
        try:
            voxplay.write(file, samples, 16000, subtype, format)
        except ZeroDivisionError:
            continue
        assert file.left > 0 and file.getvalue() == content
        break
    else:
        pytest.fail("writing makes no end of calls")
    assert call > 2


@pytest.mark.parametrize("method, answer", [
    ("tell", None), ("tell", -5), ("tell", "x"), ("write", -1), ("write", "x"), ("write", 10 ** 30),
    ("write", 0),
])
def test_numbers_that_are_none_are_told(method, answer, noise):
    class Odd(io.BytesIO):
        pass

    setattr(Odd, method, lambda *_: answer)
    with pytest.raises((TypeError, ValueError), match=rf"{method}\(\) of the file object"):
        voxplay.write(Odd(), noise(10), 8000, format="WAV")


def test_a_raw_file_that_takes_nothing_is_no_success(noise):
    reading, writing = os.pipe()
    os.set_blocking(writing, False)
    with open(writing, "wb", buffering=0) as file, open(reading, "rb"):
        with pytest.raises(BlockingIOError, match="took nothing"):
            voxplay.write(file, noise(1000000), 8000, format="WAV")


def test_read_may_give_any_bytes():
    class Odd(io.BytesIO):
        def read(self, size=-1):
            return bytearray(super().read(size))

    content = pathlib.Path("speech.kst").read_bytes()
    assert len(voxplay.read(Odd(content))[0]) == 80640


@pytest.mark.parametrize("answer, raised", [
    ("text", TypeError), (None, TypeError), (7, TypeError), (b"x" * (2 << 20), ValueError),
])
def test_a_read_that_gives_nonsense_is_told(answer, raised):
    class Odd:
        def read(self, size):
            return answer

    with pytest.raises(raised, match=r"read\(\) of the file object"):
        voxplay.read(Odd())


def test_a_file_object_that_uses_its_own_sound_is_refused():
    class Own(io.BytesIO):
        sound = None

        def read(self, size=-1):
            if self.sound is not None:
                self.sound.tell()
            return super().read(size)

    # Larger than what the library reads at a time.
    voxplay.write("x.wav", np.zeros(1000000, np.int16), 8000)
    file = Own(pathlib.Path("x.wav").read_bytes())
    with voxplay.Sound(file) as sound:
        file.sound = sound
        with pytest.raises(RuntimeError, match="called by this object"):
            sound.read()


def test_nothing_is_kept_alive():
    class Counted(io.BytesIO):
        alive = 0

        def __init__(self, content):
            super().__init__(content)
            Counted.alive += 1

        def __del__(self):
            Counted.alive -= 1

    content = pathlib.Path("speech.kst").read_bytes()
    for _ in range(3):
        sound = voxplay.Sound(Counted(content))
        sound.read(10)
        sound.close()
        voxplay.Sound(Counted(content)).read(10)
        with pytest.raises(voxplay.VoxplayError):
            voxplay.Sound(Counted(b"nothing"))
    del sound
    gc.collect()
    assert Counted.alive == 0
    held = bytearray(content)
    sound = voxplay.Sound(held)
    with pytest.raises(BufferError):
        held.clear()
    sound.close()
    held.clear()


def test_threads_with_sounds_of_their_own_give_the_same():
    expected = voxplay.read("speech.kst", dtype="int16")[0]
    results = [None] * 8

    def work(n):
        for _ in range(5):
            results[n] = voxplay.read("speech.kst", dtype="int16")[0]
            voxplay.write(f"{n}.hrn", results[n], 16000)

    threads = [threading.Thread(target=work, args=(n,)) for n in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert all(np.array_equal(result, expected) for result in results)
    assert len({pathlib.Path(f"{n}.hrn").read_bytes() for n in range(8)}) == 1


def test_threads_share_one_sound_in_turns():
    sound = voxplay.Sound("speech.kst")
    counts = []

    def work():
        while count := len(sound.read(100)):
            counts.append(count)
            sound.tell(), sound.frames, sound.info

    threads = [threading.Thread(target=work) for _ in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert sum(counts) == 80640


@pytest.mark.parametrize("kind", ["path", "file"])
def test_a_sound_may_be_closed_while_another_thread_reads(kind):
    content = pathlib.Path("speech.kst").read_bytes()
    for _ in range(50):
        sound = voxplay.Sound("speech.kst" if kind == "path" else io.BytesIO(content))
        ended = []

        def work():
            try:
                while len(sound.read(10)):
                    pass
            except (ValueError, voxplay.VoxplayError) as error:
                ended.append(str(error))

        thread = threading.Thread(target=work)
        thread.start()
        sound.read(10)
        closing = threading.Thread(target=sound.close)
        closing.start()
        sound.close()
        thread.join()
        closing.join()
        assert ended in ([], ["the sound is closed"])


def test_the_core_may_be_closed_while_another_thread_uses_it():
    content = pathlib.Path("speech.kst").read_bytes()
    for _ in range(50):
        reader = core.Reader.open_file(io.BytesIO(content), 0)

        def work():
            samples = np.empty(1000, np.int16)
            try:
                while reader.read_into(samples):
                    reader.info(), reader.notes()
            except voxplay.VoxplayError as error:
                assert error.status == "wrong_state"

        threads = [threading.Thread(target=work) for _ in range(4)]
        for thread in threads:
            thread.start()
        reader.close()
        for thread in threads:
            thread.join()


def test_each_call_of_a_thread_gets_frames_that_follow_each_other():
    whole = voxplay.read("speech.kst", dtype="float64")[0]
    sound = voxplay.Sound("speech.kst")
    got = []

    def work():
        while len(piece := sound.read(20011, "float64")):
            got.append(piece)

    threads = [threading.Thread(target=work) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert sum(map(len, got)) == 80640
    for piece in got:
        assert any(np.array_equal(piece, whole[first:first + len(piece)])
                   for first in range(0, 80640, 20011))


DAEMON = """
import io, sys, threading, time, voxplay
content = open('speech.kst', 'rb').read()
def work():
    while True:
        voxplay.read(io.BytesIO(content) if sys.argv[1] == 'file' else content)
for _ in range(3):
    threading.Thread(target=work, daemon=True).start()
time.sleep(0.2)
"""


@pytest.mark.parametrize("kind", ["bytes", "file"])
def test_the_interpreter_ends_while_threads_work(kind):
    for _ in range(5):
        done = subprocess.run([sys.executable, "-c", DAEMON, kind], capture_output=True, text=True)
        assert (done.returncode, done.stderr) == (0, "")


def test_ctrl_c_ends_a_long_call(folder):
    def interrupt():
        time.sleep(0.2)
        os.kill(os.getpid(), signal.SIGINT)

    thread = threading.Thread(target=interrupt)
    noise = np.random.default_rng(1).integers(-9000, 9000, 16000 * 600, np.int16)
    with pytest.raises(KeyboardInterrupt):
        thread.start()
        # Takes some seconds, most of them when it is finished.
        voxplay.write("x.hrn", noise, 16000)
    thread.join()
    assert os.listdir() == ["speech.kst"]
