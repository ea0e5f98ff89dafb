// SPDX-License-Identifier: Apache-2.0
#include "base/JsonText.h"

#include <string_view>

namespace tool {
namespace {

std::string Text(const C_Json& json, int nIndent) {
  return json.dump(nIndent, ' ', false, C_Json::error_handler_t::replace) + '\n';
}

}  // namespace

std::string JsonText(const C_Json& json) { return Text(json, 2); }

std::string JsonLine(const C_Json& json) { return Text(json, -1); }

std::string JsonElement(const C_Json& json) {
  constexpr std::string_view kBefore = "[\n";
  constexpr std::string_view kAfter = "\n]\n";
  const std::string strArray = JsonText(C_Json::array({json}));
  return strArray.substr(kBefore.size(), strArray.size() - kBefore.size() - kAfter.size());
}

}  // namespace tool
