// SPDX-License-Identifier: Apache-2.0
#include "riff/Ds64.h"

#include <algorithm>
#include <array>
#include <limits>

#include "ByteReader.h"

namespace api {
namespace {

constexpr std::size_t kHeadBytes = 28;
constexpr std::size_t kEntryBytes = 12;
constexpr std::size_t kMostEntries = 64;

std::optional<std::uint64_t> TakeSize(vcm::C_ByteReader& reader) {
  const std::uint64_t qwLow = reader.U32();
  const std::uint64_t qwSize = std::uint64_t{reader.U32()} << 32U | qwLow;
  const bool bSaid =
      reader.Ok() && qwSize != 0 && qwSize != std::numeric_limits<std::uint64_t>::max();
  return bSaid ? std::optional(qwSize) : std::nullopt;
}

}  // namespace

C_Ds64 C_Ds64::Read(I_ByteSource& source, std::uint64_t qwAt, std::uint64_t qwSize) {
  std::array<std::uint8_t, kHeadBytes + kEntryBytes * kMostEntries> bytes{};
  const auto cbWanted = static_cast<std::size_t>(std::min<std::uint64_t>(qwSize, bytes.size()));
  const std::size_t cbRead = source.ReadSome(qwAt, std::span(bytes).first(cbWanted));
  vcm::C_ByteReader reader({bytes.data(), cbRead});
  C_Ds64 ds64;
  ds64.m_qwRiffSize = TakeSize(reader);
  ds64.m_entries.push_back({{'d', 'a', 't', 'a'}, TakeSize(reader)});
  reader.Skip(sizeof(std::uint64_t));
  const std::uint32_t dwEntries = reader.U32();
  for (std::uint32_t i = 0; i < dwEntries && reader.Remaining() >= kEntryBytes; ++i) {
    S_Entry entry;
    std::ranges::copy(reader.Bytes(entry.id.size()), entry.id.begin());
    entry.qwSize = TakeSize(reader);
    ds64.m_entries.push_back(entry);
  }
  return ds64;
}

std::optional<std::uint64_t> C_Ds64::SizeOf(const S_FourCC& id) const noexcept {
  const auto found = std::ranges::find(m_entries, id, &S_Entry::id);
  return found == m_entries.end() ? std::nullopt : found->qwSize;
}

}  // namespace api
