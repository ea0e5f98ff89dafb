# SPDX-License-Identifier: Apache-2.0
import io
import pathlib

import numpy as np
import pytest
import soundfile

import voxplay


def test_float32_is_the_default_and_lies_within_one():
    data, rate = voxplay.read("speech.kst")
    assert (data.dtype, data.shape, rate) == (np.float32, (80640,), 16000)
    assert 0.5 < abs(data).max() < 1


def test_all_types_agree():
    ints = voxplay.read("speech.kst", dtype="int16")[0]
    assert ints.dtype == np.int16
    assert ints[4000:4004].tolist() == voxplay.read("speech.kst", dtype=np.int16)[0][4000:4004].tolist()
    assert np.array_equal(voxplay.read("speech.kst")[0], ints / np.float32(32768))
    assert np.array_equal(voxplay.read("speech.kst", dtype="float64")[0], ints / 32768)
    wide = voxplay.read("speech.kst", dtype="int32")[0]
    assert np.array_equal(wide, ints.astype(np.int32) << 16)


@pytest.mark.parametrize("subtype", ["PCM_U8", "PCM_16", "PCM_24", "PCM_32", "FLOAT"])
@pytest.mark.parametrize("channels", [1, 2, 3])
def test_wav_reads_as_soundfile_reads_it(noise, subtype, channels):
    soundfile.write("x.wav", noise(1000, channels), 44100, subtype)
    # As integers, soundfile takes floating point as it is, and not as parts of the whole range.
    for dtype in ("float32",) if subtype == "FLOAT" else ("int16", "int32", "float32"):
        theirs, rate = soundfile.read("x.wav", dtype=dtype)
        ours, our_rate = voxplay.read("x.wav", dtype=dtype)
        assert rate == our_rate and np.array_equal(ours, theirs), dtype
    info, theirs = voxplay.info("x.wav"), soundfile.info("x.wav")
    assert (info.samplerate, info.channels, info.frames) == \
        (theirs.samplerate, theirs.channels, theirs.frames)
    assert (info.format, info.subtype, info.duration) == ("WAV", subtype, theirs.duration)


def test_float64_keeps_all_bits_of_integers():
    wide = np.random.default_rng(2).integers(-2 ** 31, 2 ** 31, 1000, np.int32)
    soundfile.write("x.wav", wide, 8000, "PCM_32")
    exact = soundfile.read("x.wav")[0]
    assert np.array_equal(voxplay.read("x.wav", dtype="float64")[0], exact)
    voxplay.write("y.wav", exact, 8000, "PCM_32")
    assert np.array_equal(voxplay.read("y.wav", dtype="int32")[0], wide)
    voxplay.write("y.wav", np.array([2.0, -2.0, np.nan, np.inf]), 8000, "PCM_32")
    assert voxplay.read("y.wav", dtype="int32")[0].tolist() == [2 ** 31 - 1, -2 ** 31, 0, 2 ** 31 - 1]


def test_one_channel_is_flat_unless_two_dimensions_are_wanted(noise):
    voxplay.write("one.wav", noise(10), 8000)
    voxplay.write("two.wav", noise(10, 2), 8000)
    assert voxplay.read("one.wav")[0].shape == (10,)
    assert voxplay.read("one.wav", always_2d=True)[0].shape == (10, 1)
    assert voxplay.read("two.wav")[0].shape == (10, 2)


@pytest.mark.parametrize("how, expected", [
    ({}, range(0, 100)), ({"start": 10}, range(10, 100)), ({"stop": 10}, range(0, 10)),
    ({"start": 10, "stop": 20}, range(10, 20)), ({"start": -10}, range(90, 100)),
    ({"start": -10, "stop": -5}, range(90, 95)), ({"frames": 7}, range(0, 7)),
    ({"frames": 7, "start": 96}, range(96, 100)), ({"start": 100}, range(0)),
    ({"start": 200}, range(0)), ({"start": 20, "stop": 10}, range(0)), ({"frames": 0}, range(0)),
    ({"stop": 1000}, range(0, 100)),
])
def test_parts_are_those_of_a_slice(how, expected):
    voxplay.write("x.wav", np.arange(100, dtype=np.int16), 8000)
    assert voxplay.read("x.wav", dtype="int16", **how)[0].tolist() == list(expected)


def test_frames_and_stop_together_are_refused():
    with pytest.raises(TypeError, match="frames and stop"):
        voxplay.read("speech.kst", frames=1, stop=2)


def test_what_is_missing_is_filled_when_asked():
    voxplay.write("x.wav", np.array([1, 2, 3], np.int16), 8000)
    assert voxplay.read("x.wav", 5, dtype="int16", fill_value=9)[0].tolist() == [1, 2, 3, 9, 9]
    assert voxplay.read("x.wav", 5, dtype="int16")[0].tolist() == [1, 2, 3]
    assert voxplay.read("x.wav", 2, dtype="int16", fill_value=9)[0].tolist() == [1, 2]


@pytest.mark.parametrize("out", [
    np.zeros(5, np.int16), np.zeros(5, np.float64), np.zeros(10, np.int16)[::2],
    np.zeros(5, ">i2"), np.zeros(5, ">f4"), np.zeros((5, 1), np.int32),
])
def test_an_array_of_the_callers_is_filled(out):
    voxplay.write("x.wav", np.array([1, 2, 3], np.int16), 8000)
    got = voxplay.read("x.wav", out=out)[0]
    assert len(got) == 3 and np.shares_memory(got, out)
    scale = {"i2": 1, "i4": 65536, "f4": 1 / 32768, "f8": 1 / 32768}[out.dtype.str[1:]]
    assert np.allclose(out.ravel(), np.array([1, 2, 3, 0, 0]) * scale)


def test_arrays_that_cannot_be_filled_are_refused():
    with pytest.raises(TypeError, match="uint8"):
        voxplay.read("speech.kst", out=np.zeros(5, np.uint8))
    with pytest.raises(TypeError, match="int8"):
        voxplay.read("speech.kst", dtype="int8")
    with pytest.raises(ValueError, match="channels"):
        voxplay.read("speech.kst", out=np.zeros((5, 2), np.int16))
    still = np.zeros(5, np.int16)
    still.flags.writeable = False
    with voxplay.Sound("speech.kst") as sound:
        with pytest.raises(ValueError, match="written"):
            sound.read(out=still)
        with pytest.raises((ValueError, OverflowError)):
            sound.read(10, "int16", fill_value=float("nan"), out=np.zeros(20, np.int16))
        assert sound.tell() == 0


@pytest.mark.parametrize("frames", [-1, 0, 2, 5, 9])
@pytest.mark.parametrize("fill_value", [None, 7])
def test_filled_arrays_are_those_of_soundfile(frames, fill_value):
    voxplay.write("x.wav", np.array([1, 2, 3], np.int16), 8000)
    ours, theirs = np.full(6, 9, np.int16), np.full(6, 9, np.int16)
    if frames > 6:
        frames = 6
    got = voxplay.read("x.wav", frames, fill_value=fill_value, out=ours)[0]
    expected = soundfile.read("x.wav", frames, fill_value=fill_value, out=theirs)[0]
    assert got.tolist() == expected.tolist() and ours.tolist() == theirs.tolist()


def test_paths_bytes_and_file_objects_give_the_same():
    path = pathlib.Path("speech.kst")
    content = path.read_bytes()
    expected = voxplay.read("speech.kst", dtype="int16")[0]
    for file in (path, content, bytearray(content), memoryview(content), io.BytesIO(content),
                 path.open("rb"), path.open("rb", buffering=0)):
        assert np.array_equal(voxplay.read(file, dtype="int16")[0], expected), file


def test_a_file_object_is_read_from_where_it_stands():
    content = io.BytesIO(b"something before" + pathlib.Path("speech.kst").read_bytes())
    content.seek(16)
    assert voxplay.read(content)[0].shape == (80640,)


class Pipe:
    """Only goes forward, in small pieces."""

    def __init__(self, content):
        self._content = io.BytesIO(content)

    def read(self, size):
        return self._content.read(min(size, 100))


def test_what_only_goes_forward_is_read_to_its_end(noise):
    samples = noise(40000, 2)
    voxplay.write("x.wav", samples, 8000)
    content = pathlib.Path("x.wav").read_bytes()
    assert np.array_equal(voxplay.read(Pipe(content), dtype="int16")[0], samples)
    got = voxplay.read(Pipe(content), start=10000, stop=20000, dtype="int16")[0]
    assert np.array_equal(got, samples[10000:20000])
    assert voxplay.read(Pipe(content), start=50000)[0].shape == (0, 2)
    # What it says of its length is not believed.
    claims = content[:40] + (0xFFFFFFF0).to_bytes(4, "little") + content[44:]
    with voxplay.Sound(Pipe(claims)) as sound:
        assert not sound.seekable() and sound.frames > 10 ** 9
        got = sound.read(dtype="int16")
        assert np.array_equal(got, samples) and got.base is None
    assert len(voxplay.read(Pipe(claims), 10 ** 12)[0]) == 40000
    assert len(voxplay.read(Pipe(content), 40005, fill_value=0)[0]) == 40005
    # A pipe's own header does not know the length.
    unknown = content[:4] + b"\xff" * 4 + content[8:40] + b"\xff" * 4 + content[44:]
    with voxplay.Sound(Pipe(unknown)) as sound:
        assert sound.frames is None and sound.info.duration is None
        assert "not known" in str(sound.info)
        with pytest.raises(TypeError, match="not known"):
            len(sound)
        assert np.array_equal(sound.read(dtype="int16"), samples)
    with pytest.raises(voxplay.VoxplayError) as refused:
        with voxplay.Sound(Pipe(unknown)) as sound:
            sound.read(20000)
            sound.seek(0)
    assert refused.value.status == "cannot_seek"


def test_seeking_lands_on_the_frame():
    whole = voxplay.read("speech.kst", dtype="int16")[0]
    with voxplay.Sound("speech.kst") as sound:
        for frame in (80000, 1, 40001, 319, 320, 80640, 0, 12345):
            assert sound.seek(frame) == frame == sound.tell()
            assert np.array_equal(sound.read(500, "int16"), whole[frame:frame + 500])
        assert sound.seek(-10, voxplay.SEEK_END) == 80630
        assert sound.seek(-10, voxplay.SEEK_CUR) == 80620
        assert sound.seekable()
        for frame, whence in ((-1, voxplay.SEEK_SET), (0, 7), (10 ** 30, voxplay.SEEK_SET)):
            with pytest.raises(ValueError):
                sound.seek(frame, whence)
        with pytest.raises(voxplay.VoxplayError):
            sound.seek(80641)
        assert sound.tell() == 80620


def test_a_vef_file_has_pcm_and_a_stream(noise):
    data = voxplay.read("speech.kst", dtype="int16")[0]
    voxplay.write("x.vef", data, 16000, "KESTREL_32000")
    info = voxplay.info("x.vef")
    assert (info.format, info.subtype, info.has_stream) == ("VEF", "PCM_16", True)
    assert voxplay.info("x.vef", stream=True).subtype == "KESTREL_32000"
    assert np.array_equal(voxplay.read("x.vef", dtype="int16")[0], data)
    coded = voxplay.read("x.vef", dtype="int16", stream=True)[0]
    assert len(coded) == len(data) and not np.array_equal(coded, data)


def test_a_stream_without_a_header_opens_unless_that_is_not_wanted():
    data = voxplay.read("speech.kst", dtype="int16")[0]
    voxplay.write("bare.kst", data, 16000, "KESTREL_24000", "BARE")
    assert voxplay.info("bare.kst").format == "BARE"
    with pytest.raises(voxplay.VoxplayError) as refused:
        voxplay.read("bare.kst", bare=False)
    assert refused.value.status == "unknown"


def test_info_tells_headers_and_chunks(noise):
    info = voxplay.info("speech.kst")
    assert info.headers == {"sp": {"version": 254, "identifier": 14, "format": 16,
                                   "sample_rate": 16000, "value_30": 0, "value_34": 0,
                                   "value_36": 0, "value_37": 0}}
    assert (info.bit_rate, info.claimed_frames, info.is_cut, info.chunks) == (24000, 80640, False, [])
    voxplay.write("x.wav", noise(10), 8000)
    places = voxplay.info("x.wav").chunks
    assert [(place.id, place.offset, place.size, place.held) for place in places] == \
        [("fmt ", 20, 16, 16), ("data", 44, 20, 20)]
    voxplay.write("x.hrn", noise(1000), 8000, "HERON_2", "HEAD")
    assert voxplay.info("x.hrn").headers["head"]["sample_rate"] == 8000
    voxplay.write("x.vef", noise(1000), 8000, "HERON_3")
    assert voxplay.info("x.vef").headers["vafm"]["channels"] == 1


def test_probe_tells_formats_and_failed_tests():
    probe = voxplay.probe("speech.kst")
    assert (probe.format, probe.codec, probe.supported) == ("SP", "KESTREL", True)
    nothing = voxplay.probe(b"nothing of ours")
    assert not nothing and nothing.format is None and nothing.text.count("\n") > 2
    with open("speech.kst", "rb") as file:
        assert voxplay.probe(file).format == "SP" and file.tell() == 0
    with pytest.raises(FileNotFoundError):
        voxplay.probe("missing.kst")
