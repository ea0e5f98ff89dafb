#!/usr/bin/python3
# SPDX-License-Identifier: Apache-2.0
"""An archive in Python, step by step: a table, a picture with events, and what each bit rate costs.

    tutorial.py [FOLDER] [PICTURES]

FOLDER has sound files; without it, a small archive is made from the sample of this project.
PICTURES is where the two pictures go (the present folder). The cells begin with "# %%", so editors run
them one by one. It needs pandas and matplotlib.
"""

# %% What is used
import pathlib
import sys
import tempfile

import matplotlib.pyplot as plt
import numpy as np
import pandas as pd

import voxplay

# %% An archive to try it with: speech in several formats, with marks, and one file that is cut
def make_archive(folder: pathlib.Path, sample: pathlib.Path) -> None:
    speech, rate = voxplay.read(sample, dtype="int16")
    notes = voxplay.Notes(
        events=[voxplay.Event(6400, 1), voxplay.Event(38400, 2, 5)],
        silence=[voxplay.Range(13000, 4500)],
        cues=[voxplay.Cue(1, 30400)], labels=[voxplay.Label(1, "third word")])
    voxplay.write(folder / "speech.wav", speech, rate, notes=notes)
    voxplay.write(folder / "speech.vef", speech, rate, "KESTREL_16000", notes=notes)
    for bits in (4, 6):
        voxplay.write(folder / f"speech{bits}.hrn", speech, rate, f"HERON_{bits}")
    whole = sample.read_bytes()
    (folder / "speech.kst").write_bytes(whole)
    (folder / "cut.kst").write_bytes(whole[:6000])
    (folder / "notes.txt").write_text("no sound\n")


def sample_of_the_project() -> pathlib.Path:
    beside = pathlib.Path(__file__).resolve().parent
    places = [beside / "Test.kst", beside.parent.parent / "samples" / "Test.kst"]
    return next(place for place in places if place.exists())


archive = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else tempfile.mkdtemp())
pictures = pathlib.Path(sys.argv[2] if len(sys.argv) > 2 else ".")
if len(sys.argv) < 2:
    make_archive(archive, sample_of_the_project())

# %% One row a file. What is no sound says why, and does not stop the others
rows, refused = [], {}
for path in sorted(archive.rglob("*")):
    if not path.is_file():
        continue
    try:
        with voxplay.Sound(path, bare=False) as sound:
            rows.append({
                "file": str(path.relative_to(archive)), "format": sound.format,
                "subtype": sound.subtype, "rate": sound.samplerate, "seconds": sound.info.duration,
                "events": len(sound.events), "cues": len(sound.cues),
                "silence": len(sound.silence), "cut": sound.info.is_cut})
    except voxplay.VoxplayError as error:
        refused[path.name] = error.status

table = pd.DataFrame(rows).set_index("file")
print(table.round(2).to_string())
print("not opened:", refused)
print(f"{table.seconds.sum():.1f} s in {len(table)} files, {table.cut.sum()} of them cut")

# %% A sound and its events, with the library of your choice. A block at a time takes little memory
marked = (table.events + table.cues + table.silence).idxmax()
with voxplay.Sound(archive / marked) as sound:
    samples, rate, notes = sound.read(always_2d=True)[:, 0], sound.samplerate, sound.notes

figure, (wave, spectrum) = plt.subplots(2, sharex=True, figsize=(8, 4.5), layout="constrained")
seconds = np.arange(len(samples)) / rate
wave.plot(seconds, samples, linewidth=0.4)
wave.set(ylabel="amplitude", ylim=(-1, 1), xlim=(0, seconds[-1]), title=marked)
# A faint noise keeps digital silence from having no level at all.
audible = samples + np.random.default_rng(0).normal(0, 1e-5, len(samples))
spectrum.specgram(audible, NFFT=512, Fs=rate, noverlap=384, vmin=-110, vmax=-30, cmap="magma")
spectrum.set(xlabel="seconds", ylabel="Hz")
for event in notes.events:
    for axes in (wave, spectrum):
        axes.axvline(event.frame / rate, color="tab:orange")
    wave.annotate(f"event {event.main_command}/{event.sub_command}", (event.frame / rate, 0.8),
                  xytext=(4, 0), textcoords="offset points", color="tab:orange")
for cue in notes.cues:
    wave.axvline(cue.frame / rate, color="tab:green")
    wave.annotate(notes.label_of(cue), (cue.frame / rate, -0.9), xytext=(-4, 0),
                  textcoords="offset points", color="tab:green", horizontalalignment="right")
for silence in notes.silence:
    wave.axvspan(silence.first / rate, silence.end / rate, color="0.85")
figure.savefig(pictures / "python-events.png", dpi=100)

# %% What each rate costs: code the sound, decode it, and compare. The sample of this project was coded with
# 24,000 bit/s before, so that rate does little to it
def coded(subtype: str) -> "tuple[int, np.ndarray]":
    """Bytes of a file with the sound, and what it decodes to."""
    with tempfile.NamedTemporaryFile(suffix=".sound") as file:
        container = "SP" if voxplay.check_format("SP", subtype, rate) else "HEAD"
        voxplay.write(file.name, samples, rate, subtype, container)
        return pathlib.Path(file.name).stat().st_size, voxplay.read(file.name)[0][:len(samples)]


def ratio(decoded: np.ndarray) -> float:
    """The signal-to-noise ratio in dB."""
    original = samples[:len(decoded)]
    return float(10 * np.log10(np.sum(original ** 2) / np.sum((original - decoded) ** 2)))


results = []
for subtype in voxplay.available_subtypes():
    if subtype.startswith(("KESTREL", "HERON")):
        size, decoded = coded(subtype)
        results.append({"codec": subtype.split("_")[0].capitalize(), "subtype": subtype,
                        "kbit/s": size * 8 / (len(samples) / rate) / 1000, "SNR": ratio(decoded)})
costs = pd.DataFrame(results).set_index("subtype")
print(costs.round(1).to_string())

figure, axes = plt.subplots(figsize=(8, 4), layout="constrained")
for codec, points in costs.groupby("codec"):
    axes.plot(points["kbit/s"], points["SNR"], marker="o", label=codec)
    for subtype, point in points.iterrows():
        setting = float(str(subtype).split("_")[1])
        text = f"{setting:.0f} bits" if codec == "Heron" else f"{setting / 1000:g}"
        axes.annotate(text, (point["kbit/s"], point["SNR"]), xytext=(0, 7),
                      textcoords="offset points", fontsize=8, horizontalalignment="center")
axes.set(xlabel="kbit/s", ylabel="SNR in dB", xscale="log", title="Speech of 16 kHz, by bits")
ticks = [8, 16, 32, 64, 96]
axes.set_xticks(ticks, [str(tick) for tick in ticks])
axes.minorticks_off()
axes.margins(y=0.12)
axes.grid(alpha=0.3)
axes.legend(loc="lower right")
figure.savefig(pictures / "python-rates.png", dpi=100)
