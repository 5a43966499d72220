// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/metadata/Xmp.h"

#include <pugixml.hpp>

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <utility>

namespace lumetwin::media::images {

namespace {

constexpr std::size_t longestPacket = std::size_t{8} << 20; ///< bytes; the tree takes up to 16 times as much
constexpr int deepestElement = 100;                         ///< cameras and editors stay below 20

constexpr std::string_view rdfSpace = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
constexpr std::string_view tiffSpace = "http://ns.adobe.com/tiff/1.0/";
constexpr std::string_view exifSpace = "http://ns.adobe.com/exif/1.0/";
constexpr std::string_view xmpSpace = "http://ns.adobe.com/xap/1.0/";
constexpr std::string_view noteSpace = "http://ns.adobe.com/xmp/note/";

/// Everything becomes a node, and texts stay as they are written.
constexpr unsigned parsing = pugi::parse_pi | pugi::parse_comments | pugi::parse_cdata | pugi::parse_ws_pcdata |
                             pugi::parse_declaration | pugi::parse_doctype | pugi::parse_fragment;
constexpr unsigned writing = pugi::format_raw | pugi::format_no_escapes | pugi::format_no_declaration;

/// A name with its prefix, as XML has it.
struct QualifiedName {
    std::string_view prefix;
    std::string_view local;

    explicit QualifiedName(std::string_view name) : local(name) {
        if (const auto colon = name.find(':'); colon != name.npos) {
            prefix = name.substr(0, colon);
            local = name.substr(colon + 1);
        }
    }
};

/// The namespaces that an element and the elements around it declare.
class Namespaces {
public:
    explicit Namespaces(pugi::xml_node element, const Namespaces *around = nullptr) : around_(around) {
        for (const pugi::xml_attribute attribute : element.attributes()) {
            const QualifiedName name(attribute.name());
            if (name.prefix == "xmlns")
                declared_.emplace(name.local, attribute.value());
            else if (name.prefix.empty() && name.local == "xmlns")
                declared_.emplace("", attribute.value());
        }
    }

    std::string_view of(std::string_view prefix) const {
        if (const auto found = declared_.find(prefix); found != declared_.end())
            return found->second;
        return around_ ? around_->of(prefix) : std::string_view{};
    }

private:
    std::map<std::string_view, std::string_view> declared_;
    const Namespaces *around_;
};

/// A property of the picture, and what it has to say; nothing where it has to go.
struct Rule {
    std::string_view space;
    std::string_view name;
    std::optional<std::string> value;
};

class DepthLimit : public pugi::xml_tree_walker {
    bool for_each(pugi::xml_node &) override { return depth() < deepestElement; }
};

/// One element that stands alone, beside comments, instructions and white space.
bool hasOneRoot(const pugi::xml_document &document) {
    int roots = 0;
    for (const pugi::xml_node node : document) {
        const bool text = node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata;
        if (node.type() == pugi::node_doctype ||
            (text && std::string_view(node.value()).find_first_not_of(" \t\r\n") != std::string_view::npos))
            return false;
        roots += node.type() == pugi::node_element ? 1 : 0;
    }
    return roots == 1;
}

/// False where the packet is refused.
bool parse(std::string_view packet, pugi::xml_document &document) {
    while (packet.ends_with('\0'))
        packet.remove_suffix(1); // some writers end it so
    if (packet.size() > longestPacket || packet.find('\0') != packet.npos)
        return false;
    DepthLimit limit;
    return document.load_buffer(packet.data(), packet.size(), parsing, pugi::encoding_utf8) && hasOneRoot(document) &&
           document.traverse(limit);
}

class Correction {
public:
    Correction(int width, int height)
        : rules_{{{tiffSpace, "Orientation", "1"},
                  {tiffSpace, "ImageWidth", std::to_string(width)},
                  {tiffSpace, "ImageLength", std::to_string(height)},
                  {exifSpace, "PixelXDimension", std::to_string(width)},
                  {exifSpace, "PixelYDimension", std::to_string(height)},
                  {xmpSpace, "Thumbnails", {}},
                  {noteSpace, "HasExtendedXMP", {}}}} {}

    /// The packet is one rdf:RDF, or an element around it.
    void apply(pugi::xml_document &document) {
        const pugi::xml_node root = document.document_element();
        const Namespaces namespaces(root);
        if (isRdf(root, namespaces))
            applyToDescriptions(root, namespaces);
        else
            for (const pugi::xml_node child : root.children())
                if (const Namespaces inner(child, &namespaces); isRdf(child, inner))
                    applyToDescriptions(child, inner);
    }

    bool changed() const { return changed_; }
    /// Whether an element had one attribute twice, which XML forbids.
    bool damaged() const { return damaged_; }

private:
    static bool isRdf(pugi::xml_node element, const Namespaces &namespaces) {
        const QualifiedName name(element.name());
        return name.local == "RDF" && namespaces.of(name.prefix) == rdfSpace;
    }

    void applyToDescriptions(pugi::xml_node rdf, const Namespaces &namespaces) {
        for (const pugi::xml_node description : rdf.children()) {
            const Namespaces inner(description, &namespaces);
            applyToAttributes(description, inner);
            applyToElements(description, inner);
        }
    }

    void applyToAttributes(pugi::xml_node description, const Namespaces &namespaces) {
        std::array<bool, ruleCount> seen{};
        pugi::xml_attribute unwanted;
        for (pugi::xml_attribute attribute : description.attributes()) {
            const QualifiedName name(attribute.name());
            const Rule *rule = name.prefix.empty() ? nullptr : ruleFor(name, namespaces);
            if (!rule)
                continue;
            damaged_ |= std::exchange(seen[static_cast<std::size_t>(rule - rules_.data())], true);
            if (!rule->value)
                unwanted = attribute;
            else if (*rule->value != attribute.value())
                changed_ |= attribute.set_value(rule->value->c_str());
        }
        if (unwanted)
            changed_ |= description.remove_attribute(unwanted);
    }

    void applyToElements(pugi::xml_node description, const Namespaces &namespaces) {
        for (pugi::xml_node property = description.first_child(), next; property; property = next) {
            next = property.next_sibling();
            const QualifiedName name(property.name());
            const Rule *rule = ruleFor(name, Namespaces(property, &namespaces));
            if (rule && !rule->value)
                changed_ |= description.remove_child(property);
            else if (rule && *rule->value != property.child_value())
                replace(property, name, *rule);
        }
    }

    /// The value alone, whatever form it had.
    void replace(pugi::xml_node property, const QualifiedName &name, const Rule &rule) {
        property.remove_children();
        if (property.first_attribute()) { // one of them may declare the namespace
            const std::string declaration = name.prefix.empty() ? "xmlns" : "xmlns:" + std::string(name.prefix);
            property.remove_attributes();
            property.append_attribute(declaration.c_str()) = std::string(rule.space).c_str();
        }
        changed_ |= property.append_child(pugi::node_pcdata).set_value(rule.value->c_str());
    }

    const Rule *ruleFor(const QualifiedName &name, const Namespaces &namespaces) const {
        for (const Rule &rule : rules_)
            if (rule.name == name.local && rule.space == namespaces.of(name.prefix))
                return &rule;
        return nullptr;
    }

    static constexpr std::size_t ruleCount = 7;
    std::array<Rule, ruleCount> rules_;
    bool changed_ = false;
    bool damaged_ = false;
};

struct StringWriter : pugi::xml_writer {
    std::string text;
    void write(const void *data, std::size_t size) override { text.append(static_cast<const char *>(data), size); }
};

/// Values are written between double quotes.
class QuotesInValues : public pugi::xml_tree_walker {
    bool for_each(pugi::xml_node &node) override {
        for (pugi::xml_attribute attribute : node.attributes()) {
            std::string value = attribute.value();
            if (value.find('"') == value.npos)
                continue;
            std::string escaped;
            for (const char character : value)
                escaped += character == '"' ? "&quot;" : std::string(1, character);
            attribute.set_value(escaped.c_str());
        }
        return true;
    }
};

std::string written(pugi::xml_document &document) {
    QuotesInValues quotes;
    document.traverse(quotes);
    StringWriter writer;
    document.save(writer, "", writing, pugi::encoding_utf8);
    return std::move(writer.text);
}

/// Looks for what says that there is more than one ordinary picture.
class ExtrasWalker : public pugi::xml_tree_walker {
public:
    PhotoExtras extras;

private:
    bool for_each(pugi::xml_node &node) override {
        lookAt(node.name(), node.child_value());
        for (const pugi::xml_attribute attribute : node.attributes())
            lookAt(attribute.name(), attribute.value());
        return true;
    }

    void lookAt(std::string_view name, std::string_view value) {
        const QualifiedName qualified(name);
        const bool declares = qualified.prefix == "xmlns" || name == "xmlns";
        const bool tellsMeaning = qualified.local == "Semantic";
        extras.gainMap |= (declares && isIn(gainMapSpaces, value)) || (tellsMeaning && value == "GainMap");
        extras.depthMap |= (declares && isIn(depthMapSpaces, value)) || (tellsMeaning && value == "Depth");
        extras.film |= (qualified.local == "MotionPhoto" || qualified.local == "MicroVideo") && value == "1";
    }

    static bool isIn(const std::array<std::string_view, 2> &spaces, std::string_view value) {
        return std::ranges::find(spaces, value) != spaces.end();
    }

    static constexpr std::array<std::string_view, 2> gainMapSpaces{"http://ns.adobe.com/hdr-gain-map/1.0/",
                                                                   "http://ns.apple.com/HDRGainMap/1.0/"};
    static constexpr std::array<std::string_view, 2> depthMapSpaces{"http://ns.google.com/photos/1.0/depthmap/",
                                                                    "http://ns.google.com/photos/dd/1.0/"};
};

constexpr std::array<std::pair<std::string_view, std::string_view>, 3> projections{
    {{"equirectangular", "equi"}, {"cylindrical", "cyli"}, {"fisheye", "fish"}}};

/// Both eyes in one picture; the left one is on the left or on top.
std::optional<StereoPacking> packingOf(std::string_view stereoMode) {
    if (stereoMode == "left-right")
        return StereoPacking{StereoPacking::Arrangement::sideBySide, false, false};
    if (stereoMode == "top-bottom")
        return StereoPacking{StereoPacking::Arrangement::overUnder, false, false};
    return std::nullopt;
}

/// Looks for properties of panoramas. Their names are their own, so that the prefix is not asked.
class PanoramaWalker : public pugi::xml_tree_walker {
public:
    Panorama panorama;

private:
    bool for_each(pugi::xml_node &node) override {
        lookAt(node.name(), node.child_value());
        for (const pugi::xml_attribute attribute : node.attributes())
            lookAt(attribute.name(), attribute.value());
        return true;
    }

    void lookAt(std::string_view name, std::string_view value) {
        const QualifiedName qualified(name);
        if (qualified.local == "ProjectionType") {
            for (const auto &[word, code] : projections)
                if (value == word)
                    panorama.projection = code;
        } else if (qualified.local == "StereoMode") {
            panorama.packing = packingOf(value);
        }
    }
};

} // namespace

std::string correctedXmp(std::string packet, int width, int height) {
    pugi::xml_document document;
    if (!parse(packet, document))
        return {};
    Correction correction(width, height);
    correction.apply(document);
    if (correction.damaged())
        return {};
    return correction.changed() ? written(document) : packet;
}

PhotoExtras xmpExtras(std::string_view packet) {
    pugi::xml_document document;
    if (!parse(packet, document))
        return {};
    ExtrasWalker walker;
    document.traverse(walker);
    return walker.extras;
}

Panorama xmpPanorama(std::string_view packet) {
    pugi::xml_document document;
    if (!parse(packet, document))
        return {};
    PanoramaWalker walker;
    document.traverse(walker);
    return walker.panorama;
}

} // namespace lumetwin::media::images
