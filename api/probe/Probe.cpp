// SPDX-License-Identifier: Apache-2.0
#include "probe/Probe.h"

#include "reader/Detection.h"

namespace api {

S_Probe Probe(std::span<const std::uint8_t> firstBytes) {
  S_Probe probe;
  for (const PFN_Test pfnTest : kTests) {
    const S_TestResult test = pfnTest(firstBytes);
    probe.strText += test.strLine + '\n';
    if (!test.bFound) continue;
    probe.eContainer = test.eContainer;
    probe.eCodec = test.eCodec;
    probe.bSupported = test.bSupported;
    break;
  }
  return probe;
}

}  // namespace api
