// SPDX-License-Identifier: Apache-2.0
#include "manifest/Plan.h"

#include <utility>

#include "base/Failure.h"
#include "base/Interrupt.h"
#include "manifest/FileStamp.h"

namespace tool {
namespace {

C_Database& WithTables(C_Manifest& manifest) {
  manifest.Database().Execute(
      "PRAGMA temp.cache_size=-65536;"
      "DROP TABLE IF EXISTS temp.plan;"
      "DROP TABLE IF EXISTS temp.lost;"
      "DROP TABLE IF EXISTS temp.same;"
      "DROP TABLE IF EXISTS temp.other;"
      // A target that is fixed has no choice any more.
      "CREATE TEMP TABLE plan(source TEXT PRIMARY KEY, target TEXT, kept INTEGER, bytes INTEGER,"
      "modified INTEGER, choice INTEGER DEFAULT 0, fixed INTEGER DEFAULT 0) WITHOUT ROWID;"
      "CREATE TEMP TABLE same(target TEXT PRIMARY KEY, choice INTEGER) WITHOUT ROWID;"
      "CREATE TEMP TABLE other(source TEXT PRIMARY KEY, target TEXT) WITHOUT ROWID;"
      "CREATE TEMP TABLE lost(id INTEGER PRIMARY KEY)");
  return manifest.Database();
}

S_ListedFile FileOf(const C_Statement& row) {
  return {row.Text(0), static_cast<std::size_t>(row.Integer(1))};
}

}  // namespace

C_Plan::C_Plan(C_Manifest& manifest, PFN_TargetChoice fnTarget)
    : m_manifest(manifest),
      m_database(WithTables(manifest)),
      m_fnTarget(std::move(fnTarget)),
      m_insert(m_database,
               "INSERT OR IGNORE INTO temp.plan(source, target, kept, bytes, modified) "
               "VALUES(?, ?, ?, ?, ?)") {
  // Nothing is locked by what happens to these tables alone.
  m_database.Execute("BEGIN");
}

void C_Plan::Add(const std::string& strSource, const std::string& strTarget, std::size_t nKept) {
  ThrowIfInterrupted();
  const S_FileStamp stamp = StampOf(strSource).value_or(S_FileStamp());
  m_insert.Bind(1, strSource).Bind(2, strTarget).Bind(3, static_cast<std::int64_t>(nKept));
  m_insert.Bind(4, stamp.nBytes).Bind(5, stamp.nModified);
  m_insert.Run();
}

S_PlanCounts C_Plan::Finish(const std::string& strOptions, const std::string& strExisting) {
  m_database.Execute("COMMIT");
  LeaveOutTargets();
  FindLostTargets();
  C_Transaction transaction(m_database);
  S_PlanCounts counts;
  PartSameTargets();
  KeepTargets(counts);
  RefuseSameTargets();
  RefuseTargetsOfOthers();
  RefuseTargetsThatAreSources(strExisting == kSkipExisting);
  Settle(strOptions, strExisting);
  counts.qwChanged = Change();
  counts.qwNew = AddNew();
  C_Statement count(m_database, "SELECT COUNT(*) FROM temp.plan");
  if (count.Next()) counts.qwFiles = static_cast<std::uint64_t>(count.Integer(0));
  count.Reset();
  transaction.Commit();
  return counts;
}

// They are found when the folder that is written is in one that is read.
void C_Plan::LeaveOutTargets() {
  m_database.Execute(
      "DELETE FROM temp.plan AS p "
      "WHERE EXISTS (SELECT 1 FROM main.files f WHERE f.target = p.source)");
}

// Moving them would leave the first ones behind.
void C_Plan::KeepTargets(S_PlanCounts& counts) {
  CountKept(counts);
  m_database.Execute(
      "UPDATE temp.plan SET target = f.target FROM main.files f "
      "WHERE f.source = plan.source");
}

void C_Plan::CountKept(S_PlanCounts& counts) {
  C_Statement select(m_database,
                     "SELECT p.source, p.kept, f.target FROM temp.plan p JOIN main.files f "
                     "ON f.source = p.source WHERE f.target <> p.target ORDER BY p.source");
  while (select.Next()) {
    ThrowIfInterrupted();
    const std::string strTarget = select.Text(2);
    if (MayHave(FileOf(select), strTarget)) continue;
    if (counts.qwKept++ == 0) counts.strKept = strTarget;
  }
}

// Whether it is only one of the other targets of the file.
bool C_Plan::MayHave(const S_ListedFile& file, const std::string& strTarget) const {
  if (!m_fnTarget) return false;
  for (unsigned nChoice = 1;; ++nChoice) {
    const std::string strOther = m_fnTarget(file, nChoice);
    if (strOther.empty() || strOther == strTarget) return !strOther.empty();
  }
}

void C_Plan::PartSameTargets() {
  m_database.Execute(
      "UPDATE temp.plan SET fixed = 1 WHERE source IN (SELECT source FROM main.files)");
  while (m_fnTarget && FindSameTargets()) {
    FindOtherTargets();
    m_database.Execute(
        "UPDATE temp.plan SET target = o.target, choice = choice + 1 "
        "FROM temp.other o WHERE o.source = plan.source AND o.target <> '';"
        "UPDATE temp.plan SET fixed = 1 "
        "WHERE source IN (SELECT source FROM temp.other WHERE target = '')");
  }
}

// False when there are none that could be parted. Files that have their first targets go on before
// those that have given way already.
bool C_Plan::FindSameTargets() {
  m_database.Execute(
      "DELETE FROM temp.same;"
      "INSERT INTO temp.same SELECT target, MIN(CASE fixed WHEN 0 THEN choice END) FROM temp.plan "
      "GROUP BY target HAVING COUNT(*) > 1 AND MIN(fixed) = 0;"
      "INSERT OR IGNORE INTO temp.same SELECT p.target, MIN(p.choice) FROM temp.plan p "
      "JOIN main.files f ON f.target = p.target WHERE p.fixed = 0 GROUP BY p.target");
  C_Statement select(m_database, "SELECT 1 FROM temp.same LIMIT 1");
  return select.Next();
}

void C_Plan::FindOtherTargets() {
  m_database.Execute("DELETE FROM temp.other");
  C_Statement select(m_database,
                     "SELECT p.source, p.kept, p.choice FROM temp.plan p JOIN temp.same s "
                     "ON s.target = p.target AND s.choice = p.choice WHERE p.fixed = 0");
  C_Statement insert(m_database, "INSERT INTO temp.other VALUES(?, ?)");
  while (select.Next()) {
    ThrowIfInterrupted();
    const S_ListedFile file = FileOf(select);
    const auto nChoice = static_cast<unsigned>(select.Integer(2)) + 1;
    insert.Bind(1, file.strPath).Bind(2, m_fnTarget(file, nChoice)).Run();
  }
}

void C_Plan::RefuseSameTargets() {
  C_Statement select(m_database,
                     "SELECT MAX(source), MIN(source), target FROM temp.plan GROUP BY target "
                     "HAVING COUNT(*) > 1 LIMIT 1");
  if (!select.Next()) return;
  throw C_UsageFailure(select.Text(0), "has the same target as " + select.Text(1), select.Text(2));
}

void C_Plan::RefuseTargetsOfOthers() {
  C_Statement select(m_database,
                     "SELECT p.source, f.source, p.target FROM temp.plan p "
                     "JOIN main.files f ON f.target = p.target WHERE f.source <> p.source LIMIT 1");
  if (!select.Next()) return;
  throw C_UsageFailure(select.Text(0), "has the same target as " + select.Text(1), select.Text(2));
}

void C_Plan::RefuseTargetsThatAreSources(bool bSkips) {
  C_Statement select(m_database,
                     "SELECT p.source, p.target FROM temp.plan p WHERE "
                     "(p.source <> p.target OR NOT ?) AND ("
                     "EXISTS (SELECT 1 FROM temp.plan q WHERE q.source = p.target) OR "
                     "EXISTS (SELECT 1 FROM main.files f WHERE f.source = p.target)) LIMIT 1");
  select.Bind(1, std::int64_t{bSkips ? 1 : 0});
  if (!select.Next()) return;
  throw C_UsageFailure(select.Text(0), "its target is to be read as well", select.Text(1));
}

// Targets that are gone, as are those that were in the way. Before anything is locked, because it
// may take long.
void C_Plan::FindLostTargets() {
  C_Statement select(m_database,
                     "SELECT f.id, f.target FROM temp.plan p JOIN main.files f "
                     "ON f.source = p.source WHERE f.state IN (2, 4) OR f.in_way <> 0");
  C_Statement insert(m_database, "INSERT INTO temp.lost VALUES(?)");
  while (select.Next()) {
    if (IsGone(select.Text(1))) insert.Bind(1, select.Integer(0)).Run();
  }
}

void C_Plan::Settle(const std::string& strOptions, const std::string& strExisting) {
  const std::string strSettled = m_manifest.Setting(kOptionsSetting);
  if (!strSettled.empty() && strSettled != strOptions) {
    throw C_UsageFailure(m_manifest.Name(), "is for other conversions", strSettled);
  }
  m_manifest.Set(kOptionsSetting, strOptions);
  m_manifest.Set(kExistingSetting, strExisting);
}

// What a process works on stays: it sees the new source, or the next plan does.
std::uint64_t C_Plan::Change() {
  m_database.Execute(
      "UPDATE main.files SET bytes = p.bytes, modified = p.modified, state = 0, plan = plan + 1, "
      "worker = NULL, claimed = NULL, rate = NULL, frames = NULL, damaged = NULL, cut = NULL, "
      "checksum = NULL, in_way = 0, reason = NULL "
      "FROM temp.plan p WHERE p.source = files.source AND files.state <> 1 AND "
      "(p.bytes <> files.bytes OR p.modified <> files.modified OR "
      "files.id IN (SELECT id FROM temp.lost))");
  return m_database.Changes();
}

std::uint64_t C_Plan::AddNew() {
  m_database.Execute(
      "INSERT INTO main.files(source, target, bytes, modified) "
      "SELECT source, target, bytes, modified FROM temp.plan p "
      "WHERE NOT EXISTS (SELECT 1 FROM main.files f WHERE f.source = p.source) ORDER BY source");
  return m_database.Changes();
}

}  // namespace tool
