# SPDX-License-Identifier: Apache-2.0
"""Kestrel frames for streams without files: 20 ms of 16 kHz mono sound each.

>>> import numpy as np
>>> encoder, decoder = Encoder(16000), Decoder(16000)
>>> words = encoder.encode(np.zeros(FRAME, np.int16))
>>> len(words), decoder.decode(words).shape
(40, (320,))
"""

from __future__ import annotations

import operator
from typing import Union

import numpy as np
import numpy.typing as npt

from . import _core

__all__ = ["FRAME", "Encoder", "Decoder"]

#: Samples of a frame.
FRAME: int = _core.KESTREL_FRAME


def _checked(bit_rate: int) -> int:
    """The core tells which rates there are, as far as they are of a sensible size."""
    rate = operator.index(bit_rate)
    if not 0 <= rate < 1 << 32:
        raise ValueError(f"bit rates: {rate} is none of them")
    return rate


class Encoder:
    """Encodes the frames of one stream, at a multiple of 800 from 4,800 to 32,000 bit/s.

    What is decoded lags by one frame: the second frame of bytes gives the first frame of samples.
    """

    def __init__(self, bit_rate: int) -> None:
        self.bit_rate = _checked(bit_rate)
        self._encoder = _core.KestrelEncoder(self.bit_rate)

    @property
    def frame_bytes(self) -> int:
        """Bytes of a frame: the bit rate by 400."""
        return self._encoder.frame_bytes

    def encode(self, samples: npt.ArrayLike) -> bytes:
        """The bytes for int16 samples of the shape (frames * 320,)."""
        array = np.asarray(samples)
        if array.dtype.newbyteorder("=") != np.int16 or array.ndim != 1:
            raise TypeError("samples: not int16 in one dimension")
        return self._encoder.encode(np.ascontiguousarray(array, np.int16))

    def reset(self) -> None:
        """Forgets the frames before."""
        self._encoder.reset()


class Decoder:
    """Decodes the frames of one stream. ``damaged_frames`` counts those that had to be replaced.

    In place of a frame that is damaged or lost, the last good one is repeated once, and after that
    there is silence.
    """

    def __init__(self, bit_rate: int) -> None:
        self.bit_rate = _checked(bit_rate)
        self.damaged_frames = 0
        self._decoder = _core.KestrelDecoder(self.bit_rate)

    @property
    def frame_bytes(self) -> int:
        """Bytes of a frame: the bit rate by 400."""
        return self._decoder.frame_bytes

    def decode(self, data: Union[bytes, bytearray, memoryview]) -> npt.NDArray[np.int16]:
        """The int16 samples of whole frames, of the shape (frames * 320,)."""
        size = memoryview(data).nbytes
        if size % self.frame_bytes:
            raise ValueError(f"data: {size} bytes are not whole frames of {self.frame_bytes}")
        samples = np.empty(size // self.frame_bytes * FRAME, np.int16)
        self.damaged_frames += self._decoder.decode(data, samples)
        return samples

    def decode_lost(self, frames: int = 1) -> npt.NDArray[np.int16]:
        """What to play for frames that never came."""
        samples = np.empty(frames * FRAME, np.int16)
        self._decoder.decode_lost(samples)
        return samples

    def reset(self) -> None:
        """Forgets the frames before."""
        self._decoder.reset()
