// SPDX-License-Identifier: Apache-2.0
#include "options/CommandOptions.h"

#include <CLI/CLI.hpp>
#include <utility>

namespace tool {

const C_Option& C_Option::TypeName(const std::string& strName) const {
  m_pOption->type_name(strName);
  return *this;
}

const C_Option& C_Option::Required() const {
  m_pOption->required();
  return *this;
}

const C_Option& C_Option::Check(PFN_CheckValue fnCheck) const {
  // Without a description, which would stand in help texts.
  m_pOption->check(CLI::Validator(std::move(fnCheck), ""));
  return *this;
}

const C_Option& C_Option::OneOf(const std::vector<std::string>& values) const {
  m_pOption->check(CLI::IsMember(values));
  return *this;
}

const C_Option& C_Option::ShowDefault() const {
  m_pOption->capture_default_str();
  return *this;
}

const C_Option& C_Option::Needs(const C_Option& other) const {
  m_pOption->needs(other.m_pOption);
  return *this;
}

const C_Option& C_Option::Excludes(const C_Option& other) const {
  m_pOption->excludes(other.m_pOption);
  return *this;
}

C_Option AddOption(CLI::App& command, const std::string& strNames, std::string& strValue,
                   const std::string& strMeaning) {
  return C_Option(*command.add_option(strNames, strValue, strMeaning));
}

C_Option AddOption(CLI::App& command, const std::string& strNames, std::vector<std::string>& values,
                   const std::string& strMeaning) {
  return C_Option(*command.add_option(strNames, values, strMeaning));
}

C_Option AddOption(CLI::App& command, const std::string& strNames, std::uint32_t& dwValue,
                   const std::string& strMeaning) {
  return C_Option(*command.add_option(strNames, dwValue, strMeaning));
}

C_Option AddOption(CLI::App& command, const std::string& strNames,
                   std::vector<std::uint64_t>& values, const std::string& strMeaning) {
  return C_Option(*command.add_option(strNames, values, strMeaning));
}

C_Option AddOption(CLI::App& command, const std::string& strNames, double& dValue,
                   const std::string& strMeaning) {
  return C_Option(*command.add_option(strNames, dValue, strMeaning));
}

C_Option AddOption(CLI::App& command, const std::string& strNames, const PFN_TakeValue& fnTake,
                   const std::string& strMeaning) {
  return C_Option(*command.add_option_function<std::string>(strNames, fnTake, strMeaning));
}

C_Option AddFlag(CLI::App& command, const std::string& strNames, bool& bGiven,
                 const std::string& strMeaning) {
  return C_Option(*command.add_flag(strNames, bGiven, strMeaning));
}

C_Option AddFlag(CLI::App& command, const std::string& strNames, int& nGiven,
                 const std::string& strMeaning) {
  return C_Option(*command.add_flag(strNames, nGiven, strMeaning));
}

C_Option AddFlag(CLI::App& command, const std::string& strNames, std::string& strValue,
                 const std::string& strMeaning) {
  return C_Option(*command.add_flag(strNames, strValue, strMeaning));
}

void CheckAtEnd(CLI::App& command, std::function<std::string()> fnCheck) {
  command.parse_complete_callback([fnCheck = std::move(fnCheck)] {
    const std::string strWrong = fnCheck();
    if (!strWrong.empty()) throw CLI::ValidationError(strWrong);
  });
}

std::set<std::string> GivenOptions(const CLI::App& command) {
  std::set<std::string> given;
  for (const CLI::Option* const pOption : command.get_options()) {
    if (pOption->count() == 0) continue;
    for (const std::string& strName : pOption->get_lnames()) given.insert(strName);
  }
  return given;
}

}  // namespace tool
