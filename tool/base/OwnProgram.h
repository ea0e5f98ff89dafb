// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace tool {

// Lets another program of ours take over this process, with its standard streams and these
// arguments, of which the last is null. It is in the folder of this one, or where it is installed.
// Throws C_Failure when it cannot be run.
[[noreturn]] void ContinueAs(const std::string& strProgram, char* const* ppszArguments);

}  // namespace tool
