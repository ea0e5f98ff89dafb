// SPDX-License-Identifier: Apache-2.0
#include "sound/ForeignNotes.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "sound/CueFrame.h"

namespace tool {
namespace {

struct S_InfoTitle {
  int nSndfile;
  std::string_view id;
};
// The titles of RIFF files that libsndfile has a number for.
constexpr std::array<S_InfoTitle, 9> kTitles = {{{SF_STR_TITLE, "INAM"},
                                                 {SF_STR_COPYRIGHT, "ICOP"},
                                                 {SF_STR_SOFTWARE, "ISFT"},
                                                 {SF_STR_ARTIST, "IART"},
                                                 {SF_STR_COMMENT, "ICMT"},
                                                 {SF_STR_DATE, "ICRD"},
                                                 {SF_STR_ALBUM, "IPRD"},
                                                 {SF_STR_TRACKNUMBER, "ITRK"},
                                                 {SF_STR_GENRE, "IGNR"}}};

void AppendSize(std::string& strBytes, std::uint32_t dwSize) {
  for (int nShift = 0; nShift < 32; nShift += 8) {
    strBytes += static_cast<char>(static_cast<std::uint8_t>(dwSize >> nShift));
  }
}

// Sizes are even, with a zero at the end of each text.
std::string InfoList(SNDFILE* pFile) {
  std::string strList;
  for (const S_InfoTitle& title : kTitles) {
    const char* const pszText = sf_get_string(pFile, title.nSndfile);
    if (pszText == nullptr || *pszText == '\0') continue;
    const std::string_view text(pszText);
    strList += title.id;
    AppendSize(strList, static_cast<std::uint32_t>(text.size() + 1));
    strList += text;
    strList.append(text.size() % 2 == 0 ? 2 : 1, '\0');
  }
  return strList.empty() ? strList : "INFO" + strList;
}

void AddTitles(SNDFILE* pFile, voxplay::Notes& notes) {
  const std::string strList = InfoList(pFile);
  if (strList.empty()) return;
  notes.add(voxplay::Chunk{{'L', 'I', 'S', 'T'}, strList.data(), strList.size()});
}

std::vector<SF_CUE_POINT> CuePoints(SNDFILE* pFile) {
  std::uint32_t dwCount = 0;
  sf_command(pFile, SFC_GET_CUE_COUNT, &dwCount, sizeof dwCount);
  // The call takes the size as an int.
  constexpr std::uint32_t kMost = std::numeric_limits<int>::max() / sizeof(SF_CUE_POINT) - 1;
  if (dwCount == 0 || dwCount > kMost) return {};
  // The record ends with an array whose length the program chooses.
  const std::size_t cbRecord = sizeof(std::uint32_t) + dwCount * sizeof(SF_CUE_POINT);
  const auto record = std::make_unique<std::byte[]>(cbRecord);
  if (sf_command(pFile, SFC_GET_CUE, record.get(), static_cast<int>(cbRecord)) != SF_TRUE) {
    return {};
  }
  std::uint32_t dwGiven = 0;
  std::memcpy(&dwGiven, record.get(), sizeof dwGiven);
  std::vector<SF_CUE_POINT> points(std::min(dwGiven, dwCount));
  std::memcpy(points.data(), record.get() + sizeof dwGiven, points.size() * sizeof(SF_CUE_POINT));
  return points;
}

std::uint32_t FrameOfPoint(const SF_CUE_POINT& point) {
  voxplay::Cue cue{};
  cue.position = point.position;
  cue.block_start = static_cast<std::uint32_t>(point.block_start);
  cue.sample_offset = point.sample_offset;
  return FrameOf(cue);
}

void AddCuePoints(SNDFILE* pFile, voxplay::Notes& notes) {
  std::uint32_t dwID = 0;
  for (const SF_CUE_POINT& point : CuePoints(pFile)) {
    ++dwID;
    voxplay::Cue cue{};
    cue.id = dwID;
    cue.position = FrameOfPoint(point);
    cue.sample_offset = cue.position;
    std::memcpy(cue.chunk, "data", sizeof cue.chunk);
    notes.add(cue);
    if (point.name[0] == '\0') continue;
    voxplay::Label label{};
    label.cue_id = dwID;
    std::memcpy(label.type, "labl", sizeof label.type);
    const std::string strName(point.name, strnlen(point.name, sizeof point.name));
    label.text = strName.c_str();
    notes.add(label);
  }
}

std::uint32_t LoopType(int nMode) {
  if (nMode == SF_LOOP_ALTERNATING) return 1;
  return nMode == SF_LOOP_BACKWARD ? 2 : 0;
}

void AddLoops(SNDFILE* pFile, voxplay::Notes& notes) {
  SF_INSTRUMENT instrument{};
  if (sf_command(pFile, SFC_GET_INSTRUMENT, &instrument, sizeof instrument) != SF_TRUE) return;
  const std::size_t nMost = std::size(instrument.loops);
  const auto nLoops = std::min(nMost, static_cast<std::size_t>(std::max(instrument.loop_count, 0)));
  for (std::size_t i = 0; i < nLoops; ++i) {
    const auto& from = instrument.loops[i];
    if (from.mode == SF_LOOP_NONE || from.end == 0) continue;
    voxplay::Loop loop{};
    loop.id = static_cast<std::uint32_t>(i);
    loop.type = LoopType(from.mode);
    loop.first = from.start;
    loop.last = from.end - 1;
    loop.play_count = from.count;
    notes.add(loop);
  }
}

}  // namespace

voxplay::Notes ForeignNotes(SNDFILE* pFile) {
  voxplay::Notes notes;
  AddCuePoints(pFile, notes);
  AddLoops(pFile, notes);
  AddTitles(pFile, notes);
  return notes;
}

}  // namespace tool
