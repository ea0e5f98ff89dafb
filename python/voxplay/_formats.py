# SPDX-License-Identifier: Apache-2.0
"""The names of formats: a *format* is how a file is built, a *subtype* how its samples are coded."""

from __future__ import annotations

import os
from dataclasses import dataclass
from typing import Any, Dict, Optional, Tuple

from . import _core

_FORMATS: Dict[str, Tuple[int, str]] = {
    "WAV": (1, "RIFF of the form WAVE, also RF64"),
    "VEMD": (2, "RIFF of the form VEMD, otherwise like WAV"),
    "VEF": (3, "PCM and, beside it, a coded stream"),
    "SP": (4, "an SP header and a stream of Kestrel or Heron"),
    "HEAD": (5, "a codec head of 6 bytes and a stream"),
    "BARE": (6, "a stream alone"),
}
_FORMAT_NAMES = {number: name for name, (number, _) in _FORMATS.items()}

PCM, FLOAT, MULAW, ALAW, MS_ADPCM, DVI4, DVI3, KESTREL, HERON = 1, 2, 3, 4, 5, 6, 7, 14, 32


@dataclass(frozen=True)
class Coding:
    """A subtype, as the core has it."""

    codec: int
    bits: int = 0
    bit_rate: int = 0
    description: str = ""


_SUBTYPES: Dict[str, Coding] = {
    "PCM_U8": Coding(PCM, 8, 0, "unsigned integers of 8 bits"),
    "PCM_16": Coding(PCM, 16, 0, "integers of 16 bits"),
    "PCM_24": Coding(PCM, 24, 0, "integers of 24 bits"),
    "PCM_32": Coding(PCM, 32, 0, "integers of 32 bits"),
    "FLOAT": Coding(FLOAT, 32, 0, "floating point of 32 bits"),
    **{f"KESTREL_{rate}": Coding(KESTREL, 0, rate, f"Kestrel, {rate} bit/s")
       for rate in (7200, 9600, 12000, 14400, 16000, 20000, 24000, 32000)},
    **{f"HERON_{bits}": Coding(HERON, bits, 0, f"Heron, {bits} bits a sample")
       for bits in (2, 3, 4, 5, 6)},
}
_READ_ONLY = {
    MULAW: ("ULAW", "mu-law"), ALAW: ("ALAW", "A-law"), MS_ADPCM: ("MS_ADPCM", "Microsoft ADPCM"),
    DVI4: ("DVI_ADPCM_4", "DVI ADPCM of 4 bits"), DVI3: ("DVI_ADPCM_3", "DVI ADPCM of 3 bits"),
}
# The extension alone says enough, as it does for voxtool.
_OF_EXTENSION = {
    ".wav": ("WAV", "PCM_16"), ".vemd": ("VEMD", "PCM_16"), ".vef": ("VEF", "PCM_16"),
    ".kst": ("SP", "KESTREL_16000"), ".hrn": ("SP", "HERON_4"),
}
_DEFAULT_SUBTYPE = {
    "WAV": "PCM_16", "VEMD": "PCM_16", "VEF": "PCM_16",
    "SP": "KESTREL_16000", "HEAD": "KESTREL_16000", "BARE": "KESTREL_16000",
}


def available_formats() -> Dict[str, str]:
    """All formats that can be written, with what they are.

    >>> sorted(available_formats())
    ['BARE', 'HEAD', 'SP', 'VEF', 'VEMD', 'WAV']
    """
    return {name: text for name, (_, text) in _FORMATS.items()}


def available_subtypes(format: Optional[str] = None) -> Dict[str, str]:
    """The subtypes that can be written, or those that a format takes.

    >>> available_subtypes('SP')['HERON_4']
    'Heron, 4 bits a sample'
    """
    return {name: coding.description for name, coding in _SUBTYPES.items()
            if format is None or check_format(format, name)}


def default_subtype(format: str) -> str:
    """What is written when no subtype is given.

    >>> default_subtype('WAV')
    'PCM_16'
    """
    return _DEFAULT_SUBTYPE[_known(format, _FORMATS, "format")]


def check_format(format: str, subtype: Optional[str] = None, samplerate: int = 16000,
                 channels: int = 1) -> bool:
    """Whether a sound of this kind can be written.

    >>> check_format('SP', 'HERON_2'), check_format('HEAD', 'HERON_2')
    (False, True)
    """
    try:
        return not format_problem(format, subtype, samplerate, channels)
    except ValueError:
        return False


def format_problem(format: str, subtype: Optional[str] = None, samplerate: int = 16000,
                   channels: int = 1) -> str:
    """Why a sound of this kind cannot be written, or ``""``.

    >>> format_problem('WAV', 'KESTREL_16000') != ''
    True
    """
    return _core.format_problem(core_format(format, subtype, samplerate, channels))


def chosen_format(name: Optional[str], format: Optional[str],
                  subtype: Optional[str]) -> Tuple[str, str]:
    """Format and subtype for a file of this name, if it has one."""
    extension = os.path.splitext(name)[1].lower() if name is not None else ""
    if format is None:
        if extension not in _OF_EXTENSION:
            raise ValueError(f"format: {extension or 'the name'} does not say it; choose one of "
                             + ", ".join(_FORMATS))
        format, usual = _OF_EXTENSION[extension]
    else:
        format = _known(format, _FORMATS, "format")
        usual = _OF_EXTENSION.get(extension, ("", ""))[1]
        if not usual or not check_format(format, usual):
            usual = _DEFAULT_SUBTYPE[format]
    return format, _known(subtype, _SUBTYPES, "subtype") if subtype is not None else usual


def core_format(format: str, subtype: Optional[str], samplerate: int, channels: int,
                frames: int = 0) -> Dict[str, int]:
    number = _FORMATS[_known(format, _FORMATS, "format")][0]
    coding = _SUBTYPES[_known(subtype or default_subtype(format), _SUBTYPES, "subtype")]
    samplerate, channels = (_counted(value, name, 1 << 32) for name, value in
                            (("samplerate", samplerate), ("channels", channels)))
    if frames:
        frames = _counted(frames, "frames", 1 << 64)
    return {
        "container": number, "codec": coding.codec, "sample_rate": samplerate, "channels": channels,
        "bits_per_sample": coding.bits, "bit_rate": coding.bit_rate,
        # This costs 36 bytes, and a sound of any length can be written.
        "flags": _core.WRITE_RF64 if number == 1 and frames == 0 else 0, "frames": frames,
    }


def format_name(container: int) -> str:
    return _FORMAT_NAMES.get(container, "")


def format_text(container: int) -> str:
    return _FORMATS[_FORMAT_NAMES[container]][1] if container in _FORMAT_NAMES else ""


def subtype_of(info: Dict[str, Any]) -> Tuple[str, str]:
    """Name and description of the coding in the core's info."""
    codec, bits = info["codec"], info["bits_per_sample"]
    if codec in _READ_ONLY:
        return _READ_ONLY[codec]
    if codec == KESTREL:
        return f"KESTREL_{info['bit_rate']}", f"Kestrel, {info['bit_rate']} bit/s"
    if codec == HERON:
        return f"HERON_{bits}", f"Heron, {bits} bits a sample"
    if codec == FLOAT:
        return ("DOUBLE" if bits == 64 else "FLOAT"), f"floating point of {bits} bits"
    if bits == 8:
        return "PCM_U8", "unsigned integers of 8 bits"
    return f"PCM_{bits}", f"integers of {bits} bits"


def codec_name(codec: int) -> str:
    """The coding without its settings, as a probe tells it."""
    return {PCM: "PCM", FLOAT: "FLOAT", KESTREL: "KESTREL", HERON: "HERON",
            **{number: name for number, (name, _) in _READ_ONLY.items()}}.get(codec, "")


def _counted(value: Any, name: str, limit: int) -> int:
    """A whole number from 1 on, also when it comes as a float such as 16000.0."""
    number = int(value)
    if number != value or not 1 <= number < limit:
        raise ValueError(f"{name}: {value!r} is none")
    return number


def _known(name: str, names: Dict[str, Any], what: str) -> str:
    if name.upper() not in names:
        raise ValueError(f"{what}: there is no {name}; choose one of {', '.join(names)}")
    return name.upper()
