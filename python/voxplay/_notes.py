# SPDX-License-Identifier: Apache-2.0
"""What a file may hold beside its samples: events, silence, regions, cue points and more."""

from __future__ import annotations

import operator
from dataclasses import dataclass, field
from typing import Annotated, Any, Dict, List, Optional, Tuple, Type, TypeVar, get_type_hints

__all__ = [
    "Event", "Range", "Cue", "Label", "RegionText", "Loop", "Sampler", "Chunk", "Notes",
]


# Whole numbers, with how many bits a file has for them.
U16 = Annotated[int, 16]
U32 = Annotated[int, 32]
U64 = Annotated[int, 64]
# Four characters.
Four = Annotated[str, 4]


@dataclass
class Event:
    """Something that a program does when this frame is played.

    Only VEF files keep ``data``. No file keeps ``description``.
    """

    frame: U64
    main_command: U16 = 0
    sub_command: U16 = 0
    data: U32 = 0
    description: str = ""


@dataclass
class Range:
    """Frames from ``first`` on: silence, or a region that is kept uncompressed."""

    first: U64
    count: U64

    @property
    def end(self) -> int:
        """The frame after the last one."""
        return self.first + self.count


@dataclass
class Cue:
    """A cue point, as WAV files have it.

    It names its place twice: ``position`` is a frame, or a place in a play list; ``sample_offset`` is
    the same unless it is given, and counts from ``block_start`` where there is one. ``frame`` is what
    people mean.

    >>> Cue(1, 8000).frame
    8000
    """

    id: U32
    position: U32
    sample_offset: U32 = -1
    chunk: Four = "data"
    chunk_start: U32 = 0
    block_start: U32 = 0

    def __post_init__(self) -> None:
        if self.sample_offset == -1:
            self.sample_offset = self.position

    @property
    def frame(self) -> int:
        """The frame of the sound. Some writers leave one of the two numbers at 0."""
        if self.sample_offset == 0 or (self.block_start != 0 and self.position != 0):
            return self.position
        return self.sample_offset


@dataclass
class Label:
    """The name of a cue point (``type`` is ``"labl"``), or a note on it (``"note"``).

    In WAV files, a label such as "take_1", with the characters "u", "_", "_" or "e", "_" in this
    order, is read as an event as well.
    """

    cue_id: U32
    text: str
    type: Four = "labl"


@dataclass
class RegionText:
    """A text for ``count`` frames from a cue point on."""

    cue_id: U32
    count: U32
    text: str = ""
    purpose: Four = "rgn "
    country: U16 = 0
    language: U16 = 0
    dialect: U16 = 0
    code_page: U16 = 0


@dataclass
class Loop:
    """Frames ``first`` to ``last``, which is played as well, that a sampler repeats.

    ``type`` is 0 for forward, 1 for forth and back, 2 for backward; ``play_count`` 0 for ever.
    """

    first: U32
    last: U32
    id: U32 = 0
    type: U32 = 0
    fraction: U32 = 0
    play_count: U32 = 0


@dataclass
class Sampler:
    """What a file tells a sampler beside its loops. ``sample_period`` is in nanoseconds."""

    manufacturer: U32 = 0
    product: U32 = 0
    sample_period: U32 = 0
    midi_unity_note: U32 = 0
    midi_pitch_fraction: U32 = 0
    smpte_format: U32 = 0
    smpte_offset: U32 = 0
    data: bytes = b""


@dataclass
class Chunk:
    """A RIFF chunk that the library gives no meaning, such as "bext" or a list of titles."""

    id: Four
    data: bytes


# For each kind, the members in the order of voxplay.h, which is the order of the core's tuples.
_ORDER: Dict[type, Tuple[str, ...]] = {
    Event: ("frame", "main_command", "sub_command", "data", "description"),
    Range: ("first", "count"),
    Cue: ("id", "position", "chunk", "chunk_start", "block_start", "sample_offset"),
    Label: ("cue_id", "type", "text"),
    RegionText: ("cue_id", "count", "purpose", "country", "language", "dialect", "code_page", "text"),
    Loop: ("id", "type", "first", "last", "fraction", "play_count"),
    Sampler: ("manufacturer", "product", "sample_period", "midi_unity_note", "midi_pitch_fraction",
              "smpte_format", "smpte_offset", "data"),
    Chunk: ("id", "data"),
}
_TYPES = {kind: get_type_hints(kind, include_extras=True) for kind in _ORDER}
# What Notes calls its lists.
_KINDS: Dict[str, type] = {
    "events": Event, "silence": Range, "regions": Range, "cues": Cue, "labels": Label,
    "region_texts": RegionText, "loops": Loop, "chunks": Chunk,
}
_Record = TypeVar("_Record")


@dataclass
class Notes:
    """All notes of a sound. Change the lists as you like, and write them with a sound.

    Files hold texts as bytes, and do not say in which encoding. ``encoding`` is what these were read
    with: UTF-8 if all of them are valid in it, otherwise Windows-1252 or, at last, Latin-1. They are
    written with it again, so that they keep their bytes.

    >>> notes = Notes(events=[Event(8000, 3, 4)], silence=[Range(0, 160)])
    >>> notes.events[0].main_command
    3
    >>> bool(notes), bool(Notes())
    (True, False)
    """

    events: List[Event] = field(default_factory=list)
    silence: List[Range] = field(default_factory=list)
    regions: List[Range] = field(default_factory=list)
    cues: List[Cue] = field(default_factory=list)
    labels: List[Label] = field(default_factory=list)
    region_texts: List[RegionText] = field(default_factory=list)
    loops: List[Loop] = field(default_factory=list)
    sampler: Optional[Sampler] = None
    chunks: List[Chunk] = field(default_factory=list)
    encoding: str = "utf-8"

    def __bool__(self) -> bool:
        return self.sampler is not None or any(getattr(self, kind) for kind in _KINDS)

    def label_of(self, cue: Cue) -> str:
        """The first label of a cue point, or ``""``."""
        return next((label.text for label in self.labels
                     if label.cue_id == cue.id and label.type == "labl"), "")


def _texts(records: Dict[str, Any]) -> List[bytes]:
    """All texts among the core's tuples, as bytes."""
    texts: List[bytes] = []
    for name, kind in _KINDS.items():
        places = [place for place, member in enumerate(_ORDER[kind])
                  if member in ("description", "text")]
        texts += [record[place] for record in records[name] for place in places]
    return texts


def _encoding_of(texts: List[bytes]) -> str:
    for encoding in ("utf-8", "cp1252"):
        try:
            for text in texts:
                text.decode(encoding)
            return encoding
        except UnicodeDecodeError:
            pass
    return "latin-1"


def _from_core(kind: Type[_Record], record: Tuple[Any, ...], encoding: str) -> _Record:
    members: Dict[str, Any] = {}
    for name, value in zip(_ORDER[kind], record):
        if _TYPES[kind][name] == Four:
            value = value.decode("latin-1")
        elif isinstance(value, bytes) and name != "data":
            value = value.decode(encoding)
        members[name] = value
    return kind(**members)


def _to_core(record: Any, kind: type, where: str, encoding: str) -> Tuple[Any, ...]:
    """The tuple for a record. ValueError or TypeError, with the place, for what a file cannot hold."""
    if not isinstance(record, kind):
        raise TypeError(f"{where}: {type(record).__name__} is not {kind.__name__}")
    values: List[Any] = []
    for name in _ORDER[kind]:
        try:
            values.append(_value_to_core(getattr(record, name), _TYPES[kind][name], encoding))
        except (TypeError, ValueError) as error:
            refused = TypeError if isinstance(error, TypeError) else ValueError
            raise refused(f"{where}: {name}: {error}") from None
    return tuple(values)


def _value_to_core(value: Any, wanted: Any, encoding: str) -> Any:
    if wanted is bytes:
        return memoryview(value).tobytes()
    if wanted is str or wanted == Four:
        if not isinstance(value, str):
            raise TypeError(f"{type(value).__name__} is no text")
        text = value.encode("latin-1" if wanted == Four else encoding)
        if wanted == Four and len(text) != 4:
            raise ValueError(f"{value!r} is not four characters")
        if wanted is str and b"\0" in text:
            raise ValueError("a zero in it would end it")
        return text
    number, limit = operator.index(value), 1 << wanted.__metadata__[0]
    if not 0 <= number < limit:
        raise ValueError(f"{number} is not from 0 to {limit - 1}")
    return number


def notes_from_core(records: Dict[str, Any]) -> Notes:
    encoding = _encoding_of(_texts(records))
    lists: Dict[str, Any] = {
        name: [_from_core(kind, record, encoding) for record in records[name]]
        for name, kind in _KINDS.items()}
    sampler = _from_core(Sampler, records["sampler"], encoding)
    return Notes(**lists, sampler=None if sampler == Sampler() else sampler, encoding=encoding)


def notes_to_core(notes: Notes) -> Dict[str, Any]:
    records: Dict[str, Any] = {
        name: [_to_core(record, kind, f"{name}[{place}]", notes.encoding)
               for place, record in enumerate(getattr(notes, name))]
        for name, kind in _KINDS.items()}
    records["sampler"] = None if notes.sampler is None else \
        _to_core(notes.sampler, Sampler, "sampler", notes.encoding)
    return records
