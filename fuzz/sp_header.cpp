// SPDX-License-Identifier: Apache-2.0
//
// Treats any bytes as a file that may have an SP header: reads the header, writes it to another
// file and strips it.
//
//   scripts/fuzz.sh 60 sp_header
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "FuzzFile.h"
#include "Require.h"
#include "file/SpHeader.h"

namespace {

// A recognised header is read back unchanged from the file that it is written to.
void CheckWrite(const C_SpHeader& header) {
  const C_FuzzFile nothing;
  const C_FuzzFile written;
  Require(CopyWithSpHeader(nothing.Path(), written.Path(), header));
  C_SpHeader again;
  Require(ReadSpHeader(&again, written.Path()) && again == header);
  Require(written.Bytes().size() == C_SpHeader::kBytes);
}

void CheckStrip(const C_FuzzFile& file, std::size_t cbStart) {
  const auto bytes = file.Bytes();
  const C_FuzzFile target;
  C_SpHeader header;
  Require(StripSpHeader(&header, file.Path(), target.Path()));
  const auto stripped = target.Bytes();
  const auto rest = std::span(bytes).subspan(std::min(cbStart, bytes.size()));
  Require(std::vector<std::uint8_t>(rest.begin(), rest.end()) == stripped);
}

void CheckFixedOffsets(const C_FuzzFile& file, const C_SpHeader& header) {
  if (file.Bytes().size() < C_SpHeader::kBytes) return;
  Require(ReadSpWord22(file.Path()) == header.GetID());
  Require((ReadSpDword24(file.Path()) & 0xFFFF) == header.GetFormat());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  const C_FuzzFile file(std::span(pData, cbData));
  C_SpHeader header;
  const bool bHeader = ReadSpHeader(&header, file.Path());
  Require(bHeader || header == C_SpHeader());
  Require(!bHeader || cbData >= 22);
  Require(GetSpFileID(file.Path()) == (bHeader ? header.GetID() : C_SpHeader::kNoID));
  if (bHeader) {
    CheckWrite(header);
    CheckFixedOffsets(file, header);
  }
  CheckStrip(file, bHeader ? C_SpHeader::kBytes : 0);
  // A file that cannot be replaced stays as it is.
  const auto before = file.Bytes();
  Require(!PrependSpHeader(header, file.Path()) && file.Bytes() == before);
  return 0;
}
