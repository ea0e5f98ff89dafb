// SPDX-License-Identifier: Apache-2.0
//
// The operations of the library that touch files, in a form that lets each of them fail at every
// step: prepare, run, examine the result.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "TempFolder.h"

class C_SweptOperation {
 public:
  explicit C_SweptOperation(const C_TempFolder& folder)
      : m_folder(folder), m_strSource(folder.Path("source")), m_strTarget(folder.Path("target")) {}
  virtual ~C_SweptOperation() = default;
  C_SweptOperation(const C_SweptOperation&) = delete;
  C_SweptOperation& operator=(const C_SweptOperation&) = delete;

  // Writes the source again, and removes the target and everything else that the previous run left.
  void Prepare();
  // Performs the operation and nothing else.
  virtual bool Run() = 0;
  // After a Run that returned true: whether all of it was done.
  virtual bool IsWhole() = 0;
  // After a Run that returned true although the source could not be read to its end: whether the
  // result is that of a source that ends early. That is how files that were cut short are read.
  virtual bool IsCutShort() { return false; }
  // After a Run that returned false: whether the source is as it was before.
  [[nodiscard]] bool IsSourceIntact() const { return m_folder.Read("source") == m_source; }

  [[nodiscard]] const std::string& Source() const { return m_strSource; }
  [[nodiscard]] const std::string& Target() const { return m_strTarget; }

 protected:
  [[nodiscard]] std::vector<std::uint8_t> ReadTarget() const { return m_folder.Read("target"); }
  [[nodiscard]] std::vector<std::uint8_t> ReadSource() const { return m_folder.Read("source"); }
  // The file that the operation reads; set by the constructors of the derived classes.
  std::vector<std::uint8_t> m_source;

 private:
  virtual void Forget() {}
  const C_TempFolder& m_folder;
  std::string m_strSource;
  std::string m_strTarget;
};

// The names that MakeSweptOperation takes.
std::vector<std::string> SweptOperationNames();
std::unique_ptr<C_SweptOperation> MakeSweptOperation(const std::string& strName,
                                                     const C_TempFolder& folder);
