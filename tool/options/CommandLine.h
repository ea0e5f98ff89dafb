// SPDX-License-Identifier: Apache-2.0
//
// The commands of the program and their options. This is the one table of them: parsing, --help
// (HelpText.h), the manual pages (ManualPage.h) and the completions of shells (Completion.h) are
// all made from it.
#pragma once

#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "base/Console.h"
#include "options/CommandOptions.h"

namespace tool {

// Ends with 0, or with 1 when something failed that it has complained about. May throw C_Failure.
using PFN_RunCommand = std::function<int(C_Console& console)>;

// An example: a command line and what it does.
struct S_Example {
  std::string strLine;
  std::string strMeaning;
};

struct S_Command {
  std::string strName;
  std::string strSummary;      // one line, without a full stop
  std::string strDescription;  // paragraphs, with empty lines between them
  std::vector<S_Example> examples;
  PFN_RunCommand fnRun;  // empty for a command that only holds others
};

class C_CommandLine {
 public:
  C_CommandLine();
  ~C_CommandLine();

  // Adds a command, whose options and operands are then added to the result (CommandOptions.h).
  CLI::App& Add(S_Command command);
  // Adds a command to one that is there, as in "voxtool tags add".
  CLI::App& Add(CLI::App& parent, S_Command command);

  // Parses the arguments and runs the command that they name. Returns the exit code: 0; 1 when a
  // command failed; 2 for what cannot be meant; 130 when the user has interrupted it.
  int Run(int nArguments, const char* const* ppszArguments, C_Console& console);

  [[nodiscard]] const CLI::App& Table() const noexcept { return *m_pTable; }
  // Of the table or of a command in it.
  [[nodiscard]] const S_Command& Command(const CLI::App& table) const;

 private:
  void Register(CLI::App& table, S_Command command);
  [[nodiscard]] const CLI::App& Chosen() const;
  int ComplainOfUsage(const std::exception& error, C_Console& console) const;

  const std::unique_ptr<CLI::App> m_pTable;
  std::map<const CLI::App*, S_Command> m_commands;
};

}  // namespace tool
