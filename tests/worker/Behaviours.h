// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/MediaOperations.h"

namespace lumetwin::test {

/// What a worker of the tests does, by the name of the input: an attempt of Attempts.h, or one of these.
/// "converts": copies the input. "waits": until it is told to stop. Others end, hang or tell invalidAnswer, as their
/// names say.
MediaOperations misbehaviour();

} // namespace lumetwin::test
