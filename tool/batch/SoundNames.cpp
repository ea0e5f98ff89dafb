// SPDX-License-Identifier: Apache-2.0
#include "batch/SoundNames.h"

#include <algorithm>
#include <array>

namespace tool {
namespace {

// Those that the player takes, and those of libsndfile.
constexpr auto kExtensions = std::to_array<std::string_view>({
    ".wav",  ".vemd", ".vef", ".vea",  ".plv",  ".kst", ".rok",  ".hrn",  ".trn", ".wrn",
    ".fnc",  ".rbn",  ".crn", ".ibs",  ".egr",  ".dnl", ".nv4",  ".nv5",  ".mv4", ".mv5",
    ".nvp",  ".nva",  ".adp", ".ref",  ".wave", ".w64", ".rf64", ".flac", ".ogg", ".oga",
    ".opus", ".mp3",  ".aif", ".aiff", ".aifc", ".au",  ".snd",  ".caf",  ".voc",
});

char Lower(char chAny) {
  return chAny >= 'A' && chAny <= 'Z' ? static_cast<char>(chAny - 'A' + 'a') : chAny;
}

}  // namespace

std::string_view NameIn(std::string_view path) { return path.substr(path.rfind('/') + 1); }

std::string_view ExtensionOf(std::string_view path) {
  const std::string_view name = NameIn(path);
  const std::size_t nDot = name.rfind('.');
  return nDot == std::string_view::npos || nDot == 0 ? std::string_view() : name.substr(nDot);
}

std::string LowerExtensionOf(std::string_view path) {
  std::string strExtension(ExtensionOf(path));
  std::ranges::transform(strExtension, strExtension.begin(), Lower);
  return strExtension;
}

bool IsSoundExtension(std::string_view extension) {
  return std::ranges::any_of(kExtensions, [extension](std::string_view known) {
    return std::ranges::equal(known, extension, {}, {}, Lower);
  });
}

std::string WithExtension(std::string_view path, std::string_view extension) {
  const std::string_view old = ExtensionOf(path);
  if (IsSoundExtension(old)) path.remove_suffix(old.size());
  return std::string(path).append(extension);
}

}  // namespace tool
