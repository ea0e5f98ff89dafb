# SPDX-License-Identifier: Apache-2.0
"""Whole sounds in one call."""

from __future__ import annotations

from typing import Any, Iterator, List, Optional, Tuple

import numpy as np
import numpy.typing as npt

from ._info import Info
from ._notes import Notes
from ._sound import Array, Sound


def read(file: Any, frames: int = -1, start: int = 0, stop: Optional[int] = None,
         dtype: npt.DTypeLike = "float32", always_2d: bool = False,
         fill_value: Optional[float] = None, out: Optional[Array] = None, *,
         stream: bool = False, bare: bool = True) -> Tuple[Array, int]:
    """Reads a sound, or its frames from ``start`` to ``stop``; returns samples and sampling rate.

    ``file`` is what ``Sound`` takes, and the other arguments are those of ``Sound.read``. Negative
    ``start`` and ``stop`` count from the end.

    >>> data, rate = read('speech.kst')
    >>> data.shape, data.dtype.name, rate
    ((80640,), 'float32', 16000)
    >>> read('speech.kst', start=-160, dtype='int16')[0].shape
    (160,)
    """
    with Sound(file, stream=stream, bare=bare) as sound:
        frames = _go_to(sound, frames, start, stop)
        return sound.read(frames, dtype, always_2d, fill_value, out), sound.samplerate


def write(file: Any, data: npt.ArrayLike, samplerate: int, subtype: Optional[str] = None,
          format: Optional[str] = None, *, notes: Optional[Notes] = None) -> List[str]:
    """Writes a sound, which appears whole or not at all.

    ``data`` has the shape (frames,) or (frames, channels). The extension says what is written,
    unless ``format`` and ``subtype`` do. Returns the notes that this format does not hold, a
    sentence each.

    >>> import numpy as np
    >>> write('tone.kst', 0.5 * np.sin(np.arange(16000) / 5), 16000, 'KESTREL_32000')
    []
    >>> info('tone.kst').subtype
    'KESTREL_32000'
    """
    samples = np.asarray(data)
    if samples.ndim not in (1, 2):
        raise ValueError(f"data: the shape {samples.shape} is not that of frames")
    channels = 1 if samples.ndim == 1 else samples.shape[1]
    with Sound(file, "w", samplerate, channels, subtype, format, notes=notes,
               frames=len(samples)) as sound:
        sound.write(samples)
    return sound.lost


def info(file: Any, *, stream: bool = False, bare: bool = True) -> Info:
    """What a file is.

    >>> print(info('speech.kst'))
    speech.kst
    samplerate: 16000 Hz
    channels: 1
    duration: 5.040 s
    format: an SP header and a stream of Kestrel or Heron [SP]
    subtype: Kestrel, 24000 bit/s [KESTREL_24000]
    """
    with Sound(file, stream=stream, bare=bare) as sound:
        return sound.info


def blocks(file: Any, blocksize: Optional[int] = None, overlap: int = 0, frames: int = -1,
           start: int = 0, stop: Optional[int] = None, dtype: npt.DTypeLike = "float32",
           always_2d: bool = False, fill_value: Optional[float] = None,
           out: Optional[Array] = None, *, stream: bool = False,
           bare: bool = True) -> Iterator[Array]:
    """Gives a sound in blocks, as ``Sound.blocks`` does.

    >>> max(abs(block).max() for block in blocks('speech.kst', 1600)) < 1
    True
    """
    with Sound(file, stream=stream, bare=bare) as sound:
        frames = _go_to(sound, frames, start, stop)
        yield from sound.blocks(blocksize, overlap, frames, dtype, always_2d, fill_value, out)


def _go_to(sound: Sound, frames: int, start: int, stop: Optional[int]) -> int:
    """Moves to ``start``, and returns how many frames to read: -1 for all."""
    if frames >= 0 and stop is not None:
        raise TypeError("frames and stop say the same; give one of them")
    if start < 0 or (stop is not None and stop < 0):
        first, end, _ = slice(start, stop).indices(len(sound))
    elif sound.frames is None:
        first, end = start, stop if stop is not None else start
    else:
        first, end, _ = slice(start, stop).indices(len(sound))
    if first > 0 and sound.frames is None:
        # Only reading tells where such an input ends.
        sound.read(first)
    elif first > 0:
        sound.seek(first)
    return frames if stop is None else max(0, end - first)
