// SPDX-License-Identifier: Apache-2.0
#include "convert/StoredOptions.h"

#include <type_traits>

#include "base/Failure.h"
#include "base/JsonText.h"
#include "manifest/Plan.h"

namespace tool {
namespace {

constexpr const char* kReplace = "replace";

// Every option by its name on the command line.
template <typename Arguments, typename Visit>
void VisitOptions(Arguments& arguments, Visit&& visit) {
  visit("to", arguments.format.strTo);
  visit("codec", arguments.format.strCodec);
  visit("bits", arguments.format.strBits);
  visit("bitrate", arguments.format.dwBitRate);
  visit("header", arguments.format.strHeader);
  visit("rate", arguments.format.dwRate);
  visit("mono", arguments.bMono);
  visit("channel", arguments.dwChannel);
  visit("gain", arguments.dGain);
  visit("normalize", arguments.strNormalize);
  visit("detect-silence", arguments.strSilence);
  visit("read", arguments.strRead);
  visit("no-notes", arguments.bNoNotes);
}

// What is not written down.
template <typename Value>
bool IsUsual(const Value& value) {
  return value == Value();
}

// Of what a manifest does not have, the usual value counts.
template <typename Value>
Value ValueOf(const C_Json& stored) {
  return stored.is_null() ? Value() : stored.get<Value>();
}

std::string TextOf(const C_Json& value) {
  return value.is_string() ? value.get<std::string>() : value.dump();
}

std::string ValueText(const C_Json& value) {
  return value.is_null() ? "without it" : "with " + TextOf(value);
}

}  // namespace

std::string StoredOptions(const S_ConvertArguments& arguments) {
  C_Json json = C_Json::object();
  VisitOptions(arguments, [&](const char* pszName, const auto& value) {
    if (!IsUsual(value)) json[pszName] = value;
  });
  return json.dump();
}

std::string OptionsText(const S_ConvertArguments& arguments) {
  std::string strText;
  VisitOptions(arguments, [&](const char* pszName, const auto& value) {
    if (IsUsual(value)) return;
    strText += (strText.empty() ? "--" : " --") + std::string(pszName);
    const C_Json json = value;
    if (!json.is_boolean()) strText += ' ' + TextOf(json);
  });
  return strText;
}

void TakeStoredOptions(const std::string& strStored, const std::string& strName,
                       S_ConvertArguments& arguments) {
  if (strStored.empty()) return;
  try {
    const C_Json json = C_Json::parse(strStored);
    VisitOptions(arguments, [&](const char* pszName, auto& value) {
      const C_Json stored = json.value(pszName, C_Json());
      using C_Value = std::remove_reference_t<decltype(value)>;
      if (arguments.given.contains(pszName) && value != ValueOf<C_Value>(stored)) {
        throw C_UsageFailure(strName, std::string("--") + pszName + " cannot be another one",
                             "its files are converted " + ValueText(stored));
      }
      if (!stored.is_null()) stored.get_to(value);
    });
  } catch (const C_Json::exception& failure) {
    throw C_Failure(strName, "its options cannot be read", failure.what());
  }
}

std::string StoredRule(const S_TargetOptions& target) {
  if (target.bReplace) return kReplace;
  return target.bSkip ? kSkipExisting : "";
}

void TakeStoredRule(const std::string& strStored, S_TargetOptions& target) {
  if (target.bReplace || target.bSkip) return;
  target.bReplace = strStored == kReplace;
  target.bSkip = strStored == kSkipExisting;
}

}  // namespace tool
