// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/metadata/Xmp.h"

namespace lumetwin::media::images {

namespace {

/// Replaces a property's value, written as an attribute (name="value") or an element (<name>value</name>).
void replaceValue(std::string &packet, const std::string &name, const std::string &value) {
    for (std::size_t at = packet.find(name); at != std::string::npos; at = packet.find(name, at + 1)) {
        std::size_t from = at + name.size();
        if (from + 1 >= packet.size())
            return;
        std::size_t to = std::string::npos;
        if (packet[from] == '=' && (packet[from + 1] == '"' || packet[from + 1] == '\'')) {
            to = packet.find(packet[from + 1], from + 2);
            from += 2;
        } else if (packet[from] == '>' && at > 0 && packet[at - 1] == '<') {
            to = packet.find('<', from);
            from += 1;
        }
        if (to != std::string::npos)
            packet.replace(from, to - from, value);
    }
}

/// Removes what lies from one text to the end of another, once.
void remove(std::string &packet, const std::string &beginning, const std::string &end) {
    const std::size_t from = packet.find(beginning);
    const std::size_t to = from == std::string::npos ? from : packet.find(end, from + beginning.size());
    if (to != std::string::npos)
        packet.erase(from, to + end.size() - from);
}

} // namespace

std::string correctedXmp(std::string packet, int width, int height) {
    replaceValue(packet, "tiff:Orientation", "1");
    for (const char *name : {"tiff:ImageWidth", "exif:PixelXDimension"})
        replaceValue(packet, name, std::to_string(width));
    for (const char *name : {"tiff:ImageLength", "exif:PixelYDimension"})
        replaceValue(packet, name, std::to_string(height));
    remove(packet, "<xmp:Thumbnails", "</xmp:Thumbnails>");
    remove(packet, "xmpNote:HasExtendedXMP=\"", "\"");
    return packet;
}

} // namespace lumetwin::media::images
