// SPDX-License-Identifier: Apache-2.0
#include "file/FlacBlocks.h"

#include <array>

#include "file/MpegSound.h"

namespace toolbox {
namespace {

using Head = std::array<UInt8, 4>;
constexpr Head kSignature = {'f', 'L', 'a', 'C'};
constexpr UInt8 kLastBlock = 0x80;
constexpr UInt8 kComments = 4;

bool ReadHead(const C_FileDescriptor& file, UInt64 qwAt, Head& head) {
  return file.ReadAt(qwAt, head.data(), head.size()) == head.size();
}

// Numbers inside this block are little-endian, unlike those of its header.
UInt64 ReadCount(const C_FileDescriptor& file, UInt64 qwAt) {
  Head bytes{};
  if (!ReadHead(file, qwAt, bytes)) return file.Size();
  return UInt64{bytes[3]} << 24 | UInt64{bytes[2]} << 16 | UInt64{bytes[1]} << 8 | bytes[0];
}

// The block holds the length and the text of the vendor, the number of comments, and then each
// comment with its own length.
bool HoldsItsComments(const C_FileDescriptor& file, UInt64 qwAt, UInt64 cbBlock) {
  constexpr UInt64 kNumber = sizeof(UInt32);
  const UInt64 cbVendor = ReadCount(file, qwAt);
  if (cbVendor + 2 * kNumber > cbBlock) return false;
  return ReadCount(file, qwAt + kNumber + cbVendor) <= (cbBlock - cbVendor) / kNumber - 2;
}

}  // namespace

// Every step moves forward by at least one header, so the walk ends with the file.
bool HoldsItsFlacBlocks(const C_FileDescriptor& file) {
  Head head{};
  UInt64 qwAt = C_MpegSound::TagBytes(file);
  if (!ReadHead(file, qwAt, head) || head != kSignature) return true;
  do {
    qwAt += head.size();
    if (!ReadHead(file, qwAt, head)) return false;
    const UInt64 cbBlock = UInt64{head[1]} << 16 | UInt64{head[2]} << 8 | head[3];
    const UInt64 qwBlock = qwAt + head.size();
    if (qwBlock + cbBlock > file.Size()) return false;
    const bool bComments = (head[0] & ~kLastBlock) == kComments;
    if (bComments && !HoldsItsComments(file, qwBlock, cbBlock)) return false;
    qwAt += cbBlock;
  } while ((head[0] & kLastBlock) == 0);
  return true;
}

}  // namespace toolbox
