// SPDX-License-Identifier: Apache-2.0
#include "sound/ForeignEnd.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "sound/ChunkWalk.h"

namespace tool {
namespace {

constexpr std::size_t kHeadBytes = 32;
constexpr std::size_t kOggHeadBytes = 27;
constexpr std::size_t kMostOggPage = kOggHeadBytes + 255 + std::size_t{255} * 255;
constexpr std::uint32_t kNotSaid = 0xFFFFFFFF;
// Programs that could not go back have written such sizes.
constexpr std::uint32_t kNotSaidToPipes = 0x7F000000;

// The bytes at a place, as far as they are there.
std::vector<std::uint8_t> BytesAt(C_FileBytes& bytes, std::uint64_t qwAt, std::size_t nBytes) {
  std::vector<std::uint8_t> read(nBytes);
  bytes.Seek(qwAt);
  const std::int64_t nRead = bytes.Read(read.data(), read.size());
  read.resize(static_cast<std::size_t>(std::max<std::int64_t>(nRead, 0)));
  return read;
}

bool HasText(const std::vector<std::uint8_t>& bytes, std::size_t nAt, std::string_view text) {
  return nAt + text.size() <= bytes.size() &&
         std::equal(text.begin(), text.end(), bytes.begin() + static_cast<std::ptrdiff_t>(nAt));
}

// The high byte comes first.
std::uint32_t Number(const std::vector<std::uint8_t>& bytes, std::size_t nAt) {
  std::uint32_t dwNumber = 0;
  for (std::size_t n = nAt; n < nAt + 4; ++n) dwNumber = dwNumber << 8U | bytes[n];
  return dwNumber;
}

// Some programs count the head of the form as well.
bool FormLacksItsEnd(C_FileBytes& bytes, std::uint32_t dwSize, std::uint64_t qwLength) {
  return (dwSize < kNotSaidToPipes && qwLength < dwSize) || CutsChunk(bytes, kFormChunks);
}

bool AuLacksItsEnd(const std::vector<std::uint8_t>& head, std::uint64_t qwLength) {
  const std::uint32_t dwSize = Number(head, 8);
  return dwSize != kNotSaid && qwLength < std::uint64_t{Number(head, 4)} + dwSize;
}

// The number of a field, "sample_count -i 8000" being one.
std::optional<std::uint64_t> SphereField(std::string_view header, std::string_view name) {
  const std::size_t nAt = header.find("\n" + std::string(name) + " -i ");
  if (nAt == std::string_view::npos) return {};
  const std::string_view text = header.substr(nAt + name.size() + 5);
  std::uint32_t dwNumber = 0;
  const auto end = std::from_chars(text.data(), text.data() + text.size(), dwNumber);
  return end.ec == std::errc() ? std::optional<std::uint64_t>(dwNumber) : std::nullopt;
}

// The header is text, and tells its own size in its second line.
bool SphereLacksItsEnd(C_FileBytes& bytes, std::uint64_t qwLength) {
  constexpr std::size_t kMostHeader = 16384;
  constexpr std::uint64_t kMostBytes = 16;
  constexpr std::uint64_t kMostChannels = 65536;
  const auto read = BytesAt(bytes, 0, kMostHeader);
  const std::string header(read.begin(), read.end());
  const auto qwSamples = SphereField(header, "sample_count");
  const auto qwBytes = SphereField(header, "sample_n_bytes");
  const auto qwChannels = SphereField(header, "channel_count").value_or(1);
  if (!qwSamples || !qwBytes || *qwBytes > kMostBytes || qwChannels > kMostChannels) return false;
  const std::uint64_t qwHeader = std::strtoul(header.c_str() + 8, nullptr, 10);
  return qwLength < qwHeader + *qwSamples * *qwBytes * qwChannels;
}

// A whole file ends with a block that is one byte of 0. Some programs count too few bytes in the
// block of the samples, so that nothing else tells their files from ones that are cut.
bool VocLacksItsEnd(C_FileBytes& bytes, std::uint64_t qwLength) {
  constexpr std::size_t kOffsetAt = 20;
  const auto head = BytesAt(bytes, kOffsetAt, 2);
  const auto last = BytesAt(bytes, qwLength - 1, 1);
  if (head.size() < 2 || last.empty() || last[0] == 0) return false;
  const std::uint64_t qwFirst = head[0] | std::uint64_t{head[1]} << 8U;
  return CutsChunk(bytes, {qwFirst, 4, 1, 3, false, false, 1, std::uint64_t{1} << 24U});
}

// The page is the last one that begins in the bytes, which go to the end of the file.
bool PageEndsStream(const std::vector<std::uint8_t>& tail, std::size_t nPage) {
  constexpr std::size_t kFlagsAt = 5;
  constexpr std::uint8_t kLast = 4;
  if (tail.size() - nPage < kOggHeadBytes) return false;
  const std::size_t nSegments = tail[nPage + kOggHeadBytes - 1];
  std::size_t nEnd = nPage + kOggHeadBytes + nSegments;
  if (nEnd > tail.size()) return false;
  for (std::size_t n = nEnd - nSegments, nTable = nEnd; n < nTable; ++n) nEnd += tail[n];
  return nEnd <= tail.size() && (tail[nPage + kFlagsAt] & kLast) != 0;
}

bool OggLacksItsEnd(C_FileBytes& bytes, std::uint64_t qwLength) {
  constexpr std::string_view kMark = "OggS";
  const std::uint64_t qwTail = std::min<std::uint64_t>(qwLength, 2 * kMostOggPage);
  const auto tail = BytesAt(bytes, qwLength - qwTail, static_cast<std::size_t>(qwTail));
  const auto page = std::find_end(tail.begin(), tail.end(), kMark.begin(), kMark.end());
  return page == tail.end() || !PageEndsStream(tail, static_cast<std::size_t>(page - tail.begin()));
}

// What stands before the stream, by its own account.
std::uint64_t TagBytes(C_FileBytes& bytes) {
  constexpr std::size_t kTagHeadBytes = 10;
  const auto head = BytesAt(bytes, 0, kTagHeadBytes);
  if (!HasText(head, 0, "ID3") || head.size() < kTagHeadBytes) return 0;
  std::uint64_t qwSize = kTagHeadBytes;
  for (std::size_t n = 0; n < 4; ++n) qwSize += std::uint64_t{head[6 + n] & 0x7FU} << 7U * (3 - n);
  return qwSize;
}

}  // namespace

bool LacksItsEnd(C_FileBytes& bytes) {
  if (bytes.Length() < 0) return false;
  const auto qwLength = static_cast<std::uint64_t>(bytes.Length());
  const auto head = BytesAt(bytes, 0, kHeadBytes);
  if (head.size() < kHeadBytes) return false;
  if (HasText(head, 0, "RIFF")) return CutsChunk(bytes, kRiffChunks);
  if (HasText(head, 0, "RIFX")) return CutsChunk(bytes, kFormChunks);
  if (HasText(head, 0, "NIST_1A")) return SphereLacksItsEnd(bytes, qwLength);
  if (HasText(head, 0, "Creative Voice File")) return VocLacksItsEnd(bytes, qwLength);
  if (HasText(head, 0, "FORM")) return FormLacksItsEnd(bytes, Number(head, 4), qwLength);
  if (HasText(head, 0, ".snd")) return AuLacksItsEnd(head, qwLength);
  if (HasText(head, 0, "riff") && HasText(head, 24, "wave")) return CutsChunk(bytes, kW64Chunks);
  if (HasText(head, 0, "caff")) return CutsChunk(bytes, kCafChunks);
  return HasText(head, 0, "OggS") && OggLacksItsEnd(bytes, qwLength);
}

bool TellsMpegLength(C_FileBytes& bytes) {
  constexpr std::size_t kFirstFrames = 4096;
  const auto first = BytesAt(bytes, TagBytes(bytes), kFirstFrames);
  constexpr std::array<std::string_view, 3> kMarks = {"Xing", "Info", "VBRI"};
  return std::ranges::any_of(kMarks, [&first](std::string_view mark) {
    return std::search(first.begin(), first.end(), mark.begin(), mark.end()) != first.end();
  });
}

}  // namespace tool
