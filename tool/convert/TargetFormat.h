// SPDX-License-Identifier: Apache-2.0
//
// What the user calls the formats that can be written.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "sound/SoundInput.h"
#include "voxplay.hpp"

namespace tool {

// As it stands on the command line; "" and 0 for what does not.
struct S_FormatWords {
  std::string strTo;      // "heron4"
  std::string strCodec;   // of VEF: "pcm", "heron4"
  std::string strHeader;  // "sp", "none", "codec"
  std::string strBits;    // "24", "float"
  std::uint32_t dwBitRate = 0;
  std::uint32_t dwRate = 0;
};

// For lists of choices.
[[nodiscard]] std::vector<std::string> FormatNames();
[[nodiscard]] std::vector<std::string> CodecNames();

// The name of the format of files with that extension, ".kst"; "" for none. In any case.
[[nodiscard]] std::string FormatOfExtension(std::string_view extension);
// ".kst".
[[nodiscard]] std::string_view ExtensionOfFormat(const std::string& strTo);

// Throws C_UsageFailure for words that do not go together. Members that depend on the source are 0.
[[nodiscard]] voxplay::Format FormatOf(const S_FormatWords& words);

// The format for one sound, of dwChannels channels as they will be written.
[[nodiscard]] voxplay::Format FormatFor(voxplay::Format format, const S_SoundInfo& info,
                                        std::uint32_t dwChannels);

// Whether the samples become a stream of a codec, which is mono.
[[nodiscard]] bool HasStream(const voxplay::Format& format) noexcept;

}  // namespace tool
