// SPDX-License-Identifier: Apache-2.0
//
// Scripts that let shells complete commands, options, listed values, files and folders.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "options/CommandOptions.h"

namespace tool {

std::string BashCompletion(const CLI::App& table);
std::string FishCompletion(const CLI::App& table);
std::string ZshCompletion(const CLI::App& table);

// For the functions above: calls fnVisit for the program, and for each command after the one that
// it is in.
void VisitCommands(const CLI::App& table, const std::function<void(const CLI::App&)>& fnVisit);
// Calls fnVisit with each command that takes the names of commands as operands ("manual"), and with
// each that can be named there ("tags", "tags add").
using PFN_VisitNamed = std::function<void(const CLI::App& naming, const CLI::App& named)>;
void VisitNamedCommands(const CLI::App& table, const PFN_VisitNamed& fnVisit);
// "manual tags add"; what is named may be the program, which adds nothing.
std::string NameAfter(const CLI::App& naming, const CLI::App& named);
// Whether the command is such a one as "manual".
bool NamesCommands(const CLI::App& command);
// The text as one word of a shell.
std::string Quoted(const std::string& strText);
std::string JoinedWords(const std::vector<std::string>& words);

}  // namespace tool
