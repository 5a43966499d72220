// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/ffmpeg/MovieHeader.h"

#include "media/MediaError.h"
#include "media/bmff/BoxWriter.h"
#include "media/ffmpeg/HeaderBoxes.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <string_view>

namespace lumetwin::media::ffmpeg {

namespace {

using bmff::box;
using bmff::FieldWriter;

constexpr MediaOperation completing = MediaOperation::complete;

struct Placed {
    std::uint64_t offset;
    MovieHeader bytes;
};

/// Reads the last top-level box, which must be `moov`.
Placed readHeader(const OutputFile &file) {
    const std::uint64_t end = file.size();
    std::uint64_t offset = 0;
    while (offset + 8 <= end) {
        std::array<std::uint8_t, 16> head{};
        file.readAt(offset, head);
        std::uint64_t size = get32(head.data());
        if (size == 1)
            size = static_cast<std::uint64_t>(get32(head.data() + 8)) << 32 | get32(head.data() + 12);
        if (size < 8 || size > end - offset)
            break;
        if (offset + size == end && std::memcmp(head.data() + 4, "moov", 4) == 0) {
            MovieHeader bytes(static_cast<std::size_t>(size));
            if (file.readAt(offset, bytes) == bytes.size())
                return {offset, std::move(bytes)};
            break;
        }
        offset += size;
    }
    throw MediaError(file.path(), completing, 0, MediaReason::headerNotFound);
}

struct TagName {
    std::string_view muxer;
    std::string_view item;
};

constexpr std::array<TagName, 10> tagNames{{
    {"title", "com.apple.quicktime.title"},
    {"make", "com.apple.quicktime.make"},
    {"model", "com.apple.quicktime.model"},
    {"location", "com.apple.quicktime.location.ISO6709"},
    {"date", "com.apple.quicktime.creationdate"},
    {"artist", "com.apple.quicktime.artist"},
    {"comment", "com.apple.quicktime.comment"},
    {"description", "com.apple.quicktime.description"},
    {"keywords", "com.apple.quicktime.keywords"},
    {"copyright", "com.apple.quicktime.copyright"},
}};

/// Looks up a tag by either of its names, also in upper case or with a language added, as some containers write it.
std::optional<std::string> lookUp(const MovieTags &tags, const TagName &name) {
    std::string upper(name.muxer);
    for (char &letter : upper)
        letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
    for (const std::string &key :
         {std::string(name.item), std::string(name.muxer), upper, std::string(name.muxer) + "-eng"})
        if (const auto found = tags.find(key); found != tags.end() && !found->second.empty())
            return found->second;
    return std::nullopt;
}

} // namespace

void editMovieHeader(const OutputFile &file, const std::function<void(MovieHeader &)> &edit) {
    Placed header = readHeader(file);
    const std::size_t before = header.bytes.size();
    edit(header.bytes);
    put32(header.bytes.data(), static_cast<std::uint32_t>(header.bytes.size()));
    file.writeAt(header.offset, header.bytes);
    if (header.bytes.size() < before)
        file.truncate(header.offset + header.bytes.size());
}

namespace {

/// The duration of a version 0 or 1 `tkhd`, in the movie's time scale, limited to 32 bits.
std::uint32_t trackDuration(const MovieHeader &header, const Range &box) {
    const bool longFields = header[box.begin + 8] == 1;
    return get32(header.data() + box.begin + (longFields ? 12 + 28 : 12 + 16));
}

/// Entries of a version 0 list: duration, media time, rate, each 32 bits.
void completeEdits(MovieHeader &header, const Range &list, std::uint32_t duration) {
    const bool longFields = header[list.begin + 8] == 1;
    const std::size_t entrySize = longFields ? 20 : 12;
    for (std::size_t entry = list.begin + 16; entry + entrySize <= list.end; entry += entrySize) {
        std::uint8_t *lowDuration = header.data() + entry + (longFields ? 4 : 0);
        const bool empty = get32(header.data() + entry + (longFields ? 8 : 4)) == 0xFFFFFFFF;
        if (empty)
            duration -= std::min(duration, get32(lowDuration));
        else if (get32(lowDuration) == 0)
            put32(lowDuration, duration);
    }
}

} // namespace

void completeEditLists(MovieHeader &header) {
    std::size_t begin = 8;
    while (const auto track = child(header, begin, header.size(), "trak")) {
        const auto head = child(header, track->begin + 8, track->end, "tkhd");
        const auto edits = child(header, track->begin + 8, track->end, "edts");
        const auto list = edits ? child(header, edits->begin + 8, edits->end, "elst") : std::nullopt;
        if (head && list)
            completeEdits(header, *list, trackDuration(header, *head));
        begin = track->end;
    }
}

void removeFragmentDefaults(MovieHeader &header) {
    if (const auto box = child(header, 8, header.size(), "mvex"))
        replace(header, {}, box->begin, box->end, {});
}

void setPresentationSize(MovieHeader &header, int width, int height) {
    const auto track = videoTrack(header);
    const auto write = [&](std::size_t offset) {
        put32(header.data() + offset, static_cast<std::uint32_t>(width) << 16);
        put32(header.data() + offset + 4, static_cast<std::uint32_t>(height) << 16);
    };
    if (!track)
        return;
    if (const auto box = child(header, track->begin + 8, track->end, "tkhd"))
        write(box->end - 8);
    const auto apertures = child(header, track->begin + 8, track->end, "tapt");
    for (const char *type : {"clef", "prof"})
        if (const auto box = apertures ? child(header, apertures->begin + 8, apertures->end, type) : std::nullopt)
            write(box->begin + 12);
}

void addMetadata(MovieHeader &header, const MovieTags &items) {
    if (items.empty())
        return;
    FieldWriter keys;
    FieldWriter list;
    keys.u32(0).u32(items.size());
    std::uint32_t index = 0;
    for (const auto &[key, value] : items) {
        keys.append(box("mdta", FieldWriter().text(key)));
        constexpr std::uint32_t utf8 = 1;
        constexpr std::uint32_t anyLocale = 0;
        const auto number = FieldWriter().u32(++index); // in the place of a type
        const std::string_view type(reinterpret_cast<const char *>(number.bytes().data()), number.bytes().size());
        list.append(box(type, box("data", FieldWriter().u32(utf8).u32(anyLocale).text(value))));
    }
    const MovieHeader meta = box("meta", FieldWriter()
                                             .append(box("hdlr", FieldWriter().zeros(8).text("mdta").zeros(13)))
                                             .append(box("keys", keys))
                                             .append(box("ilst", list)));
    header.insert(header.end(), meta.begin(), meta.end());
}

MovieTags muxerTags(const MovieTags &source) {
    MovieTags tags;
    for (const TagName &name : tagNames)
        if (auto value = lookUp(source, name))
            tags.emplace(name.muxer, std::move(*value));
    if (const auto time = source.find("creation_time"); time != source.end())
        tags.insert(*time);
    return tags;
}

MovieTags metadataItems(const MovieTags &source) {
    MovieTags items;
    for (const TagName &name : tagNames)
        if (auto value = lookUp(source, name))
            items.emplace(name.item, std::move(*value));
    return items;
}

} // namespace lumetwin::media::ffmpeg
