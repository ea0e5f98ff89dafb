// SPDX-License-Identifier: Apache-2.0
//
// Structures of voxplay.h travel with the size that the caller knows. A caller may have been
// compiled with an earlier version, which had fewer members, or with a later one.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <optional>
#include <type_traits>

namespace api {

// Copies as much as the caller knows, and zeros for what only the caller knows. False, and nothing
// is copied, for a null pointer and for a size below that of the first member.
template <typename Record, typename First>
bool CopyOut(const Record& record, First Record::* /*pFirst*/, Record* pTarget,
             std::size_t cbTarget) noexcept {
  static_assert(std::is_trivially_copyable_v<Record>);
  if (pTarget == nullptr || cbTarget < sizeof(First)) return false;
  std::memcpy(pTarget, &record, std::min(cbTarget, sizeof(Record)));
  if (cbTarget > sizeof(Record)) std::memset(pTarget + 1, 0, cbTarget - sizeof(Record));
  return true;
}

// The caller's record, with zeros for what the caller does not know. Empty for a null pointer and
// for a size below that of the first member.
template <typename Record, typename First>
std::optional<Record> CopyIn(const Record* pSource, First Record::* /*pFirst*/,
                             std::size_t cbSource) noexcept {
  static_assert(std::is_trivially_copyable_v<Record>);
  if (pSource == nullptr || cbSource < sizeof(First)) return std::nullopt;
  Record record{};
  std::memcpy(&record, pSource, std::min(cbSource, sizeof(Record)));
  return record;
}

// Makes a pointer null that a size cuts: half of a pointer leads anywhere.
template <typename Record, typename Target>
void DropCutPointer(Record& record, Target* Record::*pPointer, std::size_t cbSource) noexcept {
  const auto* const pbyRecord = reinterpret_cast<const unsigned char*>(&record);
  const auto* const pbyPointer = reinterpret_cast<const unsigned char*>(&(record.*pPointer));
  const auto cbBefore = static_cast<std::size_t>(pbyPointer - pbyRecord);
  if (cbSource < cbBefore + sizeof(Target*)) record.*pPointer = nullptr;
}

}  // namespace api
