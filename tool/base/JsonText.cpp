// SPDX-License-Identifier: Apache-2.0
#include "base/JsonText.h"

#include <string_view>

#include "base/Utf8.h"

namespace tool {
namespace {

std::string HexText(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string strText;
  for (const char ch : bytes) {
    const auto byByte = static_cast<unsigned char>(ch);
    strText += kDigits[byByte >> 4U];
    strText += kDigits[byByte & 15U];
  }
  return strText;
}

void AddNameBytes(C_Json& json) {
  for (C_Json& value : json) {
    if (value.is_structured()) AddNameBytes(value);
  }
  if (!json.is_object()) return;
  for (const char* const pszKey : {"file", "source", "target"}) {
    const auto name = json.find(pszKey);
    if (name == json.end() || !name->is_string()) continue;
    const std::string strName = name->get<std::string>();
    if (!IsUtf8(strName)) json[std::string(pszKey) + "_bytes"] = HexText(strName);
  }
}

std::string Text(const C_Json& json, int nIndent) {
  try {
    return json.dump(nIndent) + '\n';
  } catch (const C_Json::type_error&) {
    C_Json named = json;
    AddNameBytes(named);
    return named.dump(nIndent, ' ', false, C_Json::error_handler_t::replace) + '\n';
  }
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
