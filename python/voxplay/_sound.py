# SPDX-License-Identifier: Apache-2.0
"""A sound file that is read or written piece by piece."""

from __future__ import annotations

import operator
import os
import threading
import warnings
from types import TracebackType
from typing import Any, Dict, Iterator, List, Optional, Type, Union

import numpy as np
import numpy.typing as npt

from . import _core, _formats
from ._info import Info, frames_of, info_of
from ._notes import (Chunk, Cue, Event, Label, Loop, Notes, Range, RegionText, Sampler,
                     notes_from_core, notes_to_core)

Array = npt.NDArray[Any]

SEEK_SET, SEEK_CUR, SEEK_END = os.SEEK_SET, os.SEEK_CUR, os.SEEK_END

# The library takes and gives these. Everything else is converted to or from one of them.
_DIRECT = {np.dtype(kind) for kind in ("int16", "int32", "float32")}
_DTYPES = ("float32", "float64", "int16", "int32")
# A long call is made in pieces of this many frames, so that Ctrl-C ends it.
_FRAMES_AT_ONCE = 1 << 20
_FRAMES_OF_PIECE = 1 << 14


class Sound:
    """A sound file, open for reading (``mode='r'``) or writing (``'w'``).

    ``file`` is a path; for reading also bytes that are the content of a file; or a file object with
    ``read`` or ``write`` and, unless it only goes forward, ``seek`` and ``tell``.

    For writing, ``samplerate`` and ``channels`` are needed; ``format`` and ``subtype`` follow from
    the extension unless they are given. A file appears under its name, whole, when it is closed.
    It does not appear, and what had the name stays, when the ``with`` block ends by an exception.

    For reading, ``stream=True`` reads the coded stream of a VEF file instead of its PCM, and
    ``bare=False`` opens only what says what it is.

    Methods may be called by several threads; they take turns, call by call. Samples are coded
    without Python's lock, so sounds of their own really run at the same time.

    >>> with Sound('speech.kst') as sound:
    ...     sound.samplerate, sound.channels, sound.frames, sound.subtype
    (16000, 1, 80640, 'KESTREL_24000')
    """

    def __init__(self, file: Any, mode: str = "r", samplerate: Optional[int] = None,
                 channels: Optional[int] = None, subtype: Optional[str] = None,
                 format: Optional[str] = None, *, notes: Optional[Notes] = None,
                 frames: Optional[int] = None, stream: bool = False, bare: bool = True) -> None:
        self._reader: Optional[_core.Reader] = None
        self._writer: Optional[_core.Writer] = None
        self._lost: List[str] = []
        self._lock = threading.RLock()
        self.name = _name_of(file)
        self.mode = mode
        if mode == "r":
            if any(each is not None
                   for each in (samplerate, channels, subtype, format, notes, frames)):
                raise TypeError("samplerate, channels, subtype, format, notes and frames are for "
                                "writing only")
            self._open_to_read(file, stream, bare)
        elif mode == "w":
            if stream or not bare:
                raise TypeError("stream and bare are for reading only")
            if samplerate is None or channels is None:
                raise TypeError("writing needs samplerate and channels")
            self._open_to_write(file, samplerate, channels, subtype, format, frames or 0)
            self.notes = Notes() if notes is None else notes
        else:
            raise ValueError(f"mode: {mode!r} is neither 'r' nor 'w'")

    def _open_to_read(self, file: Any, stream: bool, bare: bool) -> None:
        self._goes_back = True
        flags = (_core.READ_STREAM if stream else 0) | (0 if bare else _core.READ_NO_BARE)
        if isinstance(file, (bytes, bytearray, memoryview)):
            self._reader = _core.Reader.open_bytes(file, flags)
        elif isinstance(file, (str, os.PathLike)):
            self._reader = _core.Reader.open_path(_path_of(file), flags)
        elif hasattr(file, "read"):
            self._reader = _core.Reader.open_file(file, flags)
            self._goes_back = _goes_back(file)
        else:
            raise TypeError(f"file: {type(file).__name__} is no path, no bytes and no file object")
        self._format = self._reader.info()
        self.notes = notes_from_core(self._reader.notes())

    def _open_to_write(self, file: Any, samplerate: int, channels: int, subtype: Optional[str],
                       format: Optional[str], frames: int) -> None:
        is_path = isinstance(file, (str, os.PathLike))
        if not is_path and not hasattr(file, "write"):
            raise TypeError(f"file: {type(file).__name__} is no path and no file object")
        name = file if is_path else getattr(file, "name", None)
        # Files of descriptors have a number for a name.
        name = os.fsdecode(name) if isinstance(name, (str, bytes, os.PathLike)) else None
        format, subtype = _formats.chosen_format(name, format, subtype)
        core_format = _formats.core_format(format, subtype, samplerate, channels, frames)
        if is_path:
            # The present folder may be another one when the sound is closed.
            self._writer = _core.Writer.open_path(_path_of(os.path.abspath(file)), core_format)
        else:
            self._writer = _core.Writer.open_file(file, core_format)
        self._format = dict(core_format)
        self._written = 0
        self._notes_sent: Optional[Dict[str, Any]] = None

    # What it is.

    @property
    def samplerate(self) -> int:
        return int(self._format["sample_rate"])

    @property
    def channels(self) -> int:
        return int(self._format["channels"])

    @property
    def format(self) -> str:
        return _formats.format_name(self._format["container"])

    @property
    def subtype(self) -> str:
        return _formats.subtype_of(self._format)[0]

    @property
    def format_info(self) -> str:
        return _formats.format_text(self._format["container"])

    @property
    def subtype_info(self) -> str:
        return _formats.subtype_of(self._format)[1]

    @property
    def frames(self) -> Optional[int]:
        """All frames; while writing, those so far.

        None while an input that only goes forward does not tell. Of a damaged sound it may turn out
        smaller while it is read.
        """
        if self.mode == "w":
            return self._written
        with self._lock:
            return frames_of(self._format if self._reader is None else self._reader.info())

    def __len__(self) -> int:
        frames = self.frames
        if frames is None:
            raise TypeError("the length of this input is not known")
        return frames

    def __bool__(self) -> bool:
        """True, also without any frames."""
        return True

    @property
    def info(self) -> Info:
        """What ``voxplay.info`` tells, and which frames were damaged so far."""
        return info_of(self._open_reader(), self.name)

    @property
    def closed(self) -> bool:
        return self._reader is None and self._writer is None

    @property
    def lost(self) -> List[str]:
        """After writing: the notes that this format does not hold, a sentence each."""
        return self._lost

    @property
    def events(self) -> List[Event]:
        return self.notes.events

    @property
    def silence(self) -> List[Range]:
        return self.notes.silence

    @property
    def regions(self) -> List[Range]:
        return self.notes.regions

    @property
    def cues(self) -> List[Cue]:
        return self.notes.cues

    @property
    def labels(self) -> List[Label]:
        return self.notes.labels

    @property
    def region_texts(self) -> List[RegionText]:
        return self.notes.region_texts

    @property
    def sampler(self) -> Optional[Sampler]:
        return self.notes.sampler

    @property
    def loops(self) -> List[Loop]:
        return self.notes.loops

    @property
    def chunks(self) -> List[Chunk]:
        return self.notes.chunks

    def __repr__(self) -> str:
        return (f"Sound({self.name!r}, mode={self.mode!r}, samplerate={self.samplerate}, "
                f"channels={self.channels}, format={self.format!r}, subtype={self.subtype!r})")

    # Reading.

    def read(self, frames: int = -1, dtype: npt.DTypeLike = "float32", always_2d: bool = False,
             fill_value: Optional[float] = None, out: Optional[Array] = None) -> Array:
        """Reads ``frames`` frames from the present position on, or all that follow.

        Returns an array of the shape (frames,) for one channel, or (frames, channels); with
        ``always_2d``, one channel is (frames, 1). float32 and float64 lie in -1 to 1; integers use
        their whole range. Where the sound ends earlier, the array is shorter, unless ``fill_value``
        says what follows. ``out`` is an array to fill. The part that was filled is returned; with
        ``fill_value`` that is all of it.
        """
        with self._lock:
            reader = self._open_reader()
            frames = operator.index(frames)
            if out is not None:
                out = out if frames < 0 or fill_value is not None else out[:frames]
                wanted = len(out) if frames < 0 else min(frames, len(out))
            elif not self._goes_back or self.frames is None:
                out = self._read_what_comes(frames, dtype, always_2d)
                if fill_value is None or len(out) >= frames:
                    return out
                filled = self._empty(frames, dtype, always_2d)
                filled[:len(out)] = out
                filled[len(out):] = fill_value
                return filled
            else:
                left = max(0, len(self) - reader.tell())
                wanted = left if frames < 0 else min(frames, left)
                size = frames if frames > wanted and fill_value is not None else wanted
                out = self._empty(size, dtype, always_2d)
            self._check_out(out)
            if fill_value is not None:
                # Before anything is read: it may be no value of this type.
                out[wanted:] = fill_value
            done = self._fill(reader, out[:wanted])
            if fill_value is None:
                return out[:done]
            out[done:wanted] = fill_value
            return out

    def _empty(self, frames: int, dtype: npt.DTypeLike, always_2d: bool) -> Array:
        if np.dtype(dtype).name not in _DTYPES:
            raise TypeError(f"dtype: {np.dtype(dtype).name} is none of {', '.join(_DTYPES)}")
        shape = (frames, self.channels) if self.channels > 1 or always_2d else (frames,)
        return np.empty(shape, dtype)

    def _check_out(self, out: Array) -> None:
        self._check_shape(out)
        if out.dtype.name not in _DTYPES:
            raise TypeError(f"out: {out.dtype} is none of {', '.join(_DTYPES)}")
        if not out.flags.writeable:
            raise ValueError("out: the array cannot be written to")

    def _check_shape(self, array: Array) -> None:
        """ValueError for arrays that are not frames of this sound."""
        if array.ndim == 1 and self.channels == 1:
            return
        if array.ndim != 2 or array.shape[1] != self.channels:
            raise ValueError(f"the shape {array.shape} is not that of frames "
                             f"with {self.channels} channels")

    def _fill(self, reader: _core.Reader, out: Array) -> int:
        """Fills an array as far as the sound goes, and returns how far that is."""
        is_direct = out.dtype in _DIRECT and out.flags.c_contiguous
        between, scale = _way_of(out.dtype, self._format)
        done = 0
        while done < len(out):
            piece = out[done:done + (_FRAMES_AT_ONCE if is_direct else _FRAMES_OF_PIECE)]
            into = piece if is_direct else np.empty(piece.shape, between)
            count = 0
            try:
                count = reader.read_into(into)
            except _core.VoxplayError as error:
                count = error.frames_read
                error.frames_read += done
                raise
            finally:
                if not is_direct:
                    piece[:count] = into[:count] if scale is None else into[:count] * scale
            done += count
            if count == 0:
                break
        return done

    def _read_what_comes(self, frames: int, dtype: npt.DTypeLike, always_2d: bool) -> Array:
        """Reads piece by piece, because what such an input says of its length may be anything."""
        pieces = [self._empty(0, dtype, always_2d)]
        done = 0
        while frames < 0 or done < frames:
            wanted = _FRAMES_OF_PIECE if frames < 0 else min(_FRAMES_OF_PIECE, frames - done)
            piece = self._empty(wanted, dtype, always_2d)
            count = self._fill(self._open_reader(), piece)
            if count == 0:
                break
            pieces.append(piece[:count])
            done += count
        return np.concatenate(pieces)

    def blocks(self, blocksize: Optional[int] = None, overlap: int = 0, frames: int = -1,
               dtype: npt.DTypeLike = "float32", always_2d: bool = False,
               fill_value: Optional[float] = None, out: Optional[Array] = None) -> Iterator[Array]:
        """Gives the sound in blocks of ``blocksize`` frames, of which ``overlap`` come again.

        The last block is shorter, unless ``fill_value`` says what follows. With ``out``, all blocks
        are in that array. The memory that this takes does not grow with the sound.

        >>> [len(block) for block in Sound('speech.kst').blocks(32000)]
        [32000, 32000, 16640]
        """
        self._open_reader()
        if out is not None:
            if blocksize is not None:
                raise TypeError("blocksize and out say the same; give one of them")
            blocksize = len(out)
        if blocksize is None:
            raise TypeError("blocks needs blocksize or out")
        if blocksize < 1 or not 0 <= overlap < blocksize:
            raise ValueError(f"blocks of {blocksize} frames cannot have {overlap} in common")
        return self._blocks(blocksize, overlap, frames, dtype, always_2d, fill_value, out)

    def _blocks(self, blocksize: int, overlap: int, frames: int, dtype: npt.DTypeLike,
                always_2d: bool, fill_value: Optional[float],
                out: Optional[Array]) -> Iterator[Array]:
        again = self._empty(0, dtype, always_2d) if out is None else out[:0].copy()
        while True:
            block = self._empty(blocksize, dtype, always_2d) if out is None else out
            kept = len(again)
            block[:kept] = again
            wanted = blocksize - kept if frames < 0 else min(blocksize - kept, frames)
            got = kept + len(self.read(wanted, out=block[kept:kept + wanted]))
            if frames >= 0:
                frames -= got - kept
            if got == kept:
                return
            again = block[blocksize - overlap:got].copy()
            if got < blocksize and fill_value is not None:
                block[got:] = fill_value
                got = blocksize
            yield block[:got]

    def seek(self, frames: int, whence: int = SEEK_SET) -> int:
        """Moves to a frame, counted as in ``io``; returns where that is."""
        with self._lock:
            reader = self._open_reader()
            frames = operator.index(frames)
            if whence == SEEK_CUR:
                frames += reader.tell()
            elif whence == SEEK_END:
                frames += len(self)
            elif whence != SEEK_SET:
                raise ValueError(f"whence: {whence} is none")
            if not 0 <= frames < 1 << 64:
                raise ValueError(f"there is no frame {frames}")
            reader.seek(frames)
            return frames

    def seekable(self) -> bool:
        """Whether ``seek`` can go back."""
        return self.mode == "r" and self._goes_back

    def tell(self) -> int:
        return self._written if self.mode == "w" else self._open_reader().tell()

    # Writing.

    def write(self, data: npt.ArrayLike) -> None:
        """Writes frames: float32, float64, int16 or int32, of the shape that ``read`` gives."""
        samples = np.asarray(data)
        self._check_shape(samples)
        if samples.dtype.name not in _DTYPES:
            raise TypeError(f"data: {samples.dtype} is none of {', '.join(_DTYPES)}")
        between, scale = _way_of(samples.dtype, self._format)
        with self._lock:
            writer = self._open_writer()
            if self._notes_sent is None and self.notes:
                self._send_notes(writer)
            for first in range(0, len(samples), _FRAMES_AT_ONCE):
                piece = samples[first:first + _FRAMES_AT_ONCE]
                if scale is not None:
                    piece = _as_integers(piece)
                writer.write(np.ascontiguousarray(piece, between))
                self._written += len(piece)

    def _send_notes(self, writer: _core.Writer) -> None:
        records = notes_to_core(self.notes)
        if records != self._notes_sent:
            writer.set_notes(records)
            self._notes_sent = records

    def abandon(self) -> None:
        """Ends writing without a file; what had its name stays."""
        with self._lock:
            if self._writer is not None:
                writer, self._writer = self._writer, None
                writer.abandon()

    def close(self) -> None:
        """Ends reading; or writes what is left, and lets the file appear.

        Notes that no file can hold raise an exception here, and the sound stays open.
        """
        with self._lock:
            if self._reader is not None:
                reader, self._reader = self._reader, None
                self._format = reader.info()
                reader.close()
            if self._writer is not None:
                if self.notes or self._notes_sent is not None:
                    self._send_notes(self._writer)
                # After a failure there is nothing to finish any more.
                writer, self._writer = self._writer, None
                try:
                    self._lost = [text.decode("utf-8", "replace") for text in writer.finish()]
                finally:
                    writer.abandon()

    def __del__(self) -> None:
        if getattr(self, "_writer", None) is not None:
            warnings.warn(f"{self.name} was not closed, so it is not written", ResourceWarning,
                          source=self)

    def __enter__(self) -> Sound:
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        if kind is not None:
            self.abandon()
        self.close()

    def _open_reader(self) -> _core.Reader:
        if self._reader is None:
            raise ValueError("the sound is closed" if self.mode == "r" else
                             "the sound is open for writing only")
        return self._reader

    def _open_writer(self) -> _core.Writer:
        if self._writer is None:
            raise ValueError("the sound is closed" if self.mode == "w" else
                             "the sound is open for reading only")
        return self._writer


def _goes_back(file: Any) -> bool:
    if hasattr(file, "seekable"):
        return bool(file.seekable())
    return hasattr(file, "seek") and hasattr(file, "tell")


def _way_of(dtype: "np.dtype[Any]", format: Dict[str, Any]) -> "tuple[np.dtype[Any], Optional[float]]":
    """As which type samples of another type or byte order go through the library.

    Integers of 32 bits have more of them than float32, so float64 goes through int32 there, with the
    factor that makes them lie in -1 to 1.
    """
    native = dtype.newbyteorder("=")
    if native in _DIRECT:
        return native, None
    if format["codec"] == _formats.PCM and format["bits_per_sample"] > 24:
        return np.dtype("int32"), 1 / 2147483648
    return np.dtype("float32"), None


def _as_integers(samples: Array) -> Array:
    scaled = np.rint(np.where(np.isnan(samples), 0.0, samples) * 2147483648.0)
    limited: Array = np.clip(scaled, -2147483648, 2147483647).astype(np.int32)
    return limited


def _path_of(path: Union[str, os.PathLike[str]]) -> bytes:
    encoded = os.fsencode(path)
    if b"\0" in encoded:
        raise ValueError("file: a zero in a path")
    return encoded


def _name_of(file: Any) -> str:
    if isinstance(file, (str, os.PathLike)):
        return os.fsdecode(file)
    if isinstance(file, (bytes, bytearray, memoryview)):
        return "bytes"
    return str(getattr(file, "name", type(file).__name__))
