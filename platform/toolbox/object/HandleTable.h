// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

namespace toolbox {

// The live objects behind the handles that callers hold. A handle is a number that is never used
// twice, so a stale or invented handle finds nothing instead of reaching freed memory. A caller
// that finds an object keeps it alive while using it. Safe to use from several threads.
template <typename Handle, typename T>
class C_HandleTable {
 public:
  Handle Insert(std::shared_ptr<T> pObject) {
    const std::lock_guard lock(m_lock);
    const auto handle = reinterpret_cast<Handle>(++m_nLast);  // NOLINT(performance-no-int-to-ptr)
    m_objects.emplace(handle, std::move(pObject));
    return handle;
  }
  // Null when no object has this handle.
  [[nodiscard]] std::shared_ptr<T> Find(Handle handle) const {
    const std::lock_guard lock(m_lock);
    const auto it = m_objects.find(handle);
    return it != m_objects.end() ? it->second : nullptr;
  }
  // Removes the handle and returns its object; null when no object has this handle.
  std::shared_ptr<T> Remove(Handle handle) {
    const std::lock_guard lock(m_lock);
    const auto node = m_objects.extract(handle);
    return node.empty() ? nullptr : node.mapped();
  }

 private:
  mutable std::mutex m_lock;
  std::map<Handle, std::shared_ptr<T>> m_objects;
  std::uintptr_t m_nLast = 0;
};

}  // namespace toolbox
