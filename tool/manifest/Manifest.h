// SPDX-License-Identifier: Apache-2.0
//
// A database of the files of an archive: what is to be made of each, and what became of it. Any
// number of processes on one machine may work with it at a time.
//
//   files     one row a file; paths are absolute, times are in nanoseconds, claims in seconds
//   workers   who has claimed files
//   settings  how files are converted, and a name that the pieces of a manifest share with it
#pragma once

#include <cstdint>
#include <string>

#include "manifest/Database.h"

namespace tool {

// As the column "state" has it.
enum class tagRowState : std::int64_t {
  ROW_PLANNED = 0,
  ROW_CLAIMED = 1,  // a process works on it
  ROW_DONE = 2,
  ROW_FAILED = 3,
  ROW_SKIPPED = 4,  // its target was there already
};

// Who made the target, as the column "own" has it. What users have made of a target since then is
// theirs.
enum class tagTargetMaker : std::int64_t {
  MAKER_OTHERS = 0,     // if it is there
  MAKER_US = 1,         // while its size and time are those that the row has
  MAKER_US_SURELY = 2,  // whatever is there: a process has died that may have made it
  MAKER_NOBODY = 3,     // nothing was there when the file was claimed
};

enum class tagManifestUse {
  MANIFEST_EXISTING,
  MANIFEST_MAYBE_NEW,
};

struct S_ManifestCounts {
  std::uint64_t qwPlanned = 0;
  std::uint64_t qwClaimed = 0;
  std::uint64_t qwDone = 0;
  std::uint64_t qwFailed = 0;
  std::uint64_t qwSkipped = 0;
  std::uint64_t qwDamaged = 0;  // of those that are done: files with damaged frames
  std::uint64_t qwCut = 0;      // the same: files whose end is missing
  double dSeconds = 0.0;        // of sound that is done
  std::uint64_t qwBytes = 0;    // of the sources that are planned or claimed

  [[nodiscard]] std::uint64_t All() const noexcept {
    return qwPlanned + qwClaimed + qwDone + qwFailed + qwSkipped;
  }
};

class C_Manifest {
 public:
  C_Manifest(const std::string& strPath, tagManifestUse eUse);

  [[nodiscard]] C_Database& Database() noexcept { return m_database; }
  [[nodiscard]] const std::string& Name() const noexcept { return m_database.Name(); }

  // "" for what is not set. Of a database beside it, where strSchema names one.
  [[nodiscard]] std::string Setting(const std::string& strName,
                                    const std::string& strSchema = "main");
  void Set(const std::string& strName, const std::string& strValue);

  [[nodiscard]] S_ManifestCounts Counts();
  [[nodiscard]] std::uint64_t Count(tagRowState eState);

 private:
  void MakeIfNew();

  C_Database m_database;
};

// The names of settings.
inline constexpr const char* kOptionsSetting = "options";
inline constexpr const char* kExistingSetting = "existing";
inline constexpr const char* kFamilySetting = "family";

// For a database beside that of a manifest: makes the tables, or throws C_Failure, which strPath
// begins, when they are not there.
void MakeTables(C_Database& database, const std::string& strSchema);
void CheckTables(C_Database& database, const std::string& strSchema, const std::string& strPath);

}  // namespace tool
