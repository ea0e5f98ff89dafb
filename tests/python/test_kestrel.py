# SPDX-License-Identifier: Apache-2.0
import pathlib

import numpy as np
import pytest

import voxplay
from voxplay import kestrel

# An SP header, and what a stream says before its first frame.
HEADERS = 48 + 6


@pytest.mark.parametrize("bit_rate", [7200, 9600, 12000, 14400, 16000, 20000, 24000, 32000])
def test_frames_are_those_of_files(noise, bit_rate):
    samples = noise(3200) // 4
    voxplay.write("x.kst", samples, 16000, f"KESTREL_{bit_rate}")
    encoder, decoder = kestrel.Encoder(bit_rate), kestrel.Decoder(bit_rate)
    assert encoder.frame_bytes == decoder.frame_bytes == bit_rate // 400
    coded = encoder.encode(np.concatenate([samples, np.zeros(kestrel.FRAME, np.int16)]))
    # Files do without the first frame, which only makes what is decoded later.
    assert pathlib.Path("x.kst").read_bytes()[HEADERS:] == coded[encoder.frame_bytes:]
    # Piece by piece it is the same, and so it is after a reset.
    encoder.reset()
    pieces = [encoder.encode(samples[n:n + 320]) for n in range(0, 3200, 320)]
    assert b"".join(pieces) == coded[:3200 // 320 * encoder.frame_bytes]
    in_file = coded[encoder.frame_bytes:]
    expected = voxplay.read("x.kst", dtype="int16")[0]
    assert np.array_equal(decoder.decode(in_file), expected)
    decoder.reset()
    decoded = [decoder.decode(in_file[n:n + decoder.frame_bytes])
               for n in range(0, len(in_file), decoder.frame_bytes)]
    assert np.array_equal(np.concatenate(decoded), expected)
    assert decoder.damaged_frames == 0


def test_lost_frames_are_concealed(noise):
    speech = voxplay.read("speech.kst", dtype="int16")[0][16000:32000]
    encoder, decoder = kestrel.Encoder(16000), kestrel.Decoder(16000)
    coded = encoder.encode(speech)
    decoder.decode(coded[:40 * 20])
    assert abs(decoder.decode_lost()).max() > 1000
    # The end of the repeated frame overlaps into the next one. Silence is a faint noise.
    later = decoder.decode_lost(3)
    assert later.shape == (960,) and abs(later[320:]).max() < 32 < abs(later[:320]).max()
    assert decoder.damaged_frames == 0
    assert decoder.decode(np.random.default_rng(1).bytes(40 * 50)).shape == (16000,)
    assert 0 < decoder.damaged_frames <= 50
    decoder.reset()
    assert np.array_equal(decoder.decode(coded), kestrel.Decoder(16000).decode(coded))


def test_what_are_no_frames_is_refused():
    for bit_rate in (0, 16001, 4000, 32800):
        with pytest.raises(ValueError, match="bit rates"):
            kestrel.Encoder(bit_rate)
        with pytest.raises(ValueError, match="bit rates"):
            kestrel.Decoder(bit_rate)
    for bit_rate in (-1, 10 ** 30):
        with pytest.raises(ValueError, match="bit rates"):
            kestrel.Decoder(bit_rate)
    with pytest.raises(TypeError):
        kestrel.Encoder(16000.0)
    encoder, decoder = kestrel.Encoder(16000), kestrel.Decoder(16000)
    with pytest.raises(ValueError, match="whole frames of 320"):
        encoder.encode(np.zeros(319, np.int16))
    for samples in (np.zeros(320), np.zeros(320, np.uint16), np.zeros((1, 320), np.int16)):
        with pytest.raises(TypeError, match="int16"):
            encoder.encode(samples)
    with pytest.raises(ValueError, match="one after the other"):
        decoder._decoder.decode(memoryview(bytes(80))[::2], np.zeros(320, np.int16))
    with pytest.raises(ValueError, match="whole frames of 40"):
        decoder.decode(b"x" * 41)
    assert encoder.encode(np.zeros(0, np.int16)) == b"" and len(decoder.decode(b"")) == 0


def test_arrays_of_every_layout_are_encoded(noise):
    samples = noise(640)
    expected = kestrel.Encoder(16000).encode(samples)
    assert kestrel.Encoder(16000).encode(samples.astype(">i2")) == expected
    assert kestrel.Encoder(16000).encode(np.repeat(samples, 2)[::2]) == expected
    assert len(kestrel.Decoder(16000).decode(bytearray(expected))) == 640
