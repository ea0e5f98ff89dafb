# SPDX-License-Identifier: Apache-2.0
"""What a file is."""

from __future__ import annotations

import os
from dataclasses import dataclass, field
from typing import Any, Dict, List, Optional

from . import _core, _formats

_UNKNOWN = (1 << 64) - 1
# As much as a probe may want to see.
_PROBE_BYTES = 4096


@dataclass(frozen=True)
class ChunkPlace:
    """Where the content of a RIFF chunk stands, in bytes, and how much of it is there."""

    id: str
    offset: int
    size: int
    held: int


@dataclass(frozen=True)
class Info:
    """What ``voxplay.info`` tells of a file.

    ``frames`` is None while an input that only goes forward does not tell. ``bit_rate`` is that of
    the coded samples, or 0. ``damaged_frames`` counts frames that were read so far.
    ``claimed_frames`` is what a stream of Kestrel or Heron says of itself, of which ``frames`` are
    there. ``headers`` has the fields of the headers before streams: ``"sp"``, ``"head"``, ``"vafm"``.
    """

    name: str
    samplerate: int
    channels: int
    frames: Optional[int]
    format: str
    subtype: str
    format_info: str
    subtype_info: str
    bit_rate: int
    has_stream: bool
    damaged_frames: int
    claimed_frames: int
    is_cut: bool
    headers: Dict[str, Dict[str, int]] = field(repr=False, hash=False)
    chunks: List[ChunkPlace] = field(repr=False, hash=False)

    @property
    def duration(self) -> Optional[float]:
        """In seconds, or None while it is not known."""
        return None if self.frames is None else self.frames / self.samplerate

    def __str__(self) -> str:
        length = "not known" if self.frames is None else f"{self.frames / self.samplerate:.3f} s"
        lines = [
            self.name,
            f"samplerate: {self.samplerate} Hz",
            f"channels: {self.channels}",
            f"duration: {length}",
            f"format: {self.format_info} [{self.format}]",
            f"subtype: {self.subtype_info} [{self.subtype}]",
        ]
        if self.is_cut:
            lines.append("cut: something is missing at the end")
        if self.damaged_frames:
            lines.append(f"damaged frames: {self.damaged_frames}")
        return "\n".join(lines)


def frames_of(info: Dict[str, Any]) -> Optional[int]:
    frames: int = info["frames"]
    return None if frames == _UNKNOWN else frames


def info_of(reader: _core.Reader, name: str) -> Info:
    info = reader.info()
    subtype, subtype_info = _formats.subtype_of(info)
    return Info(
        name=name, samplerate=info["sample_rate"], channels=info["channels"],
        frames=frames_of(info), format=_formats.format_name(info["container"]), subtype=subtype,
        format_info=_formats.format_text(info["container"]), subtype_info=subtype_info,
        bit_rate=info["bit_rate"], has_stream=info["has_stream"],
        damaged_frames=info["damaged_frames"], claimed_frames=info["claimed_frames"],
        is_cut=info["is_cut"], headers=reader.headers(),
        chunks=[ChunkPlace(id.decode("latin-1"), offset, size, held)
                for id, offset, size, held in reader.chunks()])


@dataclass(frozen=True)
class Probe:
    """What first bytes of a file say. ``format`` is None when they are none of ours.

    ``codec`` is None when they do not tell it. ``text`` has a line for each test.
    """

    format: Optional[str]
    codec: Optional[str]
    supported: bool
    text: str

    def __bool__(self) -> bool:
        return self.format is not None


def probe(file: Any) -> Probe:
    """Tells which of our formats a file has, and if none, why not.

    ``file`` is a path, the first bytes of a file (4,096 are enough), or a file object, which then
    stands where it stood.

    >>> probe('speech.kst').format
    'SP'
    >>> bool(probe(b'something else'))
    False
    """
    if isinstance(file, (bytes, bytearray, memoryview)):
        first = bytes(file)
    elif hasattr(file, "read"):
        first = file.read(_PROBE_BYTES)
        file.seek(-len(first), os.SEEK_CUR)
    else:
        with open(file, "rb") as opened:
            first = opened.read(_PROBE_BYTES)
    container, codec, supported, text = _core.probe(first)
    return Probe(_formats.format_name(container) or None, _formats.codec_name(codec) or None,
                 supported, text.decode("utf-8", "replace"))
