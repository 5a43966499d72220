// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/AudioBlock.h"
#include "media/LightLevels.h"
#include "media/MovieFile.h"
#include "media/MovieTags.h"
#include "media/OutputFile.h"
#include "media/Picture.h"
#include "media/StereoPacking.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

namespace lumetwin::media {

enum class Container { mpeg4, quickTime, matroska };
enum class VideoCodec { h264, hevc };

/// An ordinary video track: 4:2:0 pictures with a constant rate. Odd sizes are padded for coding and cropped
/// again by the file, so that viewers show the exact size.
struct VideoEncoding {
    VideoCodec codec = VideoCodec::h264;
    int width = 0;
    int height = 0;
    std::int64_t averageBitRate = 0; ///< bits per second
    double frameRate = 30;           ///< for the encoder's rate control
    int depth = 8;                   ///< bits per sample: 8 or 10, at most deepestVideo()
    ColourTags colour;
    LightLevels levels; ///< only of HEVC
    PixelAspect pixelAspect;
    /// Announced by the stream (frame packing SEI in each random access picture) and by the file (`st3d`, StereoMode),
    /// if the frames have both eyes, beside or above each other. Only HEVC and Matroska can say that they are half:
    /// elsewhere the shape of the pixels would change how ordinary players show the frame.
    std::optional<StereoPacking> packing;
};

/// A multiview HEVC track with two views, the left one in layer 0 and the right one in layer 1, with its stereo values
/// in the integer units of the file.
struct StereoVideoEncoding {
    int width = 0; ///< one eye
    int height = 0;
    std::int64_t averageBitRate = 0; ///< bits per second, both layers together
    double frameRate = 30;
    int depth = 8; ///< bits per sample: 8 or 10, at most deepestSpatialVideo()
    ColourTags colour;
    LightLevels levels;
    PixelAspect pixelAspect;
    std::uint32_t baseline = 0;              ///< micrometres
    std::uint32_t horizontalFieldOfView = 0; ///< thousandths of a degree
    std::int32_t disparityAdjustment = 0;    ///< ten-thousandths of the image width
    bool hasLeftEye = true;                  ///< declare the left eye's view
    bool hasRightEye = true;                 ///< declare the right eye's view
    bool rectilinear = true;                 ///< declare a rectilinear projection
};

/// An AAC track, mono or stereo.
struct AudioEncoding {
    int sampleRate = 44100;
    int channels = 2;
    std::int64_t bitRate = 192000;
};

/// Writes a movie. A file whose writer failed, or was destroyed before finish(), can be read up to its last fragment.
///
/// Tracks are added before start(), in the order that they have in the file. Then one thread appends video and another
/// audio; a track that runs ahead waits for the other, so that memory stays flat. An encoder that cannot stop at once
/// when the writer is cancelled ends by itself (LingeringThreads.h).
class MovieWriter {
public:
    /// Throws MediaError for a frame size that movies do not allow. addVideo() checks this too.
    static void requireSize(const std::filesystem::path &output, std::int64_t width, std::int64_t height);

    MovieWriter(const OutputFile &output, Container container, MovieTags tags);
    ~MovieWriter();

    void addAudio(const AudioEncoding &encoding);
    void addVideo(const VideoEncoding &encoding);
    void addVideo(const StereoVideoEncoding &encoding);
    /// Video times are in units of 1/timeScale second.
    void start(int timeScale);

    /// A failure is kept and thrown by finish(). After a failure or abandon() these functions do nothing. Each picture
    /// must be later than the one before. The duration is only used for the last picture.
    void append(const Picture &picture, std::int64_t time, std::int64_t duration);
    void append(const Picture &left, const Picture &right, std::int64_t time, std::int64_t duration);
    void append(const AudioBlock &block);
    void finishVideo();
    void finishAudio();
    /// Whether a failure has happened; then append() does nothing.
    bool failed() const;

    /// The run is being cancelled: everything appended from now on is dropped. May be called on any thread.
    void abandon();

    /// Completes the file. Throws the first failure of this writer. If `cancelled` returns true before the file is
    /// complete, ends like cancel() and returns false.
    bool finish(const std::function<bool()> &cancelled = {});
    /// Ends without completing the file; the caller removes it. Throws an earlier failure.
    void cancel();

private:
    struct State;
    std::shared_ptr<State> state_; ///< shared with the encoding thread
};

} // namespace lumetwin::media
