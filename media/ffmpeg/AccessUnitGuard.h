// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace lumetwin::media::ffmpeg {

/// Passes to a decoder of two views only what it survives. FFmpeg's HEVC decoder hands its state to the next thread
/// when it meets the last first slice that it expects; NAL units in another order than the standard's (ITU-T H.265,
/// 7.4.2.4.4 and F.7.4.2.4.4) make it change what other threads already read. Here each access unit is brought to: what
/// comes before the pictures, the base layer's slices, parameter sets and messages of the second layer, its slices.
/// Everything else is left out.
class AccessUnitGuard {
public:
    /// The decoder configuration as FFmpeg has it: a record (ISO/IEC 14496-15, 8.3.3.1) or NAL units behind start
    /// codes. It tells how samples are split.
    explicit AccessUnitGuard(std::span<const std::uint8_t> configuration);

    /// Takes over another configuration in mid-stream.
    void configure(std::span<const std::uint8_t> configuration);

    /// Whether the configurations name one video parameter set and one size of the smallest coding block, as a stream
    /// of two views does. The decoder survives neither layers that belong to different sets nor a second view that
    /// looks up motion in a finer grid than the first one's.
    bool consistent() const { return consistent_; }

    /// Moves what is kept of a sample to its beginning; returns its size.
    std::size_t keep(std::span<std::uint8_t> sample);

    /// Whether something of the pictures was left out of a sample so far.
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
    bool takes(std::span<const std::uint8_t> unit);
    bool takesSlice(std::span<const std::uint8_t> unit, int type, int layer);
    bool takesParameterSet(std::span<const std::uint8_t> unit, int layer);
    bool agrees(std::span<const std::uint8_t> parameterSet);

    int lengthSize_ = 0; ///< bytes; 0: start codes
    std::optional<int> videoParameterSet_;
    std::optional<int> smallestCodingBlock_; ///< luma samples on a side, as a power of two
    bool consistent_ = true;
    bool damaged_ = false;
    Stage stage_ = Stage::before;
    int baseType_ = 0; ///< of the base layer's slices in this access unit
};

} // namespace lumetwin::media::ffmpeg
