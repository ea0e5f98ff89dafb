// SPDX-License-Identifier: Apache-2.0
//
// A small program with commands in commands, whose texts the tests look at.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "options/CommandLine.h"

struct S_SmallTable {
  S_SmallTable() {
    CLI::App& marks = commandLine.Add({"marks",
                                       "list and edit marks",
                                       "Works on marks.\n\n.Dots and 'quotes' may begin lines.",
                                       {},
                                       {}});
    CLI::App& add = commandLine.Add(marks, {"add",
                                            "add a mark",
                                            "",
                                            {{"voxtool marks add cue x.wav", "add a cue point"}},
                                            [this](tool::C_Console&) { return Note("add"); }});
    add.add_option("KIND", strText, "what it is")
        ->required()
        ->check(CLI::IsMember({"cue", "loop"}));
    add.add_option("FILE", files, "where it goes")->required()->type_name("FILE");
    commandLine.Add(
        marks, {"list", "list them", "", {}, [this](tool::C_Console&) { return Note("list"); }});
    CLI::App& draw = commandLine.Add({"draw",
                                      "draw a picture",
                                      "Draws.",
                                      {{"voxtool draw a.wav", "draw it"}},
                                      [this](tool::C_Console&) { return Note("draw"); }});
    draw.add_option("-o,--output", strText, "the picture")->type_name("FILE");
    draw.add_option("-d,--dir", strText, "a folder for pictures")->type_name("DIR");
    draw.add_option("--theme", strText, "its colours")->check(CLI::IsMember({"light", "dark"}));
    draw.add_option("--size", strText, "its size")->type_name("SIZE")->default_str("800x400");
    draw.add_flag("-f,--force", bForce, "write over files");
    draw.add_flag("--hidden", bForce, "")->group("");
  }
  S_SmallTable(const S_SmallTable&) = delete;
  S_SmallTable& operator=(const S_SmallTable&) = delete;

  int Run(const std::vector<const char*>& arguments) {
    std::vector<const char*> all = {"voxtool"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    tool::C_Console console;
    return commandLine.Run(static_cast<int>(all.size()), all.data(), console);
  }

  tool::C_CommandLine commandLine;
  std::string strRan;
  std::string strText;
  std::vector<std::string> files;
  bool bForce = false;

 private:
  int Note(const char* pszCommand) {
    strRan = pszCommand;
    return 0;
  }
};
