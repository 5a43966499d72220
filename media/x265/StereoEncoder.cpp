// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/x265/StereoEncoder.h"

#include "media/DecodingTimes.h"
#include "media/MediaError.h"
#include "media/Padding.h"
#include "media/Processors.h"
#include "media/hevc/LightLevelUnits.h"
#include "media/hevc/NalUnits.h"
#include "media/x265/CodingLevel.h"
#include "media/x265/ConformanceWindow.h"
#include "media/x265/Encoder.h"
#include "media/x265/FramesAtOnce.h"
#include "media/x265/StereoRateLoop.h"
#include "media/x265/StillPassages.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <numeric>
#include <optional>

namespace lumetwin::media::x265 {

namespace {

constexpr MediaOperation operation = MediaOperation::encode;

// For smaller pictures the encoder's reconstruction differs from decoders (seen with x265 4.1).
constexpr int smallestSide = 96;
// Smaller pictures use coding tree units of 32, so that there are several rows of them.
constexpr int largeSide = 256;
constexpr double keyFrameSeconds = 2;
// The maximum in HEVC (ITU-T H.265, 7.4.7.1, five_minus_max_num_merge_cand).
constexpr std::uint32_t mostMergeCandidates = 5;
// The largest picture of HEVC levels 6 to 6.2 (ITU-T H.265, table A.8). No device supports more, and it limits memory.
constexpr std::int64_t mostSamples = 35'651'584;

// The x265 that scripts/patches mends keeps the bit rate of both views together by itself. Others see layer 0 alone,
// and are told after each access unit what to aim at.
#ifdef X265_BITRATE_OF_ALL_VIEWS
constexpr bool keepsRateOfBothViews = true;
#else
constexpr bool keepsRateOfBothViews = false;
#endif

// The 3D reference displays information SEI (ITU-T H.265, G.14): one display, left view 0, right view 1. x265 4.1
// writes its mantissa one bit too long, and adds three messages with made-up constants.
constexpr std::array<std::uint8_t, 9> referenceDisplays{0x4E, 0x01, 0xB0, 0x04, 0x04, 0x0D, 0x00, 0x20, 0x80};

int codedSide(int side) {
    return codedSize(side, smallestSide);
}

double frameRateOf(const StereoFormat &format) {
    return static_cast<double>(format.timeScale) / static_cast<double>(format.frameDuration);
}

/// x265 uses units of 1000 bits per second.
int kilobits(double bitsPerSecond) {
    return static_cast<int>(std::clamp(std::round(bitsPerSecond / 1000), 1.0, 2'000'000.0));
}

void setPictureFormat(x265_param &parameters, const StereoFormat &format) {
    parameters.sourceWidth = codedSide(format.width);
    parameters.sourceHeight = codedSide(format.height);
    parameters.sourceBitDepth = format.depth;
    parameters.internalBitDepth = format.depth;
    parameters.internalCsp = X265_CSP_I420;
    const auto common = std::gcd(format.timeScale, format.frameDuration);
    parameters.fpsNum = static_cast<std::uint32_t>(format.timeScale / common);
    parameters.fpsDenom = static_cast<std::uint32_t>(format.frameDuration / common);
    if (std::min(parameters.sourceWidth, parameters.sourceHeight) < largeSide)
        parameters.maxCUSize = 32;
    parameters.frameNumThreads = framesAtOnce(processors(), parameters.sourceWidth, parameters.sourceHeight,
                                              static_cast<int>(parameters.maxCUSize));
}

void setStructure(x265_param &parameters, double frameRate) {
    parameters.numViews = 2;
    parameters.numLayers = 2;
    parameters.format = 0;
    // Both would be written for each layer, in the middle of an access unit.
    parameters.bRepeatHeaders = 0;
    parameters.bEnableAccessUnitDelimiters = 0;
    parameters.bEmitInfoSEI = 0;
    parameters.bOpenGOP = 0;
    parameters.keyframeMax = std::max(2, static_cast<int>(std::lround(keyFrameSeconds * frameRate)));
    // Every scene cut becomes an IDR picture. With another kind of intra picture, x265 4.1 predicts the right view only
    // from the left one but signals something else, so decoders get a different picture.
    parameters.keyframeMin = 1;
    // Presets are made for one view. The right view needs one more reference: the left picture of the same time.
    ++parameters.maxNumReferences;
    parameters.maxNumMergeCand = std::min<std::uint32_t>(parameters.maxNumMergeCand + 1, mostMergeCandidates);
    parameters.logLevel = X265_LOG_NONE;
}

void setRate(x265_param &parameters, const CodingLevel &level, double rate) {
    parameters.levelIdc = level.number;
    parameters.bHighTier = 0;
    parameters.rc.rateControlMode = X265_RC_ABR;
    parameters.rc.bitrate = kilobits(rate);
    parameters.bConfigRCFrame = !keepsRateOfBothViews;
}

hevc::NalBytes bytesOf(const x265_nal &nal) {
    return hevc::withoutStartCode({nal.payload, nal.sizeBytes});
}

} // namespace

struct StereoEncoder::State {
    std::filesystem::path file;
    StereoFormat format;
    const x265_api *library;
    Parameters parameters;
    Encoder encoder;
    CodingLevel level;
    StereoRateLoop loop;
    StillPassages stills;
    PicturePool pool;
    std::vector<std::uint8_t> parameterSets;
    std::optional<DecodingTimes> decodingTimes;
    bool finished = false;

    State(const std::filesystem::path &name, const StereoFormat &stream)
        : file(name), format(stream), library(libraryFor(stream.depth)),
          loop(static_cast<double>(stream.averageBitRate), frameRateOf(stream)),
          pool(codedSide(stream.width), codedSide(stream.height), stream.pictureFormat(), stream.colour) {
        open();
        collectParameterSets();
    }

    MediaError failure(int code, const std::string &details) const {
        return {file, operation, code, MediaReason::encoderFailed, details};
    }

    MediaError refusal() const {
        return {file, operation, 0, MediaReason::pictureRefused,
                std::to_string(format.width) + " × " + std::to_string(format.height)};
    }

    void open() {
        if (!library)
            throw failure(0, "no library for " + std::to_string(format.depth) + " bits");
        parameters.reset(library->param_alloc());
        if (!parameters)
            throw std::bad_alloc();
        if (static_cast<std::int64_t>(codedSide(format.width)) * codedSide(format.height) > mostSamples)
            throw refusal(); // two such views are above the limits of HEVC
        const double frameRate = frameRateOf(format);
        if (library->param_default_preset(parameters.get(), format.preset.c_str(), nullptr) < 0)
            throw MediaError(file, operation, 0, "there is no preset " + format.preset);
        setPictureFormat(*parameters, format);
        setColour(*parameters, format.colour);
        setStructure(*parameters, frameRate);
        level = codingLevel(parameters->sourceWidth, parameters->sourceHeight, frameRate, format.averageBitRate);
        setRate(*parameters, level, askedRate());
        decodingTimes.emplace(reordering());
        encoder = openEncoder(*parameters);
        if (!encoder)
            throw refusal();
    }

    /// A bit rate above the limit of the level would change the level, which the encoder refuses.
    double askedRate() const {
        const double rate = keepsRateOfBothViews ? static_cast<double>(format.averageBitRate) : loop.baseRate();
        return std::min(rate, static_cast<double>(level.highestBitRate));
    }

    void collectParameterSets() {
        x265_nal *nals = nullptr;
        std::uint32_t count = 0;
        if (library->encoder_headers(encoder.get(), &nals, &count) < 0)
            throw failure(0, "no parameter sets");
        for (std::uint32_t index = 0; index < count; ++index) {
            const hevc::NalBytes unit = bytesOf(nals[index]);
            if (hevc::nalType(unit) == hevc::NalType::prefixInformation)
                continue;
            const bool holdsWindow = hevc::nalType(unit) == hevc::NalType::video ||
                                     (hevc::nalType(unit) == hevc::NalType::sequence && hevc::nalLayer(unit) == 0);
            hevc::appendAnnexB(parameterSets, unit);
            if (!holdsWindow || (format.width >= smallestSide && format.height >= smallestSide))
                continue;
            const auto smaller = withConformanceWindow(unit, format.width, format.height);
            if (!smaller)
                throw failure(0, "unexpected parameter sets");
            parameterSets.resize(parameterSets.size() - unit.size() - 4);
            hevc::appendAnnexB(parameterSets, *smaller);
        }
        hevc::appendAnnexB(parameterSets, referenceDisplays);
        for (const std::vector<std::uint8_t> &unit : hevc::lightLevelUnits(format.levels))
            hevc::appendAnnexB(parameterSets, unit);
    }

    int reordering() const { return parameters->bframes > 1 && parameters->bBPyramid ? 2 : parameters->bframes > 0; }

    x265_picture inputOf(const Picture &picture, std::int64_t time) const {
        x265_picture input;
        library->picture_init(parameters.get(), &input);
        for (int plane = 0; plane < 3; ++plane) {
            input.planes[plane] = picture.planes[plane].data;
            input.stride[plane] = static_cast<int>(picture.planes[plane].stride);
        }
        input.bitDepth = format.depth;
        input.colorSpace = X265_CSP_I420;
        input.pts = time;
        return input;
    }

    /// Encodes a pair of pictures (null flushes) and passes an access unit to the sink if one is ready.
    bool step(x265_picture *input, const AccessUnitSink &sink) {
        std::array<x265_picture, 2> output;
        for (x265_picture &picture : output)
            library->picture_init(parameters.get(), &picture);
        x265_nal *nals = nullptr;
        std::uint32_t count = 0;
        const int result = library->encoder_encode(encoder.get(), &nals, &count, input, output.data());
        if (result < 0)
            throw failure(result, {});
        if (result == 0 || count == 0)
            return false;
        const DecodingTimes::Moment decoded = decodingTimes->next();
        AccessUnit unit{{}, output[0].pts, decoded.time, decoded.duration, false};
        std::array<double, 2> bits{};
        for (std::uint32_t index = 0; index < count; ++index)
            collect(bytesOf(nals[index]), unit, bits);
        if (!keepsRateOfBothViews)
            steer(unit, bits);
        sink(unit);
        return true;
    }

    static void collect(hevc::NalBytes nal, AccessUnit &unit, std::array<double, 2> &bits) {
        const int type = hevc::nalType(nal);
        const int layer = std::min(hevc::nalLayer(nal), 1);
        if (type > hevc::NalType::lastPicture && type != hevc::NalType::suffixInformation)
            return;
        if (layer == 0 && type >= hevc::NalType::firstRandomAccess && type <= hevc::NalType::lastRandomAccess)
            unit.keyFrame = true;
        hevc::appendAnnexB(unit.bytes, nal);
        bits[static_cast<std::size_t>(layer)] += 8.0 * static_cast<double>(nal.size() + 4);
    }

    void steer(const AccessUnit &unit, const std::array<double, 2> &bits) {
        if (stills.endedAt(unit.time) && unit.keyFrame)
            loop.restart(); // a scene cut: the encoder's rate control starts again
        loop.account(bits[0], bits[0] + bits[1]);
        const int asked = kilobits(askedRate());
        if (asked == parameters->rc.bitrate)
            return; // without a change of rate, the encoder would treat it as a change of other parameters
        parameters->rc.bitrate = asked;
        library->encoder_reconfig(encoder.get(), parameters.get());
    }
};

bool codesTwoViews(int depth) {
    StereoFormat format;
    format.width = format.height = smallestSide;
    format.averageBitRate = 1'000'000;
    format.depth = depth;
    try {
        const StereoEncoder encoder({}, format);
        return true;
    } catch (const MediaError &) {
        return false;
    }
}

StereoEncoder::StereoEncoder(const std::filesystem::path &file, const StereoFormat &format)
    : state_(std::make_unique<State>(file, format)) {}

StereoEncoder::~StereoEncoder() = default;

const std::vector<std::uint8_t> &StereoEncoder::parameterSets() const {
    return state_->parameterSets;
}

int StereoEncoder::reordering() const {
    return state_->reordering();
}

void StereoEncoder::encode(const Picture &left, const Picture &right, std::int64_t time, const AccessUnitSink &sink,
                           std::int64_t duration) {
    State &state = *state_;
    const int codedWidth = codedSide(state.format.width);
    const int codedHeight = codedSide(state.format.height);
    const Picture leftCoded = padded(left, codedWidth, codedHeight, state.pool);
    const Picture rightCoded = padded(right, codedWidth, codedHeight, state.pool);
    if (!keepsRateOfBothViews)
        state.stills.show(leftCoded, time);
    state.decodingTimes->add(time, duration > 0 ? duration : state.format.frameDuration);
    std::array<x265_picture, 2> input{state.inputOf(leftCoded, time), state.inputOf(rightCoded, time)};
    state.step(input.data(), sink);
}

void StereoEncoder::finish(const AccessUnitSink &sink) {
    if (state_->finished)
        return;
    state_->finished = true;
    while (state_->step(nullptr, sink))
        ;
}

} // namespace lumetwin::media::x265
