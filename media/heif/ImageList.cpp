// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/heif/ImageList.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace lumetwin::media::heif {

namespace {

using bmff::FormatError;
using bmff::fourCC;

constexpr std::array imageTypes{fourCC("hvc1"), fourCC("hev1"), fourCC("lhv1"), fourCC("avc1"), fourCC("av01"),
                                fourCC("vvc1"), fourCC("evc1"), fourCC("jpeg"), fourCC("j2k1"), fourCC("unci"),
                                fourCC("grid"), fourCC("iovl"), fourCC("iden"), fourCC("tili")};
// An image with a second one that describes its tone mapping. It represents the first image that it is derived from
// (ISO/IEC 23008-12, amendment on tone map derivation).
constexpr std::uint32_t toneMapped = fourCC("tmap");
constexpr std::string_view gainMapKind = "urn:com:apple:photo:2020:aux:hdrgainmap";
/// The first two are from ISO/IEC 23008-12 (6.5.8 and annex B). Depth cameras also use them for disparities.
constexpr std::array<std::string_view, 3> depthKinds{"urn:mpeg:hevc:2015:auxid:2",
                                                     "urn:mpeg:mpegB:cicp:systems:auxiliary:depth",
                                                     "urn:com:apple:photo:2018:aux:disparity"};

bool isImageType(std::uint32_t type) {
    return std::ranges::find(imageTypes, type) != imageTypes.end();
}

/// Detects cycles and too deep nesting among derived images.
class Derivations {
public:
    explicit Derivations(const MetaBox &meta)
        : meta_(meta), parts_(meta.items.size()), heights_(meta.items.size(), -1) {
        for (const ItemReference &reference : meta.references) {
            const auto found = meta.itemIndexes.find(reference.from);
            if (reference.type == fourCC("dimg") && found != meta.itemIndexes.end())
                parts_[found->second].push_back(&reference);
        }
        for (std::size_t item = 0; item < parts_.size(); ++item)
            height(item, 0);
    }

    const std::vector<const ItemReference *> &partsOf(std::size_t item) const { return parts_[item]; }

private:
    int height(std::size_t item, int depth) {
        if (depth > deepestDerivation)
            throw FormatError("its images are made of each other");
        if (heights_[item] < 0) {
            int tallest = -1;
            for (const ItemReference *reference : parts_[item])
                for (const std::uint32_t part : reference->to)
                    if (const auto found = meta_.itemIndexes.find(part); found != meta_.itemIndexes.end())
                        tallest = std::max(tallest, height(found->second, depth + 1));
            heights_[item] = tallest + 1;
        }
        if (depth + heights_[item] > deepestDerivation)
            throw FormatError("its images are made of each other");
        return heights_[item];
    }

    const MetaBox &meta_;
    std::vector<std::vector<const ItemReference *>> parts_;
    std::vector<int> heights_;
};

/// The fraction as an integer number of pixels, if it is one and at most atMost.
std::uint32_t pixels(std::int64_t numerator, std::int64_t denominator, std::uint32_t atMost) {
    if (denominator <= 0 || numerator <= 0)
        return 0;
    return static_cast<std::uint32_t>(std::min<std::int64_t>(numerator / denominator, atMost));
}

class Interpreter {
public:
    explicit Interpreter(const MetaBox &meta) : meta_(meta), derivations_(meta), excluded_(meta.items.size(), false) {}

    HeifFile interpret() {
        exclude();
        list();
        describe();
        file_.hasMovie = meta_.hasMovie;
        noteExtras();
        if (meta_.primaryItem)
            file_.primary = image(*meta_.primaryItem);
        for (const EntityGroup &group : meta_.groups)
            if (group.type == fourCC("ster"))
                file_.stereoGroups.push_back(stereoGroup(group));
        return std::move(file_);
    }

private:
    void exclude(std::uint32_t id) {
        if (const auto found = meta_.itemIndexes.find(id); found != meta_.itemIndexes.end())
            excluded_[found->second] = true;
    }

    /// Marks thumbnails, auxiliary images and the tiles of grids.
    void exclude() {
        for (const ItemReference &reference : meta_.references) {
            const Item *from = meta_.item(reference.from);
            if (reference.type == fourCC("thmb") || reference.type == fourCC("auxl"))
                exclude(reference.from);
            else if (reference.type == fourCC("dimg") && from && from->type == fourCC("grid"))
                std::ranges::for_each(reference.to, [&](std::uint32_t id) { exclude(id); });
            else if (reference.type == fourCC("dimg") && from && from->type == toneMapped && reference.to.size() > 1)
                exclude(reference.to[1]); // the gain map
        }
        for (std::size_t index = 0; index < meta_.items.size(); ++index)
            if (property<AuxiliaryImage>(meta_.items[index]))
                excluded_[index] = true;
    }

    void noteExtras() {
        for (const Item &item : meta_.items) {
            const auto *auxiliary = property<AuxiliaryImage>(item);
            const std::string_view kind = auxiliary ? std::string_view(auxiliary->kind) : std::string_view();
            file_.hasGainMap = file_.hasGainMap || item.type == toneMapped || kind == gainMapKind;
            file_.hasDepthMap = file_.hasDepthMap || std::ranges::find(depthKinds, kind) != depthKinds.end();
        }
    }

    /// The index of the item that a tone-mapped item represents; nullopt when the file does not say.
    std::optional<std::size_t> toneMapBase(std::size_t item) const {
        for (const ItemReference *reference : derivations_.partsOf(item))
            if (!reference->to.empty())
                if (const auto found = meta_.itemIndexes.find(reference->to[0]); found != meta_.itemIndexes.end())
                    return found->second;
        return std::nullopt;
    }

    void list() {
        for (std::size_t index = 0; index < meta_.items.size(); ++index) {
            const Item &item = meta_.items[index];
            if (item.hidden || excluded_[index])
                continue;
            if (isImageType(item.type))
                add(index);
            else if (item.type == toneMapped)
                if (const auto base = toneMapBase(index);
                    base && meta_.items[*base].hidden && !excluded_[*base] && isImageType(meta_.items[*base].type))
                    add(*base);
        }
        for (std::size_t index = 0; index < meta_.items.size(); ++index)
            if (meta_.items[index].type == toneMapped)
                if (const auto base = toneMapBase(index))
                    if (const auto found = imageOf_.find(meta_.items[*base].id); found != imageOf_.end())
                        imageOf_.emplace(meta_.items[index].id, found->second);
    }

    void add(std::size_t item) {
        if (!imageOf_.emplace(meta_.items[item].id, file_.images.size()).second)
            return;
        HeifImage image;
        image.item = meta_.items[item].id;
        file_.images.push_back(std::move(image));
    }

    template <typename Kind> const Kind *property(const Item &item) const {
        for (const std::uint16_t index : item.properties)
            if (index > 0 && index <= meta_.properties.size())
                if (const Kind *found = std::get_if<Kind>(&meta_.properties[index - 1u]))
                    return found;
        return nullptr;
    }

    template <typename Kind> std::optional<Kind> copyOf(const Item &item) const {
        const Kind *found = property<Kind>(item);
        return found ? std::optional(*found) : std::nullopt;
    }

    void describe() {
        for (HeifImage &image : file_.images) {
            const Item &item = *meta_.item(image.item);
            if (const auto *size = property<ImageSize>(item)) {
                image.codedWidth = size->width;
                image.codedHeight = size->height;
            }
            image.coding = codingOf(meta_.itemIndexes.at(image.item), image.encrypted);
            image.intrinsics = copyOf<CameraIntrinsics>(item);
            if (const auto *position = property<CameraPosition>(item))
                image.position = position->micrometres;
            if (const auto *adjustment = property<DisparityAdjustment>(item))
                image.disparityAdjustment = adjustment->value;
            transform(image, item);
        }
    }

    /// The type of the item with the coded samples of an image's first part, and whether any item on the way is
    /// encrypted. There are no cycles, because derivations were checked before.
    std::uint32_t codingOf(std::size_t index, bool &encrypted) const {
        for (;;) {
            const Item &item = meta_.items[index];
            encrypted = encrypted || item.encrypted;
            const auto &parts = derivations_.partsOf(index);
            if (parts.empty() || parts.front()->to.empty())
                return item.type;
            const auto part = meta_.itemIndexes.find(parts.front()->to.front());
            if (part == meta_.itemIndexes.end())
                return item.type;
            index = part->second;
        }
    }

    void transform(HeifImage &image, const Item &item) {
        image.width = image.shownWidth = image.codedWidth;
        image.height = image.shownHeight = image.codedHeight;
        bool turned = false;
        for (const std::uint16_t index : item.properties) {
            if (index == 0 || index > meta_.properties.size())
                continue;
            const auto *step = std::get_if<HeifTransform>(&meta_.properties[index - 1u]);
            if (!step)
                continue;
            image.transforms.push_back(*step);
            if (step->kind == HeifTransform::Kind::crop) {
                image.shownWidth = pixels(step->aperture[0], step->aperture[1], image.shownWidth);
                image.shownHeight = pixels(step->aperture[2], step->aperture[3], image.shownHeight);
            } else if (step->kind == HeifTransform::Kind::rotate && step->quarterTurns % 2 == 1) {
                std::swap(image.shownWidth, image.shownHeight);
                turned = !turned;
            }
        }
        image.width = turned ? image.shownHeight : image.shownWidth;
        image.height = turned ? image.shownWidth : image.shownHeight;
    }

    /// The index of the image of an item id.
    std::optional<std::size_t> image(std::uint32_t id) const {
        const auto found = imageOf_.find(id);
        return found == imageOf_.end() ? std::nullopt : std::optional(found->second);
    }

    /// The index of the image of an id in a group: an item, a group of alternatives, or one of several alternatives.
    std::optional<std::size_t> entity(std::uint32_t id) const {
        if (const auto direct = image(id))
            return direct;
        for (const EntityGroup &group : meta_.groups) {
            if (group.type != fourCC("altr"))
                continue;
            if (group.id != id && std::ranges::find(group.entities, id) == group.entities.end())
                continue;
            for (const std::uint32_t alternative : group.entities)
                if (const auto found = image(alternative))
                    return found;
        }
        return std::nullopt;
    }

    HeifStereoGroup stereoGroup(const EntityGroup &group) const {
        HeifStereoGroup pair{group.id, group.entities, {}, {}};
        if (!group.entities.empty())
            pair.left = entity(group.entities[0]);
        if (group.entities.size() > 1)
            pair.right = entity(group.entities[1]);
        return pair;
    }

    const MetaBox &meta_;
    const Derivations derivations_;
    std::vector<bool> excluded_;
    std::unordered_map<std::uint32_t, std::size_t> imageOf_; ///< by an item's id
    HeifFile file_;
};

} // namespace

HeifFile interpret(const MetaBox &meta) {
    return Interpreter(meta).interpret();
}

HeifFile readHeif(const bmff::Source &source) {
    return interpret(readMetaBox(source));
}

} // namespace lumetwin::media::heif
