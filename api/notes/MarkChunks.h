// SPDX-License-Identifier: Apache-2.0
//
// The chunks that hold cue points, loops and labels, as they are in a file. Their layouts are those
// of chunk/WavDataCueInfo.h, chunk/WavDataSamplerInfo.h and chunk/WavDataListInfo.h. Of a list,
// these parts are understood beyond the class library:
//
//   "labl", "note"  cue point identifier (4), text of any length
//   "ltxt"          20 bytes, as there, and then a text
//   others          kept byte for byte
//
// Reading takes records for as long as they are whole, and never fails.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "ByteReader.h"
#include "notes/Notes.h"

namespace api {

enum class E_MarkKind { None, Cues, Sampler, List };

// None for other chunks, and for those that are too short to mean anything.
E_MarkKind MarkKindOf(const S_FourCC& id, std::span<const std::uint8_t> data);

// These three take what MarkKindOf calls by their names.
std::vector<S_NoteCue> ReadCues(std::span<const std::uint8_t> data);
struct S_SamplerChunk {
  S_NoteSampler sampler;
  std::vector<S_NoteLoop> loops;
};
S_SamplerChunk ReadSampler(std::span<const std::uint8_t> data);
struct S_LabelList {
  std::vector<S_NoteLabel> labels;
  std::vector<S_NoteRegionText> texts;
  std::vector<std::uint8_t> others;  // parts of other kinds, with headers and pad bytes
  // How many bytes of the list are whole parts. When it contradicts itself, they are not all.
  std::size_t cbWhole = 0;
  bool bSound = true;

  [[nodiscard]] bool HasOnlyOthers() const { return labels.empty() && texts.empty(); }
};
S_LabelList ReadLabelList(std::span<const std::uint8_t> data);

std::vector<std::uint8_t> CuePayload(std::span<const S_NoteCue> cues);
std::vector<std::uint8_t> SamplerPayload(const S_NoteSampler& sampler,
                                         std::span<const S_NoteLoop> loops);

// Writes a list. Texts must come before labels: readers in the field want to know the length of a
// region when they reach its name.
class C_LabelListWriter {
 public:
  C_LabelListWriter();

  void Text(const S_NoteRegionText& text);
  void Label(const S_NoteLabel& label);
  // A label of the library's own. The zero that pads it is counted in its size, as
  // chunk/WavDataListInfo.h says.
  void OwnLabel(std::uint32_t dwCueID, const std::string& strText);
  // Parts as ReadLabelList keeps them.
  void Others(std::span<const std::uint8_t> others);

  [[nodiscard]] bool IsEmpty() const;
  [[nodiscard]] std::vector<std::uint8_t> Take() { return m_writer.Take(); }

 private:
  void Part(const S_FourCC& id, std::size_t cbSize);
  void PaddedText(const std::string& strText, std::size_t cbText);

  vcm::C_ByteWriter m_writer;
};

}  // namespace api
