// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>

namespace lumetwin::media {

namespace details {
inline std::atomic<bool> oneDecodingThread = false;
}

/// From now on, this process decodes videos with one thread. Used for a second attempt after a decoder has crashed.
inline void decodeWithOneThread() {
    details::oneDecodingThread = true;
}

inline bool decodesWithOneThread() {
    return details::oneDecodingThread;
}

} // namespace lumetwin::media
