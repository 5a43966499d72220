// SPDX-License-Identifier: GPL-3.0-or-later
#include "media/metadata/Xmp.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace lumetwin::test {
namespace {

using media::PhotoExtras;
using media::images::correctedXmp;
using media::images::xmpExtras;
using testing::HasSubstr;
using testing::Not;

const std::string rdf = "http://www.w3.org/1999/02/22-rdf-syntax-ns#";
const std::string tiff = " xmlns:tiff=\"http://ns.adobe.com/tiff/1.0/\"";
const std::string exif = " xmlns:exif=\"http://ns.adobe.com/exif/1.0/\"";

/// A whole packet around one description, with the room for later changes that writers leave behind it.
std::string packet(const std::string &attributes, const std::string &elements = "") {
    return "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>\n"
           "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">\n <rdf:RDF xmlns:rdf=\"" +
           rdf + "\">\n  <rdf:Description rdf:about=\"\"" + attributes + ">" + elements +
           "</rdf:Description>\n </rdf:RDF>\n</x:xmpmeta>\n" + std::string(200, ' ') + "\n<?xpacket end=\"w\"?>";
}

std::string corrected(const std::string &text) {
    return correctedXmp(text, 640, 480);
}

TEST(Xmp, valuesOfThePictureAreCorrectedInBothForms) {
    EXPECT_EQ(corrected(packet(tiff + exif + " tiff:Orientation=\"6\" tiff:ImageWidth=\"9\" tiff:ImageLength=\"8\"",
                               "<exif:PixelXDimension>7</exif:PixelXDimension>"
                               "<exif:PixelYDimension>6</exif:PixelYDimension>")),
              packet(tiff + exif + " tiff:Orientation=\"1\" tiff:ImageWidth=\"640\" tiff:ImageLength=\"480\"",
                     "<exif:PixelXDimension>640</exif:PixelXDimension>"
                     "<exif:PixelYDimension>480</exif:PixelYDimension>"));
}

TEST(Xmp, whatNeedsNoChangeStaysByteForByte) {
    const std::string untouched = packet(tiff + " tiff:Orientation='1'  tiff:Make = \"A &amp; B\"",
                                         "\r\n<a:b xmlns:a='urn:a'></a:b><!-- <tiff:Orientation>6 --> ");
    EXPECT_EQ(corrected(untouched), untouched);
}

TEST(Xmp, textsThatAreNotOursStayByteForByteInAChangedPacket) {
    const std::string others = "\r\n <dc:title xmlns:dc=\"http://purl.org/dc/elements/1.1/\">tiff:Orientation=\"6\" "
                               "&lt;b&gt; &#13;&#x41; \xE5\x8F\xB3 <![CDATA[<tiff:Orientation>6]]></dc:title>"
                               "<!-- a <comment> --><?other instruction?>\n\t";
    const std::string more = " tiff:Make=\"&#10;A &quot;B&quot; 'C' &amp;&unknown;\"";
    EXPECT_EQ(corrected(packet(tiff + " tiff:Orientation=\"6\"" + more, others)),
              packet(tiff + " tiff:Orientation=\"1\"" + more, others));
}

TEST(Xmp, singleQuotesBecomeDoubleOnesWithoutEndingTheValue) {
    const std::string text = corrected(packet(tiff + " tiff:Orientation='6' tiff:Make='say \"A\" > 1'"));
    EXPECT_THAT(text, HasSubstr(" tiff:Orientation=\"1\" tiff:Make=\"say &quot;A&quot; > 1\""));
}

TEST(Xmp, namesAreToldByTheirNamespacesNotByTheirPrefixes) {
    EXPECT_THAT(corrected(packet(" xmlns:t=\"http://ns.adobe.com/tiff/1.0/\" t:Orientation=\"6\"")),
                HasSubstr(" t:Orientation=\"1\""));
    EXPECT_THAT(corrected(packet("", "<Orientation xmlns=\"http://ns.adobe.com/tiff/1.0/\">6</Orientation>")),
                HasSubstr("<Orientation xmlns=\"http://ns.adobe.com/tiff/1.0/\">1</Orientation>"));
    const std::string foreign = packet(" xmlns:tiff=\"urn:else\" tiff:Orientation=\"6\" Orientation=\"6\"");
    EXPECT_EQ(corrected(foreign), foreign);
}

TEST(Xmp, onlyThePicturesOwnPropertiesAreCorrected) {
    const std::string ingredient =
        packet(tiff, "<x:from xmlns:x=\"urn:x\"><rdf:Description tiff:Orientation=\"6\"/></x:from>");
    EXPECT_EQ(corrected(ingredient), ingredient);
}

TEST(Xmp, everyDescriptionAndABareTreeAreCorrected) {
    const std::string bare =
        "<rdf:RDF xmlns:rdf=\"" + rdf + "\"" + tiff +
        "><rdf:Description tiff:Orientation=\"6\"/><rdf:Description tiff:Orientation=\"8\"/></rdf:RDF>";
    EXPECT_EQ(corrected(bare),
              "<rdf:RDF xmlns:rdf=\"" + rdf + "\"" + tiff +
                  "><rdf:Description tiff:Orientation=\"1\"/><rdf:Description tiff:Orientation=\"1\"/></rdf:RDF>");
}

TEST(Xmp, aValueWithQualifiersBecomesASimpleOne) {
    EXPECT_THAT(
        corrected(packet("", "<t:Orientation xmlns:t=\"http://ns.adobe.com/tiff/1.0/\" rdf:parseType=\"Resource\">"
                             "<rdf:value>6</rdf:value></t:Orientation>")),
        HasSubstr("<t:Orientation xmlns:t=\"http://ns.adobe.com/tiff/1.0/\">1</t:Orientation>"));
}

TEST(Xmp, thumbnailsAndTheExtensionGo) {
    const std::string note = " xmlns:xmpNote=\"http://ns.adobe.com/xmp/note/\"";
    const std::string xmp = " xmlns:xmp=\"http://ns.adobe.com/xap/1.0/\"";
    EXPECT_EQ(corrected(packet(note + xmp + " xmpNote:HasExtendedXMP=\"0123\" xmp:Rating=\"5\"",
                               "<xmp:Thumbnails><rdf:Alt><rdf:li/></rdf:Alt></xmp:Thumbnails>")),
              packet(note + xmp + " xmp:Rating=\"5\"")
                  .replace(packet(note + xmp + " xmp:Rating=\"5\"").find("></rdf:De"), 19, "/>"));
    EXPECT_THAT(corrected(packet(note, "a<xmpNote:HasExtendedXMP>0123</xmpNote:HasExtendedXMP>")),
                HasSubstr(note + ">a</rdf:Description>"));
}

TEST(Xmp, zerosBehindThePacketAreNoPartOfIt) {
    EXPECT_THAT(corrected(packet(tiff + " tiff:Orientation=\"6\"") + std::string(3, '\0')),
                HasSubstr("tiff:Orientation=\"1\""));
}

TEST(Xmp, whatIsNoPacketIsLeftOut) {
    const std::string good = packet(tiff + " tiff:Orientation=\"6\"");
    for (const std::string &text :
         {std::string(), std::string(" \n"), std::string("no XML"), good.substr(0, good.size() / 2), good + "<a/>",
          good + "text", std::string("\0\0<\0a\0/\0>", 9),
          good.substr(0, 100) + std::string(1, '\0') + good.substr(100)})
        EXPECT_EQ(corrected(text), "") << text;
}

TEST(Xmp, anAttributeThatIsThereTwiceIsNoXml) {
    const std::string two = tiff + " xmlns:t=\"http://ns.adobe.com/tiff/1.0/\" tiff:Orientation=\"6\"";
    EXPECT_EQ(corrected(packet(two + " tiff:Orientation=\"8\"")), "");
    EXPECT_EQ(corrected(packet(two + " t:Orientation=\"8\"")), "");
    EXPECT_EQ(corrected(packet(" xmlns:n=\"http://ns.adobe.com/xmp/note/\" n:HasExtendedXMP='0' n:HasExtendedXMP='1'")),
              "");
}

TEST(Xmp, entitiesAreNeverDefinedAndNeverExpanded) {
    const std::string bomb = "<!DOCTYPE x [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;\">]>";
    EXPECT_EQ(corrected(bomb + packet(tiff + " tiff:Orientation=\"6\" tiff:Make=\"&b;\"")), "");
    EXPECT_EQ(corrected("<!DOCTYPE x SYSTEM \"file:///etc/passwd\">" + packet("")), "");
}

std::string nested(int depth) {
    std::string elements;
    for (int level = 0; level < depth; ++level)
        elements += "<a>";
    for (int level = 0; level < depth; ++level)
        elements += "</a>";
    return packet(tiff + " tiff:Orientation=\"6\"", elements);
}

TEST(Xmp, deepPacketsAreLeftOut) {
    EXPECT_THAT(corrected(nested(80)), HasSubstr("tiff:Orientation=\"1\""));
    EXPECT_EQ(corrected(nested(200)), "");
    EXPECT_EQ(corrected(nested(1'000'000)), "") << "without taking the stack";
    EXPECT_EQ(xmpExtras(nested(1'000'000)), PhotoExtras{});
}

TEST(Xmp, longPacketsAreLeftOut) {
    EXPECT_THAT(corrected(packet(tiff + " tiff:Orientation=\"6\"", std::string(1 << 20, 'a'))),
                HasSubstr("tiff:Orientation=\"1\""));
    EXPECT_EQ(corrected(packet(tiff + " tiff:Orientation=\"6\"", std::string(9 << 20, 'a'))), "");
}

/// Each of them made of so many pieces that comparing each with each would take minutes.
TEST(Xmp, manyAttributesAndElementsAreCorrectedAllTheSame) {
    std::string attributes = tiff + " tiff:Orientation=\"6\"";
    std::string elements;
    for (int piece = 0; piece < 100'000; ++piece) {
        attributes += " xmlns:p" + std::to_string(piece) + "=\"\"";
        elements += "<p" + std::to_string(piece) + ":Orientation/>";
    }
    EXPECT_THAT(corrected(packet(attributes, elements)), HasSubstr("tiff:Orientation=\"1\""));
}

TEST(Xmp, extrasAreTold) {
    EXPECT_EQ(xmpExtras(packet("")), PhotoExtras{});
    EXPECT_EQ(xmpExtras(packet(" xmlns:g=\"http://ns.adobe.com/hdr-gain-map/1.0/\"")),
              (PhotoExtras{true, false, false}));
    EXPECT_EQ(xmpExtras(packet(" xmlns:g='http://ns.google.com/photos/dd/1.0/'")), (PhotoExtras{false, true, false}));
    EXPECT_EQ(xmpExtras(packet(" GCamera:MicroVideo='1'")), (PhotoExtras{false, false, true}));
    EXPECT_EQ(xmpExtras(packet("", "<C:Directory><rdf:Seq><rdf:li I:Semantic=\"GainMap\"/><rdf:li>"
                                   "<I:Semantic>Depth</I:Semantic></rdf:li></rdf:Seq></C:Directory>")),
              (PhotoExtras{true, true, false}));
    EXPECT_EQ(xmpExtras(packet("", "<!-- GCamera:MotionPhoto=\"1\" --><a>GCamera:MotionPhoto=\"1\"</a>")),
              PhotoExtras{});
    EXPECT_EQ(xmpExtras("<x GCamera:MotionPhoto=\"1\">"), PhotoExtras{}) << "no XML";
}

} // namespace
} // namespace lumetwin::test
