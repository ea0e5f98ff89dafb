// SPDX-License-Identifier: Apache-2.0
//
// Bytes and numbers as the sentences of failures and of the probe show them.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace api::words {

// Bytes as they are, in quotes, when all of them are printable characters: "AVI ". Otherwise in
// hexadecimal: 00 FF 00 FF.
std::string Quoted(std::span<const std::uint8_t> bytes);
// 0x0011.
std::string Hex16(std::uint16_t wValue);
// 1 channel, 2 channels.
std::string Counted(std::uint64_t qwCount, std::string_view noun);

}  // namespace api::words
