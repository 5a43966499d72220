// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace lumetwin::media::ffmpeg {

/// Removes everything from access units of two views that FFmpeg's HEVC decoder cannot handle safely. With several
/// threads, that decoder passes its state to the next thread when it finds the last first slice that it expects. NAL
/// units in another order than the standard's (ITU-T H.265, 7.4.2.4.4 and F.7.4.2.4.4) then change data that other
/// threads read. So each access unit is reduced to this order: units before the pictures, slices of the base layer,
/// parameter sets and messages of the second layer, slices of the second layer.
class AccessUnitGuard {
public:
    /// The decoder configuration from FFmpeg: a record (ISO/IEC 14496-15, 8.3.3.1) or NAL units with start codes. It
    /// defines how samples are split into NAL units.
    explicit AccessUnitGuard(std::span<const std::uint8_t> configuration);

    /// Uses another configuration from now on.
    void configure(std::span<const std::uint8_t> configuration);

    /// Whether all configurations use one video parameter set and one minimum coding block size, as a stream of two
    /// views must. The decoder crashes on layers of different sets, and on a second view that looks up motion in a
    /// finer grid than the first.
    bool consistent() const { return consistent_; }

    /// Removes units from a sample in place. Returns the new size.
    std::size_t keep(std::span<std::uint8_t> sample);

    /// Whether a part of a picture was removed so far.
    bool damaged() const { return damaged_; }

private:
    struct Unit {
        std::size_t begin; ///< of its length or start code
        std::size_t header;
        std::size_t end;
    };
    enum class Stage { before, base, second };

    void readRecord(std::span<const std::uint8_t> record);
    std::vector<Unit> split(std::span<const std::uint8_t> sample);
    std::vector<Unit> splitByLengths(std::span<const std::uint8_t> sample);
    static std::vector<Unit> splitByStartCodes(std::span<const std::uint8_t> sample);
    bool isAccepted(std::span<const std::uint8_t> unit);
    bool isAcceptedSlice(std::span<const std::uint8_t> unit, int type, int layer);
    bool isAcceptedParameterSet(std::span<const std::uint8_t> unit, int layer);
    bool isConsistent(std::span<const std::uint8_t> parameterSet);

    int lengthSize_ = 0; ///< bytes; 0 for start codes
    std::optional<int> videoParameterSet_;
    std::optional<int> smallestCodingBlock_; ///< base 2 logarithm of the side in luma samples
    bool consistent_ = true;
    bool damaged_ = false;
    Stage stage_ = Stage::before;
    int baseType_ = 0; ///< of the base layer's slices in this access unit
};

} // namespace lumetwin::media::ffmpeg
