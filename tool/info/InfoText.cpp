// SPDX-License-Identifier: Apache-2.0
#include "info/InfoText.h"

#include <algorithm>

#include "base/TextTable.h"
#include "base/TimeText.h"
#include "base/Utf8.h"
#include "marks/FourCharacters.h"
#include "marks/MarkTable.h"
#include "sound/FormatText.h"
#include "sound/HeaderFields.h"

namespace tool {
namespace {

constexpr std::size_t kIndent = 2;
constexpr std::size_t kFurtherIndent = 4;
constexpr std::size_t kMostMarks = 40;

std::string ChannelText(std::uint32_t dwChannels) {
  if (dwChannels == 1) return "mono";
  return dwChannels == 2 ? "stereo" : CountText(dwChannels) + " channels";
}

std::string RateText(std::uint32_t dwRate, std::uint32_t dwChannels) {
  return CountText(dwRate) + " Hz, " + ChannelText(dwChannels);
}

std::string LengthText(std::uint64_t qwFrames, std::uint32_t dwRate) {
  if (qwFrames == kFramesUnknown) return "not known";
  return ClockText(qwFrames, dwRate) + " (" + CountedText(qwFrames, "frame") + ")";
}

std::string DamageText(const S_SoundReport& report) {
  if (*report.qwDamaged == 0) return "none";
  return CountText(*report.qwDamaged) + " of " + CountedText(report.info.qwFrames, "frame") + " (" +
         ClockText(*report.qwDamaged, report.info.dwRate) + ")";
}

std::string StreamText(const voxplay::Info& stream) {
  voxplay::Info alone = stream;
  alone.container = VOXPLAY_CONTAINER_NONE;
  return FormatText(alone) + ", " + CountText(stream.sample_rate) + " Hz, " +
         LengthText(stream.frames, stream.sample_rate);
}

// Fields that are 0 say nothing, but for those that every header has.
std::string FieldsText(const S_HeaderFields& header) {
  std::string strText;
  for (const auto& field : header.fields) {
    if (field.dwValue == 0 && field.strKey.starts_with("value_")) continue;
    std::string strName = field.strKey;
    std::ranges::replace(strName, '_', ' ');
    strText += (strText.empty() ? "" : ", ") + strName + ' ' + std::to_string(field.dwValue);
  }
  return strText;
}

C_TextTable Facts(const S_SoundReport& report) {
  const S_SoundInfo& info = report.info;
  C_TextTable facts("ll");
  facts.Add({"Format", info.strFormat});
  facts.Add({"Rate", RateText(info.dwRate, info.dwChannels)});
  facts.Add({"Length", LengthText(info.qwFrames, info.dwRate) +
                           (report.bCut ? "; the end of the file is missing" : "")});
  if (report.qwBytes) facts.Add({"Size", CountedText(*report.qwBytes, "byte")});
  if (report.qwDamaged) facts.Add({"Damage", DamageText(report)});
  if (report.stream) facts.Add({"Stream", StreamText(*report.stream)});
  for (const auto& header : HeaderFieldsOf(info.headers.value_or(voxplay::Headers{}))) {
    facts.Add({header.strName, FieldsText(header)});
  }
  return facts;
}

std::string ChunkTable(const std::vector<voxplay::ChunkPlace>& chunks, bool bColours) {
  C_TextTable table("lrrl", {"chunk", "offset", "bytes", "held"});
  for (const voxplay::ChunkPlace& chunk : chunks) {
    const bool bCut = chunk.held < chunk.size;
    table.Add({Printable(FourCharacters(chunk.id)), CountText(chunk.offset), CountText(chunk.size),
               bCut ? CountText(chunk.held) + ", the end of the file cuts it" : ""});
  }
  return table.Text(kFurtherIndent, bColours);
}

std::string Heading(const char* pszWhat, std::size_t nCount) {
  return std::string(kIndent, ' ') + pszWhat + " (" + CountText(nCount) + ")\n";
}

}  // namespace

std::string InfoText(const S_SoundReport& report, bool bColours) {
  std::string strText = Bold(Printable(NameOf(report.strPath)), bColours) + '\n';
  strText += Facts(report).Text(kIndent);
  if (!report.marks.empty()) {
    strText += Heading("Marks", report.marks.size());
    strText += MarkTable(report.marks, report.info.dwRate, kFurtherIndent, bColours, kMostMarks);
  }
  if (!report.info.chunks.empty()) {
    strText += Heading("Chunks", report.info.chunks.size());
    strText += ChunkTable(report.info.chunks, bColours);
  }
  return strText;
}

}  // namespace tool
