// SPDX-License-Identifier: Apache-2.0
//
// Adds options and operands to commands. The parser's own header takes longer to compile than most
// of our sources, so only this room includes it.
#pragma once

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tool {

// Says what is wrong with a value; nothing when it can be meant.
using PFN_CheckValue = std::function<std::string(const std::string& strValue)>;
using PFN_TakeValue = std::function<void(const std::string& strValue)>;

// What more there is to say of an option or an operand. The command owns what is described.
class C_Option {
 public:
  explicit C_Option(CLI::Option& option) noexcept : m_pOption(&option) {}

  // What it is a name of, by which shells complete it: "FILE", "DIR", "COMMAND", and anything else
  // for what they cannot know.
  const C_Option& TypeName(const std::string& strName) const;
  const C_Option& Required() const;
  const C_Option& Check(PFN_CheckValue fnCheck) const;
  // These values alone, which help texts and shells list.
  const C_Option& OneOf(const std::vector<std::string>& values) const;
  // Help texts name the value that it has now.
  const C_Option& ShowDefault() const;
  const C_Option& Needs(const C_Option& other) const;
  const C_Option& Excludes(const C_Option& other) const;

 private:
  CLI::Option* m_pOption;
};

// Names are those of an option, "-o,--output", or that of an operand, "FILE". What is referred to
// gets the value, and must outlive the table. A list takes all values.
C_Option AddOption(CLI::App& command, const std::string& strNames, std::string& strValue,
                   const std::string& strMeaning);
C_Option AddOption(CLI::App& command, const std::string& strNames, std::vector<std::string>& values,
                   const std::string& strMeaning);
C_Option AddOption(CLI::App& command, const std::string& strNames, std::uint32_t& dwValue,
                   const std::string& strMeaning);
C_Option AddOption(CLI::App& command, const std::string& strNames,
                   std::vector<std::uint64_t>& values, const std::string& strMeaning);
C_Option AddOption(CLI::App& command, const std::string& strNames, double& dValue,
                   const std::string& strMeaning);
C_Option AddOption(CLI::App& command, const std::string& strNames, const PFN_TakeValue& fnTake,
                   const std::string& strMeaning);

// An option without a value; a number counts how often it is there. A text may be given a value,
// and stands in braces for the option alone: "--normalize{-1}".
C_Option AddFlag(CLI::App& command, const std::string& strNames, bool& bGiven,
                 const std::string& strMeaning);
C_Option AddFlag(CLI::App& command, const std::string& strNames, int& nGiven,
                 const std::string& strMeaning);
C_Option AddFlag(CLI::App& command, const std::string& strNames, std::string& strValue,
                 const std::string& strMeaning);

// Says what is wrong with all that was given, when it has been taken.
void CheckAtEnd(CLI::App& command, std::function<std::string()> fnCheck);
// The long names of the options that were given, "gain" and so on.
std::set<std::string> GivenOptions(const CLI::App& command);

}  // namespace tool
