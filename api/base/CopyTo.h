// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <span>
#include <type_traits>

namespace api {

// Copies all of from; to has room for it, and they do not overlap.
//
// Works a little at a time, because processors are slow to start long copies. And it asks for
// memmove: in place of memcpy, compilers that know how little it is make code that starts slowly,
// too, and in place of std::ranges::copy code that takes three times as many instructions.
template <typename Item>
void CopyTo(std::span<const std::type_identity_t<Item>> from, std::span<Item> to) noexcept {
  static_assert(std::is_trivially_copyable_v<Item>);
  constexpr std::size_t kPart = 1024 / sizeof(Item);
  for (std::size_t i = 0; i < from.size(); i += kPart) {
    const auto part = from.subspan(i, std::min(kPart, from.size() - i));
    std::memmove(to.data() + i, part.data(), part.size_bytes());
  }
}

}  // namespace api
