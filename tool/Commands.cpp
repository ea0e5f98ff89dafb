// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"

#include "convert/ConvertCommand.h"

namespace tool {

void AddCommands(C_CommandLine& commandLine) { AddConvertCommand(commandLine); }
#include "check/CheckCommand.h"
#include "header/HeaderCommand.h"
#include "info/InfoCommand.h"
#include "tags/TagsCommand.h"

namespace tool {

void AddCommands(C_CommandLine& commandLine) {
  AddInfoCommand(commandLine);
  AddCheckCommand(commandLine);
  AddHeaderCommand(commandLine);
  AddTagsCommand(commandLine);
}

}  // namespace tool
