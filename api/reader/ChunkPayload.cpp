// SPDX-License-Identifier: Apache-2.0
#include "reader/ChunkPayload.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>

#include "base/Failure.h"

namespace api {
namespace {

constexpr std::uint64_t kFirstStep = 65536;
constexpr std::size_t kPieceBytes = 4096;

// Reads on after what is loaded. Each step is as long as all before it, so that nothing is copied
// often.
void Extend(I_ByteSource& source, const S_FoundChunk& chunk, std::uint64_t qwMost,
            std::vector<std::uint8_t>& bytes) {
  const std::uint64_t qwWanted = std::min(chunk.qwHeld, qwMost);
  while (bytes.size() < qwWanted) {
    const std::size_t cbBefore = bytes.size();
    const std::uint64_t qwStep = std::max<std::uint64_t>(kFirstStep, cbBefore);
    const auto cbStep = static_cast<std::size_t>(std::min(qwStep, qwWanted - cbBefore));
    bytes.reserve(cbBefore + cbStep);
    bytes.resize(cbBefore + cbStep);
    const auto part = std::span(bytes).subspan(cbBefore);
    const std::size_t cbRead = source.ReadSome(chunk.payload.qwAt + cbBefore, part);
    bytes.resize(cbBefore + cbRead);
    if (cbRead < cbStep) break;
  }
}

// Each byte is like the one before.
bool AreZeros(std::span<const std::uint8_t> bytes) {
  return bytes.empty() ||
         (bytes[0] == 0 && std::memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0);
}

// One byte more than there is room for shows that there is too much.
std::vector<std::uint8_t> LoadRest(I_ByteSource& source, const S_FoundChunk& chunk,
                                   std::uint64_t qwRoom, std::vector<std::uint8_t> bytes) {
  // What an input of unknown length claims need not be there.
  if (source.Length()) CheckRoom(chunk.qwHeld, qwRoom);
  Extend(source, chunk, qwRoom + 1, bytes);
  CheckRoom(bytes.size(), qwRoom);
  return bytes;
}

// Zeros, and then what was read after them: a source that only goes forward does not give it again.
std::vector<std::uint8_t> AfterZeros(std::uint64_t qwZeros, std::span<const std::uint8_t> read,
                                     std::uint64_t qwRoom) {
  CheckRoom(qwZeros, qwRoom);
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(qwZeros));
  bytes.insert(bytes.end(), read.begin(), read.end());
  return bytes;
}

}  // namespace

std::vector<std::uint8_t> LoadPayload(I_ByteSource& source, const S_FoundChunk& chunk,
                                      std::uint64_t qwMost) {
  std::vector<std::uint8_t> bytes;
  Extend(source, chunk, qwMost, bytes);
  return bytes;
}

void CheckRoom(std::uint64_t qwBytes, std::uint64_t qwRoom) {
  if (qwBytes <= qwRoom) return;
  throw C_Failure(VOXPLAY_UNSUPPORTED, "chunks: those beside the samples take more than 1 GiB");
}

std::vector<std::uint8_t> LoadWhole(I_ByteSource& source, const S_FoundChunk& chunk,
                                    std::uint64_t qwRoom) {
  return LoadRest(source, chunk, qwRoom, {});
}

std::optional<std::vector<std::uint8_t>> LoadUnlessZeros(I_ByteSource& source,
                                                         const S_FoundChunk& chunk,
                                                         std::uint64_t qwRoom) {
  std::array<std::uint8_t, kPieceBytes> piece;
  for (std::uint64_t qwZeros = 0; qwZeros < chunk.qwHeld;) {
    const auto cbPart =
        static_cast<std::size_t>(std::min<std::uint64_t>(piece.size(), chunk.qwHeld - qwZeros));
    const auto part = std::span(piece).first(cbPart);
    const auto read = part.first(source.ReadSome(chunk.payload.qwAt + qwZeros, part));
    if (!AreZeros(read)) return LoadRest(source, chunk, qwRoom, AfterZeros(qwZeros, read, qwRoom));
    if (read.size() < cbPart) break;
    qwZeros += cbPart;
  }
  return std::nullopt;
}

}  // namespace api
