# SPDX-License-Identifier: Apache-2.0
"""Compressed speech and other sound files as arrays.

Reads and writes Kestrel, Heron, VEF, VEMD and WAV files, with the events and marks in them, and codes
Kestrel frames. Functions have the names and habits of the module soundfile where they fit.

>>> import voxplay
>>> data, rate = voxplay.read('speech.kst')
>>> voxplay.write('speech.wav', data, rate)
[]
>>> with voxplay.Sound('speech.wav') as sound:
...     sound.frames, sound.subtype, sound.events
(80640, 'PCM_16', [])

Frames are one sample of each channel; places and lengths are in frames, rates in Hz, bit rates in bits
per second. What the library cannot do raises ``VoxplayError``, whose text says why.
"""

from . import kestrel
from ._core import VoxplayError, version as _version
from ._formats import (available_formats, available_subtypes, check_format, default_subtype,
                       format_problem)
from ._info import ChunkPlace, Info, Probe, probe
from ._notes import Chunk, Cue, Event, Label, Loop, Notes, Range, RegionText, Sampler
from ._sound import SEEK_CUR, SEEK_END, SEEK_SET, Sound
from ._whole import blocks, info, read, write

__version__ = _version()

__all__ = [
    "SEEK_CUR", "SEEK_END", "SEEK_SET",
    "Chunk", "ChunkPlace", "Cue", "Event", "Info", "Label", "Loop", "Notes", "Probe", "Range",
    "RegionText", "Sampler", "Sound", "VoxplayError",
    "available_formats", "available_subtypes", "blocks", "check_format", "default_subtype",
    "format_problem", "info", "kestrel", "probe", "read", "write",
]
