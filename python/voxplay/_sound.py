# SPDX-License-Identifier: Apache-2.0
"""A sound file that is read or written piece by piece."""

from __future__ import annotations

import os
from types import TracebackType
from typing import Any, Dict, Iterator, List, Optional, Type, Union

import numpy as np
import numpy.typing as npt

from . import _core, _formats
from ._info import Info, frames_of, info_of
from ._notes import Chunk, Cue, Event, Label, Loop, Notes, Range, notes_from_core, notes_to_core

Array = npt.NDArray[Any]

SEEK_SET, SEEK_CUR, SEEK_END = os.SEEK_SET, os.SEEK_CUR, os.SEEK_END

# What goes to and from the library as it is; everything else goes through a piece of float32.
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

    Methods may be called by several threads; they take turns. Samples are coded without Python's
    lock, so sounds of their own really run at the same time.

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
        self.name = _name_of(file)
        self.mode = mode
        if mode == "r":
            if any(each is not None
                   for each in (samplerate, channels, subtype, format, notes, frames)):
                raise TypeError("samplerate, channels, subtype, format, notes and frames are for "
                                "writing only")
            self._open_to_read(file, stream, bare)
        elif mode == "w":
            if samplerate is None or channels is None:
                raise TypeError("writing needs samplerate and channels")
            self._open_to_write(file, samplerate, channels, subtype, format, frames or 0)
            self.notes = Notes() if notes is None else notes
        else:
            raise ValueError(f"mode: {mode!r} is neither 'r' nor 'w'")

    def _open_to_read(self, file: Any, stream: bool, bare: bool) -> None:
        flags = (_core.READ_STREAM if stream else 0) | (0 if bare else _core.READ_NO_BARE)
        if isinstance(file, (bytes, bytearray, memoryview)):
            self._reader = _core.Reader.open_bytes(file, flags)
        elif isinstance(file, (str, os.PathLike)):
            self._reader = _core.Reader.open_path(_path_of(file), flags)
        elif hasattr(file, "read"):
            self._reader = _core.Reader.open_file(file, flags)
        else:
            raise TypeError(f"file: {type(file).__name__} is no path, no bytes and no file object")
        self._format = self._reader.info()
        self.notes = notes_from_core(self._reader.notes())

    def _open_to_write(self, file: Any, samplerate: int, channels: int, subtype: Optional[str],
                       format: Optional[str], frames: int) -> None:
        is_path = isinstance(file, (str, os.PathLike))
        if not is_path and not hasattr(file, "write"):
            raise TypeError(f"file: {type(file).__name__} is no path and no file object")
        format, subtype = _formats.chosen_format(os.fspath(file) if is_path else None,
                                                 format, subtype)
        core_format = _formats.core_format(format, subtype, samplerate, channels, frames)
        if is_path:
            self._writer = _core.Writer.open_path(_path_of(file), core_format)
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
    def frames(self) -> Optional[int]:
        """All frames; while writing, those so far.

        None while an input that only goes forward does not tell. Of a damaged sound it may turn out
        smaller while it is read.
        """
        if self.mode == "w":
            return self._written
        if self._reader is None:
            return frames_of(self._format)
        return frames_of(self._reader.info())

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
        says what follows. ``out`` is an array to be filled and, as far as it was, returned.
        """
        reader = self._open_reader()
        if out is not None:
            wanted = len(out) if frames < 0 else min(frames, len(out))
            out = out[:wanted]
            self._check_shape(out)
        else:
            if frames < 0 and self.frames is None:
                return self._read_to_unknown_end(dtype, always_2d)
            if frames < 0:
                wanted = max(0, len(self) - reader.tell())
            elif self.frames is None or fill_value is not None:
                wanted = frames
            else:
                wanted = min(frames, max(0, len(self) - reader.tell()))
            out = self._empty(wanted, dtype, always_2d)
        done = self._fill(reader, out)
        if done < len(out):
            if fill_value is None:
                return out[:done]
            out[done:] = fill_value
        return out

    def _empty(self, frames: int, dtype: npt.DTypeLike, always_2d: bool) -> Array:
        if np.dtype(dtype).name not in _DTYPES:
            raise TypeError(f"dtype: {np.dtype(dtype).name} is none of {', '.join(_DTYPES)}")
        shape = (frames, self.channels) if self.channels > 1 or always_2d else (frames,)
        return np.empty(shape, dtype)

    def _check_shape(self, array: Array) -> None:
        """ValueError for arrays that are not frames of this sound."""
        if array.ndim == 1 and self.channels == 1:
            return
        if array.ndim != 2 or array.shape[1] != self.channels:
            raise ValueError(f"the shape {array.shape} is not that of frames "
                             f"with {self.channels} channels")

    def _fill(self, reader: _core.Reader, out: Array) -> int:
        """Fills an array as far as the sound goes, and returns how far that is."""
        is_direct = out.dtype in _DIRECT and out.flags.c_contiguous and out.flags.writeable
        if not is_direct and out.dtype.name not in _DTYPES:
            raise TypeError(f"out: {out.dtype} is none of {', '.join(_DTYPES)}")
        between = out.dtype.newbyteorder("=") if out.dtype.newbyteorder("=") in _DIRECT \
            else np.dtype("float32")
        done = 0
        while done < len(out):
            piece = out[done:done + (_FRAMES_AT_ONCE if is_direct else _FRAMES_OF_PIECE)]
            into = piece if is_direct else np.empty(piece.shape, between)
            try:
                count = reader.read_into(into)
            except _core.VoxplayError as error:
                if not is_direct:
                    piece[:error.frames_read] = into[:error.frames_read]
                error.frames_read += done
                raise
            if not is_direct:
                piece[:count] = into[:count]
            done += count
            if count == 0:
                break
        return done

    def _read_to_unknown_end(self, dtype: npt.DTypeLike, always_2d: bool) -> Array:
        pieces = []
        while len(piece := self.read(_FRAMES_OF_PIECE, dtype, always_2d)):
            pieces.append(piece)
        return np.concatenate(pieces) if pieces else self._empty(0, dtype, always_2d)

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
        again = self._empty(0, dtype if out is None else out.dtype, always_2d)
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
        reader = self._open_reader()
        if whence == SEEK_CUR:
            frames += reader.tell()
        elif whence == SEEK_END:
            frames += len(self)
        elif whence != SEEK_SET:
            raise ValueError(f"whence: {whence} is none")
        if frames < 0:
            raise ValueError(f"frame {frames} is before the sound")
        reader.seek(frames)
        return frames

    def tell(self) -> int:
        return self._written if self.mode == "w" else self._open_reader().tell()

    # Writing.

    def write(self, data: npt.ArrayLike) -> None:
        """Writes frames: float32, float64, int16 or int32, of the shape that ``read`` gives."""
        writer = self._open_writer()
        samples = np.asarray(data)
        self._check_shape(samples)
        if samples.dtype.name not in _DTYPES:
            raise TypeError(f"data: {samples.dtype} is none of {', '.join(_DTYPES)}")
        if self._notes_sent is None and self.notes:
            self._send_notes(writer)
        kind = samples.dtype.newbyteorder("=")
        if kind not in _DIRECT:
            kind = np.dtype("float32")
        for first in range(0, len(samples), _FRAMES_AT_ONCE):
            piece = np.ascontiguousarray(samples[first:first + _FRAMES_AT_ONCE], kind)
            writer.write(piece)
            self._written += len(piece)

    def _send_notes(self, writer: _core.Writer) -> None:
        records = notes_to_core(self.notes)
        if records != self._notes_sent:
            writer.set_notes(records)
            self._notes_sent = records

    def abandon(self) -> None:
        """Ends writing without a file; what had its name stays."""
        if self._writer is not None:
            self._writer.abandon()
            self._writer = None

    def close(self) -> None:
        """Ends reading; or writes what is left, and lets the file appear."""
        if self._reader is not None:
            self._format = self._reader.info()
            self._reader.close()
            self._reader = None
        if self._writer is not None:
            writer = self._writer
            try:
                if self.notes or self._notes_sent is not None:
                    self._send_notes(writer)
                self._lost = [text.decode("utf-8", "replace") for text in writer.finish()]
            finally:
                # After a failure there is nothing to finish any more.
                self.abandon()

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
