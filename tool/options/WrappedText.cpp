// SPDX-License-Identifier: Apache-2.0
#include "options/WrappedText.h"

#include <algorithm>
#include <utility>

namespace tool {
namespace {

void WrapLine(std::string_view line, std::size_t nColumns, std::vector<std::string>& lines) {
  std::string strLine;
  while (!line.empty()) {
    const std::size_t cbWord = std::min(line.find(' '), line.size());
    const std::string_view word = line.substr(0, cbWord);
    if (!strLine.empty() && strLine.size() + 1 + word.size() > nColumns) {
      lines.push_back(std::exchange(strLine, {}));
    }
    if (!strLine.empty()) strLine += ' ';
    strLine += word;
    line.remove_prefix(std::min(cbWord + 1, line.size()));
  }
  lines.push_back(strLine);
}

}  // namespace

std::vector<std::string> WrappedLines(std::string_view text, std::size_t nColumns) {
  std::vector<std::string> lines;
  while (true) {
    const std::size_t nEnd = std::min(text.find('\n'), text.size());
    WrapLine(text.substr(0, nEnd), nColumns, lines);
    if (nEnd == text.size()) return lines;
    text.remove_prefix(nEnd + 1);
  }
}

std::string WrappedText(std::string_view text, std::size_t nColumns, std::size_t nIndent) {
  std::string strText;
  const std::size_t nRoom = nColumns > nIndent ? nColumns - nIndent : 1;
  for (const std::string& strLine : WrappedLines(text, nRoom)) {
    if (!strLine.empty()) strText.append(nIndent, ' ') += strLine;
    strText += '\n';
  }
  return strText;
}

}  // namespace tool
