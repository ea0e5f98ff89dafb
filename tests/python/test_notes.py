# SPDX-License-Identifier: Apache-2.0
import dataclasses
import pathlib

import numpy as np
import pytest

import voxplay


def notes_of(file):
    with voxplay.Sound(file) as sound:
        return sound.notes


def test_wav_keeps_all_notes(all_notes):
    assert voxplay.write("x.wav", np.zeros(1000, np.int16), 16000, notes=all_notes) == []
    got = notes_of("x.wav")
    assert got == all_notes
    voxplay.write("y.wav", np.zeros(1000, np.int16), 16000, notes=got)
    assert pathlib.Path("x.wav").read_bytes() == pathlib.Path("y.wav").read_bytes()


def test_what_a_format_does_not_hold_is_said(all_notes):
    lost = voxplay.write("x.kst", np.zeros(1000, np.int16), 16000, notes=all_notes)
    assert len(lost) == 16 and "an SP header holds no events" in lost[0]
    lost = voxplay.write("x.vef", np.zeros(1000, np.int16), 16000, notes=all_notes)
    assert len(lost) == 3 and all("silence" in one or "region" in one for one in lost)
    got = notes_of("x.vef")
    assert got == dataclasses.replace(all_notes, silence=[], regions=[])


def test_vef_keeps_the_data_of_events():
    notes = voxplay.Notes(events=[voxplay.Event(5, 1, 2, 4294967295)])
    voxplay.write("x.vef", np.zeros(10, np.int16), 16000, notes=notes)
    assert notes_of("x.vef") == notes


def test_notes_may_be_changed_until_the_sound_is_closed():
    with voxplay.Sound("x.wav", "w", 8000, 1) as sound:
        sound.events.append(voxplay.Event(1))
        sound.write(np.zeros(100, np.int16))
        sound.events.append(voxplay.Event(50, 7))
        sound.silence.append(voxplay.Range(2, 3))
        sound.notes.chunks += [voxplay.Chunk("abcd", b"xyz")]
    got = notes_of("x.wav")
    assert [event.frame for event in got.events] == [1, 50]
    assert (got.silence, got.chunks) == ([voxplay.Range(2, 3)], [voxplay.Chunk("abcd", b"xyz")])
    with voxplay.Sound("x.wav", "w", 8000, 1, notes=got) as sound:
        sound.write(np.zeros(100, np.int16))
        sound.notes = voxplay.Notes()
    assert not notes_of("x.wav")


def test_the_lists_of_a_sound_are_those_of_its_notes(all_notes):
    voxplay.write("x.wav", np.zeros(1000, np.int16), 16000, notes=all_notes)
    with voxplay.Sound("x.wav") as sound:
        for name in ("events", "silence", "regions", "cues", "labels", "loops", "chunks"):
            assert getattr(sound, name) is getattr(sound.notes, name) and getattr(sound, name)
        assert sound.notes.label_of(sound.cues[0]) == "second word"
        assert sound.notes.label_of(voxplay.Cue(99, 0)) == ""


@pytest.mark.parametrize("texts, encoding", [
    ([b"plain"], "utf-8"), (["größer".encode()], "utf-8"), (["größer".encode("cp1252")], "cp1252"),
    (["größer".encode(), "größer".encode("cp1252")], "cp1252"), ([b"\x81\xff"], "latin-1"),
])
def test_texts_keep_their_bytes_in_whatever_encoding(texts, encoding):
    notes = voxplay.Notes(encoding="latin-1", cues=[voxplay.Cue(n, n) for n in range(len(texts))])
    notes.labels = [voxplay.Label(n, text.decode("latin-1")) for n, text in enumerate(texts)]
    voxplay.write("x.wav", np.zeros(10, np.int16), 8000, notes=notes)
    got = notes_of("x.wav")
    assert got.encoding == encoding
    assert [label.text for label in got.labels] == [text.decode(encoding) for text in texts]
    voxplay.write("y.wav", np.zeros(10, np.int16), 8000, notes=got)
    assert pathlib.Path("x.wav").read_bytes() == pathlib.Path("y.wav").read_bytes()


@pytest.mark.parametrize("kind, record, said", [
    ("events", voxplay.Event(0, 65536), "events[0]: main_command: 65536 is not from 0 to 65535"),
    ("events", voxplay.Event(-1), "events[0]: frame: -1 is not from 0 to"),
    ("events", voxplay.Event(0, data=1 << 32), "data: 4294967296"),
    ("cues", voxplay.Cue(1, 2, chunk="toolong"), "cues[0]: chunk: 'toolong' is not four characters"),
    ("chunks", voxplay.Chunk("abc", b""), "chunks[0]: id: 'abc'"),
    ("labels", voxplay.Label(1, "a\0b"), "labels[0]: text: a zero in it would end it"),
])
def test_what_no_file_can_hold_is_refused_with_its_place(kind, record, said, folder):
    with pytest.raises(ValueError) as refused:
        voxplay.write("x.wav", np.zeros(5, np.int16), 8000, notes=voxplay.Notes(**{kind: [record]}))
    assert said in str(refused.value)
    assert not (folder / "x.wav").exists()


@pytest.mark.parametrize("notes, said", [
    (voxplay.Notes(events=[voxplay.Range(0, 1)]), "events[0]: Range is not Event"),
    (voxplay.Notes(sampler=voxplay.Loop(0, 1)), "sampler: Loop is not Sampler"),
    (voxplay.Notes(events=[voxplay.Event(800.7)]), "events[0]: frame: 'float' object"),
    (voxplay.Notes(chunks=[voxplay.Chunk("abcd", 5)]), "chunks[0]: data: memoryview"),
    (voxplay.Notes(labels=[voxplay.Label(1, b"x")]), "labels[0]: text: bytes is no text"),
])
def test_records_of_another_kind_are_refused_with_their_place(notes, said):
    with pytest.raises(TypeError) as refused:
        voxplay.write("x.wav", np.zeros(5, np.int16), 8000, notes=notes)
    assert str(refused.value).startswith(said)


def test_records_of_derived_classes_are_taken():
    class Cough(voxplay.Event):
        pass

    voxplay.write("x.wav", np.zeros(5, np.int16), 8000, notes=voxplay.Notes(events=[Cough(3)]))
    assert notes_of("x.wav").events == [voxplay.Event(3)]


def test_text_that_the_encoding_lacks_is_refused_and_the_sound_stays_open():
    sound = voxplay.Sound("x.wav", "w", 8000, 1)
    sound.write(np.zeros(5, np.int16))
    sound.notes = voxplay.Notes(encoding="cp1252", cues=[voxplay.Cue(1, 0)],
                                labels=[voxplay.Label(1, "日本")])
    with pytest.raises(ValueError, match=r"labels\[0\]: text: 'charmap'"):
        sound.close()
    sound.notes.encoding = "utf-8"
    sound.close()
    assert notes_of("x.wav").labels == [voxplay.Label(1, "日本")]


def test_a_cue_has_one_place_unless_it_says_two():
    voxplay.write("x.wav", np.zeros(10, np.int16), 8000,
                  notes=voxplay.Notes(cues=[voxplay.Cue(1, 7)], labels=[voxplay.Label(1, "take_1")]))
    got = notes_of("x.wav")
    assert (got.cues[0].position, got.cues[0].sample_offset, got.cues[0].frame) == (7, 7, 7)
    # Such a label means an event, which is at its cue point.
    assert [event.frame for event in got.events] == [7]
    assert voxplay.Cue(1, 0, 7).frame == voxplay.Cue(1, 7, 0).frame == 7
    assert voxplay.Cue(1, 3, 7).frame == 7 and voxplay.Cue(1, 3, 7, block_start=9).frame == 3
