// SPDX-License-Identifier: Apache-2.0
#include "base/EachFile.h"

#include <stdexcept>

#include "base/Failure.h"
#include "base/Interrupt.h"

namespace tool {

int ForEachFile(const std::vector<std::string>& files, C_Console& console,
                const std::function<void(const std::string& strPath)>& fnWork) {
  int nExit = 0;
  for (const std::string& strPath : files) {
    ThrowIfInterrupted();
    try {
      fnWork(strPath);
    } catch (const C_UsageFailure&) {
      throw;
    } catch (const std::runtime_error& failure) {
      // What was printed of the files before comes before this.
      console.Flush();
      console.Complain(failure.what());
      nExit = 1;
    }
  }
  return nExit;
}

}  // namespace tool
