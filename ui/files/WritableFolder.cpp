// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/WritableFolder.h"

#include <cstdlib>
#include <string>
#include <unistd.h>

namespace lumetwin {

bool canWriteInto(const std::filesystem::path &folder) {
    std::string probe = (folder / ".lumetwin-XXXXXX").string();
    const int file = mkstemp(probe.data());
    if (file < 0)
        return false;
    unlink(probe.c_str());
    close(file);
    return true;
}

} // namespace lumetwin
