// SPDX-License-Identifier: Apache-2.0
#include "calls/Guard.h"

#include <new>
#include <stdexcept>

#include "base/Failure.h"

namespace api {
namespace {

// Short enough to be held without memory by any string.
constexpr const char* kShortMessage = "no memory";

voxplay_status Fail(std::string* pMessage, voxplay_status eStatus, const std::string& strName,
                    const char* pszText) noexcept {
  if (pMessage == nullptr) return eStatus;
  try {
    const std::string strStart = strName.empty() ? std::string() : strName + ": ";
    *pMessage = strStart + pszText;
  } catch (...) {
    pMessage->clear();
    pMessage->append(kShortMessage);
  }
  return eStatus;
}

// The name could be long, and says nothing about memory.
voxplay_status FailWithoutMemory(std::string* pMessage) noexcept {
  return Fail(pMessage, VOXPLAY_NO_MEMORY, std::string(), voxplay_status_text(VOXPLAY_NO_MEMORY));
}

}  // namespace

voxplay_status StatusOfException(std::string* pMessage, const std::string& strName) noexcept {
  try {
    throw;
  } catch (const C_Failure& failure) {
    return Fail(pMessage, failure.Status(), strName, failure.what());
  } catch (const std::bad_alloc&) {
    return FailWithoutMemory(pMessage);
  } catch (const std::length_error&) {
    return FailWithoutMemory(pMessage);
  } catch (...) {
    return Fail(pMessage, VOXPLAY_INTERNAL, strName, voxplay_status_text(VOXPLAY_INTERNAL));
  }
}

}  // namespace api
