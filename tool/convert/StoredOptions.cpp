// SPDX-License-Identifier: Apache-2.0
#include "convert/StoredOptions.h"

#include "base/Failure.h"
#include "base/JsonText.h"

namespace tool {
namespace {

constexpr const char* kReplace = "replace";
constexpr const char* kSkip = "skip";

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

template <typename Value>
bool IsGiven(const Value& value) {
  return value != Value();
}

std::string ValueText(const C_Json& value) {
  if (value.is_null()) return "without it";
  return "with " + (value.is_string() ? value.get<std::string>() : value.dump());
}

}  // namespace

std::string StoredOptions(const S_ConvertArguments& arguments) {
  C_Json json = C_Json::object();
  VisitOptions(arguments, [&](const char* pszName, const auto& value) {
    if (IsGiven(value)) json[pszName] = value;
  });
  return json.dump();
}

void TakeStoredOptions(const std::string& strStored, const std::string& strName,
                       S_ConvertArguments& arguments) {
  if (strStored.empty()) return;
  try {
    const C_Json json = C_Json::parse(strStored);
    VisitOptions(arguments, [&](const char* pszName, auto& value) {
      const C_Json stored = json.value(pszName, C_Json());
      if (IsGiven(value) && C_Json(value) != stored) {
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
  return target.bSkip ? kSkip : "";
}

void TakeStoredRule(const std::string& strStored, S_TargetOptions& target) {
  if (target.bReplace || target.bSkip) return;
  target.bReplace = strStored == kReplace;
  target.bSkip = strStored == kSkip;
}

}  // namespace tool
