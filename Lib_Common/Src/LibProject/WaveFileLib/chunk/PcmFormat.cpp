// SPDX-License-Identifier: Apache-2.0
#include "chunk/PcmFormat.h"

namespace pcmformat {

S_PcmFormatRecord Read(vcm::C_ByteReader& reader) noexcept {
  S_PcmFormatRecord record;
  record.wFormatTag = reader.U16();
  record.wChannels = reader.U16();
  record.dwSamplesPerSec = reader.U32();
  record.dwAvgBytesPerSec = reader.U32();
  record.wBlockAlign = reader.U16();
  record.wBitsPerSample = reader.U16();
  return record;
}

void Write(const S_PcmFormatRecord& record, vcm::C_ByteWriter& writer) {
  writer.U16(record.wFormatTag);
  writer.U16(record.wChannels);
  writer.U32(record.dwSamplesPerSec);
  writer.U32(record.dwAvgBytesPerSec);
  writer.U16(record.wBlockAlign);
  writer.U16(record.wBitsPerSample);
}

}  // namespace pcmformat
