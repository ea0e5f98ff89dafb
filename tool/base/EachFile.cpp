// SPDX-License-Identifier: Apache-2.0
#include "base/EachFile.h"

#include <exception>
#include <new>

#include "base/Failure.h"
#include "base/Interrupt.h"

namespace tool {

std::optional<std::string> FailureOf(const std::string& strPath,
                                     const std::function<void()>& fnWork) {
  try {
    fnWork();
    return {};
  } catch (const C_UsageFailure&) {
    throw;
  } catch (const C_Interrupted&) {
    throw;
  } catch (const C_OutputClosed&) {
    throw;
  } catch (const C_DiskFailure&) {
    throw;
  } catch (const std::bad_alloc&) {
    return strPath + ": there is not enough memory";
  } catch (const std::exception& failure) {
    return failure.what();
  }
}

int ForEachFile(const std::vector<std::string>& files, C_Console& console,
                const std::function<void(const std::string& strPath)>& fnWork) {
  int nExit = 0;
  for (const std::string& strPath : files) {
    ThrowIfInterrupted();
    const auto strFailure = FailureOf(strPath, [&] { fnWork(strPath); });
    if (!strFailure) continue;
    // What was printed of the files before comes before this.
    console.Flush();
    console.Complain(*strFailure);
    nExit = 1;
  }
  return nExit;
}

}  // namespace tool
