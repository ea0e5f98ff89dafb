// SPDX-License-Identifier: Apache-2.0
//
// Parses any bytes as the text of a label and compares the result with a second implementation of
// the same rules.
//
//   scripts/fuzz.sh 60 label_text
//
// Input: the text; it ends at the first NUL. Seeds: labels of every form.
#include <cstddef>
#include <cstdint>
#include <string>

#include "Require.h"
#include "file/WavLabels.h"

namespace {

using wavlabels::S_LabelMeaning;

// Reads blanks, a sign and digits, digit by digit, from the first 31 characters only. The value
// stops at the 64-bit limits.
unsigned int SlowNumber(std::string strText) {
  strText = strText.substr(0, 31);
  std::size_t n = strText.find_first_not_of(" \t\n\v\f\r");
  if (n == std::string::npos) return 0;
  const bool bMinus = strText[n] == '-';
  if (bMinus || strText[n] == '+') ++n;
  constexpr std::uint64_t kMost = ~std::uint64_t{0} >> 1;
  const std::uint64_t qwLimit = bMinus ? kMost + 1 : kMost;
  std::uint64_t qwValue = 0;
  for (; n < strText.size() && strText[n] >= '0' && strText[n] <= '9'; ++n) {
    const auto qwDigit = static_cast<std::uint64_t>(strText[n] - '0');
    qwValue = qwValue > (qwLimit - qwDigit) / 10 ? qwLimit : qwValue * 10 + qwDigit;
    if (qwValue == qwLimit) break;
  }
  return static_cast<unsigned int>(bMinus ? 0 - qwValue : qwValue);
}

S_LabelMeaning SlowEvent(unsigned int dwMain, unsigned int dwSub) {
  return {S_LabelMeaning::Kind::Event, static_cast<unsigned short>(dwMain),
          static_cast<unsigned short>(dwSub)};
}

// Applies the same rules by searching: an underscore belongs to the "u" if there is one before it,
// otherwise to the "e" if there is one before it.
S_LabelMeaning SlowParse(const std::string& strText) {
  const std::size_t nU = strText.find('u');
  const std::size_t nE = strText.find('e');
  std::size_t nFirst = std::string::npos;
  for (std::size_t n = 0; n < strText.size(); ++n) {
    if (strText[n] != '_') continue;
    if (nU < n) {
      if (nFirst != std::string::npos) {
        return SlowEvent(SlowNumber(strText.substr(nFirst + 1, n - nFirst - 1)),
                         SlowNumber(strText.substr(n + 1)));
      }
      nFirst = n;
    } else if (nE < n) {
      const unsigned int dwBoth = SlowNumber(strText.substr(n + 1));
      return SlowEvent(dwBoth >> 16, dwBoth);
    }
  }
  if (strText == "VX_Silence") return {S_LabelMeaning::Kind::Silence, 0, 0};
  if (strText == "VX_PCM") return {S_LabelMeaning::Kind::Region, 0, 0};
  return {};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  std::string strText(pData, pData + cbData);
  strText.resize(std::char_traits<char>::length(strText.c_str()));
  const S_LabelMeaning label = wavlabels::ParseLabel(strText.c_str());
  Require(label == SlowParse(strText));
  if (label.eKind == S_LabelMeaning::Kind::Event) {
    const std::string strWritten = wavlabels::EventLabel(label.wMain, label.wSub);
    Require(wavlabels::ParseLabel(strWritten.c_str()) == label);
  }
  return 0;
}
