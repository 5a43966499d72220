// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "media/AudioBlock.h"
#include "media/MovieFile.h"
#include "media/MovieTags.h"
#include "media/OutputFile.h"
#include "media/Picture.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>

namespace lumetwin::media {

enum class Container { mpeg4, quickTime };
enum class VideoCodec { h264, hevc };

/// An ordinary video track: 8-bit 4:2:0 pictures at a constant rate. Odd sizes are coded padded and cropped again in
/// the file, so that a viewer sees the stated size.
struct VideoEncoding {
    VideoCodec codec = VideoCodec::h264;
    int width = 0;
    int height = 0;
    std::int64_t averageBitRate = 0; ///< bits per second
    double frameRate = 30;           ///< for the encoder's rate control
    ColourTags colour;
    PixelAspect pixelAspect;
};

/// A multiview HEVC track of two views, left in layer 0 and right in layer 1, with its stereo facts in the file's
/// integer units.
struct StereoVideoEncoding {
    int width = 0; ///< one eye
    int height = 0;
    std::int64_t averageBitRate = 0; ///< bits per second, both layers together
    double frameRate = 30;
    ColourTags colour;
    PixelAspect pixelAspect;
    std::uint32_t baseline = 0;              ///< micrometres
    std::uint32_t horizontalFieldOfView = 0; ///< thousandths of a degree
    std::int32_t disparityAdjustment = 0;    ///< ten-thousandths of the image width
    bool hasLeftEye = true;                  ///< announce the left eye's view
    bool hasRightEye = true;                 ///< announce the right eye's view
    bool rectilinear = true;                 ///< announce a rectilinear projection
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
    /// Throws MediaError for frames that no movie holds; addVideo() asks the same.
    static void requireSize(const std::filesystem::path &output, std::int64_t width, std::int64_t height);

    MovieWriter(const OutputFile &output, Container container, MovieTags tags);
    ~MovieWriter();

    void addAudio(const AudioEncoding &encoding);
    void addVideo(const VideoEncoding &encoding);
    void addVideo(const StereoVideoEncoding &encoding);
    /// Times of video are in units of 1/timeScale second.
    void start(int timeScale);

    /// A failure is kept and thrown by finish(); after one, and after abandon(), these do nothing. Each picture is
    /// later than the one before; the duration counts for the last one.
    void append(const Picture &picture, std::int64_t time, std::int64_t duration);
    void append(const Picture &left, const Picture &right, std::int64_t time, std::int64_t duration);
    void append(const AudioBlock &block);
    void finishVideo();
    void finishAudio();
    /// Whether a failure has happened, after which appending is idle.
    bool failed() const;

    /// Nothing that is still appended will be kept: the run is being cancelled. Any thread.
    void abandon();

    /// Completes the file. Throws the first failure of this writer. Where `cancelled` says so before it is complete, it
    /// ends like cancel(), and returns false.
    bool finish(const std::function<bool()> &cancelled = {});
    /// Ends; the file is not a movie then, and the caller removes it. Throws a failure that had happened before.
    void cancel();

private:
    struct State;
    std::shared_ptr<State> state_; ///< shared with the thread that encodes
};

} // namespace lumetwin::media
