// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "app/MainWindowController.h"
#include "app/SidePanel.h"
#include "engine/texts/Texts.h"
#include "support/Scripted.h"
#include "tests/support/StereoScenes.h"
#include "tests/support/TestMedia.h"
#include "ui/files/FileListView.h"
#include "ui/files/FilesPanel.h"
#include "ui/files/PreviewCanvas.h"
#include "ui/files/PreviewPane.h"
#include "ui/form/MainViewController.h"
#include "ui/progress/ProgressViewController.h"
#include "ui/widgets/BackgroundThreads.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDragEnterEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QMainWindow>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <iterator>

namespace lumetwin::test {

namespace fs = std::filesystem;

/// A window with the panel of files, and an input folder for drawn media.
class FilesPanelTest : public testing::Test {
protected:
    FilesPanelTest() : services(fakes.services()) { setTextLocale("en"); }
    ~FilesPanelTest() override {
        controller.reset();
        BackgroundThreads::shared().waitForAll(testTimeout);
        processPendingEvents();
    }

    /// Draws the input, and opens a window that is wide enough for the panel.
    void open(ConversionDirection direction = ConversionDirection::sbsToSpatial) {
        services.runBatch = [](VideoProcessor &processor) { processor.processAll(); };
        controller = std::make_unique<MainWindowController>(services);
        window().resize(1400, 900);
        window().show();
        form().settings->outputFolderURL = output.path;
        if (direction == ConversionDirection::sbsToSpatial)
            form().turnDirection();
        form().openInput({input.path});
        processPendingEvents();
    }
    fs::path pair(const std::string &name, unsigned seed = 1) {
        StereoScene scene;
        scene.seed = seed;
        writePicture(besideEachOther(drawnEyes(scene)), input.path / name);
        return input.path / name;
    }
    fs::path flat(const std::string &name) {
        writePicture(drawnTexture(1280, 360), input.path / name);
        return input.path / name;
    }
    fs::path text(const std::string &name) {
        std::ofstream(input.path / name) << "no picture";
        return input.path / name;
    }
    void waitForLooks() {
        ASSERT_TRUE(waitUntil([this] {
            return !rows().empty() && std::ranges::all_of(rows(), [](const FileRow &row) {
                return row.kind == FileRow::Kind::unsupported ||
                       (row.look && (!row.look->failure.empty() || row.look->facts.isSpatial || row.findings));
            });
        }));
        ASSERT_TRUE(waitUntil([this] { return !totals().isEmpty(); }));
        QTest::qWait(150); // totals and advice follow a little later
    }
    std::string state(const std::string &name) {
        for (const FileRow &row : rows())
            if (row.file.filename() == name)
                return files().model().stateOf(row).text.toStdString();
        return "no such row";
    }

    QMainWindow &window() { return *controller->window(); }
    MainViewController &form() { return *controller->form(); }
    FilesPanel &files() { return *controller->filesPanel(); }
    const std::vector<FileRow> &rows() { return files().model().rows(); }
    template <typename Widget> Widget &part(const char *name) { return control<Widget>(files(), name); }
    QString totals() { return part<QLabel>("filesTotals").text(); }
    PreviewCanvas &canvas() { return part<PreviewCanvas>("previewCanvas"); }
    void select(int row) {
        auto &list = part<FileListView>("fileList");
        list.setCurrentIndex(list.model()->index(row, 0));
    }
    /// The picture of a mode, once it is drawn.
    QImage shown(PreviewMode mode) {
        part<PreviewPane>("previewPane").setMode(mode);
        part<PreviewPane>("previewPane").refresh();
        BackgroundThreads::shared().waitForAll(testTimeout);
        processPendingEvents();
        EXPECT_TRUE(canvas().hasPicture());
        return canvas().picture();
    }

    FakeServices fakes;
    FormServices services;
    ScratchFolder input, output;
    std::unique_ptr<MainWindowController> controller;
};

} // namespace lumetwin::test
