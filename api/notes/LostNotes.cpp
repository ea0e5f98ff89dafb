// SPDX-License-Identifier: Apache-2.0
#include "notes/LostNotes.h"

#include <vector>

#include "notes/RiffNotes.h"

namespace api {
namespace {

std::string Numbered(const char* pszKind, std::size_t nIndex) {
  return std::string(pszKind) + ' ' + std::to_string(nIndex + 1);
}

template <typename Number>
std::string At(const std::string& strWhat, const char* pszPlace, Number nPlace) {
  return strWhat + pszPlace + std::to_string(nPlace);
}

std::string AtFrame(const char* pszKind, std::size_t nIndex, std::uint64_t qwFrame) {
  return At(Numbered(pszKind, nIndex), " at frame ", qwFrame);
}

std::string OfCue(const char* pszKind, std::size_t nIndex, std::uint32_t dwCueID) {
  return At(Numbered(pszKind, nIndex), " of cue point ", dwCueID);
}

// Identifiers of chunks may have any bytes.
std::string Printable(const S_FourCC& id) {
  std::string text;
  for (const char chByte : id) text += chByte >= ' ' && chByte <= '~' ? chByte : '?';
  return text;
}

// Collects sentences of one form: "region 1 at frame 20: an SP header holds no regions".
class C_LostList {
 public:
  explicit C_LostList(const std::string& strHolder) : m_strEnd(": " + strHolder + " holds no ") {}

  void Add(const std::string& strName, const char* pszKinds) {
    m_lost.push_back(strName + m_strEnd + pszKinds);
  }
  template <typename Note>
  void AddAll(const std::vector<Note>& notes, const char* pszKinds) {
    for (std::size_t i = 0; i < notes.size(); ++i) Add(NameOf(notes[i], i), pszKinds);
  }
  void AddAll(const std::vector<S_NoteRange>& ranges, const char* pszKind, const char* pszKinds) {
    for (std::size_t i = 0; i < ranges.size(); ++i) Add(NameOf(pszKind, ranges[i], i), pszKinds);
  }
  void AddAllButEvents(const S_Notes& notes) {
    AddAll(notes.silence, "silence", "silence");
    AddAll(notes.regions, "region", "regions");
    AddAll(notes.cues, "cue points");
    AddAll(notes.labels, "labels");
    AddAll(notes.texts, "region texts");
    if (notes.sampler.bPresent) Add("sampler record", "sampler record");
    AddAll(notes.loops, "loops");
    AddAll(notes.chunks, "further chunks");
  }
  std::vector<std::string> Take() { return std::move(m_lost); }

 private:
  std::string m_strEnd;
  std::vector<std::string> m_lost;
};

}  // namespace

std::string NameOf(const S_NoteEvent& event, std::size_t nIndex) {
  return AtFrame("event", nIndex, event.qwFrame);
}

std::string NameOf(const char* pszKind, const S_NoteRange& range, std::size_t nIndex) {
  return AtFrame(pszKind, nIndex, range.qwFirst);
}

std::string NameOf(const S_NoteCue& cue, std::size_t nIndex) {
  return AtFrame("cue point", nIndex, cue.dwPosition);
}

std::string NameOf(const S_NoteLabel& label, std::size_t nIndex) {
  return OfCue("label", nIndex, label.dwCueID);
}

std::string NameOf(const S_NoteRegionText& text, std::size_t nIndex) {
  return OfCue("region text", nIndex, text.dwCueID);
}

std::string NameOf(const S_NoteLoop& loop, std::size_t nIndex) {
  return AtFrame("loop", nIndex, loop.dwFirst);
}

std::string NameOf(const S_NoteChunk& chunk, std::size_t nIndex) {
  return Numbered("chunk", nIndex) + " \"" + Printable(chunk.id) + "\"";
}

std::vector<std::string> AllLost(const S_Notes& notes, const std::string& strHolder) {
  C_LostList lost(strHolder);
  lost.AddAll(notes.events, "events");
  lost.AddAllButEvents(notes);
  return lost.Take();
}

std::vector<std::string> AllLostButEvents(const S_Notes& notes, const std::string& strHolder) {
  C_LostList lost(strHolder);
  lost.AddAllButEvents(notes);
  return lost.Take();
}

}  // namespace api
