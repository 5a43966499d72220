// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/Scripted.h"
#include "ui/form/MainViewController.h"
#include "ui/widgets/NumberField.h"
#include "ui/widgets/ValueSlider.h"

#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace lumetwin::test {

/// A form of the default size that converts nothing, with short functions to reach its controls.
class MainForm : public testing::Test {
protected:
    MainForm() : form(fakes.services()) {
        form.resize(720, 860);
        form.show();
        processPendingEvents();
    }

    template <typename Widget> Widget &find(const char *name) { return control<Widget>(form, name); }
    NumberField &field(const char *name) { return find<NumberField>(name); }
    ValueSlider &slider(const char *name) { return find<ValueSlider>(name); }
    QString label(const char *name) { return find<QLabel>(name).text(); }
    void type(const char *name, const char *text) {
        field(name).setFocus();
        field(name).selectAll();
        QTest::keyClicks(&field(name), QLatin1String(text));
    }
    void choose(const std::vector<std::filesystem::path> &paths) {
        fakes.panels->choice = paths;
        find<QPushButton>("inputSelectBtn").click();
    }

    FakeServices fakes;
    ScratchFolder scratch;
    MainViewController form;
    ConversionSettings &settings = *form.settings;
};

} // namespace lumetwin::test
