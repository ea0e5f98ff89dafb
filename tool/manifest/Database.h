// SPDX-License-Identifier: Apache-2.0
//
// SQLite, as far as a manifest needs it. Operations throw C_Failure, which the name of the file
// begins, and C_Interrupted. Waits for other processes that write, but not for ever.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/Failure.h"

namespace tool {

// A file that is something else than what it was taken for.
class C_NoManifest : public C_Failure {
 public:
  using C_Failure::C_Failure;
};

class C_Database {
 public:
  // An empty database is made where there is no file and bMayMake is true.
  C_Database(const std::string& strPath, bool bMayMake);

  // Statements without parameters and rows.
  void Execute(const std::string& strSql);
  // How many rows the last statement has changed.
  [[nodiscard]] std::uint64_t Changes() const noexcept;
  // From now on work goes on when the user has interrupted it, for what has to be put in order.
  void IgnoreInterrupts() noexcept;

  [[nodiscard]] sqlite3* Get() const noexcept { return m_database.get(); }
  [[nodiscard]] const std::string& Name() const noexcept { return m_strName; }
  // Throws what the result of a call of SQLite means.
  [[noreturn]] void Throw(int nResult) const;
  // Another file that is used at the same time, "" for none. What fails is blamed on it, but for
  // what cannot be written when it is only read.
  void SetBeside(const std::string& strName, bool bWritten = false);

 private:
  struct S_Close {
    void operator()(sqlite3* pDatabase) const noexcept { sqlite3_close_v2(pDatabase); }
  };

  [[nodiscard]] const std::string& Blamed(int nResult) const noexcept;

  std::string m_strName;
  std::string m_strBeside;
  bool m_bBesideWritten = false;
  std::unique_ptr<sqlite3, S_Close> m_database;
};

class C_Statement {
 public:
  // The database must outlive it.
  C_Statement(C_Database& database, std::string_view sql);

  // The values of parameters, counted from 1. They stay until they are bound anew.
  C_Statement& Bind(int nParameter, std::int64_t nValue);
  C_Statement& Bind(int nParameter, std::string_view text);
  C_Statement& BindNothing(int nParameter);

  // Goes to the next row; false when there are no more, after which it may begin again.
  bool Next();
  // All of it, whatever rows there are.
  void Run();
  // Leaves out the rows that are left.
  void Reset() noexcept;

  // The columns of a row, counted from 0; 0 and "" for what is not there.
  [[nodiscard]] std::int64_t Integer(int nColumn) const noexcept;
  [[nodiscard]] double Real(int nColumn) const noexcept;
  [[nodiscard]] std::string Text(int nColumn) const;

 private:
  struct S_Finalize {
    void operator()(sqlite3_stmt* pStatement) const noexcept { sqlite3_finalize(pStatement); }
  };
  void Check(int nResult) const;

  C_Database& m_database;
  std::unique_ptr<sqlite3_stmt, S_Finalize> m_statement;
};

// Everything until the commit happens, or nothing. Nobody else can write until then.
class C_Transaction {
 public:
  explicit C_Transaction(C_Database& database);
  ~C_Transaction();
  C_Transaction(const C_Transaction&) = delete;
  C_Transaction& operator=(const C_Transaction&) = delete;

  void Commit();

 private:
  C_Database& m_database;
  bool m_bOpen = true;
};

// Another database beside the first, under a name that stands before its tables.
enum class tagAttached { ATTACHED_READ, ATTACHED_WRITTEN };
class C_Attached {
 public:
  C_Attached(C_Database& database, const std::string& strPath, std::string strSchema,
             tagAttached eUse);
  ~C_Attached();
  C_Attached(const C_Attached&) = delete;
  C_Attached& operator=(const C_Attached&) = delete;

 private:
  C_Database& m_database;
  std::string m_strSchema;
};

}  // namespace tool
