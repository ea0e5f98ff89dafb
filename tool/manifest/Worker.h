// SPDX-License-Identifier: Apache-2.0
//
// The processes that claim the files of a manifest.
#pragma once

#include <cstdint>
#include <string>

#include "manifest/Manifest.h"

namespace tool {

struct S_Worker {
  std::string strHost;
  // Changes when the machine starts anew, and is another one where processes are counted apart.
  std::string strMachine;
  std::int64_t nProcess = 0;
  std::int64_t nStart = 0;  // of the process, which tells it from a later one of the same number

  bool operator==(const S_Worker&) const = default;
};

enum class tagWorkerState { WORKER_ALIVE, WORKER_DEAD, WORKER_ELSEWHERE };

[[nodiscard]] S_Worker ThisWorker();
// Of a worker, as it is seen from another one that lives.
[[nodiscard]] tagWorkerState StateOf(const S_Worker& worker, const S_Worker& seenFrom);

// The number that the manifest knows this process by. To be called in a transaction.
[[nodiscard]] std::int64_t NumberOf(const S_Worker& worker, C_Manifest& manifest);

// Makes what dead processes had claimed free again; with bElsewhere, what was claimed on other
// machines as well. To be called in a transaction. Returns how many files are still claimed there.
std::uint64_t FreeAbandoned(C_Manifest& manifest, bool bElsewhere);

}  // namespace tool
