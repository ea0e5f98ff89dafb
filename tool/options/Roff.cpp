// SPDX-License-Identifier: Apache-2.0
#include "options/Roff.h"

#include <algorithm>
#include <cctype>

#include "options/WrappedText.h"

namespace tool {
namespace {

// Programs that check pages ask for lines of less than 80 bytes.
constexpr std::size_t kColumns = 78;

// Names and command lines are escaped so that they can be copied from the page.
std::string Escaped(std::string_view text) {
  std::string strText;
  for (const char ch : text) {
    switch (ch) {
      case '\\':
        strText += "\\e";
        break;
      case '-':
        strText += "\\-";
        break;
      case '~':
        strText += "\\(ti";
        break;
      case '^':
        strText += "\\(ha";
        break;
      case '`':
        strText += "\\(ga";
        break;
      case '"':
        strText += "\\(dq";
        break;
      case '\'':
        strText += "\\(aq";
        break;
      default:
        strText += ch;
    }
  }
  return strText;
}

// A point or a quote at the beginning of a line would be a command of roff.
std::string Protected(const std::string& strLine) {
  return strLine.starts_with('.') || strLine.starts_with('\'') ? "\\&" + strLine : strLine;
}

std::string Bold(std::string_view text) { return "\\fB" + Escaped(text) + "\\fR"; }
std::string Italic(std::string_view text) { return "\\fI" + Escaped(text) + "\\fR"; }

}  // namespace

void C_Roff::Line(std::string_view macro, std::string_view rest) {
  m_strPage += macro;
  if (!rest.empty()) m_strPage.append(" ") += rest;
  m_strPage += '\n';
}

void C_Roff::Title(std::string_view name, std::string_view date, std::string_view version) {
  Line(".\\\" SPDX-License-Identifier: Apache-2.0");
  std::string strTitle(name);
  std::ranges::transform(strTitle, strTitle.begin(),
                         [](unsigned char by) { return static_cast<char>(std::toupper(by)); });
  Line(".TH", Escaped(strTitle) + " 1 " + std::string(date) + " \"" + std::string(version) +
                  "\" \"User Commands\"");
}

void C_Roff::Section(std::string_view title) { Line(".SH", title); }
void C_Roff::Subsection(std::string_view title) { Line(".SS", Escaped(title)); }
void C_Roff::Break() { Line(".PP"); }

void C_Roff::Name(std::string_view name, std::string_view summary) {
  Line(Escaped(name) + " \\- " + Escaped(summary));
}

void C_Roff::Reference(std::string_view name, bool bLast) {
  Line(".BR", Escaped(name) + (bLast ? " (1)" : " (1),"));
}

void C_Roff::Command(std::string_view bold, std::string_view rest) {
  Line(Bold(bold) + " " + Italic(rest));
}

void C_Roff::Paragraphs(std::string_view text) {
  for (const std::string& strLine : WrappedLines(Escaped(text), kColumns)) {
    if (strLine.empty()) {
      Break();
    } else {
      Line(Protected(strLine));
    }
  }
}

void C_Roff::Term(std::string_view bold, std::string_view value) {
  Line(".TP");
  const bool bBoth = !bold.empty() && !value.empty();
  Line((bold.empty() ? "" : Bold(bold)) + (bBoth ? " " : "") +
       (value.empty() ? "" : Italic(value)));
}

void C_Roff::Example(std::string_view line) {
  Line(".PP");
  Line(".nf");
  Line(".RS");
  Line(Protected(Escaped(line)));
  Line(".RE");
  Line(".fi");
}

}  // namespace tool
