// SPDX-License-Identifier: Apache-2.0
#include "riff/RiffScan.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <string_view>
#include <utility>

#include "ByteReader.h"
#include "riff/Ds64.h"

namespace api {
namespace {

constexpr std::uint64_t kFileHeadBytes = 12;
constexpr std::size_t kChunkHeadBytes = 8;
constexpr std::uint64_t kFormBytes = 4;
constexpr std::size_t kPieceBytes = 1024;
constexpr std::uint32_t kNotSaid = std::numeric_limits<std::uint32_t>::max();
// Programs that could not go back have written sizes from here on, 0x7FFFF000 for instance. A file
// may also be that long: then its end does not lack so much.
constexpr std::uint32_t kLeastPipeSize = 0x7F000000;
constexpr std::uint64_t kMostMissing = std::uint64_t{64} << 20U;
constexpr std::uint64_t kNoEnd = std::numeric_limits<std::uint64_t>::max();

bool IsID(const S_FourCC& id, std::string_view text) { return std::ranges::equal(id, text); }

S_FourCC TakeID(vcm::C_ByteReader& reader) {
  S_FourCC id{};
  std::ranges::transform(reader.Bytes(id.size()), id.begin(),
                         [](std::uint8_t byIn) { return static_cast<char>(byIn); });
  return id;
}

// What no file can reach must not overflow either.
std::uint64_t AddLimited(std::uint64_t qwAt, std::uint64_t qwSize) {
  return qwSize > kNoEnd - qwAt ? kNoEnd : qwAt + qwSize;
}

struct S_ChunkHead {
  std::uint64_t qwAt = 0;
  S_FourCC id{};
  std::uint32_t dwSize = 0;
};

S_ChunkHead HeadOf(std::uint64_t qwAt, std::span<const std::uint8_t> bytes) {
  vcm::C_ByteReader reader(bytes);
  S_ChunkHead head{qwAt, TakeID(reader), 0};
  head.dwSize = reader.U32();
  return head;
}

class C_Scanner {
 public:
  C_Scanner(I_ByteSource& source, const C_ChunkFound& fnFound)
      : m_source(source), m_fnFound(fnFound) {}

  std::optional<S_RiffContents> Scan() {
    if (!ReadFileHead()) return std::nullopt;
    while (m_qwRemaining >= kChunkHeadBytes && ListNext()) continue;
    m_contents.bCutShort = IsCutShort();
    m_contents.bLacksBytes = LacksBytes();
    return std::move(m_contents);
  }

 private:
  bool ReadFileHead() {
    std::array<std::uint8_t, kFileHeadBytes> bytes{};
    if (!ReadExact(m_source, 0, bytes)) return false;
    vcm::C_ByteReader reader(bytes);
    const S_FourCC id = TakeID(reader);
    m_contents.bRf64 = IsID(id, "RF64");
    if (!m_contents.bRf64 && !IsID(id, "RIFF")) return false;
    m_dwRiffSize = reader.U32();
    m_contents.form = TakeID(reader);
    // Sizes below 4 wrap, as they do in the class library; the listing then ends with the file.
    m_qwRemaining = m_dwRiffSize - std::uint32_t{kFormBytes};
    // A count of 32 bits ends such a file too early when it is longer than 4 GiB.
    if (!SaysSize()) m_qwRemaining = m_qwCountMask = kNoEnd;
    m_qwListEnd = AddLimited(kFileHeadBytes, m_qwRemaining);
    return true;
  }
  [[nodiscard]] bool SaysSize() const {
    constexpr std::uint64_t kAfterSize = 8;
    return m_dwRiffSize != 0 && m_dwRiffSize != kNotSaid && !IsPipeSize(m_dwRiffSize, kAfterSize);
  }
  // Whether it is the size of what begins there, by a program that did not know it.
  [[nodiscard]] bool IsPipeSize(std::uint32_t dwSize, std::uint64_t qwAt) const {
    const std::uint64_t qwRest = BytesFrom(qwAt);
    return dwSize >= kLeastPipeSize && dwSize > qwRest && dwSize - qwRest > kMostMissing &&
           !m_contents.bRf64 && IsID(m_contents.form, "WAVE");
  }

  // Lists a chunk; false when it is the last one.
  bool ListNext() {
    const auto head = FindHead(HeadMayBeAt());
    if (!head) return false;
    // The count may wrap and is not looked at again before the chunk is listed, as in the class
    // library: old writers leave zeros between chunks out of the size.
    m_qwRemaining = (m_qwRemaining - (head->qwAt - m_qwNext)) & m_qwCountMask;
    const S_FoundChunk chunk = Measured(*head);
    const std::uint64_t qwTaken = AddLimited(kChunkHeadBytes, chunk.payload.qwSize);
    m_qwNext = AddLimited(head->qwAt, qwTaken);
    m_contents.chunks.push_back(chunk);
    if (m_contents.bRf64 && IsID(head->id, "ds64")) TakeDs64(chunk);
    if (m_fnFound) m_fnFound(chunk);
    const bool bData = IsID(head->id, "data");
    if (bData && (m_contents.bToTheEnd || !m_source.CanGoBack())) return false;
    if (m_qwRemaining < qwTaken) return false;
    m_qwRemaining -= qwTaken;
    return true;
  }

  // Where to look for the next chunk header. Some programs put another byte than zero after an odd
  // payload, and old ones put none.
  [[nodiscard]] std::uint64_t HeadMayBeAt() const {
    std::array<std::uint8_t, kChunkHeadBytes + 1> bytes{};
    const bool bAfterOdd = !m_contents.chunks.empty() && m_source.CanGoBack() &&
                           m_contents.chunks.back().payload.qwSize % 2 != 0;
    if (!bAfterOdd || !ReadExact(m_source, m_qwNext, bytes) || bytes[0] == 0) return m_qwNext;
    const S_ChunkHead even = HeadOf(m_qwNext + 1, std::span(bytes).subspan(1));
    const bool bPadded = IsID(even.id, "data") || IsID(even.id, "fmt ") ||
                         (MayBeChunk(even) && !MayBeChunk(HeadOf(m_qwNext, bytes)));
    return bPadded ? m_qwNext + 1 : m_qwNext;
  }
  [[nodiscard]] bool MayBeChunk(const S_ChunkHead& head) const {
    const bool bText = std::ranges::all_of(head.id, [](char ch) { return ch >= ' ' && ch <= '~'; });
    return bText && head.dwSize <= BytesFrom(head.qwAt + kChunkHeadBytes);
  }

  // The next chunk header; zeros before it are passed over. A source that only goes forward is
  // read no further than to its end.
  std::optional<S_ChunkHead> FindHead(std::uint64_t qwAt) {
    std::array<std::uint8_t, kPieceBytes> piece;
    std::size_t cbWanted = kChunkHeadBytes;
    for (;;) {
      const auto bytes = std::span(piece).first(cbWanted);
      const std::size_t cbRead = m_source.ReadSome(qwAt, bytes);
      const auto found =
          std::ranges::find_if(bytes.first(cbRead), [](auto byByte) { return byByte != 0; });
      const auto cbZeros = static_cast<std::size_t>(found - bytes.begin());
      const auto begun = bytes.first(cbRead).subspan(cbZeros);
      if (!begun.empty()) return CompleteHead(qwAt + cbZeros, begun);
      if (cbRead < cbWanted) return std::nullopt;
      qwAt += cbRead;
      if (m_source.CanGoBack()) cbWanted = kPieceBytes;
    }
  }
  std::optional<S_ChunkHead> CompleteHead(std::uint64_t qwAt, std::span<const std::uint8_t> begun) {
    std::array<std::uint8_t, kChunkHeadBytes> bytes{};
    const auto held = begun.first(std::min(begun.size(), bytes.size()));
    std::ranges::copy(held, bytes.begin());
    if (!ReadExact(m_source, qwAt + held.size(), std::span(bytes).subspan(held.size()))) {
      return std::nullopt;
    }
    return HeadOf(qwAt, bytes);
  }

  S_FoundChunk Measured(const S_ChunkHead& head) {
    S_FoundChunk chunk{head.id, {head.qwAt + kChunkHeadBytes, head.dwSize}, 0};
    const std::uint64_t qwRest = BytesFrom(chunk.payload.qwAt);
    if (m_contents.bRf64 && head.dwSize == kNotSaid) {
      chunk.payload.qwSize = m_ds64.SizeOf(head.id).value_or(kNotSaid);
    }
    if (IsData(head) && IsToTheEnd(head)) {
      m_contents.bToTheEnd = true;
      chunk.payload.qwSize = qwRest;
    }
    chunk.payload.qwSize = std::min(chunk.payload.qwSize, kNoEnd - chunk.payload.qwAt);
    chunk.qwHeld = std::min(chunk.payload.qwSize, qwRest);
    return chunk;
  }
  // As many as there can be, when the length is not known.
  [[nodiscard]] std::uint64_t BytesFrom(std::uint64_t qwAt) const {
    const std::uint64_t qwEnd = m_source.Length().value_or(kNoEnd);
    return qwEnd - std::min(qwEnd, qwAt);
  }
  [[nodiscard]] bool IsData(const S_ChunkHead& head) const {
    return IsID(head.id, "data") &&
           (IsID(m_contents.form, "WAVE") || IsID(m_contents.form, "VEMD"));
  }
  [[nodiscard]] bool IsToTheEnd(const S_ChunkHead& head) {
    if (head.dwSize == kNotSaid) return !m_contents.bRf64 || !m_ds64.SizeOf(head.id);
    if (IsPipeSize(head.dwSize, head.qwAt + kChunkHeadBytes)) return true;
    if (head.dwSize != 0 || m_contents.bRf64 || SaysSize()) return false;
    // What holds after one empty chunk holds after the next one.
    m_bOnlyChunks = m_bOnlyChunks || HoldsChunks(head.qwAt + kChunkHeadBytes);
    return !m_bOnlyChunks;
  }
  // Whether chunks begin here and go on to the end of the file. Samples never look like that.
  [[nodiscard]] bool HoldsChunks(std::uint64_t qwAt) const {
    if (!m_source.CanGoBack()) return false;
    std::array<std::uint8_t, kChunkHeadBytes> bytes{};
    while (BytesFrom(qwAt) > 0) {
      if (!ReadExact(m_source, qwAt, bytes)) return BytesFrom(qwAt) == 1 && bytes[0] == 0;
      // The pad byte of the chunk before.
      if (bytes[0] == 0) {
        if (bytes[1] == 0 || !ReadExact(m_source, ++qwAt, bytes)) return false;
      }
      const S_ChunkHead head = HeadOf(qwAt, bytes);
      if (!MayBeChunk(head)) return false;
      qwAt += kChunkHeadBytes + head.dwSize;
    }
    return true;
  }

  void TakeDs64(const S_FoundChunk& chunk) {
    m_ds64 = C_Ds64::Read(m_source, chunk.payload.qwAt, chunk.qwHeld);
    const auto qwRiffSize = m_ds64.RiffSize();
    if (SaysSize() || !qwRiffSize) return;
    m_qwListEnd = AddLimited(kFileHeadBytes, *qwRiffSize - kFormBytes);
    const std::uint64_t qwBefore = chunk.payload.qwAt - kChunkHeadBytes;
    m_qwRemaining = m_qwListEnd - std::min(m_qwListEnd, qwBefore);
  }

  [[nodiscard]] bool IsCutShort() const {
    const auto qwLength = m_source.Length();
    if (!qwLength || !m_source.CanGoBack()) return true;
    return *qwLength < std::max(m_qwListEnd, EndOfLast());
  }
  [[nodiscard]] bool LacksBytes() const {
    const auto qwLength = m_source.Length();
    if (!qwLength || !m_source.CanGoBack()) return false;
    const bool bCounts = m_dwRiffSize >= kFormBytes && m_qwListEnd != kNoEnd;
    return *qwLength < EndOfLast() ||
           (bCounts && AddLimited(*qwLength, kChunkHeadBytes) < m_qwListEnd);
  }
  [[nodiscard]] std::uint64_t EndOfLast() const {
    if (m_contents.chunks.empty()) return 0;
    const S_ByteRange& last = m_contents.chunks.back().payload;
    return AddLimited(last.qwAt, last.qwSize);
  }

  I_ByteSource& m_source;
  const C_ChunkFound& m_fnFound;
  S_RiffContents m_contents;
  std::uint32_t m_dwRiffSize = 0;
  C_Ds64 m_ds64;
  std::uint64_t m_qwNext = kFileHeadBytes;
  std::uint64_t m_qwRemaining = 0;  // what the RIFF size leaves from m_qwNext on
  std::uint64_t m_qwCountMask = kNotSaid;
  std::uint64_t m_qwListEnd = 0;  // where the RIFF size says that the file ends
  bool m_bOnlyChunks = false;     // all that follows is chunks
};

}  // namespace

const S_FoundChunk* S_RiffContents::Find(const char* pszID) const noexcept {
  const std::string_view id(pszID, std::tuple_size_v<S_FourCC>);
  const auto found = std::find_if(chunks.rbegin(), chunks.rend(),
                                  [id](const S_FoundChunk& chunk) { return IsID(chunk.id, id); });
  return found == chunks.rend() ? nullptr : &*found;
}

std::optional<S_RiffContents> ScanRiff(I_ByteSource& source) { return ScanRiff(source, {}); }

std::optional<S_RiffContents> ScanRiff(I_ByteSource& source, const C_ChunkFound& fnFound) {
  return C_Scanner(source, fnFound).Scan();
}

}  // namespace api
