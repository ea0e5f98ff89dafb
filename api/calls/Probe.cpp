// SPDX-License-Identifier: Apache-2.0
#include "probe/Probe.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

#include "calls/Guard.h"
#include "calls/SizedRecord.h"

namespace {

// Copies what fits, and ends it with a zero.
void CopyText(const std::string& strText, char* pszText, std::size_t cbText) {
  if (cbText == 0) return;
  const std::size_t cbCopied = std::min(strText.size(), cbText - 1);
  std::memcpy(pszText, strText.data(), cbCopied);
  pszText[cbCopied] = '\0';
}

}  // namespace

voxplay_status voxplay_probe(const void* bytes, size_t size, voxplay_kind* kind, size_t kind_size,
                             char* text, size_t text_size, size_t* length) {
  if (bytes == nullptr && size != 0) return VOXPLAY_BAD_ARGUMENT;
  if (text == nullptr && text_size != 0) return VOXPLAY_BAD_ARGUMENT;
  return api::Guarded(nullptr, "", [&] {
    const api::S_Probe probe = api::Probe({static_cast<const std::uint8_t*>(bytes), size});
    const voxplay_kind found{static_cast<std::uint32_t>(probe.eContainer),
                             static_cast<std::uint32_t>(probe.eCodec), probe.bSupported ? 1U : 0U};
    if (!api::CopyOut(found, &voxplay_kind::container, kind, kind_size)) {
      return VOXPLAY_BAD_ARGUMENT;
    }
    CopyText(probe.strText, text, text_size);
    if (length != nullptr) *length = probe.strText.size();
    return VOXPLAY_OK;
  });
}
