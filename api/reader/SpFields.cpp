// SPDX-License-Identifier: Apache-2.0
#include "reader/SpFields.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "ByteReader.h"
#include "base/Words.h"

namespace api {
namespace {

constexpr std::uint32_t kSignature = 0xFF00FF00;
constexpr std::size_t kTextBytes = 16;
constexpr auto kTexts = std::to_array<std::string_view>({"VOXELTRONIC SP", "ORBITAL SPEECH"});
constexpr std::uint32_t kVersion = 254;
constexpr std::uint8_t kKind = 2;
constexpr std::size_t kVersionOffset = 20;
constexpr std::size_t kRecognisedBytes = 22;

// A text in a field ends at the first zero.
bool IsKnownText(std::span<const std::uint8_t> field) {
  const auto end = std::ranges::find(field, 0);
  const auto text = field.first(static_cast<std::size_t>(end - field.begin()));
  return std::ranges::any_of(
      kTexts, [text](std::string_view known) { return std::ranges::equal(text, known); });
}

template <typename T>
void TakeField(const vcm::C_ByteReader& reader, T value, T& field) {
  if (reader.Ok()) field = value;
}

}  // namespace

std::string WhyNoSpHeader(std::span<const std::uint8_t> first) {
  if (first.size() < kRecognisedBytes) {
    return words::Counted(first.size(), "byte") + " are too few for it";
  }
  vcm::C_ByteReader reader(first);
  if (reader.U32() != kSignature) {
    return "the file begins with " + words::Quoted(first.first(4)) + " and not with 00 FF 00 FF";
  }
  const auto text = reader.Bytes(kTextBytes);
  if (!IsKnownText(text)) return "its text is " + words::Quoted(text) + ", which is not known";
  const unsigned int dwVersion = reader.U8();
  const unsigned int dwKind = reader.U8();
  if (dwVersion < kVersion) {
    return "its version is " + std::to_string(dwVersion) + " and not 254 or 255";
  }
  return dwKind == kKind ? std::string() : "its kind is " + std::to_string(dwKind) + " and not 2";
}

std::optional<S_SpFields> ReadSpFields(std::span<const std::uint8_t> first) {
  if (!WhyNoSpHeader(first).empty()) return std::nullopt;
  vcm::C_ByteReader reader(first);
  reader.Skip(kVersionOffset);
  S_SpFields fields;
  fields.dwVersion = reader.U8();
  reader.Skip(1);  // the kind
  TakeField(reader, reader.U16(), fields.wIdentifier);
  TakeField(reader, reader.U16(), fields.wFormat);
  // Version 255 has two more bytes here, and still counts as 48 bytes.
  if (fields.dwVersion > kVersion) reader.Skip(2);
  TakeField(reader, reader.U32(), fields.dwSampleRate);
  TakeField(reader, reader.U32(), fields.dwValue30);
  TakeField(reader, reader.U16(), fields.wValue34);
  TakeField(reader, reader.U8(), fields.byValue36);
  TakeField(reader, reader.U32(), fields.dwValue37);
  return fields;
}

std::optional<S_CodecHead> ReadCodecHead(std::span<const std::uint8_t> first) {
  vcm::C_ByteReader reader(first);
  S_CodecHead head;
  head.wType = reader.U16();
  head.wSampleRate = reader.U16();
  head.wVersion = reader.U16();
  return reader.Ok() ? std::optional(head) : std::nullopt;
}

}  // namespace api
