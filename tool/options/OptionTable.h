// SPDX-License-Identifier: Apache-2.0
//
// The table of the command line as help texts, manual pages and completions want to see it.
#pragma once

#include <string>
#include <vector>

#include "options/CommandOptions.h"

namespace tool {

// COMMAND is a choice, too: that of a command of the program, after which one in it may be named.
enum class tagValueKind { NONE, TEXT, FILE, FOLDER, CHOICE, COMMAND };

// An option or an operand.
struct S_Argument {
  std::vector<std::string> names;  // "-o", "--output"; none for an operand
  tagValueKind eKind = tagValueKind::NONE;
  std::string strValue;              // "FILE": what stands for its value
  std::vector<std::string> choices;  // the values, where they are listed
  bool bRequired = false;
  bool bMany = false;
  bool bMayLackValue = false;
  std::string strMeaning;  // with its default
};

// In the order of the table, without what is hidden.
std::vector<S_Argument> OptionsOf(const CLI::App& table);
// Without those that all commands have.
std::vector<S_Argument> OwnOptionsOf(const CLI::App& table);
std::vector<S_Argument> OperandsOf(const CLI::App& table);
std::vector<const CLI::App*> CommandsIn(const CLI::App& table);
// What the command is in; none for the program.
const CLI::App* ParentOf(const CLI::App& table);

// "add".
std::string NameOf(const CLI::App& table);
std::string SummaryOf(const CLI::App& table);
// "voxtool tags add".
std::string FullName(const CLI::App& table);
// The same without the program: "tags add".
std::string NameInProgram(const CLI::App& table);

// What of the arguments it does not know, after they were parsed.
std::vector<std::string> UnknownWords(const CLI::App& table);

// "-o, --output FILE".
std::string OptionText(const S_Argument& option);
// "FILE...", in brackets where it may be left out.
std::string OperandText(const S_Argument& operand);
// What follows the name of the command: "[OPTION]... FILE...".
std::string UsageText(const CLI::App& table);

}  // namespace tool
