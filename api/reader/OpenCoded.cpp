// SPDX-License-Identifier: Apache-2.0
#include <array>

#include "base/Failure.h"
#include "reader/CodedStream.h"
#include "reader/Detection.h"
#include "reader/Opened.h"
#include "reader/SpFields.h"

namespace api {
namespace {

constexpr std::uint32_t kSpeechRate = 16000;

void FillHeaders(const S_SpFields& fields, voxplay_headers& headers) {
  headers.has_sp = 1;
  headers.sp_version = fields.dwVersion;
  headers.sp_identifier = fields.wIdentifier;
  headers.sp_format = fields.wFormat;
  headers.sp_sample_rate = fields.dwSampleRate;
  headers.sp_value_30 = fields.dwValue30;
  headers.sp_value_34 = fields.wValue34;
  headers.sp_value_36 = fields.byValue36;
  headers.sp_value_37 = fields.dwValue37;
}

void FillHeaders(const S_CodecHead& head, voxplay_headers& headers) {
  headers.has_head = 1;
  headers.head_type = head.wType;
  headers.head_sample_rate = head.wSampleRate;
  headers.head_version = head.wVersion;
}

S_Opened OpenedAs(voxplay_container eContainer) {
  S_Opened opened;
  opened.info.container = eContainer;
  return opened;
}

}  // namespace

S_Opened OpenSp(I_ByteSource& source, std::uint32_t /*dwFlags*/) {
  // A header of version 255 is two bytes longer, but counts as long as the others.
  std::array<std::uint8_t, S_SpFields::kBytes + 2> bytes{};
  const std::size_t cbRead = source.ReadSome(0, bytes);
  const auto fields = ReadSpFields(std::span(bytes).first(cbRead));
  if (!fields) throw C_Failure(VOXPLAY_UNKNOWN, "SP header: it is not there");
  const std::string strWhyNot = WhyNotIdentifier(fields->wIdentifier);
  if (!strWhyNot.empty()) throw C_Failure(VOXPLAY_UNSUPPORTED, "SP header: " + strWhyNot);
  S_Opened opened = OpenedAs(VOXPLAY_CONTAINER_SP);
  OpenStreamOfType(source, fields->wIdentifier, RestOf(source, S_SpFields::kBytes),
                   fields->dwSampleRate, opened);
  FillHeaders(*fields, opened.headers);
  return opened;
}

S_Opened OpenHead(I_ByteSource& source, std::uint32_t /*dwFlags*/) {
  std::array<std::uint8_t, S_CodecHead::kBytes> bytes{};
  const bool bThere = ReadExact(source, 0, bytes);
  const auto head = ReadCodecHead(bytes);
  if (!bThere || !head) throw C_Failure(VOXPLAY_UNKNOWN, "codec head: it is not there");
  S_Opened opened = OpenedAs(VOXPLAY_CONTAINER_HEAD);
  OpenStreamOfType(source, head->wType, RestOf(source, S_CodecHead::kBytes), head->wSampleRate,
                   opened);
  FillHeaders(*head, opened.headers);
  return opened;
}

S_Opened OpenBare(I_ByteSource& source, std::uint32_t /*dwFlags*/) {
  S_Opened opened = OpenedAs(VOXPLAY_CONTAINER_BARE);
  OpenKestrel(source, RestOf(source, 0), kSpeechRate, opened);
  return opened;
}

}  // namespace api
