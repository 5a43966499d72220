// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/Appearance.h"
#include "app/HelpPages.h"
#include "app/Language.h"
#include "app/WindowSizes.h"
#include "engine/texts/Texts.h"
#include "support/Scripted.h"
#include "ui/files/FilePanels.h"
#include "ui/files/WritableFolder.h"
#include "ui/form/FormValues.h"
#include "ui/form/MainFormFrames.h"
#include "ui/form/ResizePreview.h"
#include "ui/progress/ProgressTexts.h"
#include "ui/widgets/Localized.h"
#include "ui/widgets/Mnemonics.h"
#include "ui/widgets/NumberParsing.h"
#include "ui/widgets/Palettes.h"
#include "ui/widgets/Points.h"

#include <QApplication>
#include <QFile>
#include <QLibraryInfo>
#include <QTranslator>

#include <gtest/gtest.h>

#include <limits>

namespace lumetwin {
namespace {

TEST(NumberParsing, ParsesWholeDecimalNumbers) {
    EXPECT_EQ(parseDecimal(QStringLiteral("63.4")), 63.4);
    EXPECT_EQ(parseDecimal(QStringLiteral("-100")), -100.0);
    EXPECT_EQ(parseDecimal(QStringLiteral("+.5")), 0.5);
    EXPECT_EQ(parseDecimal(QStringLiteral("1e2")), 100.0);
    for (const char *text :
         {"", " 63.4", "63.4 ", "6,3,4", "1,234.5", "63.4°", "abc", "0x10", "nan", "inf", "+-5", "--5", "1e999"})
        EXPECT_FALSE(parseDecimal(QString::fromUtf8(text))) << text;
}

TEST(NumberParsing, AcceptsACommaOrAPoint) {
    EXPECT_EQ(parseDecimal(QStringLiteral("63,4")), 63.4);
    EXPECT_EQ(parseDecimal(QStringLiteral("-,5")), -0.5);
    EXPECT_FALSE(parseInteger(QStringLiteral("1,920")));
}

TEST(NumberParsing, ParsesWholeIntegers) {
    EXPECT_EQ(parseInteger(QStringLiteral("1920")), 1920);
    EXPECT_EQ(parseInteger(QStringLiteral("+1920")), 1920);
    EXPECT_EQ(parseInteger(QStringLiteral("-3")), -3);
    EXPECT_EQ(parseInteger(QStringLiteral("9223372036854775807")), std::numeric_limits<std::int64_t>::max());
    for (const char *text : {"", "9223372036854775808", "19 20", "1920.0", "1e3", "+-1", "px", "١٩"})
        EXPECT_FALSE(parseInteger(QString::fromUtf8(text))) << text;
}

TEST(FormValues, AreAcceptedInTheirRange) {
    EXPECT_EQ(fieldValue(fovRange, QStringLiteral("180")), 180.0);
    EXPECT_EQ(fieldValue(disparityRange, QStringLiteral("-100")), -100.0);
    EXPECT_EQ(fieldValue(baselineRange, QStringLiteral("1")), 1.0);
    for (const char *text : {"9.9", "180.1", "wide", ""})
        EXPECT_FALSE(fieldValue(fovRange, QString::fromUtf8(text))) << text;
    EXPECT_EQ(parseEyeSize(QStringLiteral("1")), 1);
    for (const char *text : {"0", "-5", "12.5", ""})
        EXPECT_FALSE(parseEyeSize(QString::fromUtf8(text))) << text;
}

TEST(FormValues, AreShownWithTheirDecimals) {
    EXPECT_EQ(fieldText(fovRange, 90.26), QStringLiteral("90.3"));
    EXPECT_EQ(fieldText(disparityRange, -12.5), QStringLiteral("-12.50"));
    EXPECT_EQ(qualityText(0.756), QStringLiteral("75%"));
    EXPECT_EQ(qualityText(0.29), QStringLiteral("29%"));
    EXPECT_EQ(qualityText(1), QStringLiteral("100%"));
}

TEST(ProgressTexts, CountFilesAndFrames) {
    EXPECT_EQ(fractionOf(0, 0), 0);
    EXPECT_EQ(fractionOf(120, 100), 1.2);
    EXPECT_EQ(batchFraction(1, 4, 0.5), 0.375);
    EXPECT_EQ(batchFraction(1, 4, 1.2), 0.5) << "more frames than announced fill one file";
    EXPECT_EQ(filesText(2, 3, 0.8),
              formatted("progress.files.format", std::int64_t(2), std::int64_t(3), std::int64_t(80)));
    EXPECT_EQ(framesText(16, 0), formatted("progress.frame.processed.format", std::int64_t(16)));
    EXPECT_EQ(framesText(2, 3), formatted("progress.frame.format", std::int64_t(2), std::int64_t(3), std::int64_t(66)));
}

TEST(ProgressTexts, CountFilesByTheirFrames) {
    const std::vector<double> frames{900, 0, 99, 1};
    EXPECT_EQ(batchFraction(frames, 0, 4, 0.5), 0.45);
    EXPECT_EQ(batchFraction(frames, 1, 4, 0.5), 0.9) << "a file that is skipped";
    EXPECT_EQ(batchFraction(frames, 3, 4, 0), 0.999);
    EXPECT_EQ(batchFraction(frames, 3, 4, 1.2), 1);
    EXPECT_EQ(batchFraction(frames, 4, 4, 0), 1);
    for (const std::vector<double> &unknown : {std::vector<double>{}, {1, 2, 3}, {0, 0, 0, 0}})
        EXPECT_EQ(batchFraction(unknown, 1, 4, 0.5), 0.375) << "all files count the same";
}

TEST(ProgressTexts, ShowTheTimeInMinutes) {
    EXPECT_NE(elapsedText(std::chrono::milliseconds(59999)).find("0:59"), std::string::npos);
    EXPECT_NE(elapsedText(std::chrono::seconds(3725)).find("62:05"), std::string::npos);
}

TEST(ProgressTexts, ShowTheTimeLeftOnceItCanBeEstimated) {
    using std::chrono::seconds;
    EXPECT_EQ(timeLeft(seconds(60), 0.25), seconds(180));
    EXPECT_FALSE(timeLeft(seconds(4), 0.25)) << "too early to tell";
    EXPECT_FALSE(timeLeft(seconds(60), 0));
    EXPECT_FALSE(timeLeft(seconds(60), 1));
    EXPECT_EQ(elapsedText(seconds(60), seconds(185)),
              elapsedText(seconds(60)) + " · " + formatted("progress.left.format", std::int64_t(3), std::int64_t(5)));
}

TEST(ProgressTexts, ShowTheSpeedAfterTheFrames) {
    EXPECT_EQ(framesText(2, 3, 47.96), framesText(2, 3) + " · " + formatted("progress.rate.format", 47.96));
}

TEST(ProgressTexts, APhotoHasItsOwnActivityText) {
    EXPECT_EQ(activityText("a.HEIC"), text("progress.photo"));
    EXPECT_EQ(activityText("a.mov"), text("progress.frame.calculating"));
}

TEST(ProgressTexts, ADetailNamesItsFileOnce) {
    EXPECT_EQ(detailLine("a.mov", "Cannot open a.mov: Invalid data"), "a.mov: Cannot open: Invalid data\n");
    EXPECT_EQ(detailLine("a.mov", "not spatial"), "a.mov: not spatial\n");
}

TEST(ProgressTexts, OfferTheOutputsOnlyIfThereAreAny) {
    EXPECT_EQ(resultAlert({.success = true, .message = "done", .showsOutputs = true}).sideButton,
              text("button.show.in.folder"));
    EXPECT_TRUE(resultAlert({.success = true, .message = "done"}).sideButton.empty());
    EXPECT_EQ(resultAlert({.message = "done", .details = "a.mov: broken\n"}).details, "a.mov: broken\n");
}

TEST(ProgressTexts, NothingConvertedIsNotASuccess) {
    BatchResult end{.success = true, .message = "Converted: 0, failed: 0", .skipped = 3};
    end.skipReasons = {text("status.skipped.not.spatial")};
    const Alert alert = resultAlert(end);
    EXPECT_EQ(alert.style, AlertStyle::warning);
    EXPECT_EQ(alert.message, text("alert.nothing.title"));
    EXPECT_NE(alert.informative.find(text("alert.all.skipped.not.spatial")), std::string::npos);
    end.skipReasons = {text("status.skipped.spatial")};
    EXPECT_NE(resultAlert(end).informative.find(text("alert.all.skipped.spatial")), std::string::npos);
    end.skipReasons.insert(text("status.skipped.not.spatial"));
    EXPECT_NE(resultAlert(end).informative.find(text("alert.all.skipped.details")), std::string::npos);
    end.anyConverted = true;
    EXPECT_EQ(resultAlert(end).style, AlertStyle::informational);
    const Alert empty = resultAlert({.message = text("error.no.media.files")});
    EXPECT_EQ(empty.message, text("alert.nothing.title"));
    EXPECT_EQ(empty.informative, text("error.no.media.files") + "\n" + text("alert.nothing.way.on"));
}

TEST(MainFormFrames, HaveTheirPositionsWithoutResizing) {
    const MainFormFrames frames = mainFormFrames(ConversionDirection::spatialToSBS, false);
    EXPECT_EQ(frames.startButton, (PointFrame{20, 20, 680, 48}));
    EXPECT_EQ(frames.commonSection, (PointFrame{20, 82, 680, 138}));
    EXPECT_EQ(frames.optionsSection, (PointFrame{20, 234, 680, 180}));
    EXPECT_EQ(frames.outputSection, (PointFrame{20, 428, 680, 100}));
    EXPECT_EQ(frames.inputSection, (PointFrame{20, 542, 680, 100}));
    EXPECT_EQ(frames.directionSection, (PointFrame{20, 656, 680, 76}));
    EXPECT_EQ(frames.header, (PointFrame{0, 746, 720, 68}));
    EXPECT_EQ(frames.documentHeight, 832);
}

TEST(MainFormFrames, GrowWithResizingAndShrinkWithStereoOptions) {
    EXPECT_EQ(mainFormFrames(ConversionDirection::sbsToSpatial, false).documentHeight, 812);
    EXPECT_EQ(mainFormFrames(ConversionDirection::spatialToSBS, true).documentHeight, 942);
    EXPECT_EQ(mainFormFrames(ConversionDirection::sbsToSpatial, true).commonSection.height, 248);
}

TEST(Points, OriginIsAtTheBottomLeft) {
    const PointScale usual;
    EXPECT_EQ(usual.toQt({20, 20, 680, 48}, 832), QRect(20, 764, 680, 48));
    const PointScale large{1.5, 2};
    EXPECT_EQ(large.toQt({20, 20, 680, 48}, 832), QRect(30, 1528, 1020, 96));
}

TEST(Points, FollowTheFontAndTheScreen) {
    QFont font = QApplication::font();
    font.setPixelSize(13);
    EXPECT_EQ(PointScale::of(font, 1920), (PointScale{1, 1}));
    font.setPixelSize(9);
    EXPECT_EQ(PointScale::of(font, 1920), (PointScale{1, 1}));
    font.setPixelSize(20);
    EXPECT_EQ(PointScale::of(font, 1920), (PointScale{1.5, 1.5}));
    font.setPixelSize(27);
    const PointScale small = PointScale::of(font, 1366);
    EXPECT_EQ(small.y, 2.05);
    EXPECT_LE(720 * small.x, 1366);
    EXPECT_GT(small.x, 1.8);
    EXPECT_NEAR(PointScale::of(font, 800).x, 2.05 * 0.9, 0.001) << "rather scrolled than cut off";
}

class ResizePreview : public testing::Test {
protected:
    void SetUp() override {
        setTextLocale("en");
        settings.enableResize = true;
    }
    std::string preview(std::int64_t width, std::int64_t height) {
        settings.resizeWidth = width;
        settings.resizeHeight = height;
        return resizePreview(settings);
    }
    static std::string sizes(std::int64_t a, std::int64_t b, std::int64_t c, std::int64_t d) {
        return formatted("resize.preview.format", a, b, c, d);
    }
    static std::string eyes(std::int64_t width, std::int64_t height) {
        return formatted("resize.preview.spatial.format", width, height);
    }
    ConversionSettings settings;
};

TEST_F(ResizePreview, WarnsOfOddSizes) {
    EXPECT_EQ(preview(1921, 1080), sizes(3842, 1080, 1921, 1080) + "  " +
                                       formatted("resize.warn.odd.format", std::int64_t(1936), std::int64_t(1088)));
}

TEST_F(ResizePreview, WarnsOfSizesThatAreNoMultipleOf16OnlyTowardsSBS) {
    EXPECT_EQ(preview(1000, 1000), sizes(2000, 1000, 1000, 1000) + "  " +
                                       formatted("resize.warn.not16.format", std::int64_t(1008), std::int64_t(1008)));
    settings.direction = ConversionDirection::sbsToSpatial;
    EXPECT_EQ(preview(1000, 1000), eyes(1000, 1000));
    EXPECT_EQ(preview(1001, 1000),
              eyes(1001, 1000) + "  " + formatted("resize.warn.odd.format", std::int64_t(1008), std::int64_t(1008)));
}

TEST_F(ResizePreview, HalfWidthKeepsTheWidthOfOneEye) {
    settings.halfWidth = true;
    EXPECT_EQ(preview(1920, 1088), sizes(1920, 1088, 960, 1088));
    settings.direction = ConversionDirection::sbsToSpatial;
    EXPECT_EQ(preview(1920, 1088), eyes(1920, 1088)) << "of spatial media each eye is a picture of its own";
}

TEST_F(ResizePreview, HugeSizesDoNotOverflow) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(preview(most - 1, 16).rfind(sizes(most, 16, most / 2, 16), 0), 0U);
    EXPECT_EQ(roundedUpTo16(most - 1), most - 1);
    EXPECT_EQ(roundedUpTo16(1921), 1936);
    EXPECT_EQ(roundedUpTo16(1936), 1936);
}

TEST(Palettes, AccentAndWarningsAreReadable) {
    for (const QColor &accent : {QColor(48, 140, 198), QColor(255, 220, 0), QColor(0, 0, 80), QColor(240, 240, 240)})
        for (const bool dark : {false, true}) {
            QPalette palette(dark ? QColor(40, 40, 40) : QColor(239, 239, 239));
            palette.setColor(QPalette::Base, dark ? Qt::black : Qt::white);
            palette.setColor(QPalette::WindowText, dark ? Qt::white : Qt::black);
            palette.setColor(QPalette::Highlight, accent);
            EXPECT_EQ(isDark(palette), dark);
            EXPECT_GE(contrast(accentColour(palette), Qt::white), 4.5);
            EXPECT_GE(contrast(accentTextColour(palette), sectionColour(palette)), 4.5);
            EXPECT_GE(contrast(warningColour(palette), sectionColour(palette)), 4.5);
            EXPECT_GE(contrast(secondaryTextColour(palette), sectionColour(palette)), 4.5);
            EXPECT_GE(contrast(indicatorEdgeColour(palette), sectionColour(palette)), 3);
        }
}

TEST(WindowSizes, AreTheDefaultSizesOnALargeScreen) {
    const WindowSizes sizes = windowSizes({1, 1}, {1920, 1080}, 22);
    EXPECT_EQ(sizes.initial, QSize(720, 882));
    EXPECT_EQ(sizes.minimum, QSize(680, 760));
}

TEST(WindowSizes, FitASmallScreen) {
    const WindowSizes sizes = windowSizes({1, 1}, {1366, 728}, 22);
    EXPECT_EQ(sizes.initial.width(), 720);
    EXPECT_LT(sizes.initial.height(), 728);
    EXPECT_LE(sizes.minimum.height(), sizes.initial.height());
}

TEST(HelpPages, LieUnderTheirPathsOnASecureSite) {
    const QUrl url = helpSiteUrl(helpPathJA);
    EXPECT_EQ(url.isValid(), !QStringLiteral(LUMETWIN_HELP_HOST).isEmpty());
    if (url.isValid()) {
        EXPECT_EQ(url, QUrl(QStringLiteral("https://" LUMETWIN_HELP_HOST "/mac/lumetw/index.html")));
    }
    EXPECT_STREQ(helpPathEN, "/mac/lumetw/index_en.html");
}

TEST(HelpPages, WithoutASiteTheInstalledOnesAreFound) {
    const test::ScratchFolder scratch;
    const QString programs = QString::fromStdString(scratch.folder("bin").string());
    EXPECT_FALSE(installedHelpUrl(programs, helpPathJA).isValid()) << "nothing is installed";
    for (const char *path : {helpPathJA, helpPathEN}) {
        const std::filesystem::path page = scratch.path / ("share/lumetwin/help" + std::string(path));
        std::filesystem::create_directories(page.parent_path());
        std::ofstream(page) << "x";
        const QUrl url = installedHelpUrl(programs, path);
        EXPECT_TRUE(url.isLocalFile());
        EXPECT_EQ(url.toLocalFile().toStdString(), std::filesystem::canonical(page).string());
    }
}

TEST(Mnemonics, AreMarkedInTheTextOrAppendedToIt) {
    EXPECT_EQ(withMnemonic(QStringLiteral("Video format"), 'f'), QStringLiteral("Video &format"));
    EXPECT_EQ(withMnemonic(QString::fromUtf8("画質"), 'q').toStdString(), "画質(&Q)");
    EXPECT_EQ(withMnemonic(QStringLiteral("Sound & picture"), 'p'), QStringLiteral("Sound && &picture"));
}

TEST(WritableFolder, IsTestedWithAFileThatIsRemovedAgain) {
    const test::ScratchFolder scratch;
    EXPECT_TRUE(canWriteInto(scratch.path));
    EXPECT_TRUE(std::filesystem::is_empty(scratch.path));
    EXPECT_FALSE(canWriteInto(scratch.path / "missing"));
    EXPECT_FALSE(canWriteInto("/proc"));
}

TEST(MediaFilters, OfferEveryExtensionInBothCases) {
    const QStringList filters = mediaFilters();
    ASSERT_EQ(filters.size(), 4);
    for (const char *pattern : {"*.mov ", "*.MOV ", "*.webm ", "*.3GP ", "*.heic ", "*.TIF ", "*.mpo ", "*.PNS)"})
        EXPECT_TRUE(filters.first().contains(QLatin1String(pattern))) << pattern;
    EXPECT_TRUE(filters.last().endsWith(QStringLiteral("(*)")));
}

TEST(Palettes, HighContrastColoursAreUsedUnchanged) {
    for (const bool dark : {false, true}) {
        const QPalette palette = highContrastPalette(dark);
        EXPECT_TRUE(isHighContrast(palette));
        EXPECT_EQ(isDark(palette), dark);
        const QColor ink = palette.color(QPalette::WindowText);
        for (const QColor &colour :
             {secondaryTextColour(palette), separatorColour(palette), indicatorEdgeColour(palette)})
            EXPECT_EQ(colour, ink);
        EXPECT_EQ(sectionColour(palette), palette.color(QPalette::Window));
        EXPECT_GE(contrast(textOnAccentColour(palette), accentColour(palette)), 7);
        EXPECT_GE(contrast(warningColour(palette), sectionColour(palette)), 4.5);
        EXPECT_FALSE(isHighContrast(darkPalette()));
    }
}

TEST(Localized, EnglishDefaultsAreWhatTheTableSays) {
    for (const char *language : {"en", "C"}) {
        setTextLocale(language);
        EXPECT_EQ(folderPlaceholder(), "Drop folder here");
        EXPECT_EQ(filesSelectedText(3), "3 files selected");
        EXPECT_EQ(filesSelectedText(1), "1 files selected") << "there is no text of its own for one";
        EXPECT_EQ(text("resize.mode.stretch"), "Stretch to output size (ignore aspect ratio)");
        EXPECT_EQ(text("resize.mode.cropFill"), "Preserve aspect ratio (center crop)");
        EXPECT_EQ(text("resize.mode.letterbox"), "Preserve aspect ratio (letterbox)");
    }
    EXPECT_EQ(text("no.such.key", "Drop folder here"), "Drop folder here");
    EXPECT_EQ(text("no.such.key"), "no.such.key");
    setTextLocale("en");
}

TEST(Language, ToolkitAndWindowUseTheSameLanguage) {
    if (!QFile::exists(QLibraryInfo::path(QLibraryInfo::TranslationsPath) + QStringLiteral("/qtbase_ja.qm")))
        GTEST_SKIP() << "the toolkit's translations are not installed";
    setTextLocale("ja");
    translateToolkit();
    EXPECT_EQ(QCoreApplication::translate("QMessageBox", "Show Details...").toStdString(), "詳細を表示...");
    setTextLocale("en");
    for (QTranslator *translator : qApp->findChildren<QTranslator *>())
        QCoreApplication::removeTranslator(translator);
}

TEST(Language, IsTheFirstOfTheUsersThatHasTexts) {
    EXPECT_EQ(preferredTextLocale({QStringLiteral("ja-Jpan-JP"), QStringLiteral("en-US")}), "ja");
    EXPECT_EQ(preferredTextLocale({QStringLiteral("fr-FR"), QStringLiteral("ja")}), "ja");
    EXPECT_EQ(preferredTextLocale({QStringLiteral("en-GB"), QStringLiteral("ja")}), "en");
    EXPECT_EQ(preferredTextLocale({QStringLiteral("fr-FR"), QStringLiteral("jam-JM")}), "en");
    EXPECT_EQ(preferredTextLocale({}), "en");
}

} // namespace
} // namespace lumetwin
