// SPDX-License-Identifier: Apache-2.0
//
// The identifiers of chunks, and of the parts of lists.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "notes/Notes.h"

namespace api {

// FourCC("data").
constexpr S_FourCC FourCC(const char (&szID)[5]) noexcept {
  return {szID[0], szID[1], szID[2], szID[3]};
}

// The identifier in the first four bytes, of which there must be so many.
inline S_FourCC FourCCOf(std::span<const std::uint8_t> bytes) noexcept {
  S_FourCC id{};
  for (std::size_t i = 0; i < id.size(); ++i) id[i] = static_cast<char>(bytes[i]);
  return id;
}

inline std::string_view AsText(const S_FourCC& id) noexcept { return {id.data(), id.size()}; }

}  // namespace api
