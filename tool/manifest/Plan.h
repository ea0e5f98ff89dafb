// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <string>

#include "manifest/Manifest.h"

namespace tool {

// What a manifest says of targets that exist: they are left as they are.
inline constexpr const char* kSkipExisting = "skip";

struct S_PlanCounts {
  std::uint64_t qwNew = 0;
  std::uint64_t qwChanged = 0;  // their sources, or their targets are gone
  std::uint64_t qwFiles = 0;    // in all
  std::uint64_t qwKept = 0;     // have another target than they would get now
  std::string strKept;          // one of these targets
};

// Files that a manifest is to have. They wait outside of it, however many they are, so that others
// can work with it until all are known; then it takes all of them, or none.
class C_Plan {
 public:
  explicit C_Plan(C_Manifest& manifest);

  // Absolute paths. A source that the manifest has already keeps its first target. strOther, if it
  // is not empty, is taken where another file has the target.
  void Add(const std::string& strSource, const std::string& strTarget,
           const std::string& strOther = "");
  // How all of the files are converted, and what happens to targets that exist. Throws
  // C_UsageFailure when the manifest has other options, and when two files have the same target, or
  // the target of one is one of the files, unless it is the file itself and targets that exist are
  // skipped. Targets of files that the manifest had before are left out of the plan.
  S_PlanCounts Finish(const std::string& strOptions, const std::string& strExisting);

 private:
  void LeaveOutTargets();
  void PartSameTargets();
  void KeepTargets(S_PlanCounts& counts);
  void RefuseSameTargets();
  void RefuseTargetsOfOthers();
  void RefuseTargetsThatAreSources(bool bSkips);
  void FindLostTargets();
  void Settle(const std::string& strOptions, const std::string& strExisting);
  std::uint64_t Change();
  std::uint64_t AddNew();

  C_Manifest& m_manifest;
  C_Database& m_database;
  C_Statement m_insert;
};

}  // namespace tool
