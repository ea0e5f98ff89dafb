// SPDX-License-Identifier: Apache-2.0
#include "target/SpoolFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <string>

#include "TempFile.h"
#include "base/Failure.h"
#include "base/SystemReason.h"
#include "target/ByteTarget.h"

namespace api {
namespace {

constexpr std::size_t kCopyBytes = 16384;

// To be called right after what failed.
void Expect(bool bDone) {
  if (bDone) return;
  throw C_Failure(VOXPLAY_CANNOT_WRITE, "temporary file: " + SystemReason(errno));
}

}  // namespace

C_SpoolFile::C_SpoolFile() {
  errno = 0;
  vcm::C_TempFile named;
  m_file = named.TakeStream();
  Expect(m_file != nullptr);
}

void C_SpoolFile::Append(const void* pBytes, std::size_t cbCount) {
  // No bytes may come with a null pointer, which the C library does not take.
  if (cbCount == 0) return;
  if (m_bReading) MoveTo(m_qwLength);
  m_bReading = false;
  Expect(std::fwrite(pBytes, 1, cbCount, m_file.get()) == cbCount);
  m_qwLength += cbCount;
}

void C_SpoolFile::Read(std::uint64_t qwPosition, void* pBytes, std::size_t cbCount) {
  if (cbCount == 0) return;
  if (!m_bReading || m_qwPosition != qwPosition) MoveTo(qwPosition);
  m_bReading = true;
  errno = EIO;  // for what is not there although it was written
  Expect(std::fread(pBytes, 1, cbCount, m_file.get()) == cbCount);
  m_qwPosition = qwPosition + cbCount;
}

void C_SpoolFile::Overwrite(std::uint64_t qwPosition, std::span<const std::uint8_t> bytes) {
  MoveTo(qwPosition);
  Expect(vcm::WriteExact(m_file.get(), bytes));
  MoveTo(m_qwLength);
  m_bReading = false;
}

void C_SpoolFile::CopyTo(I_ByteTarget& target) {
  std::array<std::uint8_t, kCopyBytes> piece;
  for (std::uint64_t qwAt = 0; qwAt < m_qwLength;) {
    const auto cbPiece =
        static_cast<std::size_t>(std::min<std::uint64_t>(piece.size(), m_qwLength - qwAt));
    Read(qwAt, piece.data(), cbPiece);
    target.Write(std::span(piece).first(cbPiece));
    qwAt += cbPiece;
  }
}

void C_SpoolFile::MoveTo(std::uint64_t qwPosition) {
  Expect(vcm::SeekTo(m_file.get(), qwPosition));
}

}  // namespace api
