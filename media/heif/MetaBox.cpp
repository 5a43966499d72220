// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/MetaBox.h"

#include <algorithm>

namespace lumetwin::media::heif {

namespace {

using bmff::Box;
using bmff::BoxWalk;
using bmff::Fields;
using bmff::FormatError;
using bmff::fourCC;
using bmff::FullBoxHead;
using Bytes = std::vector<std::uint8_t>;

// Large enough for tables with the maximum number of items and references.
constexpr std::uint64_t largestTable = std::uint64_t{8} << 20;

/// Limits the amount of something that a file requests.
class Budget {
public:
    explicit Budget(std::size_t limit) : left_(limit) {}
    void take(std::size_t count) {
        if (count > left_)
            throw FormatError("there are too many items, properties, references or groups");
        left_ -= count;
    }

private:
    std::size_t left_;
};

/// The payload of a box in this memory.
std::span<const std::uint8_t> inside(std::span<const std::uint8_t> bytes, const Box &box) {
    return bytes.subspan(static_cast<std::size_t>(box.begin), static_cast<std::size_t>(box.payloadSize()));
}

class Reader {
public:
    explicit Reader(const bmff::Source &source) : source_(source) {}

    MetaBox read() {
        const Box box = find();
        std::optional<Box> properties;
        bool pictures = false;
        BoxWalk walk = children(box, 4);
        for (Box child; walk.next(child);) {
            if (child.type == fourCC("hdlr"))
                pictures = handler(child) == fourCC("pict");
            else if (child.type == fourCC("pitm"))
                primary(child);
            else if (child.type == fourCC("iinf"))
                items(child);
            else if (child.type == fourCC("iref"))
                references(child);
            else if (child.type == fourCC("iprp"))
                properties = child;
            else if (child.type == fourCC("grpl"))
                groups(child);
        }
        if (!pictures)
            throw FormatError("its items are no pictures");
        // They name items, which may come after them in the file.
        if (properties)
            itemProperties(*properties);
        return std::move(meta_);
    }

private:
    Box find() {
        bool typed = false;
        BoxWalk walk(source_, 0, source_.size(), boxes_);
        for (Box box; walk.next(box);) {
            if (box.type == fourCC("ftyp"))
                typed = true;
            else if (box.type == fourCC("meta") && typed) {
                findMovieBehind(box);
                return box;
            } else if (!typed)
                break;
            else
                noteMovie(box);
        }
        throw FormatError(meta_.hasMovie ? MediaReason::imageSequence : MediaReason::noHeifFile);
    }

    /// Looks for a movie in the boxes after it. Damage there does not affect images.
    void findMovieBehind(const Box &before) {
        int boxes = 0;
        BoxWalk walk(source_, before.end, source_.size(), boxes);
        try {
            for (Box box; walk.next(box);)
                noteMovie(box);
        } catch (const FormatError &) {
            return;
        }
    }

    /// Notes a box of a movie, or the box in which phones store a whole movie file.
    void noteMovie(const Box &box) {
        meta_.hasMovie = meta_.hasMovie || box.type == fourCC("moov") || box.type == fourCC("mpvd");
    }

    BoxWalk children(const Box &box, std::uint64_t skipped = 0) {
        if (skipped > box.payloadSize())
            throw FormatError("a box ends early");
        return BoxWalk(source_, box.begin + skipped, box.end, boxes_);
    }

    std::uint32_t handler(const Box &box) {
        const Bytes bytes = bmff::payload(source_, box, largestTable);
        Fields fields(bytes);
        fields.skip(8);
        return fields.u32();
    }

    void primary(const Box &box) {
        const Bytes bytes = bmff::payload(source_, box, largestTable);
        Fields fields(bytes);
        const FullBoxHead head(fields);
        meta_.primaryItem = head.version == 0 ? fields.u16() : fields.u32();
    }

    void items(const Box &box) {
        if (!meta_.items.empty())
            throw FormatError("there are two lists of items");
        const Bytes bytes = bmff::payload(source_, box, largestTable);
        Fields fields(bytes);
        const FullBoxHead head(fields);
        const std::uint32_t count = head.version == 0 ? fields.u16() : fields.u32();
        const auto memory = bmff::fromMemory(bytes);
        BoxWalk walk(*memory, fields.position(), bytes.size(), boxes_);
        Box entry;
        for (std::uint32_t index = 0; index < count; ++index) {
            if (!walk.next(entry))
                throw FormatError("items are missing in the list");
            if (entry.type == fourCC("infe"))
                item(Fields(inside(bytes, entry)));
        }
    }

    void item(Fields fields) {
        itemBudget_.take(1);
        const FullBoxHead head(fields);
        Item item;
        item.hidden = (head.flags & 1) != 0;
        item.id = head.version == 3 ? fields.u32() : fields.u16();
        item.encrypted = fields.u16() != 0; // index of the protection
        if (head.version == 2 || head.version == 3)
            item.type = fields.u32();
        if (!meta_.itemIndexes.emplace(item.id, meta_.items.size()).second)
            throw FormatError("two items have the same number");
        meta_.items.push_back(std::move(item));
    }

    void references(const Box &box) {
        const Bytes bytes = bmff::payload(source_, box, largestTable);
        Fields head(bytes);
        const int idSize = FullBoxHead(head).version == 0 ? 2 : 4;
        const auto memory = bmff::fromMemory(bytes);
        BoxWalk walk(*memory, head.position(), bytes.size(), boxes_);
        for (Box entry; walk.next(entry);) {
            Fields fields(inside(bytes, entry));
            ItemReference reference;
            reference.type = entry.type;
            reference.from = static_cast<std::uint32_t>(fields.number(idSize));
            const std::uint16_t count = fields.u16();
            referenceBudget_.take(count + std::size_t{1});
            for (int index = 0; index < count; ++index)
                reference.to.push_back(static_cast<std::uint32_t>(fields.number(idSize)));
            meta_.references.push_back(std::move(reference));
        }
    }

    void itemProperties(const Box &box) {
        BoxWalk walk = children(box);
        for (Box child; walk.next(child);) {
            if (child.type == fourCC("ipco"))
                propertyContainer(child);
            else if (child.type == fourCC("ipma"))
                associations(child);
        }
    }

    void propertyContainer(const Box &box) {
        BoxWalk walk = children(box);
        for (Box property; walk.next(property);) {
            propertyBudget_.take(1);
            meta_.properties.push_back(readProperty(source_, property));
        }
    }

    void associations(const Box &box) {
        const Bytes bytes = bmff::payload(source_, box, largestTable);
        Fields fields(bytes);
        const FullBoxHead head(fields);
        const std::uint32_t count = fields.u32();
        for (std::uint32_t index = 0; index < count; ++index) {
            Item *item = find(head.version == 0 ? fields.u16() : fields.u32());
            const int associated = fields.u8();
            associationBudget_.take(static_cast<std::size_t>(associated) + 1);
            for (int number = 0; number < associated; ++number) {
                // The highest bit means that a reader must understand the property.
                const int property = head.flags & 1 ? fields.u16() & 0x7fff : fields.u8() & 0x7f;
                if (item) // groups may have properties too
                    item->properties.push_back(static_cast<std::uint16_t>(property));
            }
        }
    }

    void groups(const Box &box) {
        BoxWalk walk = children(box);
        for (Box child; walk.next(child);) {
            if (child.type != fourCC("ster") && child.type != fourCC("altr"))
                continue;
            groupBudget_.take(1);
            const Bytes bytes = bmff::payload(source_, child, largestTable);
            Fields fields(bytes);
            fields.skip(4);
            EntityGroup group;
            group.type = child.type;
            group.id = fields.u32();
            const std::uint32_t count = fields.u32();
            entityBudget_.take(count);
            for (std::uint32_t index = 0; index < count; ++index)
                group.entities.push_back(fields.u32());
            meta_.groups.push_back(std::move(group));
        }
    }

    Item *find(std::uint32_t id) {
        const auto found = meta_.itemIndexes.find(id);
        return found == meta_.itemIndexes.end() ? nullptr : &meta_.items[found->second];
    }

    const bmff::Source &source_;
    int boxes_ = 0;
    MetaBox meta_;
    Budget itemBudget_{maximumItems};
    Budget referenceBudget_{maximumReferences};
    Budget propertyBudget_{0x7fff}; // indexes have 15 bits
    Budget associationBudget_{maximumAssociations};
    Budget groupBudget_{maximumGroups};
    Budget entityBudget_{maximumEntities};
};

} // namespace

const Item *MetaBox::item(std::uint32_t id) const {
    const auto found = itemIndexes.find(id);
    return found == itemIndexes.end() ? nullptr : &items[found->second];
}

MetaBox readMetaBox(const bmff::Source &source) {
    return Reader(source).read();
}

} // namespace lumetwin::media::heif
