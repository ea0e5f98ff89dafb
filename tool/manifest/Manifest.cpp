// SPDX-License-Identifier: Apache-2.0
#include "manifest/Manifest.h"

#include "base/Failure.h"

namespace tool {
namespace {

constexpr std::int64_t kApplication = 0x56584D46;  // "VXMF"
constexpr std::int64_t kVersion = 2;

std::int64_t Pragma(C_Database& database, const std::string& strSchema, const char* pszName) {
  C_Statement statement(database, "PRAGMA " + strSchema + '.' + pszName);
  return statement.Next() ? statement.Integer(0) : 0;
}

bool IsEmpty(C_Database& database, const std::string& strSchema) {
  C_Statement statement(database, "SELECT 1 FROM " + strSchema + ".sqlite_schema LIMIT 1");
  return !statement.Next() && Pragma(database, strSchema, "application_id") == 0;
}

void Count(const C_Statement& row, S_ManifestCounts& counts) {
  const auto qwCount = static_cast<std::uint64_t>(row.Integer(1));
  switch (static_cast<tagRowState>(row.Integer(0))) {
    case tagRowState::ROW_PLANNED:
      counts.qwPlanned = qwCount;
      counts.qwBytes += static_cast<std::uint64_t>(row.Integer(4));
      break;
    case tagRowState::ROW_CLAIMED:
      counts.qwClaimed = qwCount;
      counts.qwBytes += static_cast<std::uint64_t>(row.Integer(4));
      break;
    case tagRowState::ROW_DONE:
      counts.qwDone = qwCount;
      counts.qwDamaged = static_cast<std::uint64_t>(row.Integer(2));
      counts.dSeconds = row.Real(3);
      counts.qwCut = static_cast<std::uint64_t>(row.Integer(5));
      break;
    case tagRowState::ROW_FAILED:
      counts.qwFailed = qwCount;
      break;
    case tagRowState::ROW_SKIPPED:
      counts.qwSkipped = qwCount;
      break;
  }
}

}  // namespace

void MakeTables(C_Database& database, const std::string& strSchema) {
  const std::string strIn = strSchema + '.';
  database.Execute("CREATE TABLE " + strIn +
                   "files("
                   "id INTEGER PRIMARY KEY,"
                   "source TEXT NOT NULL UNIQUE,"
                   "target TEXT NOT NULL UNIQUE,"
                   "bytes INTEGER NOT NULL,"
                   "modified INTEGER NOT NULL,"
                   "state INTEGER NOT NULL DEFAULT 0,"
                   // How often it has been planned anew.
                   "plan INTEGER NOT NULL DEFAULT 0,"
                   "own INTEGER NOT NULL DEFAULT 0,"
                   "worker INTEGER,"
                   "claimed INTEGER,"
                   "target_bytes INTEGER,"
                   "target_modified INTEGER,"
                   "rate INTEGER,"
                   "frames INTEGER,"
                   "damaged INTEGER,"
                   "cut INTEGER,"
                   "checksum TEXT,"
                   // Of what has failed: whether that was because the target was there.
                   "in_way INTEGER NOT NULL DEFAULT 0,"
                   "reason TEXT)");
  database.Execute("CREATE INDEX " + strIn + "files_by_state ON files(state)");
  database.Execute("CREATE TABLE " + strIn +
                   "workers(id INTEGER PRIMARY KEY, host TEXT, machine TEXT, process INTEGER,"
                   "start INTEGER, UNIQUE(host, machine, process, start))");
  database.Execute("CREATE TABLE " + strIn + "settings(name TEXT PRIMARY KEY, value TEXT)");
  database.Execute("PRAGMA " + strIn + "application_id=" + std::to_string(kApplication));
  database.Execute("PRAGMA " + strIn + "user_version=" + std::to_string(kVersion));
}

void CheckTables(C_Database& database, const std::string& strSchema, const std::string& strPath) {
  if (Pragma(database, strSchema, "application_id") != kApplication) {
    throw C_NoManifest(
        strPath, "is no manifest",
        IsEmpty(database, strSchema) ? "it is empty" : "it is a database of something else");
  }
  if (Pragma(database, strSchema, "user_version") != kVersion) {
    throw C_Failure(strPath, "cannot be used", "it was made by another version of voxtool");
  }
}

C_Manifest::C_Manifest(const std::string& strPath, tagManifestUse eUse)
    : m_database(strPath, eUse == tagManifestUse::MANIFEST_MAYBE_NEW) {
  if (eUse == tagManifestUse::MANIFEST_MAYBE_NEW) MakeIfNew();
  CheckTables(m_database, "main", strPath);
}

void C_Manifest::MakeIfNew() {
  if (!IsEmpty(m_database, "main")) return;
  C_Transaction transaction(m_database);
  // Another process may have been quicker.
  if (!IsEmpty(m_database, "main")) return;
  MakeTables(m_database, "main");
  m_database.Execute("INSERT INTO settings VALUES('family', lower(hex(randomblob(16))))");
  transaction.Commit();
}

std::string C_Manifest::Setting(const std::string& strName, const std::string& strSchema) {
  C_Statement select(m_database, "SELECT value FROM " + strSchema + ".settings WHERE name=?");
  select.Bind(1, strName);
  return select.Next() ? select.Text(0) : "";
}

void C_Manifest::Set(const std::string& strName, const std::string& strValue) {
  C_Statement(m_database, "INSERT OR REPLACE INTO main.settings VALUES(?, ?)")
      .Bind(1, strName)
      .Bind(2, strValue)
      .Run();
}

S_ManifestCounts C_Manifest::Counts() {
  C_Statement select(m_database,
                     "SELECT state, COUNT(*), SUM(damaged > 0), "
                     "SUM(CASE WHEN rate > 0 THEN CAST(frames AS REAL) / rate ELSE 0 END), "
                     "SUM(bytes), SUM(cut) FROM main.files GROUP BY state");
  S_ManifestCounts counts;
  while (select.Next()) tool::Count(select, counts);
  return counts;
}

std::uint64_t C_Manifest::Count(tagRowState eState) {
  C_Statement select(m_database, "SELECT COUNT(*) FROM main.files WHERE state=?");
  select.Bind(1, static_cast<std::int64_t>(eState));
  return select.Next() ? static_cast<std::uint64_t>(select.Integer(0)) : 0;
}

}  // namespace tool
