// SPDX-License-Identifier: GPL-3.0-or-later
#include "worker/protocol/Channel.h"

#include "worker/protocol/ProtocolError.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <system_error>

namespace lumetwin::worker {
namespace {

constexpr std::size_t mostDescriptorsEver = 4;

/// The buffer for the descriptors of a message (cmsg(3)).
struct Beside {
    alignas(cmsghdr) std::array<char, CMSG_SPACE(mostDescriptorsEver * sizeof(int))> bytes{};
};

[[noreturn]] void throwSystemError(const char *what) {
    throw std::system_error(errno, std::generic_category(), what);
}

void enclose(msghdr &header, Beside &beside, std::span<const int> descriptors) {
    if (descriptors.empty())
        return;
    header.msg_control = beside.bytes.data();
    header.msg_controllen = CMSG_SPACE(descriptors.size_bytes());
    cmsghdr *part = CMSG_FIRSTHDR(&header);
    part->cmsg_level = SOL_SOCKET;
    part->cmsg_type = SCM_RIGHTS;
    part->cmsg_len = CMSG_LEN(descriptors.size_bytes());
    std::memcpy(CMSG_DATA(part), descriptors.data(), descriptors.size_bytes());
}

std::vector<media::Descriptor> enclosed(msghdr &header) {
    std::vector<media::Descriptor> result;
    for (cmsghdr *part = CMSG_FIRSTHDR(&header); part; part = CMSG_NXTHDR(&header, part)) {
        if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_RIGHTS)
            continue;
        for (std::size_t offset = 0; CMSG_LEN(offset) + sizeof(int) <= part->cmsg_len; offset += sizeof(int)) {
            int number = -1;
            std::memcpy(&number, CMSG_DATA(part) + offset, sizeof number);
            result.emplace_back(number);
        }
    }
    return result;
}

bool isGone(int error) {
    return error == EPIPE || error == ECONNRESET;
}

/// Counts the nesting depth. The functions return whether parsing continues.
class DepthCheck : public nlohmann::json_sax<Json> {
public:
    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(number_integer_t) override { return true; }
    bool number_unsigned(number_unsigned_t) override { return true; }
    bool number_float(number_float_t, const string_t &) override { return true; }
    bool string(string_t &) override { return true; }
    bool binary(binary_t &) override { return true; }
    bool key(string_t &) override { return true; }
    bool start_object(std::size_t) override { return ++depth_ <= Channel::deepestNesting; }
    bool end_object() override { return leave(); }
    bool start_array(std::size_t) override { return ++depth_ <= Channel::deepestNesting; }
    bool end_array() override { return leave(); }
    bool parse_error(std::size_t, const std::string &, const nlohmann::detail::exception &) override { return false; }

private:
    bool leave() {
        --depth_;
        return true;
    }

    int depth_ = 0;
};

} // namespace

Json contentOf(std::span<const std::uint8_t> bytes) {
    DepthCheck check;
    if (!Json::sax_parse(bytes.begin(), bytes.end(), &check, Json::input_format_t::cbor))
        throw ProtocolError("no message");
    Json content = Json::from_cbor(bytes.begin(), bytes.end(), true, false);
    if (!content.is_object())
        throw ProtocolError("no message");
    return content;
}

std::pair<media::Descriptor, media::Descriptor> Channel::makePair() {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0)
        throwSystemError("socketpair");
    return {media::Descriptor(ends[0]), media::Descriptor(ends[1])};
}

bool Channel::send(const Json &content, std::span<const int> descriptors) {
    std::vector<std::uint8_t> bytes = Json::to_cbor(content);
    if (bytes.size() > largestMessage || descriptors.size() > mostDescriptorsEver)
        throw ProtocolError("too large to be sent");
    iovec part{.iov_base = bytes.data(), .iov_len = bytes.size()};
    Beside beside;
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    enclose(header, beside, descriptors);
    while (sendmsg(socket_.get(), &header, MSG_NOSIGNAL) < 0) {
        if (isGone(errno))
            return false;
        if (errno != EINTR)
            throwSystemError("sendmsg");
    }
    return true;
}

bool Channel::wait(std::chrono::milliseconds atMost) const {
    pollfd entry{.fd = socket_.get(), .events = POLLIN, .revents = 0};
    return poll(&entry, 1, static_cast<int>(atMost.count())) > 0;
}

std::optional<Channel::Message> Channel::receive(std::size_t mostDescriptors) {
    std::array<std::uint8_t, largestMessage> bytes;
    iovec part{.iov_base = bytes.data(), .iov_len = bytes.size()};
    Beside beside;
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    if (mostDescriptors > 0) {
        header.msg_control = beside.bytes.data();
        header.msg_controllen = beside.bytes.size();
    }
    ssize_t count = 0;
    while ((count = recvmsg(socket_.get(), &header, MSG_CMSG_CLOEXEC)) < 0 && errno == EINTR) {
    }
    if (count == 0 || (count < 0 && isGone(errno)))
        return std::nullopt;
    if (count < 0)
        throwSystemError("recvmsg");
    Message message{{}, enclosed(header)};
    if (header.msg_flags & (MSG_TRUNC | MSG_CTRUNC) || message.descriptors.size() > mostDescriptors)
        throw ProtocolError("too large");
    message.content = contentOf({bytes.data(), static_cast<std::size_t>(count)});
    return message;
}

} // namespace lumetwin::worker
