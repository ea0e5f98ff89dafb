// SPDX-License-Identifier: Apache-2.0
#include "manifest/Pieces.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <queue>
#include <utility>

#include "base/Failure.h"
#include "base/Interrupt.h"
#include "base/ReplacedFile.h"
#include "manifest/FileStamp.h"
#include "manifest/Worker.h"

namespace tool {
namespace {

// What opening and writing a file costs beside reading it, as so many bytes.
constexpr std::uint64_t kBytesPerFile = 4096;

bool Exists(const std::string& strPath) {
  struct stat status {};
  return lstat(strPath.c_str(), &status) == 0;
}

// A piece, and what a process that died may have left beside it. SQLite would write that into a new
// piece of the same name.
std::vector<std::string> NamesOf(const S_Piece& piece) {
  const std::string& strPath = piece.strPath;
  return {strPath, strPath + "-journal", strPath + "-wal", strPath + "-shm"};
}

void RefuseManifest(const C_Manifest& manifest, const std::string& strName) {
  if (!AreSameFile(strName, manifest.Name())) return;
  throw C_Failure(strName, "cannot be replaced", "it is the manifest itself");
}

void CheckNames(const C_Manifest& manifest, const std::vector<S_Piece>& pieces, bool bReplace) {
  for (const S_Piece& piece : pieces) {
    for (const std::string& strName : NamesOf(piece)) {
      RefuseManifest(manifest, strName);
      if (!bReplace && Exists(strName)) throw C_Failure(strName, "exists", "-f replaces it");
    }
  }
}

// What is to be replaced may be a piece that nobody has merged.
void TakeResults(C_Manifest& manifest, const std::vector<S_Piece>& pieces) {
  for (const S_Piece& piece : pieces) {
    ThrowIfInterrupted();
    if (!Exists(piece.strPath)) continue;
    try {
      Merge(manifest, piece.strPath);
    } catch (const C_NoManifest&) {  // NOLINT(bugprone-empty-catch): there is nothing to take
    }
  }
}

void RemoveWhatIsBeside(const S_Piece& piece) {
  for (const std::string& strName : NamesOf(piece)) {
    if (strName == piece.strPath || std::remove(strName.c_str()) == 0 || errno == ENOENT) continue;
    throw C_Failure(strName, "cannot be removed", SystemReason(errno));
  }
}

// The largest file goes first, and each one to the piece that has least. That leaves them almost
// equal, and no piece ends with its longest file.
void Share(C_Database& database, std::vector<S_Piece>& pieces) {
  using C_Load = std::pair<std::uint64_t, std::size_t>;
  std::priority_queue<C_Load, std::vector<C_Load>, std::greater<>> loads;
  for (std::size_t i = 0; i < pieces.size(); ++i) loads.emplace(0, i);
  database.Execute(
      "PRAGMA temp.cache_size=-65536; DROP TABLE IF EXISTS temp.share;"
      "CREATE TEMP TABLE share(piece INTEGER, id INTEGER, PRIMARY KEY(piece, id)) WITHOUT ROWID");
  C_Statement select(database,
                     "SELECT id, bytes FROM main.files WHERE state = 0 ORDER BY bytes DESC, id");
  C_Statement insert(database, "INSERT INTO temp.share VALUES(?, ?)");
  database.Execute("BEGIN");
  while (select.Next()) {
    const auto [qwLoad, nPiece] = loads.top();
    loads.pop();
    const auto qwBytes = static_cast<std::uint64_t>(select.Integer(1));
    loads.emplace(qwLoad + qwBytes + kBytesPerFile, nPiece);
    ++pieces[nPiece].qwFiles;
    pieces[nPiece].qwBytes += qwBytes;
    insert.Bind(1, static_cast<std::int64_t>(nPiece)).Bind(2, select.Integer(0)).Run();
  }
  database.Execute("COMMIT");
}

void WritePiece(C_Database& database, const S_Piece& piece, std::size_t nPiece, bool bReplace) {
  C_ReplacedFile file(piece.strPath, bReplace);
  {
    const C_Attached attached(database, file.NewPath(), "piece", tagAttached::ATTACHED_WRITTEN);
    // Nothing is lost with a file that is not whole.
    database.Execute("PRAGMA piece.journal_mode=MEMORY; PRAGMA piece.synchronous=OFF; BEGIN");
    MakeTables(database, "piece");
    database.Execute("INSERT INTO piece.settings SELECT name, value FROM main.settings");
    C_Statement(database,
                "INSERT INTO piece.files(id, source, target, bytes, modified, plan, own, "
                "target_bytes, target_modified) "
                "SELECT f.id, source, target, bytes, modified, plan, own, target_bytes, "
                "target_modified FROM temp.share s "
                "JOIN main.files f ON f.id = s.id WHERE s.piece = ? ORDER BY f.id")
        .Bind(1, static_cast<std::int64_t>(nPiece))
        .Run();
    database.Execute("COMMIT");
  }
  RemoveWhatIsBeside(piece);
  file.TakePlace();
}

constexpr const char* kTakeWorkers =
    "INSERT OR IGNORE INTO main.workers(host, machine, process, start) "
    "SELECT host, machine, process, start FROM piece.workers";

constexpr const char* kTakeResults =
    "UPDATE main.files SET state = p.state, bytes = p.bytes, modified = p.modified, own = p.own, "
    "worker = (SELECT w.id FROM piece.workers pw JOIN main.workers w ON w.host = pw.host AND "
    "w.machine = pw.machine AND w.process = pw.process AND w.start = pw.start "
    "WHERE pw.id = p.worker), claimed = p.claimed, target_bytes = p.target_bytes, "
    "target_modified = p.target_modified, rate = p.rate, frames = p.frames, "
    "damaged = p.damaged, cut = p.cut, checksum = p.checksum, in_way = p.in_way, "
    "reason = p.reason "
    "FROM piece.files p WHERE p.id = files.id AND p.source = files.source AND "
    "p.target = files.target AND p.plan = files.plan AND p.state IN (2, 3, 4) AND "
    "(files.state IN (0, 1) OR (files.state = 3 AND (p.state <> 3 OR p.reason <> files.reason)))";

// Of files that have been planned anew since then: their targets are ours all the same.
constexpr const char* kTakeMade =
    "UPDATE main.files SET own = 1, target_bytes = p.target_bytes, "
    "target_modified = p.target_modified FROM piece.files p "
    "WHERE files.id IN (SELECT id FROM piece.files WHERE own = 1 AND state <> 1) AND "
    "p.id = files.id AND p.source = files.source AND p.target = files.target AND files.own = 0";

// Of files that were begun and not ended there: whatever is there is ours.
constexpr const char* kTakeBegun =
    "UPDATE main.files SET own = 2 FROM piece.files p "
    "WHERE files.id IN (SELECT id FROM piece.files WHERE own = 2 OR (own <> 0 AND state = 1)) "
    "AND p.id = files.id AND p.source = files.source AND p.target = files.target AND "
    "p.plan = files.plan AND files.state IN (0, 1) AND files.own IN (0, 1)";

// What was added to the piece alone.
constexpr const char* kCountForeign =
    "SELECT COUNT(*) FROM piece.files p WHERE NOT EXISTS "
    "(SELECT 1 FROM main.files f WHERE f.id = p.id AND f.source = p.source)";

std::uint64_t CountIn(C_Database& database, const char* pszSelect) {
  C_Statement select(database, pszSelect);
  return select.Next() ? static_cast<std::uint64_t>(select.Integer(0)) : 0;
}

void CheckFamily(C_Manifest& manifest, const std::string& strPiece) {
  CheckTables(manifest.Database(), "piece", strPiece);
  if (manifest.Setting(kFamilySetting, "piece") == manifest.Setting(kFamilySetting)) return;
  throw C_NoManifest(strPiece, "is no piece of " + manifest.Name(),
                     "it comes from another manifest");
}

}  // namespace

void Split(C_Manifest& manifest, std::vector<S_Piece>& pieces, bool bReplace) {
  CheckNames(manifest, pieces, bReplace);
  TakeResults(manifest, pieces);
  C_Database& database = manifest.Database();
  {
    C_Transaction transaction(database);
    FreeAbandoned(manifest, false);
    transaction.Commit();
  }
  Share(database, pieces);
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    ThrowIfInterrupted();
    WritePiece(database, pieces[i], i, bReplace);
  }
}

S_MergeCounts Merge(C_Manifest& manifest, const std::string& strPiece) {
  if (!Exists(strPiece)) throw C_Failure(strPiece, "cannot be opened", SystemReason(ENOENT));
  if (AreSameFile(strPiece, manifest.Name())) {
    throw C_Failure(strPiece, "is no piece", "it is the manifest itself");
  }
  C_Database& database = manifest.Database();
  const C_Attached attached(database, strPiece, "piece", tagAttached::ATTACHED_READ);
  CheckFamily(manifest, strPiece);
  C_Transaction transaction(database);
  database.Execute(kTakeWorkers);
  database.Execute(kTakeResults);
  S_MergeCounts counts;
  counts.qwTaken = database.Changes();
  database.Execute(kTakeMade);
  database.Execute(kTakeBegun);
  counts.qwLeft = CountIn(database, "SELECT COUNT(*) FROM piece.files WHERE state IN (0, 1)");
  counts.qwForeign = CountIn(database, kCountForeign);
  transaction.Commit();
  return counts;
}

}  // namespace tool
