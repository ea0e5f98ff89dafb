// SPDX-License-Identifier: Apache-2.0
#include "notes/MarkChunks.h"

#include <algorithm>

#include "notes/FourCC.h"

namespace api {
namespace {

using C_View = std::span<const std::uint8_t>;

constexpr S_FourCC kListType = FourCC("adtl");
constexpr S_FourCC kLabel = FourCC("labl");
constexpr S_FourCC kNote = FourCC("note");
constexpr S_FourCC kText = FourCC("ltxt");
constexpr std::size_t kCountBytes = 4;
constexpr std::size_t kCueBytes = 24;
constexpr std::size_t kSamplerBytes = 36;
constexpr std::size_t kLoopBytes = 24;
constexpr std::size_t kIDBytes = 4;
constexpr std::size_t kPartHeaderBytes = 8;
constexpr std::size_t kTextBytes = 20;

bool IsLabelList(C_View data) { return data.size() >= kIDBytes && FourCCOf(data) == kListType; }

// How many of the claimed records from cbHeader on are there.
std::size_t WholeRecords(std::uint32_t dwClaimed, C_View data, std::size_t cbHeader,
                         std::size_t cbRecord) {
  return std::min<std::size_t>(dwClaimed, (data.size() - cbHeader) / cbRecord);
}

S_NoteCue ReadCue(vcm::C_ByteReader& reader) {
  S_NoteCue cue;
  cue.dwID = reader.U32();
  cue.dwPosition = reader.U32();
  cue.chunk = FourCCOf(reader.Bytes(kIDBytes));
  cue.dwChunkStart = reader.U32();
  cue.dwBlockStart = reader.U32();
  cue.dwSampleOffset = reader.U32();
  return cue;
}

S_NoteLoop ReadLoop(vcm::C_ByteReader& reader) {
  S_NoteLoop loop;
  loop.dwID = reader.U32();
  loop.dwType = reader.U32();
  loop.dwFirst = reader.U32();
  loop.dwLast = reader.U32();
  loop.dwFraction = reader.U32();
  loop.dwPlayCount = reader.U32();
  return loop;
}

// A text ends at its first zero, or where its part ends.
std::string TextOf(C_View bytes) {
  return {bytes.begin(), std::find(bytes.begin(), bytes.end(), std::uint8_t{0})};
}

S_NoteLabel ReadLabel(const S_FourCC& type, C_View data) {
  const std::uint32_t dwCueID = vcm::C_ByteReader(data).U32();
  return {dwCueID, type, TextOf(data.subspan(kIDBytes))};
}

S_NoteRegionText ReadText(C_View data) {
  vcm::C_ByteReader reader(data);
  S_NoteRegionText text;
  text.dwCueID = reader.U32();
  text.dwCount = reader.U32();
  text.purpose = FourCCOf(reader.Bytes(kIDBytes));
  text.wCountry = reader.U16();
  text.wLanguage = reader.U16();
  text.wDialect = reader.U16();
  text.wCodePage = reader.U16();
  text.strText = TextOf(data.subspan(kTextBytes));
  return text;
}

void WritePart(vcm::C_ByteWriter& writer, const S_FourCC& id, C_View data) {
  writer.Text(AsText(id), kIDBytes);
  writer.U32(static_cast<std::uint32_t>(data.size()));
  writer.Bytes(data);
  if (data.size() % 2 != 0) writer.U8(0);
}

// Reads the parts of a list, one after the other.
class C_ListReader {
 public:
  explicit C_ListReader(C_View data) : m_cbAll(data.size()), m_reader(data) {
    m_reader.Skip(kIDBytes);
    Advance();
  }

  S_LabelList Read() {
    while (m_list.bSound && m_reader.Remaining() > kPartHeaderBytes) ReadPart();
    if (m_list.bSound && m_reader.Remaining() == kPartHeaderBytes) ReadLastHeader();
    m_list.others = m_others.Take();
    return std::move(m_list);
  }

 private:
  void ReadPart() {
    const S_FourCC id = FourCCOf(m_reader.Bytes(kIDBytes));
    const std::uint32_t cbSize = m_reader.U32();
    m_list.bSound = cbSize <= m_reader.Remaining() && Take(id, m_reader.Bytes(cbSize));
    if (!m_list.bSound) return;
    if (cbSize % 2 != 0 && m_reader.Remaining() > 0) m_reader.Skip(1);
    Advance();
  }

  // A header at the very end has nothing after it. One that is no label is kept all the same.
  void ReadLastHeader() {
    const S_FourCC id = FourCCOf(m_reader.Bytes(kIDBytes));
    if (m_reader.U32() != 0 || id[0] == 0 || id == kLabel || id == kText) return;
    WritePart(m_others, id, {});
    Advance();
  }

  // False for a part that is too short for its fields.
  bool Take(const S_FourCC& id, C_View data) {
    if (id == kText) {
      if (data.size() < kTextBytes) return false;
      m_list.texts.push_back(ReadText(data));
    } else if (id == kLabel || (id == kNote && data.size() >= kIDBytes)) {
      if (data.size() < kIDBytes) return false;
      m_list.labels.push_back(ReadLabel(id, data));
    } else {
      WritePart(m_others, id, data);
    }
    return true;
  }

  void Advance() { m_list.cbWhole = m_cbAll - m_reader.Remaining(); }

  std::size_t m_cbAll;
  vcm::C_ByteReader m_reader;
  vcm::C_ByteWriter m_others;
  S_LabelList m_list;
};

}  // namespace

E_MarkKind MarkKindOf(const S_FourCC& id, C_View data) {
  if (id == FourCC("cue ") && data.size() >= kCountBytes) return E_MarkKind::Cues;
  if (id == FourCC("smpl") && data.size() >= kSamplerBytes) return E_MarkKind::Sampler;
  if (id == FourCC("LIST") && IsLabelList(data)) return E_MarkKind::List;
  return E_MarkKind::None;
}

std::vector<S_NoteCue> ReadCues(C_View data) {
  vcm::C_ByteReader reader(data);
  std::vector<S_NoteCue> cues(WholeRecords(reader.U32(), data, kCountBytes, kCueBytes));
  for (S_NoteCue& cue : cues) cue = ReadCue(reader);
  return cues;
}

S_SamplerChunk ReadSampler(C_View data) {
  vcm::C_ByteReader reader(data);
  S_SamplerChunk read;
  S_NoteSampler& sampler = read.sampler;
  sampler.bPresent = true;
  sampler.dwManufacturer = reader.U32();
  sampler.dwProduct = reader.U32();
  sampler.dwSamplePeriod = reader.U32();
  sampler.dwMidiUnityNote = reader.U32();
  sampler.dwMidiPitchFraction = reader.U32();
  sampler.dwSmpteFormat = reader.U32();
  sampler.dwSmpteOffset = reader.U32();
  read.loops.resize(WholeRecords(reader.U32(), data, kSamplerBytes, kLoopBytes));
  const std::uint32_t cbSamplerData = reader.U32();
  for (S_NoteLoop& loop : read.loops) loop = ReadLoop(reader);
  const C_View held = reader.Bytes(std::min<std::size_t>(cbSamplerData, reader.Remaining()));
  sampler.data.assign(held.begin(), held.end());
  return read;
}

S_LabelList ReadLabelList(C_View data) { return C_ListReader(data).Read(); }

std::vector<std::uint8_t> CuePayload(std::span<const S_NoteCue> cues) {
  vcm::C_ByteWriter writer;
  writer.U32(static_cast<std::uint32_t>(cues.size()));
  for (const S_NoteCue& cue : cues) {
    writer.U32(cue.dwID);
    writer.U32(cue.dwPosition);
    writer.Text(AsText(cue.chunk), kIDBytes);
    for (const std::uint32_t dwField : {cue.dwChunkStart, cue.dwBlockStart, cue.dwSampleOffset}) {
      writer.U32(dwField);
    }
  }
  return writer.Take();
}

std::vector<std::uint8_t> SamplerPayload(const S_NoteSampler& sampler,
                                         std::span<const S_NoteLoop> loops) {
  vcm::C_ByteWriter writer;
  for (const std::uint32_t dwField :
       {sampler.dwManufacturer, sampler.dwProduct, sampler.dwSamplePeriod, sampler.dwMidiUnityNote,
        sampler.dwMidiPitchFraction, sampler.dwSmpteFormat, sampler.dwSmpteOffset,
        static_cast<std::uint32_t>(loops.size()),
        static_cast<std::uint32_t>(sampler.data.size())}) {
    writer.U32(dwField);
  }
  for (const S_NoteLoop& loop : loops) {
    for (const std::uint32_t dwField :
         {loop.dwID, loop.dwType, loop.dwFirst, loop.dwLast, loop.dwFraction, loop.dwPlayCount}) {
      writer.U32(dwField);
    }
  }
  writer.Bytes(sampler.data);
  return writer.Take();
}

C_LabelListWriter::C_LabelListWriter() { m_writer.Text(AsText(kListType), kIDBytes); }

void C_LabelListWriter::Text(const S_NoteRegionText& text) {
  const std::size_t cbText = text.strText.empty() ? 0 : text.strText.size() + 1;
  Part(kText, kTextBytes + cbText);
  m_writer.U32(text.dwCueID);
  m_writer.U32(text.dwCount);
  m_writer.Text(AsText(text.purpose), kIDBytes);
  for (const std::uint16_t wField :
       {text.wCountry, text.wLanguage, text.wDialect, text.wCodePage}) {
    m_writer.U16(wField);
  }
  PaddedText(text.strText, cbText);
}

void C_LabelListWriter::Label(const S_NoteLabel& label) {
  const std::size_t cbText = label.strText.size() + 1;
  Part(label.type, kIDBytes + cbText);
  m_writer.U32(label.dwCueID);
  PaddedText(label.strText, cbText);
}

void C_LabelListWriter::OwnLabel(std::uint32_t dwCueID, const std::string& strText) {
  const std::size_t cbText = (strText.size() + 2) & ~std::size_t{1};
  Part(kLabel, kIDBytes + cbText);
  m_writer.U32(dwCueID);
  m_writer.Text(strText, cbText);
}

void C_LabelListWriter::Others(C_View others) { m_writer.Bytes(others); }

bool C_LabelListWriter::IsEmpty() const { return m_writer.Data().size() == kIDBytes; }

void C_LabelListWriter::Part(const S_FourCC& id, std::size_t cbSize) {
  m_writer.Text(AsText(id), kIDBytes);
  m_writer.U32(static_cast<std::uint32_t>(cbSize));
}

void C_LabelListWriter::PaddedText(const std::string& strText, std::size_t cbText) {
  m_writer.Text(strText, cbText);
  if (cbText % 2 != 0) m_writer.U8(0);
}

}  // namespace api
