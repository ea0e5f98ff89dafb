// SPDX-License-Identifier: Apache-2.0
#include "options/CommandLine.h"

#include <utility>

#include "base/Failure.h"
#include "base/Interrupt.h"
#include "voxplay.hpp"

namespace tool {
namespace {

constexpr int kFailed = 1;
constexpr int kUsage = 2;
constexpr std::size_t kOptionColumns = 30;

// As they stand below a help text.
std::string ExamplesText(const std::vector<S_Example>& examples) {
  std::string strText = examples.empty() ? "" : "Examples:\n";
  for (const S_Example& example : examples) {
    strText += "  " + example.strLine + "\n      " + example.strMeaning + "\n";
  }
  return strText;
}

}  // namespace

C_CommandLine::C_CommandLine()
    : m_app("Sees, converts, marks, checks, draws and plays sound files.", "voxtool") {
  m_app.require_subcommand(1);
  m_app.set_help_flag("-h,--help", "print this help and exit");
  m_app.set_version_flag("-V,--version", std::string("voxtool ") + voxplay_version(),
                         "print the version and exit");
  m_app.get_formatter()->column_width(kOptionColumns);
}

CLI::App& C_CommandLine::Add(S_Command command) {
  CLI::App* const pAdded = m_app.add_subcommand(command.strName, command.strSummary);
  pAdded->set_version_flag("-V,--version", std::string("voxtool ") + voxplay_version(),
                           "print the version and exit");
  pAdded->footer(ExamplesText(command.examples));
  m_commands.push_back(std::make_unique<S_Command>(std::move(command)));
  return *pAdded;
}

const S_Command& C_CommandLine::Command(const CLI::App& table) const {
  for (const auto& command : m_commands) {
    if (command->strName == table.get_name()) return *command;
  }
  throw std::logic_error("no such command: " + table.get_name());
}

int C_CommandLine::Run(int nArguments, const char* const* ppszArguments, C_Console& console) {
  try {
    m_app.parse(nArguments, ppszArguments);
  } catch (const CLI::CallForHelp&) {
    const auto chosen = m_app.get_subcommands();
    console.Print((chosen.empty() ? m_app : *chosen.front()).help());
    console.Flush();
    return 0;
  } catch (const CLI::CallForVersion& version) {
    console.Print(version.what() + std::string("\n"));
    console.Flush();
    return 0;
  } catch (const CLI::ParseError& error) {
    console.Complain(std::string("voxtool: ") + error.what());
    console.Complain("Try \"voxtool --help\".");
    return kUsage;
  }
  return RunParsed(console);
}

int C_CommandLine::RunParsed(C_Console& console) {
  try {
    const int nExit = Command(*m_app.get_subcommands().front()).fnRun(console);
    console.Flush();
    return nExit;
  } catch (const C_UsageFailure& failure) {
    console.Complain(failure.what());
    return kUsage;
  } catch (const C_Interrupted&) {
    return kInterruptedExit;
  } catch (const std::bad_alloc&) {
    console.Complain("voxtool: there is not enough memory");
    return kFailed;
  } catch (const std::exception& failure) {
    console.Complain(failure.what());
    return kFailed;
  }
}

}  // namespace tool
