// SPDX-License-Identifier: Apache-2.0
//
// Payloads of chunks, as they are taken into memory. What a file claims, and what the caller's own
// functions say of a length, need not be there: memory is taken as the bytes come.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "riff/RiffScan.h"
#include "source/ByteSource.h"

namespace api {

// The first bytes of a chunk, up to qwMost of them, as far as they are there. Throws C_Failure.
std::vector<std::uint8_t> LoadPayload(I_ByteSource& source, const S_FoundChunk& chunk,
                                      std::uint64_t qwMost);

// Throws C_Failure when so many bytes are more than there is room for chunks beside the samples.
void CheckRoom(std::uint64_t qwBytes, std::uint64_t qwRoom);

// All of a chunk that is there. Throws C_Failure, also when it does not fit in the room.
std::vector<std::uint8_t> LoadWhole(I_ByteSource& source, const S_FoundChunk& chunk,
                                    std::uint64_t qwRoom);
// The same for a chunk that pads if it is all zeros. It is empty then, has taken no memory, and may
// be of any size.
std::optional<std::vector<std::uint8_t>> LoadUnlessZeros(I_ByteSource& source,
                                                         const S_FoundChunk& chunk,
                                                         std::uint64_t qwRoom);

}  // namespace api
