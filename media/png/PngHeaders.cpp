// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/png/PngHeaders.h"

#include "media/bmff/BigEndian.h"

#include <array>
#include <string_view>

namespace lumetwin::media::images {

namespace {

using namespace std::string_view_literals;
using bmff::fourCC;
using Bytes = std::span<const std::uint8_t>;

constexpr std::array<std::uint8_t, 8> signature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::uint32_t longestMetadata = 8u << 20; ///< bytes of a chunk
constexpr std::uint32_t longestChunk = 0x7FFFFFFF;  ///< ISO/IEC 15948, 5.3
constexpr int mostChunks = 100'000;
constexpr std::uint32_t crossed = 0; // sTER: the right eye is on the left
constexpr std::uint32_t parallel = 1;

constexpr std::string_view xmpKey = "XML:com.adobe.xmp\0"sv;

/// The checksum of a chunk's type and data (ISO/IEC 15948, annex D), for short ones.
std::uint32_t checksum(Bytes bytes) {
    std::uint32_t value = 0xFFFFFFFF;
    for (const std::uint8_t byte : bytes) {
        value ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            value = (value & 1) != 0 ? value >> 1 ^ 0xEDB88320 : value >> 1;
    }
    return ~value;
}

/// The text of an uncompressed packet: after the key two flags, the language and the translated key (11.3.4.5).
std::string packetIn(std::string_view content) {
    if (!content.starts_with(xmpKey) || content.size() < xmpKey.size() + 2 || content[xmpKey.size()] != 0)
        return {};
    content.remove_prefix(xmpKey.size() + 2);
    for (int text = 0; text < 2; ++text) {
        const std::size_t end = content.find('\0');
        if (end == content.npos)
            return {};
        content.remove_prefix(end + 1);
    }
    return std::string(content);
}

struct Chunk {
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    std::uint64_t place = 0; ///< of its data
};

class ChunkReader {
public:
    explicit ChunkReader(const bmff::Source &source) : source_(source) {}

    StillHeaders run() {
        try {
            std::array<std::uint8_t, signature.size()> begin{};
            source_.read(0, begin);
            std::uint64_t place = begin == signature ? signature.size() : source_.size();
            for (int count = 0; count < mostChunks; ++count) {
                std::array<std::uint8_t, 8> head{};
                source_.read(place, head);
                const Chunk chunk{static_cast<std::uint32_t>(bmff::bigEndian(std::span(head).subspan(4))),
                                  static_cast<std::uint32_t>(bmff::bigEndian(std::span(head).first(4))), place + 8};
                if (chunk.type == fourCC("IEND") || chunk.size > longestChunk)
                    break;
                take(chunk);
                place += 12 + std::uint64_t{chunk.size};
            }
        } catch (const bmff::FormatError &) {
            return headers_; // the file ends
        }
        return headers_;
    }

private:
    void take(const Chunk &chunk) {
        samples_ |= chunk.type == fourCC("IDAT");
        if (chunk.type == fourCC("IHDR") && chunk.size >= 8)
            takeSize(chunk);
        else if (chunk.type == fourCC("sTER") && chunk.size == 1 && !samples_)
            takeStereo(chunk);
        else if (chunk.type == fourCC("eXIf") && chunk.size <= longestMetadata)
            headers_.exif = data(chunk);
        else if (chunk.type == fourCC("iTXt") && chunk.size <= longestMetadata && headers_.xmp.empty())
            takeText(data(chunk));
    }

    std::vector<std::uint8_t> data(const Chunk &chunk) const {
        if (chunk.size > source_.size())
            throw bmff::FormatError(MediaReason::endsEarly);
        std::vector<std::uint8_t> bytes(chunk.size);
        source_.read(chunk.place, bytes);
        return bytes;
    }

    void takeSize(const Chunk &chunk) {
        std::array<std::uint8_t, 8> size{};
        source_.read(chunk.place, size);
        const auto width = static_cast<std::uint32_t>(bmff::bigEndian(std::span(size).first(4)));
        const auto height = static_cast<std::uint32_t>(bmff::bigEndian(std::span(size).subspan(4)));
        if (width > longestChunk || height > longestChunk)
            return;
        headers_.width = static_cast<int>(width);
        headers_.height = static_cast<int>(height);
    }

    void takeStereo(const Chunk &chunk) {
        std::array<std::uint8_t, 9> bytes{}; // type, data, checksum
        source_.read(chunk.place - 4, bytes);
        const std::uint32_t mode = bytes[4];
        if (mode > parallel || checksum(Bytes(bytes).first(5)) != bmff::bigEndian(Bytes(bytes).subspan(5)))
            return;
        headers_.packing = StereoPacking{StereoPacking::Arrangement::sideBySide, mode == crossed, false};
    }

    void takeText(const std::vector<std::uint8_t> &content) {
        headers_.xmp = packetIn({reinterpret_cast<const char *>(content.data()), content.size()});
    }

    const bmff::Source &source_;
    StillHeaders headers_;
    bool samples_ = false;
};

} // namespace

StillHeaders readPngHeaders(const bmff::Source &source) {
    StillHeaders headers = ChunkReader(source).run();
    if (headers.packing)
        headers.width -= columnsBetweenEyes(headers.width);
    return headers;
}

int columnsBetweenEyes(int width) {
    const int columns = 15 - (width + 15) % 16;
    return columns < 8 && columns < width ? columns : 0;
}

} // namespace lumetwin::media::images
