// SPDX-License-Identifier: Apache-2.0
#include "options/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <span>
#include <utility>

#include "base/Failure.h"
#include "base/Interrupt.h"
#include "options/HelpText.h"
#include "options/NegativeValues.h"
#include "options/OptionTable.h"
#include "options/Suggestion.h"
#include "voxplay.hpp"

namespace tool {
namespace {

constexpr int kFailed = 1;
constexpr int kUsage = 2;
constexpr int kOutputClosed = 141;  // what shells say of a program that such a pipe has ended

void RefuseUsage(const CLI::App& command, const std::string& strWhy, C_Console& console) {
  const std::string strCommand = FullName(command);
  console.Complain(strCommand + ": " + strWhy);
  console.Complain("Try \"" + strCommand + " --help\".");
}

// What the work of a command returns, or the exit code of what it throws.
template <typename Work>
int Guarded(const CLI::App& command, C_Console& console, Work&& work) {
  try {
    const int nExit = work();
    console.Flush();
    return nExit;
  } catch (const C_UsageFailure& failure) {
    RefuseUsage(command, failure.what(), console);
    return kUsage;
  } catch (const C_Interrupted&) {
    return kInterruptedExit;
  } catch (const C_OutputClosed&) {
    return kOutputClosed;
  } catch (const std::bad_alloc&) {
    console.Complain("voxtool: there is not enough memory");
    return kFailed;
  } catch (const std::exception& failure) {
    console.Complain(failure.what());
    return kFailed;
  }
}

int ShowText(const std::string& strText, C_Console& console) {
  console.Print(strText);
  return 0;
}

// What the whole program is, in the words of a command.
S_Command Program() {
  return {
      "voxtool",
      "see, convert, mark, check, draw and play sound files",
      "voxtool works with compressed speech in the codecs Kestrel and Heron, with VEF and VEMD "
      "containers and WAV files of most kinds, and reads FLAC, Ogg, Opus, MP3 and AIFF as well. "
      "Events and marks in files are kept wherever the target can hold them.\n\n"
      "\"-\" as a file name stands for standard input or output. Texts have colours on terminals "
      "alone, and none where NO_COLOR is set.",
      {{"voxtool info speech.kst", "see what is in a file"},
       {"voxtool play speech.kst", "hear it"},
       {"voxtool convert song.flac -o song.kst", "make a Kestrel file of a sound of any kind"},
       {"voxtool convert -r archive -d wav --to wav", "make WAV files of all sounds in a folder"},
       {"voxtool tags list talk.wav", "show the events and marks in a file"}},
      {}};
}

}  // namespace

C_CommandLine::C_CommandLine() : m_pTable(std::make_unique<CLI::App>()) {
  Register(*m_pTable, Program());
}

C_CommandLine::~C_CommandLine() = default;

CLI::App& C_CommandLine::Add(S_Command command) { return Add(*m_pTable, std::move(command)); }

CLI::App& C_CommandLine::Add(CLI::App& parent, S_Command command) {
  CLI::App& added = *parent.add_subcommand(command.strName, command.strSummary);
  Register(added, std::move(command));
  return added;
}

void C_CommandLine::Register(CLI::App& table, S_Command command) {
  table.name(command.strName);
  table.set_help_flag("-h,--help", "print this help and exit");
  table.set_version_flag("-V,--version", std::string("voxtool ") + voxplay_version(),
                         "print the version and exit");
  if (!command.fnRun) table.require_subcommand(1);
  m_commands.emplace(&table, std::move(command));
}

const S_Command& C_CommandLine::Command(const CLI::App& table) const {
  return m_commands.at(&table);
}

// The innermost command that the arguments name.
const CLI::App& C_CommandLine::Chosen() const {
  const CLI::App* pChosen = m_pTable.get();
  while (!pChosen->get_subcommands().empty()) pChosen = pChosen->get_subcommands().front();
  return *pChosen;
}

int C_CommandLine::Run(int nArguments, const char* const* ppszArguments, C_Console& console) {
  try {
    const std::span all(ppszArguments, static_cast<std::size_t>(std::max(nArguments, 1)));
    std::vector<std::string> arguments = WithNegativeValues(all.subspan(1));
    std::ranges::reverse(arguments);
    m_pTable->parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    return Guarded(Chosen(), console, [&] {
      return ShowText(HelpText(*this, Chosen(), console.OutputColumns()), console);
    });
  } catch (const CLI::CallForVersion& version) {
    return Guarded(Chosen(), console,
                   [&] { return ShowText(version.what() + std::string("\n"), console); });
  } catch (const CLI::ParseError& error) {
    return ComplainOfUsage(error, console);
  }
  return Guarded(Chosen(), console, [&] { return Command(Chosen()).fnRun(console); });
}

int C_CommandLine::ComplainOfUsage(const std::exception& error, C_Console& console) const {
  const CLI::App* pWrong = m_pTable.get();
  while (!UnknownWord(*pWrong) && !pWrong->get_subcommands().empty()) {
    pWrong = pWrong->get_subcommands().front();
  }
  // The parser has another word for it than the help.
  const bool bNoCommand = dynamic_cast<const CLI::RequiredError*>(&error) != nullptr &&
                          pWrong->get_require_subcommand_min() > 0 &&
                          pWrong->get_subcommands().empty();
  const std::string strWhy = bNoCommand ? "COMMAND is required" : error.what();
  RefuseUsage(*pWrong, UnknownWord(*pWrong).value_or(strWhy), console);
  return kUsage;
}

}  // namespace tool
