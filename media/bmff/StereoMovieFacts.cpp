// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/StereoMovieFacts.h"

#include "media/bmff/BoxReader.h"
#include "media/bmff/StereoMovieFactsReader.h"

#include <exception>

namespace lumetwin::media {

namespace bmff {

namespace {

// The fixed part of a visual sample entry in bytes (ISO/IEC 14496-12, 12.1.3). Its child boxes follow.
constexpr std::uint64_t visualSampleEntrySize = 78;
// The boxes that are read here contain only a few numbers.
constexpr std::uint64_t largestPayload = 64;

class Reader {
public:
    explicit Reader(const Source &source) : source_(source) {}

    StereoMovieFacts movie() {
        StereoMovieFacts facts;
        BoxWalk file(source_, 0, source_.size(), boxes_);
        Box box;
        while (file.next(box))
            if (box.type == fourCC("moov") && firstVideoTrack(box, facts))
                break;
        return facts;
    }

private:
    BoxWalk children(const Box &box, std::uint64_t skipped = 0) {
        if (skipped > box.payloadSize())
            throw FormatError("a box ends early");
        return BoxWalk(source_, box.begin + skipped, box.end, boxes_);
    }

    std::optional<Box> child(const Box &parent, std::uint32_t type) {
        BoxWalk walk = children(parent);
        Box box;
        while (walk.next(box))
            if (box.type == type)
                return box;
        return std::nullopt;
    }

    Fields fields(const Box &box, std::vector<std::uint8_t> &bytes) {
        bytes = payload(source_, box, largestPayload);
        return Fields(bytes);
    }

    /// For boxes that are left out where they are damaged.
    static bool isReadable(const Box &box, std::uint64_t least) {
        return box.payloadSize() >= least && box.payloadSize() <= largestPayload;
    }

    /// The number after a full box's version and flags.
    std::uint32_t fullBoxNumber(const Box &box) {
        std::vector<std::uint8_t> bytes;
        Fields values = fields(box, bytes);
        values.skip(4);
        return values.u32();
    }

    std::uint8_t fullBoxByte(const Box &box) {
        std::vector<std::uint8_t> bytes;
        Fields values = fields(box, bytes);
        values.skip(4);
        return values.u8();
    }

    bool isVideo(const Box &media) {
        const auto handler = child(media, fourCC("hdlr"));
        if (!handler || handler->payloadSize() < 12)
            return false;
        std::array<std::uint8_t, 12> head{};
        source_.read(handler->begin, head);
        Fields values(head);
        values.skip(8);
        return values.u32() == fourCC("vide");
    }

    bool firstVideoTrack(const Box &movie, StereoMovieFacts &facts) {
        BoxWalk walk = children(movie);
        Box track;
        while (walk.next(track)) {
            if (track.type != fourCC("trak"))
                continue;
            const auto media = child(track, fourCC("mdia"));
            if (!media || !isVideo(*media))
                continue;
            facts.hasVideoTrack = true;
            sampleDescriptions(*media, facts);
            return true;
        }
        return false;
    }

    void sampleDescriptions(const Box &media, StereoMovieFacts &facts) {
        const auto information = child(media, fourCC("minf"));
        const auto table = information ? child(*information, fourCC("stbl")) : std::nullopt;
        const auto descriptions = table ? child(*table, fourCC("stsd")) : std::nullopt;
        if (!descriptions)
            return;
        BoxWalk walk = children(*descriptions, 8); // version, flags and the number of entries
        Box entry;
        while (walk.next(entry)) {
            StereoMovieFacts own;
            own.encrypted = facts.encrypted || entry.type == fourCC("encv"); // ISO/IEC 14496-12, 8.12
            sampleEntry(entry, own);
            if (!facts.hasSampleDescription) {
                own.hasVideoTrack = true;
                own.hasSampleDescription = true;
                own.anyBaseline = own.baseline.has_value();
                facts = own;
            } else {
                facts.anyBaseline |= own.baseline.has_value();
                facts.encrypted = own.encrypted;
            }
        }
    }

    void sampleEntry(const Box &entry, StereoMovieFacts &facts) {
        BoxWalk walk = children(entry, visualSampleEntrySize);
        Box box;
        while (walk.next(box)) {
            if (box.type == fourCC("vexu"))
                extendedUsage(box, facts);
            else if (box.type == fourCC("hfov"))
                facts.horizontalFieldOfView = plainNumber(box);
            else if (box.type == fourCC("lhvC"))
                facts.multilayer = true;
            else if (box.type == fourCC("mvcC"))
                facts.multiviewAvc = true;
            else if (box.type == fourCC("st3d") && isReadable(box, 5))
                facts.frameMode = fullBoxByte(box);
        }
    }

    std::uint32_t plainNumber(const Box &box) {
        std::vector<std::uint8_t> bytes;
        return fields(box, bytes).u32();
    }

    void extendedUsage(const Box &usage, StereoMovieFacts &facts) {
        BoxWalk walk = children(usage);
        Box box;
        while (walk.next(box)) {
            if (box.type == fourCC("eyes"))
                eyes(box, facts);
            else if (box.type == fourCC("proj"))
                facts.projection = codeIn(box, fourCC("prji"));
            else if (box.type == fourCC("pack"))
                facts.packing = codeIn(box, fourCC("pkin"));
        }
    }

    void eyes(const Box &parent, StereoMovieFacts &facts) {
        BoxWalk walk = children(parent);
        Box box;
        while (walk.next(box)) {
            if (box.type == fourCC("stri"))
                facts.eyes = fullBoxByte(box);
            else if (box.type == fourCC("hero"))
                facts.heroEye = fullBoxByte(box);
            else if (box.type == fourCC("cams"))
                camera(box, facts);
            else if (box.type == fourCC("cmfy"))
                comfort(box, facts);
            else if (box.type == fourCC("pack")) // where some descriptions have it
                facts.packing = codeIn(box, fourCC("pkin"));
        }
    }

    void camera(const Box &parent, StereoMovieFacts &facts) {
        if (const auto baseline = child(parent, fourCC("blin")))
            facts.baseline = fullBoxNumber(*baseline);
    }

    void comfort(const Box &parent, StereoMovieFacts &facts) {
        if (const auto adjustment = child(parent, fourCC("dadj")))
            facts.disparityAdjustment = static_cast<std::int32_t>(fullBoxNumber(*adjustment));
    }

    /// The four characters in a full box of that type; empty when the parent has none.
    std::string codeIn(const Box &parent, std::uint32_t type) {
        const auto box = child(parent, type);
        if (!box || !isReadable(*box, 8))
            return {};
        const std::uint32_t code = fullBoxNumber(*box);
        std::string characters;
        for (int shift = 24; shift >= 0; shift -= 8)
            characters.push_back(static_cast<char>(code >> shift));
        return characters;
    }

    const Source &source_;
    int boxes_ = 0;
};

} // namespace

StereoMovieFacts readStereoMovieFacts(const Source &source) {
    return Reader(source).movie();
}

} // namespace bmff

StereoMovieFacts readStereoMovieFacts(const InputFile &file) noexcept {
    try {
        return bmff::readStereoMovieFacts(*bmff::openFile(file));
    } catch (const std::exception &) {
        return {};
    }
}

} // namespace lumetwin::media
