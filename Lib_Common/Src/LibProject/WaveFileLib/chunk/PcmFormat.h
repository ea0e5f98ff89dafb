// SPDX-License-Identifier: Apache-2.0
//
// Reads and writes the 16-byte PCM format record as it is in a file (PcmFormatRecord.h).
#pragma once

#include "ByteReader.h"
#include "interface/PcmFormatRecord.h"

namespace pcmformat {

// Reads the next 16 bytes. Fields for which the reader has no bytes left are zero, and its Ok() is
// then false.
[[nodiscard]] S_PcmFormatRecord Read(vcm::C_ByteReader& reader) noexcept;
// Appends the 16 bytes.
void Write(const S_PcmFormatRecord& record, vcm::C_ByteWriter& writer);

}  // namespace pcmformat
