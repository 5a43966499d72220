// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::worker {

/// Drops root's privileges; root is an ordinary user after that. Throws std::system_error.
void dropCapabilities();

} // namespace lumetwin::worker
