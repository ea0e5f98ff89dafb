// SPDX-License-Identifier: Apache-2.0
#include "options/Completion.h"
#include "options/OptionTable.h"

namespace tool {
namespace {

constexpr const char* kHead = R"(# Completes voxtool in fish. Made from its table of options.
function __voxtool_at
    set -l path ''
    set -l words (commandline -opc)
    set -e words[1]
    for word in $words
        switch "$path $word"
)";
constexpr const char* kTail = R"(        end
    end
    test "$path" = "$argv[1]"
end
complete -c voxtool -f
)";

// In quotes, fish knows a backslash where other shells do not.
std::string QuotedForFish(const std::string& strText) {
  std::string strDoubled;
  for (const char ch : strText) strDoubled += ch == '\\' ? std::string("\\\\") : std::string(1, ch);
  return Quoted(strDoubled);
}

// What is typed before a name, and with it.
std::string PathCase(const std::string& strBefore, const CLI::App& command,
                     const std::string& strPath) {
  return "            case " + Quoted(strBefore + " " + NameOf(command)) +
         "\n                set path " + Quoted(strPath) + "\n";
}

std::string CompleteAt(const std::string& strPath) {
  return "complete -c voxtool -n \"__voxtool_at '" + strPath + "'\"";
}
std::string Complete(const CLI::App& command) { return CompleteAt(NameInProgram(command)); }

// The commands in one, to be offered after this path.
std::string InnerLines(const std::string& strPath, const CLI::App& command) {
  std::string strText;
  for (const CLI::App* pInner : CommandsIn(command)) {
    strText += CompleteAt(strPath) + " -a " + NameOf(*pInner) + " -d " +
               QuotedForFish(SummaryOf(*pInner)) + "\n";
  }
  return strText;
}

std::string ValueText(const S_Argument& argument) {
  switch (argument.eKind) {
    case tagValueKind::NONE:
      return "";
    case tagValueKind::TEXT:
      return argument.bMayLackValue ? "" : " -x";
    case tagValueKind::FILE:
      return " -r -F";
    case tagValueKind::FOLDER:
      return " -x -a '(__fish_complete_directories)'";
    case tagValueKind::CHOICE:
    case tagValueKind::COMMAND:
      return " -x -a " + QuotedForFish(JoinedWords(argument.choices));
  }
  return "";
}

std::string OptionLine(const CLI::App& command, const S_Argument& option) {
  std::string strText = Complete(command);
  for (const std::string& strName : option.names) {
    const bool bLong = strName.starts_with("--");
    strText += bLong ? " -l " + strName.substr(2) : " -s " + strName.substr(1);
  }
  return strText + ValueText(option) + " -d " + QuotedForFish(option.strMeaning) + "\n";
}

// The values of an operand; an option that takes none has none.
std::string OperandLine(const CLI::App& command, const S_Argument& operand) {
  switch (operand.eKind) {
    case tagValueKind::FILE:
      return Complete(command) + " -F\n";
    case tagValueKind::FOLDER:
    case tagValueKind::CHOICE:
    case tagValueKind::COMMAND:
      return Complete(command) + ValueText(operand).substr(3) + "\n";
    default:
      return "";
  }
}

std::string CommandLines(const CLI::App& command) {
  std::string strText = InnerLines(NameInProgram(command), command);
  for (const S_Argument& option : OptionsOf(command)) strText += OptionLine(command, option);
  for (const S_Argument& operand : OperandsOf(command)) strText += OperandLine(command, operand);
  return strText;
}

}  // namespace

std::string FishCompletion(const CLI::App& table) {
  std::string strText = kHead;
  VisitCommands(table, [&](const CLI::App& command) {
    if (ParentOf(command) == nullptr) return;
    strText += PathCase(NameInProgram(*ParentOf(command)), command, NameInProgram(command));
  });
  VisitNamedCommands(table, [&](const CLI::App& naming, const CLI::App& named) {
    strText += PathCase(NameAfter(naming, *ParentOf(named)), named, NameAfter(naming, named));
  });
  strText += kTail;
  VisitCommands(table, [&](const CLI::App& command) { strText += CommandLines(command); });
  VisitNamedCommands(table, [&](const CLI::App& naming, const CLI::App& named) {
    strText += InnerLines(NameAfter(naming, named), named);
  });
  return strText;
}

}  // namespace tool
