// SPDX-License-Identifier: Apache-2.0
#include "notes/RiffNotes.h"

#include <algorithm>
#include <array>
#include <functional>
#include <utility>

#include "base/Failure.h"
#include "notes/FourCC.h"
#include "notes/LostNotes.h"
#include "notes/MarkChunks.h"
#include "notes/MarkMeanings.h"
#include "notes/MarkWriting.h"

namespace api {
namespace {

constexpr S_FourCC kList = FourCC("LIST");
// Chunks that the writers of files make themselves.
constexpr auto kOwnIDs =
    std::to_array({FourCC("fmt "), FourCC("data"), FourCC("fact"), FourCC("ds64")});
constexpr auto kOwnVefIDs = std::to_array({FourCC("vafm"), FourCC("vdat")});

bool FitsInAChunk(std::span<const std::uint8_t> data) {
  return std::in_range<std::uint32_t>(data.size());
}

S_NoteChunk AsList(std::vector<std::uint8_t> parts) {
  parts.insert(parts.begin(), {'a', 'd', 't', 'l'});
  return {kList, std::move(parts)};
}

// Goes through the chunks of a file. Of several chunks that hold marks of one kind, the last one
// counts, as in the class library. The earlier ones are kept as further chunks.
class C_ChunkReader {
 public:
  // The chunks must outlive the object, which moves from them.
  explicit C_ChunkReader(std::span<S_HeldChunk> chunks) {
    for (S_HeldChunk& chunk : chunks) Take(chunk);
  }

  // All but what cue points and labels mean. Further chunks are in the order in which they are
  // written.
  S_Notes Read() {
    S_Notes notes;
    if (m_pSampler != nullptr) {
      S_SamplerChunk read = ReadSampler(m_pSampler->data);
      notes.sampler = std::move(read.sampler);
      notes.loops = std::move(read.loops);
    }
    TakeParts();
    notes.chunks = std::move(m_earlier);
    std::ranges::stable_sort(notes.chunks, std::ranges::less(), [](const S_NoteChunk& chunk) {
      return MarkKindOf(chunk.id, chunk.data);
    });
    if (!m_parts.empty()) notes.chunks.push_back(AsList(std::move(m_parts)));
    for (S_NoteChunk& chunk : m_others) notes.chunks.push_back(std::move(chunk));
    return notes;
  }
  [[nodiscard]] std::vector<S_NoteCue> Cues() const {
    return m_pCues == nullptr ? std::vector<S_NoteCue>() : ReadCues(m_pCues->data);
  }
  [[nodiscard]] const S_LabelList& List() const { return m_list; }

 private:
  void Take(S_HeldChunk& chunk) {
    switch (MarkKindOf(chunk.id, chunk.data)) {
      case E_MarkKind::Cues:
        Supersede(m_pCues, chunk);
        break;
      case E_MarkKind::Sampler:
        Supersede(m_pSampler, chunk);
        break;
      case E_MarkKind::List:
        SupersedeList(chunk);
        break;
      case E_MarkKind::None:
        // Half of a chunk that nobody understands would be taken for all of it.
        if (!chunk.bCut) m_others.push_back({chunk.id, std::move(chunk.data)});
    }
  }

  void Supersede(S_HeldChunk*& pLast, S_HeldChunk& chunk) {
    if (pLast != nullptr) m_earlier.push_back({pLast->id, std::move(pLast->data)});
    pLast = &chunk;
  }

  void SupersedeList(S_HeldChunk& chunk) {
    if (m_list.HasOnlyOthers()) {
      TakeParts();
    } else {
      m_pList->data.resize(m_list.cbWhole);
      m_earlier.push_back({kList, std::move(m_pList->data)});
    }
    m_list = ReadLabelList(chunk.data);
    if (!m_list.bSound && !chunk.bCut) {
      throw C_Failure(VOXPLAY_DAMAGED, "LIST chunk: its labels contradict their own sizes");
    }
    m_pList = &chunk;
  }

  void TakeParts() {
    std::vector<std::uint8_t> parts = std::exchange(m_list.others, {});
    if (m_parts.empty()) {
      m_parts = std::move(parts);
    } else {
      m_parts.insert(m_parts.end(), parts.begin(), parts.end());
    }
  }

  S_HeldChunk* m_pCues = nullptr;
  S_HeldChunk* m_pSampler = nullptr;
  S_HeldChunk* m_pList = nullptr;  // m_list is read from it
  S_LabelList m_list;
  std::vector<std::uint8_t> m_parts;  // of lists without labels
  std::vector<S_NoteChunk> m_earlier;
  std::vector<S_NoteChunk> m_others;
};

// Sorts the further chunks of a sound by where they belong.
class C_ChunkSorter {
 public:
  C_ChunkSorter(const std::vector<S_NoteChunk>& chunks, E_RiffForm eForm) {
    for (std::size_t i = 0; i < chunks.size(); ++i) {
      const char* pszReason = Objection(chunks[i], eForm);
      if (pszReason == nullptr && !Take(chunks[i])) {
        pszReason = ": its parts contradict their own sizes";
      }
      if (pszReason != nullptr) m_lost.push_back(NameOf(chunks[i], i) + pszReason);
    }
  }

  // Parts of lists that hold no labels; they belong to the list with the labels.
  [[nodiscard]] std::span<const std::uint8_t> Parts() const { return m_parts; }
  std::vector<S_NoteChunk> Others() { return std::move(m_others); }
  std::vector<std::string> Lost() { return std::move(m_lost); }

  // Adds the chunk of a kind after the chunks that it supersedes. Where there are some, it is
  // needed even when it is empty: the last of them would count.
  void AddMarks(E_MarkKind eKind, S_NoteChunk chunk, bool bNeeded,
                std::vector<S_NoteChunk>& marks) {
    for (S_NoteChunk& earlier : m_earlier) {
      if (MarkKindOf(earlier.id, earlier.data) != eKind) continue;
      marks.push_back(std::move(earlier));
      bNeeded = true;
    }
    if (!bNeeded) return;
    if (!FitsInAChunk(chunk.data)) {
      throw C_Failure(VOXPLAY_TOO_LARGE,
                      std::string(AsText(chunk.id)) + " chunk: it does not fit in 4 GiB");
    }
    marks.push_back(std::move(chunk));
  }

 private:
  // Readers take it for room that was left free.
  static bool IsPadding(const S_NoteChunk& chunk) {
    return chunk.id == FourCC("JUNK") &&
           std::ranges::all_of(chunk.data, [](std::uint8_t byByte) { return byByte == 0; });
  }

  // Why a chunk cannot stand in a file; null when it can.
  static const char* Objection(const S_NoteChunk& chunk, E_RiffForm eForm) {
    if (!FitsInAChunk(chunk.data)) return ": chunks hold less than 4 GiB";
    if (chunk.id[0] == 0) return ": readers would pass over its identifier";
    if (IsPadding(chunk)) return ": readers would take it for padding";
    const bool bOwn =
        std::ranges::find(kOwnIDs, chunk.id) != kOwnIDs.end() ||
        (eForm == E_RiffForm::Vef && std::ranges::find(kOwnVefIDs, chunk.id) != kOwnVefIDs.end());
    return bOwn ? ": readers would take it for the file's own" : nullptr;
  }

  // False for a list that readers refuse.
  bool Take(const S_NoteChunk& chunk) {
    const E_MarkKind eKind = MarkKindOf(chunk.id, chunk.data);
    if (eKind == E_MarkKind::List) return TakeList(chunk);
    (eKind == E_MarkKind::None ? m_others : m_earlier).push_back(chunk);
    return true;
  }

  bool TakeList(const S_NoteChunk& chunk) {
    const S_LabelList list = ReadLabelList(chunk.data);
    if (!list.bSound) return false;
    if (list.HasOnlyOthers()) {
      m_parts.insert(m_parts.end(), list.others.begin(), list.others.end());
    } else {
      m_earlier.push_back(chunk);
    }
    return true;
  }

  std::vector<std::uint8_t> m_parts;
  std::vector<S_NoteChunk> m_earlier;
  std::vector<S_NoteChunk> m_others;
  std::vector<std::string> m_lost;
};

}  // namespace

S_Notes ReadRiffNotes(std::vector<S_HeldChunk> chunks, E_RiffForm eForm, bool bCutShort) {
  C_ChunkReader reader(chunks);
  S_Notes notes = reader.Read();
  AddMarks(reader.Cues(), reader.List(), eForm, bCutShort, notes);
  return notes;
}

S_RiffNotes WriteRiffNotes(const S_Notes& notes, E_RiffForm eForm, std::uint64_t /*qwFrames*/) {
  S_WrittenMarks written = WriteMarks(notes, eForm);
  C_ChunkSorter chunks(notes.chunks, eForm);
  written.list.Others(chunks.Parts());
  const bool bList = !written.list.IsEmpty();
  S_RiffNotes out;
  chunks.AddMarks(E_MarkKind::Cues, {FourCC("cue "), CuePayload(written.cues)},
                  !written.cues.empty(), out.marks);
  chunks.AddMarks(E_MarkKind::Sampler, {FourCC("smpl"), SamplerPayload(notes.sampler, notes.loops)},
                  notes.sampler.bPresent || !notes.loops.empty(), out.marks);
  chunks.AddMarks(E_MarkKind::List, {kList, written.list.Take()}, bList, out.marks);
  out.others = chunks.Others();
  out.lost = std::move(written.lost);
  for (std::string& strLost : chunks.Lost()) out.lost.push_back(std::move(strLost));
  return out;
}

}  // namespace api
