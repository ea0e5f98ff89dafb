# SPDX-License-Identifier: Apache-2.0
import io
import os
import pathlib

import numpy as np
import pytest
import soundfile

import voxplay


@pytest.mark.parametrize("subtype", ["PCM_U8", "PCM_16", "PCM_24", "PCM_32", "FLOAT"])
def test_soundfile_reads_what_is_written(noise, subtype):
    samples = noise(1000, 2).astype(np.float32) / 32768
    assert voxplay.write("x.wav", samples, 48000, subtype) == []
    theirs, rate = soundfile.read("x.wav", dtype="float32")
    ours, _ = voxplay.read("x.wav")
    assert rate == 48000 and soundfile.info("x.wav").subtype == subtype
    assert np.array_equal(ours, theirs)
    assert abs(ours - samples).max() <= (1 / 128 if subtype == "PCM_U8" else 1e-4)


def test_integers_stay_themselves(noise):
    samples = noise(1000, 3)
    voxplay.write("x.wav", samples, 8000)
    assert np.array_equal(voxplay.read("x.wav", dtype="int16")[0], samples)
    wide = samples.astype(np.int32) * 65537
    voxplay.write("wide.wav", wide, 8000, "PCM_32")
    assert np.array_equal(voxplay.read("wide.wav", dtype="int32")[0], wide)


@pytest.mark.parametrize("view", [
    lambda a: a[::2], lambda a: a[::-1], lambda a: a.astype(">i2"), lambda a: a.tolist(),
    lambda a: np.asfortranarray(a),
])
def test_arrays_of_every_layout_are_written(noise, view):
    samples = noise(100, 2)
    given = view(samples)
    if isinstance(given, list):
        with pytest.raises(TypeError, match="int64"):
            voxplay.write("x.wav", given, 8000)
        return
    voxplay.write("x.wav", given, 8000)
    assert np.array_equal(voxplay.read("x.wav", dtype="int16")[0], given)


# Kestrel has whole frames of 320, of which the last is one later.
@pytest.mark.parametrize("name, format, subtype, frames", [
    ("x.wav", "WAV", "PCM_16", 1000), ("x.vemd", "VEMD", "PCM_16", 1000),
    ("x.vef", "VEF", "PCM_16", 1000), ("x.kst", "SP", "KESTREL_16000", 1280),
    ("X.KST", "SP", "KESTREL_16000", 1280), ("x.hrn", "SP", "HERON_4", 1000),
])
def test_the_extension_says_what_is_written(noise, name, format, subtype, frames):
    voxplay.write(name, noise(1000), 16000)
    info = voxplay.info(name)
    assert (info.format, info.subtype, info.frames) == (format, subtype, frames)


def test_a_format_keeps_what_the_extension_says_where_it_can(noise):
    voxplay.write("x.hrn", noise(1000), 16000, format="HEAD")
    assert voxplay.info("x.hrn").subtype == "HERON_4"
    voxplay.write("x.hrn", noise(1000), 16000, format="WAV")
    assert voxplay.info("x.hrn").format == "WAV"


def test_every_available_kind_is_written_and_read(noise):
    kinds = [(format, subtype) for format in voxplay.available_formats()
             for subtype in voxplay.available_subtypes(format)]
    assert len(kinds) == 63
    for format, subtype in kinds:
        file = io.BytesIO()
        voxplay.write(file, noise(700), 16000, subtype, format)
        # Nothing recognises Heron without a header.
        if (format, subtype[:5]) != ("BARE", "HERON"):
            stream = format == "VEF" and not subtype.startswith("PCM")
            with voxplay.Sound(file.getvalue(), stream=stream) as sound:
                assert (sound.format, sound.subtype) == (format, subtype)
                assert len(sound.read()) in (700, 960)


def test_kinds_that_are_none_are_refused():
    assert not voxplay.check_format("WAV", "HERON_4")
    assert not voxplay.check_format("nonsense")
    assert not voxplay.check_format("SP", "HERON_4", samplerate=96000)
    assert "WAV" in voxplay.format_problem("WAV", "HERON_4")
    assert voxplay.format_problem("wav", "pcm_16") == ""
    for how in ({"format": "nonsense"}, {"subtype": "nonsense"}, {"samplerate": 0},
                {"samplerate": 1 << 32}, {"samplerate": 8000.5}, {"samplerate": -1}):
        with pytest.raises(ValueError):
            voxplay.write("x.wav", np.zeros(5, np.int16), **{"samplerate": 8000, **how})
    for name in ("noextension", "folder.wav/noextension"):
        with pytest.raises(ValueError, match="format: the name does not say it"):
            voxplay.write(name, np.zeros(5, np.int16), 8000)
    assert os.listdir() == ["speech.kst"]


def test_data_of_another_shape_or_kind_is_refused_and_nothing_appears(noise):
    for data in (np.zeros((2, 2, 2), np.int16), np.int16(5), np.zeros(5, np.uint8),
                 np.zeros(5, complex), np.zeros((5, 0), np.int16)):
        with pytest.raises((ValueError, TypeError)):
            voxplay.write("x.wav", data, 8000)
    with pytest.raises(ValueError, match="channels"):
        with voxplay.Sound("x.wav", "w", 8000, 2) as sound:
            sound.write(noise(10))
    assert os.listdir() == ["speech.kst"]


def test_a_sound_is_written_piece_by_piece_and_appears_at_the_end(noise):
    samples = noise(1000)
    with voxplay.Sound("x.vef", "w", 8000, 1) as sound:
        for first in range(0, 1000, 100):
            sound.write(samples[first:first + 100])
            assert sound.tell() == sound.frames == first + 100
            assert not os.path.exists("x.vef")
    assert sound.closed and sound.lost == []
    assert np.array_equal(voxplay.read("x.vef", dtype="int16")[0], samples)


def test_an_exception_leaves_what_was_there(noise):
    pathlib.Path("x.wav").write_bytes(b"as it was")
    with pytest.raises(ZeroDivisionError):
        with voxplay.Sound("x.wav", "w", 8000, 1) as sound:
            sound.write(noise(10))
            1 / 0
    assert pathlib.Path("x.wav").read_bytes() == b"as it was"
    sound = voxplay.Sound("x.wav", "w", 8000, 1)
    sound.write(noise(10))
    sound.abandon()
    sound.close()
    assert pathlib.Path("x.wav").read_bytes() == b"as it was"
    forgotten = voxplay.Sound("x.wav", "w", 8000, 1)
    forgotten.write(noise(10))
    with pytest.warns(ResourceWarning, match="x.wav was not closed"):
        del forgotten
    assert sorted(os.listdir()) == ["speech.kst", "x.wav"]
    assert pathlib.Path("x.wav").read_bytes() == b"as it was"


def test_a_closed_sound_does_nothing_more(noise):
    sound = voxplay.Sound("speech.kst")
    sound.close()
    sound.close()
    assert sound.closed and sound.frames == 80640 and sound.samplerate == 16000
    for use in (sound.read, sound.tell, lambda: sound.seek(0), lambda: sound.info,
                lambda: list(sound.blocks(10)), lambda: sound.write(noise(1))):
        with pytest.raises(ValueError):
            use()
    with pytest.raises(ValueError, match="writing only"):
        voxplay.Sound("x.wav", "w", 8000, 1).read()


def test_modes_take_what_belongs_to_them():
    with pytest.raises(ValueError, match="mode"):
        voxplay.Sound("speech.kst", "r+")
    with pytest.raises(TypeError, match="samplerate"):
        voxplay.Sound("x.wav", "w", channels=1)
    with pytest.raises(TypeError, match="writing only"):
        voxplay.Sound("speech.kst", samplerate=8000)
    for file in (5, None, b"bytes"):
        with pytest.raises(TypeError, match="file"):
            voxplay.Sound(file, "w", 8000, 1, format="WAV")
    with pytest.raises(TypeError, match="reading only"):
        voxplay.Sound("x.wav", "w", 8000, 1, stream=True)
    with pytest.raises(ValueError, match="zero"):
        voxplay.Sound("with\0zero.wav", "w", 8000, 1)


def test_rates_may_come_as_floats_and_files_tell_their_format(noise):
    with open("x.vef", "wb+") as file:
        voxplay.write(file, noise(10), 16000.0)
    assert voxplay.info("x.vef").format == "VEF" and len({voxplay.info("x.vef")}) == 1


def test_the_folder_may_change_before_a_sound_is_closed(noise, folder):
    (folder / "other").mkdir()
    with voxplay.Sound("x.wav", "w", 8000, 1) as sound:
        sound.write(noise(10))
        os.chdir("other")
    assert (folder / "x.wav").exists() and not os.listdir()


def test_a_stream_needs_a_frame():
    with pytest.raises(voxplay.VoxplayError) as refused:
        voxplay.write("x.kst", np.zeros(0, np.int16), 16000)
    assert refused.value.status == "unsupported" and os.listdir() == ["speech.kst"]
    assert voxplay.write("x.wav", np.zeros((0, 2), np.int16), 16000) == []
    assert voxplay.read("x.wav")[0].shape == (0, 2)


class OnlyForward:
    def __init__(self):
        self.content = b""

    def write(self, data):
        self.content += data[:1000]
        return min(len(data), 1000)

    def seekable(self):
        return False


def test_what_only_goes_forward_gets_the_same_bytes(noise, all_notes):
    for name in ("x.wav", "x.kst", "x.vef"):
        format = {"wav": "WAV", "kst": "SP", "vef": "VEF"}[name[2:]]
        pipe = OnlyForward()
        lost = voxplay.write(pipe, noise(1000), 16000, format=format, notes=all_notes)
        assert voxplay.write(name, noise(1000), 16000, notes=all_notes) == lost
        assert pipe.content == pathlib.Path(name).read_bytes()


def test_file_objects_are_written_where_they_stand(noise):
    file = io.BytesIO(b"before")
    file.seek(6)
    voxplay.write(file, noise(100), 8000, format="WAV")
    assert file.getvalue()[:10] == b"beforeRIFF"
    file.seek(6)
    assert np.array_equal(voxplay.read(file, dtype="int16")[0], noise(100))
