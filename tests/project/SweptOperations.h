// SPDX-License-Identifier: Apache-2.0
//
// The operations of the library that touch files, in a form that lets each of them fail at every
// step: prepare, run, examine the result.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "TempFolder.h"

class C_SweptOperation {
 public:
  explicit C_SweptOperation(const C_TempFolder& folder)
      : m_folder(folder), m_strSource(folder.Path("source")), m_strTarget(folder.Path("target")) {}
  virtual ~C_SweptOperation() = default;
  C_SweptOperation(const C_SweptOperation&) = delete;
  C_SweptOperation& operator=(const C_SweptOperation&) = delete;

  // Writes the source again, and the file that is to be replaced. Removes everything else that the
  // previous run left.
  void Prepare();
  // Performs the operation and nothing else.
  virtual bool Run() = 0;
  // After a Run that returned true: whether all of it was done.
  virtual bool IsWhole() = 0;
  // After a Run that returned false: whether all files of the user are as they were before.
  [[nodiscard]] virtual bool IsEverythingKept() const;
  // Whether a file may be there after a Run that returned bDone.
  [[nodiscard]] virtual bool MayStay(const std::string& strPath, bool /*bDone*/) const {
    return strPath == m_strSource || strPath == m_strTarget;
  }

  [[nodiscard]] const std::string& Source() const { return m_strSource; }
  [[nodiscard]] const std::string& Target() const { return m_strTarget; }

 protected:
  [[nodiscard]] std::vector<std::uint8_t> ReadTarget() const { return m_folder.Read("target"); }
  [[nodiscard]] std::vector<std::uint8_t> ReadSource() const { return m_folder.Read("source"); }
  // The file that the operation reads; set by the constructors of the derived classes.
  std::vector<std::uint8_t> m_source;
  // The file that the operation replaces; without one, the target is new.
  std::optional<std::vector<std::uint8_t>> m_replaced;

  const C_TempFolder& m_folder;

 private:
  // Before the files are written again, and after that.
  virtual void Forget() {}
  virtual void Arrange() {}
  std::string m_strSource;
  std::string m_strTarget;
};

// The names that MakeSweptOperation takes.
std::vector<std::string> SweptOperationNames();
std::unique_ptr<C_SweptOperation> MakeSweptOperation(const std::string& strName,
                                                     const C_TempFolder& folder);

// An operation, and whether everything fails from the first failure on.
using C_Sweep = std::tuple<std::string, bool>;
std::string NameOfSweep(const testing::TestParamInfo<C_Sweep>& info);
