// SPDX-License-Identifier: GPL-3.0-or-later
// Damaged spatial movies by the hundred through the program itself: each is converted as far as it goes or fails with
// its reason, and none takes the program down with it or keeps it from ending.
#include "tests/support/Clips.h"
#include "tests/support/Conversions.h"
#include "tests/support/SpatialMovie.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace lumetwin::test {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;

/// Damages the samples of a movie in place; its tables stay as they are.
class Damage {
public:
    Damage(const std::filesystem::path &movie, unsigned seed)
        : bytes_(readFile(movie)), samples_(videoSamples(BoxFile(movie))), random_(seed) {}

    /// Flips bits of slices, behind their headers' first bytes.
    void flipBits() {
        const NalUnit unit = anyUnit();
        for (unsigned count = 1 + below(8); count > 0; --count)
            bytes_[unit.place + 2 + below(unit.bytes.size() - 2)] ^= static_cast<std::uint8_t>(1U << below(8));
    }

    /// Writes anything over the first bytes of a slice's header.
    void changeHeader() {
        const NalUnit unit = anyUnit();
        for (unsigned count = 1 + below(2); count > 0; --count)
            bytes_[unit.place + 2 + below(std::min<std::size_t>(12, unit.bytes.size() - 2))] =
                static_cast<std::uint8_t>(below(256));
    }

    /// Gives one layer's NAL units of a sample a type that decoders pass over.
    void dropLayer(const MovieSample &sample, int layer) {
        for (const NalUnit &unit : sample.units)
            if (unit.layer == layer)
                bytes_[unit.place] = static_cast<std::uint8_t>(unknownType << 1 | (bytes_[unit.place] & 1));
    }

    /// Another type of NAL unit, another layer.
    void changeKind() {
        const NalUnit unit = anyUnit();
        bytes_[unit.place] = static_cast<std::uint8_t>(below(64) << 1);
        if (below(2) == 0)
            bytes_[unit.place + 1] = static_cast<std::uint8_t>(below(4) << 3 | (bytes_[unit.place + 1] & 7));
    }

    /// The NAL units of a sample in another order.
    void swapUnits(const MovieSample &sample) {
        std::size_t place = sample.units.front().place - lengthSize;
        for (auto unit = sample.units.rbegin(); unit != sample.units.rend(); ++unit)
            put(place, unit->bytes);
    }

    /// A slice that ends early and leaves rubbish behind, or claims what comes after it.
    void changeLength() {
        const NalUnit unit = anyUnit();
        putLength(unit.place - lengthSize, below(2) == 0 ? below(unit.bytes.size()) : unit.bytes.size() + below(2000));
    }

    /// One sample's slice in the place of another's.
    void repeatUnit() {
        const NalUnit from = anyUnit();
        const NalUnit to = anyUnit();
        std::copy_n(from.bytes.begin(), std::min(from.bytes.size(), to.bytes.size()),
                    bytes_.begin() + static_cast<std::ptrdiff_t>(to.place));
    }

    /// Each sample whole, without one of its layers, or with its layers exchanged.
    void mixLayers() {
        for (const MovieSample &sample : samples_)
            switch (below(4)) {
            case 0:
                dropLayer(sample, static_cast<int>(below(2)));
                break;
            case 1:
                swapUnits(sample);
                break;
            default:
                break;
            }
    }

    /// Puts NAL units in the place of the second layer's slice of a sample.
    void replaceSecondLayer(std::size_t sample, const std::vector<Bytes> &units) {
        const NalUnit old = samples_.at(sample).units.back();
        std::size_t place = old.place - lengthSize;
        for (const Bytes &unit : units)
            put(place, unit);
        // The rest is a unit that nobody knows.
        Bytes rest(old.place + old.bytes.size() - place - lengthSize, 0);
        rest.at(0) = unknownType << 1;
        rest.at(1) = 1;
        put(place, rest);
    }

    void once() {
        switch (below(8)) {
        case 0:
            return changeHeader();
        case 1:
            return dropLayer(anySample(), 1);
        case 2:
            return dropLayer(anySample(), 0);
        case 3:
            return changeKind();
        case 4:
            return swapUnits(anySample());
        case 5:
            return changeLength();
        case 6:
            return repeatUnit();
        default:
            return flipBits();
        }
    }

    void write(const std::filesystem::path &file) const { writeFile(file, bytes_); }

private:
    static constexpr std::size_t lengthSize = 4;
    static constexpr std::uint8_t unknownType = 48; ///< of the NAL units that are for applications' own use

    std::size_t below(std::size_t bound) { return random_() % bound; }
    const MovieSample &anySample() { return samples_[below(samples_.size())]; }
    const NalUnit &anyUnit() {
        const std::vector<NalUnit> &units = anySample().units;
        return units[below(units.size())];
    }

    void put(std::size_t &place, const Bytes &unit) {
        putLength(place, unit.size());
        std::copy(unit.begin(), unit.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(place + lengthSize));
        place += lengthSize + unit.size();
    }

    void putLength(std::size_t place, std::size_t length) {
        for (std::size_t index = 0; index < lengthSize; ++index)
            bytes_[place + index] = static_cast<std::uint8_t>(length >> 8 * (lengthSize - 1 - index));
    }

    Bytes bytes_;
    std::vector<MovieSample> samples_;
    std::mt19937 random_;
};

/// A spatial movie with movement and grain.
std::filesystem::path drawMoving(const std::filesystem::path &file) {
    const TemporaryFolder folder;
    ffmpeg({"-f", "lavfi", "-i", "testsrc2=s=384x96:r=30,noise=alls=16:allf=t", "-frames:v", "16", "-c:v", "ffv1",
            (folder / "in.mkv").string()});
    ConversionSettings settings;
    settings.compressionQuality = 1;
    toSpatial(settings, folder / "in.mkv", file);
    return file;
}

/// A folder of movies and one for what becomes of them.
class MovieFolder : public testing::Test {
protected:
    MovieFolder() {
        for (const char *name : {"in", "out"})
            std::filesystem::create_directory(folder / name);
        drawMoving(whole);
    }

    std::filesystem::path in(int index) { return folder / ("in/" + std::to_string(1000 + index) + ".mov"); }

    /// Converts the folder and expects that the batch came to its end.
    ProgramResult convertAll(int count) {
        ProgramResult result = runProgram({LUMETWIN_BATCH, "--output", folder / "out", folder / "in"});
        EXPECT_TRUE(result.status == 0 || result.status == 1) << result.status;
        const std::string number = std::to_string(count);
        EXPECT_THAT(result.output, HasSubstr("[" + number + "/" + number + "]"));
        EXPECT_THAT(result.output, HasSubstr("Converted: "));
        for (const auto &entry : std::filesystem::directory_iterator(folder / "out"))
            EXPECT_EQ(entry.path().extension(), ".mp4") << "no partial file stays";
        return result;
    }

    TemporaryFolder folder;
    const std::filesystem::path whole = folder / "whole.mov";
};

class DamagedMovies : public MovieFolder, public testing::WithParamInterface<unsigned> {};

TEST_P(DamagedMovies, endInAFileOrInAReason) {
    constexpr int count = 50;
    std::mt19937 random(GetParam());
    for (int index = 0; index < count; ++index) {
        Damage damage(whole, GetParam() * 1000 + static_cast<unsigned>(index));
        for (unsigned times = 1 + random() % 6; times > 0; --times)
            damage.once();
        damage.write(in(index));
    }
    convertAll(count);
}

TEST_P(DamagedMovies, withLayersMissingAndExchangedAreConverted) {
    constexpr int count = 25;
    for (int index = 0; index < count; ++index) {
        Damage damage(whole, GetParam() * 1000 + static_cast<unsigned>(index));
        damage.mixLayers();
        damage.write(in(index));
    }
    EXPECT_THAT(convertAll(count).output,
                ContainsRegex("Converted: 25( .[0-9]+ with warnings.)?, skipped: 0, failed: 0"));
}

INSTANTIATE_TEST_SUITE_P(Seeds, DamagedMovies, testing::Values(1U, 2U, 3U, 4U));

using CraftedMovies = MovieFolder;

TEST_F(CraftedMovies, layersOfDifferentVideoParameterSetsDoNotTakeTheDecoderDown) {
    // In the middle of the stream the second layer is said to belong to another video parameter set than the base
    // layer, which stays with its own.
    const BoxFile movie(whole);
    const std::string entry = "moov/trak/mdia/minf/stbl/stsd/hvc1/";
    std::vector<Bytes> sets{configuration(movie.payload(entry + "hvcC"), 22).units.at(0).bytes};
    for (const NalUnit &unit : configuration(movie.payload(entry + "lhvC"), 5).units)
        sets.push_back(unit.bytes);
    ASSERT_EQ(sets.size(), 3U);
    for (const std::size_t set : {0, 1}) // the identifier is the first four bits of both
        sets[set].at(2) = static_cast<std::uint8_t>(sets[set].at(2) | 0x10);
    Damage damage(whole, 1);
    damage.replaceSecondLayer(1, sets);
    damage.write(in(0));
    EXPECT_THAT(convertAll(1).output, ContainsRegex("Converted: 1( .1 with warnings.)?, skipped: 0, failed: 0"));
    EXPECT_EQ(decodeLuma(folder / "out/1000_sbs.mp4").frames.size(), 16U);
}

} // namespace
} // namespace lumetwin::test
