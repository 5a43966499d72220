// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/Descriptor.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace lumetwin::worker {

using Json = nlohmann::json;

/// One end of the connection between a program and its worker: a socket that keeps message boundaries (SOCK_SEQPACKET).
/// Messages are CBOR and can carry descriptors. Several threads may send; one thread receives.
class Channel {
public:
    static constexpr std::size_t largestMessage = 32 << 10;
    static constexpr int deepestNesting = 8;

    /// A received message. Its descriptors belong to the receiver.
    struct Message {
        Json content;
        std::vector<media::Descriptor> descriptors;
    };

    explicit Channel(media::Descriptor socket) : socket_(std::move(socket)) {}

    /// Two connected ends with the close-on-exec flag. Throws std::system_error.
    static std::pair<media::Descriptor, media::Descriptor> makePair();

    /// Blocks while the other side does not read. Returns false if the other end is closed. Throws ProtocolError if the
    /// message is too large.
    bool send(const Json &content, std::span<const int> descriptors = {});

    /// Whether a message arrives, or the other end is closed, within this time.
    bool wait(std::chrono::milliseconds atMost) const;

    /// Waits for the next message. Returns nothing if the other end is closed. Throws ProtocolError if the message is
    /// too large, is not valid CBOR, is nested too deeply, or has more descriptors than allowed.
    std::optional<Message> receive(std::size_t mostDescriptors = 0);

private:
    media::Descriptor socket_;
};

/// Parses a message. The nesting depth is checked first, because the parser is recursive. Throws ProtocolError.
Json contentOf(std::span<const std::uint8_t> bytes);

} // namespace lumetwin::worker
