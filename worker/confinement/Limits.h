// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::worker {

/// Limits descriptors, file size and memory, and disables core files, which would contain the user's pictures. Returns
/// whether memory is limited: sanitizers reserve terabytes, so it is not with them. Throws std::system_error.
bool limitResources();

} // namespace lumetwin::worker
