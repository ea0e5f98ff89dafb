// SPDX-License-Identifier: Apache-2.0
#include "writer/StreamWriter.h"

#include <utility>

#include "ByteReader.h"
#include "file/SpHeader.h"
#include "writer/FileType.h"

namespace api {
namespace {

constexpr const char* kSpText = "VOXELTRONIC SP";
constexpr std::size_t kSpTextBytes = 16;

std::vector<std::uint8_t> SpHeader(const voxplay_format& format) {
  const C_SpHeader defaults;
  vcm::C_ByteWriter header;
  header.U32(0xFF00FF00);
  header.Text(kSpText, kSpTextBytes);
  header.U8(defaults.GetVersion());
  header.U8(defaults.GetKind());
  header.U16(FileTypeOf(format));
  header.U16(defaults.GetFormat());
  header.U32(format.sample_rate);
  header.Zeros(C_SpHeader::kBytes - header.Data().size());
  return header.Take();
}

// The version of a codec that was built in is 0.
std::vector<std::uint8_t> CodecHead(const voxplay_format& format) {
  vcm::C_ByteWriter head;
  head.U16(FileTypeOf(format));
  head.U16(static_cast<std::uint16_t>(format.sample_rate));
  head.U16(0);
  return head.Take();
}

std::vector<std::uint8_t> HeaderOf(const voxplay_format& format) {
  if (format.container == VOXPLAY_CONTAINER_SP) return SpHeader(format);
  if (format.container == VOXPLAY_CONTAINER_HEAD) return CodecHead(format);
  return {};
}

}  // namespace

C_StreamWriter::C_StreamWriter(I_ByteTarget& target, const voxplay_format& format,
                               C_StreamCoderPtr coder)
    : m_target(target),
      m_format(format),
      m_coder(std::move(coder)),
      m_coded(*m_coder, format.channels) {}

void C_StreamWriter::Begin(const S_Notes& /*notes*/, std::uint64_t qwAnnounced) {
  m_target.Write(HeaderOf(m_format));
  m_coder->Begin(qwAnnounced);
}

std::vector<std::string> C_StreamWriter::End(const S_Notes& notes, std::uint64_t /*qwFrames*/) {
  m_coder->End(notes);
  return m_coder->Lost(notes, NameOfContainer(m_format.container));
}

}  // namespace api
