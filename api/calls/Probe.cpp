// SPDX-License-Identifier: Apache-2.0
#include "probe/Probe.h"

#include <cstdint>
#include <string>

#include "calls/CallerText.h"
#include "calls/Guard.h"
#include "calls/SizedRecord.h"

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
    api::CopyText(probe.strText, text, text_size);
    if (length != nullptr) *length = probe.strText.size();
    return VOXPLAY_OK;
  });
}
