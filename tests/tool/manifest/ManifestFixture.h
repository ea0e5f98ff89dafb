// SPDX-License-Identifier: Apache-2.0
//
// Tests of manifests with files in a folder of their own.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FolderTest.h"
#include "base/Failure.h"
#include "manifest/Manifest.h"
#include "manifest/Plan.h"

namespace tool::test {

class C_ManifestTest : public C_FolderTest {
 protected:
  C_Manifest Made(const std::string& strName = "files.db") const {
    return {Path(strName), tagManifestUse::MANIFEST_MAYBE_NEW};
  }
  C_Manifest Opened(const std::string& strName = "files.db") const {
    return {Path(strName), tagManifestUse::MANIFEST_EXISTING};
  }
  // Files of so many bytes, 1, 2, ... with targets of the same names after an "o".
  void MakeSources(int nFiles) const {
    for (int i = 1; i <= nFiles; ++i) {
      Write(std::to_string(i), std::vector<std::uint8_t>(static_cast<std::size_t>(i)));
    }
  }
  S_PlanCounts PlanFiles(C_Manifest& manifest, int nFiles,
                         const std::string& strOptions = "{}") const {
    C_Plan plan(manifest);
    for (int i = 1; i <= nFiles; ++i) {
      plan.Add(Path(std::to_string(i)), Path("o" + std::to_string(i)));
    }
    return plan.Finish(strOptions, "");
  }
  // The one value that a query gives.
  static std::string Value(C_Manifest& manifest, const std::string& strSql) {
    C_Statement statement(manifest.Database(), strSql);
    return statement.Next() ? statement.Text(0) : "nothing";
  }
  template <typename Work>
  static std::string FailureOf(Work&& work) {
    try {
      work();
    } catch (const C_Failure& failure) {
      return failure.what();
    }
    return "nothing failed";
  }
};

}  // namespace tool::test
