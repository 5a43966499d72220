// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/files/DropFolderView.h"
#include "support/Scripted.h"
#include "ui/files/DropIcon.h"
#include "ui/files/DroppedFiles.h"
#include "ui/widgets/Localized.h"
#include "ui/widgets/Palettes.h"

#include <QAccessible>
#include <QClipboard>
#include <QDragEnterEvent>
#include <QLabel>
#include <QMimeData>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

namespace lumetwin::test {
namespace {

namespace fs = std::filesystem;

class DropView : public testing::Test {
protected:
    DropView() {
        view.onFolderDropped = [this](const fs::path &folder) { folders.push_back(folder); };
        view.onFilesDropped = [this](const DroppedInput &input) {
            fileSets.push_back(input.files);
            others.push_back(input.others);
        };
        view.setAccessibleName(QStringLiteral("Input"));
        view.resize(320, 36);
        view.show();
    }

    static std::unique_ptr<QMimeData> mimeDataOf(const std::vector<fs::path> &paths) {
        auto mime = std::make_unique<QMimeData>();
        QList<QUrl> urls;
        for (const fs::path &path : paths)
            urls << QUrl::fromLocalFile(QString::fromStdString(path.string()));
        mime->setUrls(urls);
        return mime;
    }
    bool enter(const QMimeData &mime) {
        QDragEnterEvent event(QPoint(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        event.ignore();
        QCoreApplication::sendEvent(&view, &event);
        return event.isAccepted();
    }
    bool drop(const QMimeData &mime) {
        QDropEvent event(QPointF(5, 5), Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        event.ignore();
        QCoreApplication::sendEvent(&view, &event);
        return event.isAccepted();
    }
    bool drop(const std::vector<fs::path> &paths) {
        const auto mime = mimeDataOf(paths);
        return enter(*mime) && drop(*mime);
    }
    QString label() { return control<QLabel>(view, "label").text(); }
    std::vector<Symbol> icon() { return control<DropIcon>(view, "iconLabel").symbols(); }
    QRgb backgroundColour() { return view.grab().toImage().pixelColor(view.width() / 2, 4).rgba(); }

    ScratchFolder scratch;
    DropFolderView view;
    std::vector<fs::path> folders;
    std::vector<std::vector<fs::path>> fileSets, others;
};

TEST_F(DropView, IsEmptyAtFirst) {
    EXPECT_EQ(label(), QString::fromStdString(folderPlaceholder()));
    EXPECT_EQ(icon(), std::vector{Symbol::folder});
    EXPECT_FALSE(view.hasContent());
    view.setPlaceholder(QStringLiteral("Here"));
    EXPECT_EQ(label(), QStringLiteral("Here"));
    EXPECT_EQ(view.placeholder(), QStringLiteral("Here"));
}

TEST_F(DropView, LabelsStandInTheMiddle) {
    EXPECT_EQ(control<QWidget>(view, "iconLabel").geometry(), QRect(8, 8, 22, 20));
    EXPECT_EQ(control<QLabel>(view, "label").geometry(), QRect(34, 9, 276, 18));
}

TEST_F(DropView, OneFolderIsReportedAsAFolder) {
    const fs::path folder = scratch.folder("Holiday");
    std::ofstream(folder / "clip.mov") << "x";
    EXPECT_TRUE(drop({folder}));
    EXPECT_EQ(folders, std::vector{folder});
    EXPECT_TRUE(fileSets.empty());
    EXPECT_EQ(label(), QStringLiteral("Holiday"));
    EXPECT_EQ(icon(), std::vector{Symbol::folder});
}

TEST_F(DropView, AcceptsAnEmptyFolderAndAFolderWithAMediaName) {
    EXPECT_TRUE(drop({scratch.folder("empty")}));
    EXPECT_TRUE(drop({scratch.folder("strange.mov")}));
    EXPECT_EQ(folders.size(), 2U);
}

TEST_F(DropView, AFolderAmongFilesContributesItsMedia) {
    const fs::path folder = scratch.folder("mixed");
    for (const char *name : {"b.heic", "Z.MOV", "notes.txt", ".hidden.mov"})
        std::ofstream(folder / name) << "x";
    fs::create_directories(folder / "nested");
    std::ofstream(folder / "nested" / "deep.mov") << "x";
    const fs::path single = scratch.file("a.mp4");
    EXPECT_TRUE(drop({single, folder}));
    ASSERT_EQ(fileSets.size(), 1U);
    EXPECT_EQ(fileSets.front(), (std::vector{folder / "Z.MOV", single, folder / "b.heic"}));
    EXPECT_EQ(others.front(), std::vector{folder / "notes.txt"});
    EXPECT_TRUE(folders.empty());
}

TEST_F(DropView, UnsupportedFilesAreRefusedAndTheContentStays) {
    EXPECT_TRUE(drop({scratch.file("clip.mov")}));
    EXPECT_FALSE(drop({scratch.file("notes.txt"), scratch.file("data")}));
    EXPECT_TRUE(view.hasContent());
    EXPECT_FALSE(view.isHighlighted());
    EXPECT_EQ(fileSets.size(), 1U);
    EXPECT_TRUE(view.isRefusing());
    EXPECT_EQ(label().toStdString(), text("drop.refused.no.media"));
    EXPECT_NE(backgroundColour(), colour(0.08, 0.18, 0.1).rgba()) << "not green while it refuses";
    EXPECT_TRUE(waitUntil([this] { return label() == QStringLiteral("clip.mov"); }))
        << "the refusal goes after a while";
    EXPECT_FALSE(view.isRefusing());
}

TEST_F(DropView, ATargetForFoldersNeverTurnsGreenForFilesOrTwoFolders) {
    view.acceptOnlyFolders();
    const QRgb empty = backgroundColour();
    for (const std::vector<fs::path> &wrong :
         {std::vector{scratch.file("clip.mov")}, std::vector{scratch.folder("a"), scratch.folder("b")},
          std::vector{scratch.folder("a"), scratch.file("clip.mov")}}) {
        const auto mime = mimeDataOf(wrong);
        enter(*mime);
        EXPECT_FALSE(view.isHighlighted()) << "it says at once that it will not take that";
        EXPECT_FALSE(drop(*mime));
        EXPECT_FALSE(view.hasContent());
        EXPECT_TRUE(view.isRefusing());
        EXPECT_EQ(label().toStdString(), text("drop.refused.no.folder"));
        EXPECT_NE(backgroundColour(), colour(0.08, 0.18, 0.1).rgba());
        EXPECT_NE(backgroundColour(), empty) << "visibly";
    }
    EXPECT_TRUE(folders.empty());
    EXPECT_TRUE(fileSets.empty());
    EXPECT_TRUE(drop({scratch.folder("a")}));
    EXPECT_EQ(folders.size(), 1U);
    EXPECT_EQ(label(), QStringLiteral("a"));
}

TEST_F(DropView, AFolderThatCannotBeUsedIsRefusedWithTheReason) {
    view.objection = [](const fs::path &folder) { return folder.filename() == "locked" ? "no way" : ""; };
    EXPECT_FALSE(drop({scratch.folder("locked")}));
    EXPECT_EQ(label(), QStringLiteral("no way"));
    EXPECT_FALSE(view.hasContent());
    EXPECT_TRUE(drop({scratch.folder("open")}));
}

TEST_F(DropView, AClickAsksForAChoice) {
    int asked = 0;
    view.onActivated = [&asked] { ++asked; };
    QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(160, 18));
    QTest::mouseClick(&control<QWidget>(view, "iconLabel"), Qt::LeftButton);
    EXPECT_GE(asked, 1);
    const int before = asked;
    QTest::mouseClick(&view, Qt::RightButton, {}, QPoint(160, 18));
    QTest::mousePress(&view, Qt::LeftButton, {}, QPoint(160, 18));
    QTest::mouseRelease(&view, Qt::LeftButton, {}, QPoint(160, 80));
    EXPECT_EQ(asked, before) << "let go outside, or with another button";
}

TEST_F(DropView, OneFileShowsItsNameAndMoreShowTheirNumber) {
    EXPECT_TRUE(drop({scratch.file("clip.MOV")}));
    EXPECT_EQ(label(), QStringLiteral("clip.MOV"));
    EXPECT_TRUE(drop({scratch.file("clip.MOV"), scratch.file("b.mp4"), scratch.file("notes.txt")}));
    EXPECT_EQ(label(), QStringLiteral("2 files selected"));
    view.showFiles({"a.mov", "b.txt", "c.txt"});
    EXPECT_EQ(label(), QStringLiteral("3 files selected"));
}

TEST_F(DropView, IconShowsPhotosVideosOrBoth) {
    EXPECT_EQ(symbolsOfFiles({"a.jpg", "b.HEIC", "c.tif"}), std::vector{Symbol::picture});
    EXPECT_EQ(symbolsOfFiles({"a.mov", "b.mp4", "c.jpg"}), (std::vector{Symbol::film, Symbol::picture}));
    EXPECT_EQ(symbolsOfFiles({"a.mov", "b.mp4"}), std::vector{Symbol::film});
    EXPECT_EQ(symbolsOfFiles({"a.txt"}), std::vector{Symbol::film});
}

TEST_F(DropView, HasThreeColourStates) {
    EXPECT_EQ(backgroundColour(), colour(0.1, 0.11, 0.15).rgba());
    const auto mime = mimeDataOf({scratch.file("notes.txt")});
    EXPECT_TRUE(enter(*mime)) << "what it holds is looked at when it is dropped";
    EXPECT_EQ(backgroundColour(), colour(0.1, 0.25, 0.5).rgba());
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(&view, &leave);
    EXPECT_EQ(backgroundColour(), colour(0.1, 0.11, 0.15).rgba());
    view.showFolder("/x/y");
    EXPECT_EQ(backgroundColour(), colour(0.08, 0.18, 0.1).rgba());
    EXPECT_TRUE(enter(*mime));
    QCoreApplication::sendEvent(&view, &leave);
    EXPECT_EQ(backgroundColour(), colour(0.08, 0.18, 0.1).rgba());
}

TEST_F(DropView, DragsWithoutFilesAreRefused) {
    QMimeData words;
    words.setText(QStringLiteral("/tmp"));
    EXPECT_FALSE(enter(words));
    QMimeData web;
    web.setUrls({QUrl(QStringLiteral("https://host.example/clip.mp4"))});
    EXPECT_FALSE(enter(web));
    EXPECT_FALSE(view.isHighlighted());
}

TEST_F(DropView, KeepsNamesThatAreNotUtf8) {
    const fs::path strange = scratch.file("\xff odd %41 #name.mov");
    QMimeData mime;
    mime.setData(QStringLiteral("text/uri-list"),
                 "# comment\r\nfile://" + QByteArray::fromStdString(strange.string()).toPercentEncoding("/") + "\r\n");
    EXPECT_TRUE(enter(mime));
    EXPECT_TRUE(drop(mime));
    ASSERT_EQ(fileSets.size(), 1U);
    EXPECT_EQ(fileSets.front(), std::vector{strange});
}

TEST(DroppedFiles, ReadsUriLists) {
    EXPECT_EQ(
        localFiles(QByteArray("file:///a/b.mov\r\nfile://localhost/c.mov\nfile:/d\n#x\nhttp://e/f.mov\nfile:///g/\n")),
        (std::vector<fs::path>{"/a/b.mov", "/c.mov", "/d", "/g"}));
    EXPECT_TRUE(localFiles(QByteArray("file:relative.mov\nfile:///nul%00.mov\n/plain/path.mov\n\n")).empty());
}

TEST_F(DropView, AcceptsAPortalTransferWithoutAnAnswer) {
    QMimeData mime;
    mime.setData(QStringLiteral("application/vnd.portal.filetransfer"), QByteArray("12345\0", 6));
    EXPECT_EQ(portalTransferKey(mime), QByteArray("12345"));
    EXPECT_TRUE(enter(mime));
    EXPECT_TRUE(drop(mime));
    processPendingEvents();
    EXPECT_FALSE(view.hasContent());
}

TEST_F(DropView, AcceptsPastedFiles) {
    QGuiApplication::clipboard()->setMimeData(mimeDataOf({scratch.file("clip.mov")}).release());
    view.setFocus();
    QTest::keySequence(&view, QKeySequence::Paste);
    EXPECT_EQ(fileSets.size(), 1U);
}

TEST_F(DropView, KeyboardAsksForAChoice) {
    int asked = 0;
    view.onActivated = [&asked] { ++asked; };
    QTest::keyClick(&view, Qt::Key_Space);
    QTest::keyClick(&view, Qt::Key_Return);
    EXPECT_EQ(asked, 2);
}

TEST_F(DropView, ReportsItsNameAndContent) {
    QAccessibleInterface *interface = QAccessible::queryAccessibleInterface(&view);
    ASSERT_TRUE(interface);
    EXPECT_EQ(interface->text(QAccessible::Name), QStringLiteral("Input"));
    EXPECT_EQ(interface->text(QAccessible::Description), label());
    view.showFolder("/x/Holiday");
    EXPECT_EQ(interface->text(QAccessible::Description), QStringLiteral("Holiday"));
}

} // namespace
} // namespace lumetwin::test
