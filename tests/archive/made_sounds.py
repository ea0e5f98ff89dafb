#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Makes an archive for the tests: tiny WAV files in folders of a hundred, no two the same, and some
among them that are damaged. Prints the names of the damaged ones.

    made_sounds.py FOLDER COUNT DAMAGED
"""
import array
import os
import struct
import sys


def wav(number, frames):
    tooth = array.array("h", range(-4000, 4000, number % 251 + 3))
    samples = (tooth * (frames // len(tooth) + 1))[:frames]
    samples[0] = number  # one that no other file has
    data = samples.tobytes()
    head = struct.pack("<4sI4s4sIHHIIHH4sI", b"RIFF", 36 + len(data), b"WAVE", b"fmt ", 16, 1, 1,
                       16000, 32000, 2, 16, b"data", len(data))
    return head + data


DAMAGES = [lambda data: b"", lambda data: data[:10], lambda data: b"no sound at all" + data[400:],
           lambda data: data[:20] + b"\xff" * 16 + data[36:], lambda data: data[:30]]


def main():
    folder, count, damaged = sys.argv[1], int(sys.argv[2]), int(sys.argv[3])
    every = count // damaged
    for number in range(count):
        below = os.path.join(folder, "%03d" % (number // 100))
        os.makedirs(below, exist_ok=True)
        name = os.path.join(below, "%05d.wav" % number)
        data = wav(number, 4000 + number % 97)
        if number % every == every // 2:
            data = DAMAGES[number // every % len(DAMAGES)](data)
            print(name)
        with open(name, "wb") as file:
            file.write(data)


main()
