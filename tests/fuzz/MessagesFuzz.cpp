// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/protocol/Answer.h"
#include "worker/protocol/Channel.h"
#include "worker/protocol/ProtocolError.h"
#include "worker/protocol/Request.h"

#include <cstddef>
#include <cstdint>

namespace {

template <typename Decode> void decode(std::span<const std::uint8_t> bytes, const Decode &decode) {
    try {
        decode(lumetwin::worker::contentOf(bytes));
    } catch (const lumetwin::worker::ProtocolError &) {
    }
}

} // namespace

/// A message between the program and a worker that may have been taken over.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    using namespace lumetwin::worker;
    decode({data, size}, [](const Json &content) { decodeAnswer(content); });
    decode({data, size}, [](const Json &content) { decodeRequest(content); });
    return 0;
}
