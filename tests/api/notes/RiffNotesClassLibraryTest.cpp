// SPDX-License-Identifier: Apache-2.0
//
// What the class library reads from a file, the notes say as well, and what it writes for a sound
// is written for its notes.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "HeldChunks.h"
#include "RiffFile.h"
#include "Sanitized.h"
#include "TempFolder.h"
#include "VefBytes.h"
#include "WavFileObject.h"
#include "WrittenChunks.h"
#include "base/Failure.h"
#include "file/VefFile.h"
#include "notes/LabelForms.h"
#include "notes/MarkChunks.h"

namespace api::test {
namespace {

using C_FilePtr = std::unique_ptr<C_WavFileBase, S_WavFileReleaser>;

C_FilePtr MakeFile(E_RiffForm eForm) {
  return C_FilePtr(eForm == E_RiffForm::Wave ? static_cast<C_WavFileBase*>(new C_WavFile)
                                             : new C_VefFile);
}

struct S_FoundChunks {
  std::vector<S_HeldChunk> chunks;
  bool bCutShort = false;
};

// The chunks of a file as the class library finds them.
S_FoundChunks ChunksIn(const std::string& strPath, E_RiffForm eForm) {
  C_RiffFile riff;
  EXPECT_TRUE(riff.Open(strPath.c_str(), eForm == E_RiffForm::Wave ? "WAVE" : "VEFF"));
  S_FoundChunks found;
  found.bCutShort = riff.IsCutShort();
  for (int i = 0; i < riff.GetChunkCount(); ++i) {
    C_RiffChunk& chunk = *riff.GetChunkAt(i);
    if (chunk.HasChunkID("fmt ") || chunk.HasChunkID("data")) continue;
    const auto part = chunk.CreateHeldPart();
    C_RiffChunk& held = part ? *part : chunk;
    S_HeldChunk& read = found.chunks.emplace_back();
    std::copy_n(chunk.GetChunkID(), 4, read.id.begin());
    read.bCut = part != nullptr;
    read.data.resize(held.GetDataLength());
    if (!read.data.empty()) {
      EXPECT_TRUE(held.GetData(read.data.data(), held.GetDataLength(), 0));
    }
  }
  return found;
}

// Whether the class library would stop the program: a label means a place, and a whole file has no
// cue point for it.
bool StopsTheClassLibrary(const S_FoundChunks& found, E_RiffForm eForm) {
  if (found.bCutShort || eForm != E_RiffForm::Wave) return false;
  std::vector<S_NoteCue> cues;
  S_LabelList list;
  for (const S_HeldChunk& chunk : found.chunks) {
    const E_MarkKind eKind = MarkKindOf(chunk.id, chunk.data);
    if (eKind == E_MarkKind::Cues) cues = ReadCues(chunk.data);
    if (eKind == E_MarkKind::List) list = ReadLabelList(chunk.data);
  }
  return std::any_of(list.labels.begin(), list.labels.end(), [&](const S_NoteLabel& label) {
    const bool bMeans = label.type == ID("labl") &&
                        MeaningOf(label.strText, eForm).eKind != S_LabelMeaning::E_Kind::None;
    return bMeans && std::none_of(cues.begin(), cues.end(),
                                  [&](const S_NoteCue& cue) { return cue.dwID == label.dwCueID; });
  });
}

std::vector<S_NoteEvent> EventsIn(I_WavFile& file) {
  std::vector<S_NoteEvent> events;
  for (const S_VefEventSeen& seen : VefEventsOf(file)) {
    events.push_back({seen.dwSamplePos, static_cast<std::uint16_t>(seen.dwMain),
                      static_cast<std::uint16_t>(seen.dwSub), seen.dwData, ""});
  }
  return events;
}

std::vector<S_NoteRange> InOrder(const C_RangesSeen& seen) {
  std::vector<S_NoteRange> ranges;
  for (const auto& [dwStart, dwEnd] : seen) ranges.push_back({dwStart, dwEnd - dwStart + 1});
  std::stable_sort(ranges.begin(), ranges.end(), [](const S_NoteRange& a, const S_NoteRange& b) {
    return a.qwFirst < b.qwFirst;
  });
  return ranges;
}

void ExpectSameMarks(const S_Notes& notes, I_WavFile& file, E_RiffForm eForm, bool bCutShort) {
  EXPECT_EQ(notes.events, EventsIn(file));
  EXPECT_EQ(notes.silence, InOrder(SilenceOf(file)));
  EXPECT_EQ(notes.regions, InOrder(RegionsOf(file)));
  EXPECT_EQ(notes.loops.size(), Sampler(file).GetSampleLoopNum());
  EXPECT_EQ(notes.sampler.dwMidiUnityNote, Sampler(file).GetMIDIUnityNote());
  EXPECT_EQ(notes.sampler.data.size(), Sampler(file).GetSamplerData());
  // Labels that are not listed have said all they say.
  std::vector<std::pair<unsigned int, std::string>> listed;
  for (const S_NoteLabel& label : notes.labels) {
    if (label.type == ID("labl")) listed.emplace_back(label.dwCueID, label.strText.substr(0, 64));
  }
  std::vector<std::pair<unsigned int, std::string>> expected;
  for (const auto& label : LabelsOf(file)) {
    const bool bPlaced = bCutShort || Cues(file).FindCuePointByID(label.first, nullptr) != nullptr;
    if (!bPlaced || !IsOwnLabel(label.second, eForm)) expected.push_back(label);
  }
  EXPECT_EQ(listed, expected);
}

// The cue points that are listed, and those of the library's own labels, are all that there are.
void ExpectAllCuePoints(const S_Notes& notes, I_WavFile& file) {
  std::vector<std::uint32_t> listed;
  for (const S_NoteCue& cue : notes.cues) listed.push_back(cue.dwID);
  std::vector<std::uint32_t> labelled;
  for (const auto& [dwID, strText] : LabelsOf(file)) labelled.push_back(dwID);
  auto next = listed.begin();
  for (int i = 0; i < Cues(file).GetCuePointCount(); ++i) {
    const std::uint32_t dwID = Cues(file).GetCuePointByIndex(i)->GetCuePointID();
    if (next != listed.end() && *next == dwID) {
      ++next;
    } else {
      EXPECT_TRUE(std::count(labelled.begin(), labelled.end(), dwID) > 0) << dwID;
    }
  }
  EXPECT_TRUE(next == listed.end());
}

class C_Generator {
 public:
  explicit C_Generator(unsigned int dwSeed) : m_random(dwSeed) {}

  // A file of cue points, lists and sampler chunks in which some bytes are wrong, and which perhaps
  // ends early.
  C_Bytes File(E_RiffForm eForm) {
    C_RiffBytes riff = MonoWav(16, eForm == E_RiffForm::Wave ? "WAVE" : "VEFF");
    const std::size_t cbBefore = riff.Take().size();
    const unsigned int nChunks = 1 + Below(4);
    for (unsigned int i = 0; i < nChunks; ++i) AddChunk(riff);
    C_Bytes file = riff.Take();
    const unsigned int nWrong = Below(3);
    for (unsigned int i = 0; i < nWrong; ++i) {
      file[cbBefore + Below(static_cast<unsigned int>(file.size() - cbBefore))] =
          static_cast<std::uint8_t>(Below(256));
    }
    if (Below(4) == 0) {
      file.resize(cbBefore + Below(static_cast<unsigned int>(file.size() - cbBefore)));
    }
    return file;
  }
  unsigned int Below(unsigned int dwEnd) { return static_cast<unsigned int>(m_random() % dwEnd); }

 private:
  void AddChunk(C_RiffBytes& riff) {
    switch (Below(6)) {
      case 0:
        riff.Chunk("smpl", SmplBytes(Below(100), Below(100)));
        break;
      case 1:
        riff.Chunk("vevt", RampBytes(1 + Below(4)));
        break;
      case 2:
      case 3:
        riff.Chunk("cue ", CuePoints());
        break;
      default:
        riff.Chunk("LIST", Labels());
    }
  }
  C_Bytes CuePoints() {
    std::vector<S_CueBytes> points;
    for (std::uint32_t i = 0; i < 6; ++i) points.push_back({i, Below(4) * 100, 0});
    return CueBytes(points);
  }
  C_Bytes Labels() {
    static const char* const kTexts[] = {"u_3_7",     "e_196615", "VX_Silence", "VX_PCM",
                                         "(65538,7)", "Verse",    "take_2",     "u_99999_1"};
    C_Bytes list = Ascii("adtl");
    const unsigned int nParts = Below(8);
    for (unsigned int i = 0; i < nParts; ++i) {
      const C_Bytes part =
          Below(3) == 0 ? LtxtBytes(Below(6), Below(9)) : LablBytes(Below(6), kTexts[Below(8)]);
      list.insert(list.end(), part.begin(), part.end());
    }
    return list;
  }

  std::mt19937 m_random;
};

class RiffNotesClassLibrary : public testing::Test {
 protected:
  // Whether both could be compared.
  bool Compare(const C_Bytes& bytes, E_RiffForm eForm) {
    const std::string strPath = m_folder.Write("in", bytes);
    const S_FoundChunks found = ChunksIn(strPath, eForm);
    std::optional<S_Notes> notes;
    try {
      notes = ReadRiffNotes(found.chunks, eForm, found.bCutShort);
    } catch (const C_Failure& failure) {
      EXPECT_EQ(failure.Status(), VOXPLAY_DAMAGED);
      ++m_nRefused;
    }
    if (notes && StopsTheClassLibrary(found, eForm)) return false;
    const C_FilePtr file = MakeFile(eForm);
    EXPECT_EQ(file->LoadByName(strPath.c_str(), true, nullptr, nullptr), notes.has_value());
    if (notes) {
      ExpectSameMarks(*notes, *file, eForm, found.bCutShort);
      ExpectAllCuePoints(*notes, *file);
    }
    return notes.has_value();
  }

  C_TempFolder m_folder{C_TempFolder::kInMemory};
  unsigned int m_nRefused = 0;
};

TEST_F(RiffNotesClassLibrary, RandomFiles_AreReadAlike) {
  const unsigned int nFiles = kSanitized ? 500 : 5000;
  unsigned int nCompared = 0;
  for (unsigned int i = 0; i < nFiles; ++i) {
    const E_RiffForm eForm = i % 2 == 0 ? E_RiffForm::Wave : E_RiffForm::Vef;
    if (Compare(C_Generator(i).File(eForm), eForm)) ++nCompared;
    ASSERT_FALSE(HasFailure()) << i;
  }
  EXPECT_GT(nCompared, nFiles / 3);
  EXPECT_GT(m_nRefused, nFiles / 100);
}

TEST_F(RiffNotesClassLibrary, FilesCutAtEachByte_AreReadAlike) {
  for (const E_RiffForm eForm : {E_RiffForm::Wave, E_RiffForm::Vef}) {
    const bool bWave = eForm == E_RiffForm::Wave;
    const C_Bytes whole =
        MonoWav(4, bWave ? "WAVE" : "VEFF")
            .Chunk("cue ", CueBytes({{1, 10, 10}, {2, 20, 20}, {3, 30, 30}}))
            .Chunk("smpl", SmplBytes(1, 2))
            .Chunk("LIST", AdtlBytes({LtxtBytes(3, 9), LablBytes(1, bWave ? "u_1_2" : "(5,6)"),
                                      LablBytes(2, "Verse"), LablBytes(3, "VX_PCM")}))
            .Take();
    for (std::size_t cbCut = 48; cbCut <= whole.size(); ++cbCut) {
      EXPECT_TRUE(Compare(
          C_Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(cbCut)), eForm));
      ASSERT_FALSE(HasFailure()) << cbCut;
    }
  }
}

// Notes without marks of others, and ranges that do not meet.
S_Notes RandomNotes(C_Generator& random) {
  S_Notes notes;
  const unsigned int nEvents = random.Below(5);
  for (unsigned int i = 0; i < nEvents; ++i) {
    notes.events.push_back({i * 10ULL, static_cast<std::uint16_t>(random.Below(65536)),
                            static_cast<std::uint16_t>(random.Below(65536)), random.Below(1000),
                            ""});
  }
  const unsigned int nRanges = random.Below(4);
  for (unsigned int i = 0; i < nRanges; ++i) {
    notes.silence.push_back({i * 100ULL, 1 + random.Below(50)});
    notes.regions.push_back({i * 100ULL + 50, 1 + random.Below(50)});
  }
  const unsigned int nLoops = random.Below(3);
  notes.sampler.bPresent = nLoops > 0;
  for (unsigned int i = 0; i < nLoops; ++i) notes.loops.push_back({i, 1, 2, 3, 4, 5});
  if (nLoops > 0) notes.sampler.dwMidiUnityNote = 60;
  if (nLoops > 1) notes.sampler.data.resize(2);
  const unsigned int nChunks = random.Below(3);
  for (unsigned int i = 0; i < nChunks; ++i) notes.chunks.push_back({ID("priv"), RampBytes(i + 1)});
  return notes;
}

void GiveTo(I_WavFile& file, const S_Notes& notes) {
  I_WavData& sound = *file.GetWavData();
  sound.GetEventTagMgr()->SetSampleRate(16000);
  for (const S_NoteEvent& event : notes.events) {
    sound.GetEventTagMgr()->AddEventBySamplePos(
        event.wMain, event.wSub, static_cast<unsigned int>(event.qwFrame), "", event.dwData);
  }
  for (const S_NoteRange& range : notes.silence) {
    sound.AddSilenceSegment(static_cast<unsigned int>(range.qwFirst),
                            static_cast<unsigned int>(range.qwFirst + range.qwCount - 1));
  }
  for (const S_NoteRange& range : notes.regions) {
    sound.AddUncompressRegion(static_cast<unsigned int>(range.qwFirst),
                              static_cast<unsigned int>(range.qwFirst + range.qwCount - 1));
  }
  I_WavDataSamplerInfo& sampler = Sampler(file);
  sampler.SetMIDIUnityNote(notes.sampler.dwMidiUnityNote);
  sampler.GetSamplerData(static_cast<unsigned int>(notes.sampler.data.size()));
  for (const S_NoteLoop& loop : notes.loops) {
    sampler.AddSampleLoop(loop.dwID, static_cast<tagLoopType>(loop.dwType), loop.dwFirst,
                          loop.dwLast, loop.dwFraction, loop.dwPlayCount);
  }
  for (const S_NoteChunk& chunk : notes.chunks) {
    Extra(file).AddChunk(chunk.id.data(), chunk.data.data(),
                         static_cast<unsigned int>(chunk.data.size()));
  }
}

TEST_F(RiffNotesClassLibrary, SoundsWithoutMarksOfOthers_AreWrittenAlike) {
  const std::vector<std::uint8_t> pcm(64);
  for (unsigned int i = 0; i < 1000; ++i) {
    C_Generator random(i);
    const E_RiffForm eForm = i % 2 == 0 ? E_RiffForm::Wave : E_RiffForm::Vef;
    const S_Notes notes = RandomNotes(random);
    const C_FilePtr file = MakeFile(eForm);
    file->SetFileFormat(AUDIO_FILE_WAVE);
    ASSERT_TRUE(file->SetBuffer(pcm.data(), static_cast<unsigned int>(pcm.size())));
    file->SetWavInfoData(16000, 1, 16, 16, true);
    GiveTo(*file, notes);
    ASSERT_TRUE(file->WriteFile(m_folder.Path("out").c_str(), false, false, nullptr, false, 0));
    auto expected = ChunksOf(m_folder.Read("out"));
    expected.erase(expected.begin(), expected.begin() + 2);  // "fmt " and "data"
    const S_RiffNotes written = Written(notes, eForm);
    std::vector<std::pair<std::string, C_Bytes>> actual;
    for (const S_HeldChunk& chunk : HeldOf(written)) {
      actual.emplace_back(std::string(chunk.id.begin(), chunk.id.end()), chunk.data);
    }
    ASSERT_EQ(actual, expected) << i;
  }
}

}  // namespace
}  // namespace api::test
