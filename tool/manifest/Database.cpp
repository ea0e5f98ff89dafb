// SPDX-License-Identifier: Apache-2.0
#include "manifest/Database.h"

#include <algorithm>
#include <filesystem>
#include <new>
#include <utility>

#include "base/Failure.h"
#include "base/Interrupt.h"

namespace tool {
namespace {

constexpr int kLongestWait = 120'000;  // ms
constexpr int kLongestNap = 50;
constexpr int kStepsBetweenLooks = 100'000;

// Names that mean something to SQLite are never absolute.
std::string AbsolutePath(const std::string& strPath) {
  return std::filesystem::absolute(strPath).string();
}

// Naps that grow, so that many processes do not wear each other out.
int Wait(void* /*pContext*/, int nTries) {
  const int nNap = std::min(nTries + 1, kLongestNap);
  const int nWaited =
      nTries <= kLongestNap ? nTries * (nTries + 1) / 2 : kLongestNap * (nTries - kLongestNap / 2);
  if (Interrupted() || nWaited > kLongestWait) return 0;
  sqlite3_sleep(nNap);
  return 1;
}

int WaitInSpiteOfInterrupts(void* /*pContext*/, int nTries) {
  if (nTries > kLongestWait / kLongestNap) return 0;
  sqlite3_sleep(kLongestNap);
  return 1;
}

int Look(void* /*pContext*/) { return Interrupted() ? 1 : 0; }

}  // namespace

C_Database::C_Database(const std::string& strPath, bool bMayMake) : m_strName(strPath) {
  sqlite3* pDatabase = nullptr;
  const int nFlags = SQLITE_OPEN_READWRITE | (bMayMake ? SQLITE_OPEN_CREATE : 0);
  const int nResult = sqlite3_open_v2(AbsolutePath(strPath).c_str(), &pDatabase, nFlags, nullptr);
  m_database.reset(pDatabase);
  if (pDatabase == nullptr) throw std::bad_alloc();
  if (nResult == SQLITE_CANTOPEN) {
    const int nError = sqlite3_system_errno(pDatabase);
    throw C_Failure(strPath, "cannot be opened",
                    nError == 0 ? sqlite3_errmsg(pDatabase) : SystemReason(nError));
  }
  if (nResult != SQLITE_OK) Throw(nResult);
  sqlite3_busy_handler(pDatabase, &Wait, nullptr);
  sqlite3_progress_handler(pDatabase, kStepsBetweenLooks, &Look, nullptr);
  // A file from elsewhere may hold anything.
  Execute("PRAGMA trusted_schema=OFF; PRAGMA cell_size_check=ON; PRAGMA cache_size=-65536");
}

void C_Database::SetBeside(const std::string& strName, bool bWritten) {
  m_strBeside = strName;
  m_bBesideWritten = bWritten;
}

// SQLite does not say which of two files it means. The first one has been read before.
const std::string& C_Database::Blamed(int nResult) const noexcept {
  const bool bFirst = m_strBeside.empty() || (nResult == SQLITE_FULL && !m_bBesideWritten);
  return bFirst ? m_strName : m_strBeside;
}

void C_Database::Throw(int nResult) const {
  if (nResult == SQLITE_NOMEM) throw std::bad_alloc();
  if (nResult == SQLITE_INTERRUPT) throw C_Interrupted();
  const std::string& strBlamed = Blamed(nResult);
  if (nResult == SQLITE_BUSY) {
    ThrowIfInterrupted();
    throw C_Failure(strBlamed, "cannot be used", "others have been writing it for too long");
  }
  if (nResult == SQLITE_NOTADB) {
    throw C_NoManifest(strBlamed, "is no manifest", "it is no database");
  }
  throw C_Failure(strBlamed, "cannot be used", sqlite3_errmsg(Get()));
}

void C_Database::Execute(const std::string& strSql) {
  const int nResult = sqlite3_exec(Get(), strSql.c_str(), nullptr, nullptr, nullptr);
  if (nResult != SQLITE_OK) Throw(nResult);
}

std::uint64_t C_Database::Changes() const noexcept {
  return static_cast<std::uint64_t>(sqlite3_changes64(Get()));
}

void C_Database::IgnoreInterrupts() noexcept {
  sqlite3_progress_handler(Get(), 0, nullptr, nullptr);
  sqlite3_busy_handler(Get(), &WaitInSpiteOfInterrupts, nullptr);
}

C_Statement::C_Statement(C_Database& database, std::string_view sql) : m_database(database) {
  sqlite3_stmt* pStatement = nullptr;
  Check(sqlite3_prepare_v2(database.Get(), sql.data(), static_cast<int>(sql.size()), &pStatement,
                           nullptr));
  m_statement.reset(pStatement);
}

void C_Statement::Check(int nResult) const {
  if (nResult != SQLITE_OK) m_database.Throw(nResult);
}

C_Statement& C_Statement::Bind(int nParameter, std::int64_t nValue) {
  Check(sqlite3_bind_int64(m_statement.get(), nParameter, nValue));
  return *this;
}

C_Statement& C_Statement::Bind(int nParameter, std::string_view text) {
  Check(sqlite3_bind_text64(m_statement.get(), nParameter, text.data(), text.size(),
                            SQLITE_TRANSIENT, SQLITE_UTF8));  // NOLINT(*-old-style-cast)
  return *this;
}

C_Statement& C_Statement::BindNothing(int nParameter) {
  Check(sqlite3_bind_null(m_statement.get(), nParameter));
  return *this;
}

bool C_Statement::Next() {
  const int nResult = sqlite3_step(m_statement.get());
  if (nResult == SQLITE_ROW) return true;
  Reset();
  if (nResult != SQLITE_DONE) m_database.Throw(nResult);
  return false;
}

void C_Statement::Run() {
  while (Next()) {
  }
}

void C_Statement::Reset() noexcept { sqlite3_reset(m_statement.get()); }

std::int64_t C_Statement::Integer(int nColumn) const noexcept {
  return sqlite3_column_int64(m_statement.get(), nColumn);
}

double C_Statement::Real(int nColumn) const noexcept {
  return sqlite3_column_double(m_statement.get(), nColumn);
}

std::string C_Statement::Text(int nColumn) const {
  const auto* const pText =
      reinterpret_cast<const char*>(sqlite3_column_text(m_statement.get(), nColumn));
  const int nBytes = sqlite3_column_bytes(m_statement.get(), nColumn);
  return pText == nullptr ? std::string() : std::string(pText, static_cast<std::size_t>(nBytes));
}

C_Transaction::C_Transaction(C_Database& database) : m_database(database) {
  database.Execute("BEGIN IMMEDIATE");
}

C_Transaction::~C_Transaction() {
  if (m_bOpen) sqlite3_exec(m_database.Get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void C_Transaction::Commit() {
  m_database.Execute("COMMIT");
  m_bOpen = false;
}

C_Attached::C_Attached(C_Database& database, const std::string& strPath, std::string strSchema,
                       tagAttached eUse)
    : m_database(database), m_strSchema(std::move(strSchema)) {
  try {
    database.SetBeside(strPath, eUse == tagAttached::ATTACHED_WRITTEN);
    C_Statement(database, "ATTACH ? AS " + m_strSchema).Bind(1, AbsolutePath(strPath)).Run();
  } catch (...) {
    database.SetBeside("");
    throw;
  }
}

C_Attached::~C_Attached() {
  m_database.SetBeside("");
  sqlite3_exec(m_database.Get(), ("DETACH " + m_strSchema).c_str(), nullptr, nullptr, nullptr);
}

}  // namespace tool
