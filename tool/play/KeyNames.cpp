// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <string_view>
#include <utility>

#include "play/KeyTerminal.h"

namespace tool {
namespace {

// Terminals send arrows in one of two ways.
constexpr std::array<std::pair<std::string_view, tagKey>, 14> kKeys = {{
    {" ", tagKey::PAUSE},
    {"q", tagKey::QUIT},
    {"n", tagKey::NEXT},
    {"p", tagKey::PREVIOUS},
    {"?", tagKey::HELP},
    {"h", tagKey::HELP},
    {"\x1b[D", tagKey::BACK},
    {"\x1bOD", tagKey::BACK},
    {"\x1b[C", tagKey::FORWARD},
    {"\x1bOC", tagKey::FORWARD},
    {"\x1b[B", tagKey::FAR_BACK},
    {"\x1bOB", tagKey::FAR_BACK},
    {"\x1b[A", tagKey::FAR_FORWARD},
    {"\x1bOA", tagKey::FAR_FORWARD},
}};

}  // namespace

std::deque<tagKey> TakeKeys(std::string& strSent) {
  std::deque<tagKey> keys;
  while (!strSent.empty()) {
    std::size_t cbTaken = 1;
    bool bMayGoOn = false;
    for (const auto& [bytes, eKey] : kKeys) {
      bMayGoOn = bMayGoOn || (bytes.size() > strSent.size() && bytes.starts_with(strSent));
      if (!strSent.starts_with(bytes)) continue;
      keys.push_back(eKey);
      cbTaken = bytes.size();
    }
    if (bMayGoOn) return keys;
    strSent.erase(0, cbTaken);
  }
  return keys;
}

}  // namespace tool
