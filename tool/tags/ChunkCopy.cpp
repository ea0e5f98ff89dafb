// SPDX-License-Identifier: Apache-2.0
#include "tags/ChunkCopy.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <vector>

#include "base/Failure.h"
#include "sound/ByteCopy.h"

namespace tool {
namespace {

constexpr std::size_t kFileHead = 12;
constexpr std::size_t kChunkHead = 8;
constexpr std::size_t kRiffSizeAt = 4;
constexpr std::uint64_t kFormBytes = 4;
constexpr std::uint64_t kMostRiff =
    std::numeric_limits<std::uint32_t>::max() - 1;  // the last says nothing

using ChunkHead = std::array<std::byte, kChunkHead>;

// The lowest byte comes first.
void PutNumber(std::span<std::byte> bytes, std::uint64_t qwNumber) {
  for (std::byte& byByte : bytes) {
    byByte = static_cast<std::byte>(qwNumber & 0xFFU);
    qwNumber >>= 8U;
  }
}

std::uint64_t NumberIn(std::span<const std::byte> bytes) {
  std::uint64_t qwNumber = 0;
  for (std::size_t n = bytes.size(); n-- > 0;) {
    qwNumber = qwNumber << 8U | std::to_integer<std::uint64_t>(bytes[n]);
  }
  return qwNumber;
}

std::uint64_t Padded(std::uint64_t qwBytes) { return qwBytes + qwBytes % 2; }

// A chunk of the new file.
struct S_Piece {
  ChunkHead head{};
  const voxplay::ChunkPlace* pOld = nullptr;
  const S_MarkChunk* pNew = nullptr;

  [[nodiscard]] std::uint64_t Bytes() const {
    return pOld != nullptr ? pOld->size : pNew->content.size();
  }
};

ChunkHead HeadOf(std::string_view id, std::uint64_t qwBytes) {
  ChunkHead head{};
  std::memcpy(head.data(), id.data(), kFormBytes);
  PutNumber(std::span(head).subspan(kFormBytes), qwBytes);
  return head;
}

class C_Copier {
 public:
  C_Copier(const std::string& strFile, I_NewFile& target)
      : m_strFile(strFile), m_file(OpenBytes(strFile)), m_target(target) {
    Read(0, m_head);
    m_bRf64 = std::memcmp(m_head.data(), "RF64", kFormBytes) == 0;
  }

  void Copy(std::span<const voxplay::ChunkPlace> chunks, std::span<const S_MarkChunk> marks) {
    for (const voxplay::ChunkPlace& chunk : chunks) AddOld(chunk, marks);
    AddNew(marks);
    WriteFileHead();
    for (const S_Piece& piece : m_pieces) WritePiece(piece);
    CopyTail(chunks);
  }

 private:
  void Read(std::uint64_t qwAt, std::span<std::byte> bytes) {
    m_file.Seek(qwAt);
    const std::int64_t nRead = m_file.Read(bytes.data(), bytes.size());
    if (nRead == static_cast<std::int64_t>(bytes.size())) return;
    throw C_Failure(m_strFile, "cannot be read",
                    nRead < 0 ? SystemReason(m_file.Error()) : "it has changed");
  }

  void AddOld(const voxplay::ChunkPlace& chunk, std::span<const S_MarkChunk> marks) {
    if (chunk.held < chunk.size) {
      throw C_Failure(m_strFile, "nothing is changed",
                      "the file is cut short; \"voxtool convert\" makes a whole one of it");
    }
    if (HoldsMarks(chunk, m_file)) return AddNew(marks);
    m_pieces.push_back({OldHead(chunk), &chunk, nullptr});
  }
  // Sizes beyond 32 bits stand in "ds64", which stays.
  ChunkHead OldHead(const voxplay::ChunkPlace& chunk) {
    if (!m_bRf64) return HeadOf({chunk.id, sizeof chunk.id}, chunk.size);
    ChunkHead head{};
    Read(chunk.offset - kChunkHead, head);
    return head;
  }
  // Once.
  void AddNew(std::span<const S_MarkChunk> marks) {
    if (m_bHasMarks) return;
    m_bHasMarks = true;
    for (const S_MarkChunk& mark : marks) {
      m_pieces.push_back({HeadOf(mark.strID, mark.content.size()), nullptr, &mark});
    }
  }

  [[nodiscard]] std::uint64_t RiffSize() const {
    std::uint64_t qwSize = kFormBytes;
    for (const S_Piece& piece : m_pieces) qwSize += kChunkHead + Padded(piece.Bytes());
    return qwSize;
  }
  void WriteFileHead() {
    m_qwRiffSize = RiffSize();
    if (!m_bRf64 && m_qwRiffSize > kMostRiff) {
      throw C_Failure(m_strFile, "nothing is changed", "it would have 4 GiB or more");
    }
    std::array<std::byte, kFileHead> head = m_head;
    if (!m_bRf64) PutNumber(std::span(head).subspan(kRiffSizeAt, kFormBytes), m_qwRiffSize);
    m_target.Write(head);
  }

  void WritePiece(const S_Piece& piece) {
    m_target.Write(piece.head);
    if (piece.pNew != nullptr) {
      m_target.Write(piece.pNew->content);
    } else {
      CopyOld(*piece.pOld);
    }
    if (piece.Bytes() % 2 != 0) m_target.Write(std::array{std::byte{0}});
  }
  // "ds64" begins with the size of the file.
  void CopyOld(const voxplay::ChunkPlace& chunk) {
    std::uint64_t qwDone = 0;
    const bool bSizes = m_bRf64 && std::memcmp(chunk.id, "ds64", sizeof chunk.id) == 0;
    if (bSizes && chunk.size >= sizeof m_qwRiffSize) {
      std::array<std::byte, sizeof m_qwRiffSize> size{};
      PutNumber(size, m_qwRiffSize);
      m_target.Write(size);
      qwDone = size.size();
    }
    CopyBytes(m_file, chunk.offset + qwDone, chunk.size - qwDone, m_target, m_strFile);
  }

  // Where the RIFF file says that it ends. first is its first chunk, which is "ds64" in RF64 files.
  std::uint64_t OldEnd(const voxplay::ChunkPlace& first) {
    std::array<std::byte, sizeof(std::uint64_t)> size{};
    if (!m_bRf64) {
      std::ranges::copy(std::span(m_head).subspan(kRiffSizeAt, kFormBytes), size.begin());
    } else if (first.held >= size.size()) {
      Read(first.offset, size);
    }
    return NumberIn(size) + kChunkHead;
  }
  // What other programs put after the end of the RIFF file. The size of that says whether a byte
  // fills up the last chunk, which some programs forget.
  void CopyTail(std::span<const voxplay::ChunkPlace> chunks) {
    if (chunks.empty()) return;
    const voxplay::ChunkPlace& last = chunks.back();
    const std::uint64_t qwLast = last.offset + last.size;
    const bool bPadded = OldEnd(chunks.front()) != qwLast;
    const std::uint64_t qwEnd = bPadded ? last.offset + Padded(last.size) : qwLast;
    const auto qwLength = static_cast<std::uint64_t>(m_file.Length());
    if (qwEnd < qwLength) CopyBytes(m_file, qwEnd, qwLength - qwEnd, m_target, m_strFile);
  }

  std::string m_strFile;
  C_FileBytes m_file;
  I_NewFile& m_target;
  std::array<std::byte, kFileHead> m_head{};
  bool m_bRf64 = false;
  bool m_bHasMarks = false;
  std::uint64_t m_qwRiffSize = 0;
  std::vector<S_Piece> m_pieces;
};

}  // namespace

void CopyWithMarks(const std::string& strFile, std::span<const voxplay::ChunkPlace> chunks,
                   std::span<const S_MarkChunk> marks, I_NewFile& target) {
  C_Copier(strFile, target).Copy(chunks, marks);
}

}  // namespace tool
