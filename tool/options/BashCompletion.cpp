// SPDX-License-Identifier: Apache-2.0
#include "options/Completion.h"
#include "options/OptionTable.h"

namespace tool {
namespace {

constexpr const char* kHead = R"(# Completes voxtool in bash. Made from its table of options.
_voxtool() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  local path= options= words= kind= n found
  for ((n = 1; n < COMP_CWORD; ++n)); do
    case "$path ${COMP_WORDS[n]}" in
)";
// Between the cases for commands and those for values.
constexpr const char* kMiddle = R"(    esac
  done
  case "$path" in
)";
// Bash takes "--to=wav" apart at the sign.
constexpr const char* kValues = R"(  esac
  [[ $word != -* ]] || words=$options kind=
  if [[ $word == '=' ]]; then
    word=
  elif [[ $before == '=' ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  case "$path $before" in
)";
constexpr const char* kTail = R"(  esac
  COMPREPLY=()
  [[ -z $words ]] || mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
  [[ -n $kind ]] || return 0
  compopt -o filenames 2>/dev/null
  mapfile -t found < <(compgen "$kind" -- "$word")
  COMPREPLY+=("${found[@]}")
}
complete -F _voxtool voxtool
)";

const char* KindFlag(tagValueKind eKind) {
  if (eKind == tagValueKind::FILE) return "-f";
  return eKind == tagValueKind::FOLDER ? "-d" : "";
}

// What is typed before a name, and with it.
std::string PathCase(const std::string& strBefore, const CLI::App& command,
                     const std::string& strPath) {
  return "      " + Quoted(strBefore + " " + NameOf(command)) + ") path=" + Quoted(strPath) +
         " ;;\n";
}

std::string PathCases(const CLI::App& table) {
  std::string strText;
  VisitCommands(table, [&](const CLI::App& command) {
    if (ParentOf(command) == nullptr) return;
    strText += PathCase(NameInProgram(*ParentOf(command)), command, NameInProgram(command));
  });
  VisitNamedCommands(table, [&](const CLI::App& naming, const CLI::App& named) {
    strText += PathCase(NameAfter(naming, *ParentOf(named)), named, NameAfter(naming, named));
  });
  return strText;
}

std::string OptionWords(const CLI::App& command) {
  std::vector<std::string> options;
  for (const S_Argument& option : OptionsOf(command)) {
    options.insert(options.end(), option.names.begin(), option.names.end());
  }
  return JoinedWords(options);
}

std::vector<std::string> NamesIn(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::App* pInner : CommandsIn(command)) names.push_back(NameOf(*pInner));
  return names;
}

// What may follow a command: commands in it, and the values of its operands.
std::string WordCase(const CLI::App& command) {
  std::vector<std::string> words = NamesIn(command);
  std::string strKind;
  for (const S_Argument& operand : OperandsOf(command)) {
    words.insert(words.end(), operand.choices.begin(), operand.choices.end());
    if (strKind.empty()) strKind = KindFlag(operand.eKind);
  }
  return "    " + Quoted(NameInProgram(command)) + ") options=" + Quoted(OptionWords(command)) +
         " words=" + Quoted(JoinedWords(words)) + " kind=" + strKind + " ;;\n";
}

std::string NamedWordCase(const CLI::App& naming, const CLI::App& named) {
  return "    " + Quoted(NameAfter(naming, named)) + ") options=" + Quoted(OptionWords(naming)) +
         " words=" + Quoted(JoinedWords(NamesIn(named))) + " kind= ;;\n";
}

std::string ValueCases(const CLI::App& command) {
  std::string strText;
  for (const S_Argument& option : OptionsOf(command)) {
    if (option.eKind == tagValueKind::NONE || option.bMayLackValue) continue;
    std::string strPatterns;
    for (const std::string& strName : option.names) {
      strPatterns +=
          (strPatterns.empty() ? "" : " | ") + Quoted(NameInProgram(command) + " " + strName);
    }
    strText += "    " + strPatterns + ") words=" + Quoted(JoinedWords(option.choices)) +
               " kind=" + KindFlag(option.eKind) + " ;;\n";
  }
  return strText;
}

}  // namespace

std::string BashCompletion(const CLI::App& table) {
  std::string strText = kHead + PathCases(table) + kMiddle;
  VisitCommands(table, [&](const CLI::App& command) { strText += WordCase(command); });
  VisitNamedCommands(table, [&](const CLI::App& naming, const CLI::App& named) {
    strText += NamedWordCase(naming, named);
  });
  strText += kValues;
  VisitCommands(table, [&](const CLI::App& command) { strText += ValueCases(command); });
  return strText + kTail;
}

}  // namespace tool
