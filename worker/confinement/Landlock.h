// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace lumetwin::worker {

/// Uses Landlock with all known rights and no rules: no file can be opened, created, removed, renamed or executed by
/// its name, no TCP port can be used, and no other process can be signalled. Open descriptors keep their rights. Needs
/// no_new_privs.
/// Returns the version of the kernel's interface, or 0 if Landlock is not available.
int blockFileSystem();

} // namespace lumetwin::worker
