// SPDX-License-Identifier: Apache-2.0
#include "marks/RowValues.h"

#include <algorithm>
#include <charconv>

#include "base/TimeText.h"
#include "base/Utf8.h"
#include "marks/FourCharacters.h"
#include "marks/MarkNotes.h"

namespace tool {
namespace {

constexpr std::size_t kMostShown = 40;
// Up to here, a time tells all frames apart at every rate: seconds are numbers of 53 bits.
constexpr std::uint64_t kMostExact = std::uint64_t{1} << 52U;

// As much of a value as a message has room for.
std::string Shown(const C_Json& value) {
  // What is nested may be so deeply that it takes all of the stack to write it.
  if (value.is_structured()) return value.is_array() ? "[...]" : "{...}";
  std::string strText = JsonLine(value);
  strText.pop_back();
  return strText.size() <= kMostShown ? strText : Printable(strText.substr(0, kMostShown)) + "...";
}

std::optional<std::uint64_t> WholeNumber(const C_Json& value) {
  if (value.is_number_integer() && value >= 0) return value.get<std::uint64_t>();
  if (!value.is_string()) return {};
  const auto& strText = value.get_ref<const std::string&>();
  const char* const pEnd = strText.data() + strText.size();
  std::uint64_t qwNumber = 0;
  const auto [pRead, error] = std::from_chars(strText.data(), pEnd, qwNumber);
  return error == std::errc() && pRead == pEnd ? std::optional(qwNumber) : std::nullopt;
}

// Spreadsheets write "1,5" in many countries.
std::string WithPoint(std::string strTime) {
  if (std::ranges::count(strTime, ',') == 1 && strTime.find('.') == std::string::npos) {
    std::ranges::replace(strTime, ',', '.');
  }
  return strTime;
}

// Programs write very short times as "6.25e-05".
bool HasExponent(std::string_view time) {
  const std::size_t nExponent = time.find_first_of("eE");
  return nExponent != 0 && nExponent != std::string_view::npos;
}
std::optional<C_Time> Scientific(std::string_view time) {
  double dSeconds = 0.0;
  const char* const pEnd = time.data() + time.size();
  const auto [pRead, error] = std::from_chars(time.data(), pEnd, dSeconds);
  return error == std::errc() && pRead == pEnd ? C_Time::OfSeconds(dSeconds) : std::nullopt;
}

std::optional<C_Time> TimeOf(const C_Json& value) {
  if (value.is_string()) {
    const std::string strTime = WithPoint(value.get_ref<const std::string&>());
    return HasExponent(strTime) ? Scientific(strTime) : C_Time::Parse(strTime);
  }
  return value.is_number() ? C_Time::OfSeconds(value.get<double>()) : std::nullopt;
}

}  // namespace

C_RowValues::C_RowValues(const C_Json& row, const std::string& strPlace, std::uint32_t dwRate)
    : m_row(row), m_strPlace(strPlace), m_dwRate(dwRate) {
  if (!row.is_object()) Refuse("it is not an object");
}

bool C_RowValues::IsEmpty(const char* pszKey) const {
  const auto found = m_row.find(pszKey);
  return found == m_row.end() || found->is_null() ||
         (found->is_string() && found->get_ref<const std::string&>().empty());
}

std::uint64_t C_RowValues::Number(const char* pszKey, std::uint64_t qwMost) const {
  if (IsEmpty(pszKey)) return 0;
  const auto number = WholeNumber(m_row.at(pszKey));
  if (number && *number <= qwMost) return *number;
  Refuse(std::string(pszKey) + ": " + Shown(m_row.at(pszKey)) + " is not a whole number up to " +
         std::to_string(qwMost));
}

std::uint64_t C_RowValues::Frames(const char* pszKey, const char* pszTimeKey,
                                  std::uint64_t qwMost) const {
  if (IsEmpty(pszTimeKey)) return Number(pszKey, qwMost);
  if (IsEmpty(pszKey)) return FramesOfTime(pszTimeKey, qwMost);
  const std::uint64_t qwFrames = Number(pszKey, qwMost);
  // Times of huge frames are not exact.
  const std::uint64_t qwOther = FramesOfTime(pszTimeKey, std::numeric_limits<std::uint64_t>::max());
  if (qwFrames == qwOther || qwOther >= kMostExact) return qwFrames;
  Refuse(std::string(pszKey) + " is " + std::to_string(qwFrames) + ", but " + pszTimeKey + " is " +
         Shown(m_row.at(pszTimeKey)) + ", which is " + std::to_string(qwOther) +
         "; leave the one empty that is not meant");
}

std::uint64_t C_RowValues::FramesOfTime(const char* pszTimeKey, std::uint64_t qwMost) const {
  const C_Json& value = m_row.at(pszTimeKey);
  const auto time = TimeOf(value);
  if (!time) {
    Refuse(std::string(pszTimeKey) + ": " + Shown(value) + " is not a time: " + C_Time::kForms);
  }
  if (m_dwRate == 0 && time->NeedsRate()) {
    Refuse(std::string(pszTimeKey) + ": " + Shown(value) +
           " has no place in a sound without a sample rate; give samples (32000s)");
  }
  const std::uint64_t qwFrames = time->FrameAt(m_dwRate);
  if (qwFrames <= qwMost) return qwFrames;
  Refuse(std::string(pszTimeKey) + ": " + Shown(value) + " is beyond frame " +
         std::to_string(qwMost));
}

std::string C_RowValues::Word(const char* pszKey) const {
  if (IsEmpty(pszKey)) return "";
  const C_Json& value = m_row.at(pszKey);
  if (!value.is_string()) Refuse(std::string(pszKey) + ": " + Shown(value) + " is not a text");
  return value.get<std::string>();
}

std::string C_RowValues::Text(const char* pszKey) const {
  std::string strText = Word(pszKey);
  if (!IsEmpty("hex")) {
    const auto bytes = FromHexText(Word("hex"));
    if (!bytes) Refuse("hex: it does not consist of pairs of hexadecimal digits");
    if (strText.empty() || strText == AsUtf8(*bytes)) strText = *bytes;
  }
  if (strText.find('\0') != std::string::npos) {
    Refuse(std::string(pszKey) + ": texts of marks hold no zeros");
  }
  return strText;
}

std::array<char, 4> C_RowValues::ID(const char* pszKey, const std::array<char, 4>& usual) const {
  if (IsEmpty(pszKey)) return usual;
  const auto id = FromFourCharacters(Word(pszKey));
  if (!id) Refuse(std::string(pszKey) + ": it has neither four characters nor eight digits");
  std::array<char, 4> result{};
  std::ranges::copy(*id, result.begin());
  return result;
}

void C_RowValues::Refuse(const std::string& strWhy) const {
  throw C_BadRow(m_strPlace + ": " + strWhy);
}

}  // namespace tool
