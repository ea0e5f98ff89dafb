// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "batch/FileList.h"
#include "manifest/Manifest.h"

namespace tool {

// What a manifest says of targets that exist: they are left as they are.
inline constexpr const char* kSkipExisting = "skip";

// The targets that a file may have, from the best one, which is 0, on. "" after the last one.
using PFN_TargetChoice = std::function<std::string(const S_ListedFile& file, unsigned nChoice)>;

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
  // Files that would have the same target take another one, as far as fnTarget has more of them.
  explicit C_Plan(C_Manifest& manifest, PFN_TargetChoice fnTarget = {});

  // Absolute paths. A source that the manifest has already keeps its first target. nKept is where
  // the part of it begins that the target keeps.
  void Add(const std::string& strSource, const std::string& strTarget, std::size_t nKept = 0);
  // How all of the files are converted, and what happens to targets that exist. Throws
  // C_UsageFailure when the manifest has other options, and when two files have the same target, or
  // the target of one is one of the files, unless it is the file itself and targets that exist are
  // skipped. Targets of files that the manifest had before are left out of the plan.
  S_PlanCounts Finish(const std::string& strOptions, const std::string& strExisting);

 private:
  void LeaveOutTargets();
  void KeepTargets(S_PlanCounts& counts);
  void CountKept(S_PlanCounts& counts);
  [[nodiscard]] bool MayHave(const S_ListedFile& file, const std::string& strTarget) const;
  void PartSameTargets();
  bool FindSameTargets();
  void FindOtherTargets();
  void RefuseSameTargets();
  void RefuseTargetsOfOthers();
  void RefuseTargetsThatAreSources(bool bSkips);
  void FindLostTargets();
  void Settle(const std::string& strOptions, const std::string& strExisting);
  std::uint64_t Change();
  std::uint64_t AddNew();

  C_Manifest& m_manifest;
  C_Database& m_database;
  PFN_TargetChoice m_fnTarget;
  C_Statement m_insert;
};

}  // namespace tool
