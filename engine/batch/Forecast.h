// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionSettings.h"
#include "model/MediaFacts.h"
#include "model/StereoFindings.h"
#include "model/Warning.h"

#include <optional>
#include <string>
#include <vector>

namespace lumetwin {

// What a run will do with a file, as far as its headers and its picture tell.

/// Whether a file is spatial media for this system.
bool isSpatialMedia(const MediaFacts &facts);

/// The layout in which a file that is not spatial is read.
StereoLayout layoutToRead(const MediaFacts &facts, const ConversionSettings &settings);

/// Why no decoder reads the eyes of such a file, in the user's language; empty when one does.
std::string reasonNotToRead(const StereoLayout &layout);

/// What the findings about a picture mean when its eyes are exchanged. Whether they look exchanged then is not known.
StereoFindings ofSwappedEyes(StereoFindings findings);

/// What the conversion of such a file will warn of, without notes. findings: of its picture, if it was examined.
std::vector<Warning> forecastWarnings(const MediaFacts &facts, const std::optional<StereoFindings> &findings,
                                      const ConversionSettings &settings);

} // namespace lumetwin
