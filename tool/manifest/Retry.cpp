// SPDX-License-Identifier: Apache-2.0
#include "manifest/Retry.h"

#include <string>

#include "base/Interrupt.h"
#include "manifest/FileStamp.h"

namespace tool {
namespace {

// Before anything is locked, because it may take long.
void FindGone(C_Database& database) {
  database.Execute(
      "DROP TABLE IF EXISTS temp.gone; CREATE TEMP TABLE gone(id INTEGER PRIMARY KEY)");
  C_Statement select(database, "SELECT id, source FROM main.files WHERE state = 3");
  C_Statement insert(database, "INSERT INTO temp.gone VALUES(?)");
  while (select.Next()) {
    ThrowIfInterrupted();
    if (IsGone(select.Text(1))) insert.Bind(1, select.Integer(0)).Run();
  }
}

std::uint64_t Forget(C_Database& database) {
  database.Execute("DELETE FROM main.files WHERE state = 3 AND id IN (SELECT id FROM temp.gone)");
  return database.Changes();
}

// What a piece says of an earlier attempt no longer counts.
std::uint64_t PlanThose(C_Database& database, const std::string& strWhich) {
  database.Execute(
      "UPDATE main.files SET state = 0, plan = plan + 1, in_way = 0, reason = NULL "
      "WHERE " +
      strWhich);
  return database.Changes();
}

}  // namespace

S_RetryCounts PlanAgain(C_Manifest& manifest, S_Retry retry) {
  C_Database& database = manifest.Database();
  S_RetryCounts counts;
  if (!retry.bFailed && !retry.bInWay && !retry.bSkipped) return counts;
  if (retry.bFailed) FindGone(database);
  C_Transaction transaction(database);
  if (retry.bFailed) counts.qwGone = Forget(database);
  if (retry.bFailed) counts.qwAgain = PlanThose(database, "state = 3");
  if (retry.bInWay) counts.qwAgain += PlanThose(database, "state = 3 AND in_way <> 0");
  if (retry.bSkipped) counts.qwSkipped = PlanThose(database, "state = 4");
  transaction.Commit();
  return counts;
}

}  // namespace tool
