#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""How much faster eight threads decode than one, and what voxplay.read costs beside the same calls of the C
library. bench/python.sh builds the module and runs this. Medians of several turns, one after the other."""

import ctypes
import os
import pathlib
import statistics
import tempfile
import threading
import time

import numpy as np

import voxplay

THREADS, TURNS = 8, 9
RATE, SECONDS = 16000, 600


def seconds(work):
    begin = time.perf_counter()
    work()
    return time.perf_counter() - begin


def decode(content, times):
    for _ in range(times):
        voxplay.read(content, dtype="int16")


def in_threads(content):
    threads = [threading.Thread(target=decode, args=(content, 1)) for _ in range(THREADS)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()


def read_with_c(library, path, frames):
    """What voxplay.read does, with the library's own functions."""
    samples = np.empty(frames, np.int16)
    reader = ctypes.c_void_p(library.voxplay_reader_new())
    done = ctypes.c_size_t()
    if library.voxplay_reader_open_file(reader, os.fsencode(path), 0) != 0:
        raise SystemExit(f"{path} does not open")
    library.voxplay_reader_read_s16(reader, samples.ctypes.data_as(ctypes.c_void_p),
                                    ctypes.c_size_t(frames), ctypes.byref(done))
    library.voxplay_reader_free(reader)
    if done.value != frames:
        raise SystemExit(f"{path}: {done.value} of {frames} frames")


def main():
    processors = len(os.sched_getaffinity(0))
    noise = np.random.default_rng(1).integers(-9000, 9000, RATE * SECONDS, np.int16)
    library = ctypes.CDLL("libvoxplay.so.0")
    library.voxplay_reader_new.restype = ctypes.c_void_p
    with tempfile.TemporaryDirectory(dir="/dev/shm") as folder:
        for name in ("kst", "hrn", "wav"):
            path = pathlib.Path(folder, f"x.{name}")
            voxplay.write(path, noise, RATE)
            content = path.read_bytes()
            frames = voxplay.info(path).frames
            if name == "kst":
                ratios = [seconds(lambda: decode(content, THREADS)) /
                          seconds(lambda: in_threads(content)) for _ in range(TURNS)]
                print(f"{THREADS} threads beside one, decoding {SECONDS} s of Kestrel each, on "
                      f"{processors} processors: {statistics.median(ratios):.2f} times as fast")
            pairs = [(seconds(lambda: voxplay.read(path, dtype="int16")),
                      seconds(lambda: read_with_c(library, path, frames))) for _ in range(TURNS)]
            ours, theirs = (statistics.median(column) for column in zip(*pairs))
            print(f"{name}: voxplay.read {ours * 1000:.1f} ms, in C {theirs * 1000:.1f} ms, "
                  f"ratio {statistics.median(a / b for a, b in pairs):.3f}")


main()
