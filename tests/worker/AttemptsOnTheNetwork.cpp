// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/worker/Attempts.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace lumetwin::test {
namespace {

using Around = const Surroundings &;

constexpr int channel = 3;

const sockaddr *localPort(sockaddr_in &address) {
    address.sin_family = AF_INET;
    address.sin_port = htons(9);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return reinterpret_cast<const sockaddr *>(&address);
}

long connectTheChannel(Around) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::char_traits<char>::copy(address.sun_path, "/run/dbus/system_bus_socket", 28);
    return connect(channel, reinterpret_cast<const sockaddr *>(&address), sizeof address);
}

long sendToAnAddress(Around) {
    sockaddr_in address{};
    return sendto(channel, "x", 1, 0, localPort(address), sizeof address);
}

long bindTheChannel(Around) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    return bind(channel, reinterpret_cast<const sockaddr *>(&address), offsetof(sockaddr_un, sun_path));
}

} // namespace

std::vector<Attempt> attemptsOnTheNetwork() {
    return {
        {"opens a socket", [](Around) -> long { return socket(AF_INET, SOCK_STREAM, 0); }},
        {"opens a local socket", [](Around) -> long { return socket(AF_UNIX, SOCK_DGRAM, 0); }},
        {"opens a pair of sockets",
         [](Around) -> long {
             std::array<int, 2> ends{};
             return socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data());
         }},
        {"connects", connectTheChannel, false},
        {"sends to an address", sendToAnAddress, false},
        {"takes a name", bindTheChannel, false},
        {"listens", [](Around) -> long { return listen(channel, 1); }, false},
        {"accepts", [](Around) -> long { return accept(channel, nullptr, nullptr); }, false},
    };
}

} // namespace lumetwin::test
