// SPDX-License-Identifier: Apache-2.0
#include "sound/ShortSound.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace tool {
namespace {

// What a writer writes, in memory. Its functions must not throw.
class C_MemoryTarget {
 public:
  voxplay_output Record() {
    voxplay_output output{};
    output.write = [](void* pUser, const void* pBytes, std::size_t cbBytes) {
      return static_cast<C_MemoryTarget*>(pUser)->Write(pBytes, cbBytes) ? 0 : -1;
    };
    output.seek = [](void* pUser, std::uint64_t qwPosition) {
      static_cast<C_MemoryTarget*>(pUser)->m_cbAt = static_cast<std::size_t>(qwPosition);
      return 0;
    };
    output.user = this;
    return output;
  }
  std::vector<std::byte> Take() { return std::move(m_bytes); }

 private:
  bool Write(const void* pBytes, std::size_t cbBytes) noexcept try {
    m_bytes.resize(std::max(m_bytes.size(), m_cbAt + cbBytes));
    if (cbBytes != 0) std::memcpy(m_bytes.data() + m_cbAt, pBytes, cbBytes);
    m_cbAt += cbBytes;
    return true;
  } catch (const std::exception&) {
    return false;
  }

  std::vector<std::byte> m_bytes;
  std::size_t m_cbAt = 0;
};

}  // namespace

S_ShortSound WriteShortSound(const voxplay::Format& format, const voxplay::NotesView& notes) {
  C_MemoryTarget target;
  voxplay::Writer writer(target.Record(), format);
  writer.set_notes(notes);
  const std::vector<std::int16_t> frame(format.channels);
  writer.write(std::span(frame));
  writer.finish();
  return {target.Take(), writer.lost()};
}

}  // namespace tool
