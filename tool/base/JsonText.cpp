// SPDX-License-Identifier: Apache-2.0
#include "base/JsonText.h"

namespace tool {
namespace {

std::string Text(const C_Json& json, int nIndent) {
  return json.dump(nIndent, ' ', false, C_Json::error_handler_t::replace) + '\n';
}

}  // namespace

std::string JsonText(const C_Json& json) { return Text(json, 2); }

std::string JsonLine(const C_Json& json) { return Text(json, -1); }

}  // namespace tool
