# SPDX-License-Identifier: Apache-2.0
"""What a file may hold beside its samples: events, silence, regions, cue points and more."""

from __future__ import annotations

import dataclasses
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

    Data and description are kept in VEF files only, and the description only while it is in memory.
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

    Its place is ``sample_offset``, a frame. The other numbers matter for play lists only.
    """

    id: U32
    sample_offset: U32
    position: U32 = 0
    chunk: Four = "data"
    chunk_start: U32 = 0
    block_start: U32 = 0


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

    def scaled(self, factor: float) -> Notes:
        """A copy whose places and lengths are those after a conversion of the sampling rate.

        >>> Notes(events=[Event(8000)]).scaled(2).events[0].frame
        16000
        """
        def at(frame: int) -> int:
            return round(frame * factor)

        def ranges(old: List[Range]) -> List[Range]:
            return [Range(at(one.first), max(1, at(one.end) - at(one.first))) for one in old]

        replace = dataclasses.replace
        return replace(
            self,
            events=[replace(one, frame=at(one.frame)) for one in self.events],
            silence=ranges(self.silence),
            regions=ranges(self.regions),
            cues=[replace(one, sample_offset=at(one.sample_offset), position=at(one.position))
                  for one in self.cues],
            labels=[replace(one) for one in self.labels],
            region_texts=[replace(one, count=at(one.count)) for one in self.region_texts],
            loops=[replace(one, first=at(one.first), last=at(one.last)) for one in self.loops],
            sampler=self.sampler and replace(
                self.sampler, sample_period=at(self.sampler.sample_period) and
                round(self.sampler.sample_period / factor)),
            chunks=[replace(one) for one in self.chunks])


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


def _to_core(record: Any, where: str, encoding: str) -> Tuple[Any, ...]:
    """The tuple for a record. ValueError, with the place, for what a file cannot hold."""
    kind = type(record)
    values: List[Any] = []
    for name in _ORDER[kind]:
        value, wanted = getattr(record, name), _TYPES[kind][name]
        if wanted == Four:
            value = value.encode("latin-1")
            if len(value) != 4:
                raise ValueError(f"{where}: {name} is {value!r}, and not four characters")
        elif wanted is str:
            value = value.encode(encoding)
            if b"\0" in value:
                raise ValueError(f"{where}: {name} has a zero in it, which would end it")
        elif wanted is bytes:
            value = bytes(value)
        else:
            value, limit = int(value), 1 << wanted.__metadata__[0]
            if not 0 <= value < limit:
                raise ValueError(f"{where}: {name} is {value}, and not from 0 to {limit - 1}")
        values.append(value)
    return tuple(values)


def notes_from_core(records: Dict[str, Any]) -> Notes:
    encoding = _encoding_of(_texts(records))
    lists: Dict[str, Any] = {name: [_from_core(kind, record, encoding) for record in records[name]]
             for name, kind in _KINDS.items()}
    sampler = _from_core(Sampler, records["sampler"], encoding)
    return Notes(**lists, sampler=None if sampler == Sampler() else sampler, encoding=encoding)


def notes_to_core(notes: Notes) -> Dict[str, Any]:
    records: Dict[str, Any] = {}
    for name, kind in _KINDS.items():
        for place, record in enumerate(getattr(notes, name)):
            if type(record) is not kind:
                raise TypeError(f"{name}[{place}]: {type(record).__name__} is not {kind.__name__}")
        records[name] = [_to_core(record, f"{name}[{place}]", notes.encoding)
                         for place, record in enumerate(getattr(notes, name))]
    records["sampler"] = notes.sampler and _to_core(notes.sampler, "sampler", notes.encoding)
    return records
