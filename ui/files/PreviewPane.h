// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/files/FileRow.h"
#include "ui/files/PreviewLoader.h"

#include <QWidget>

#include <memory>
#include <optional>
#include <string>

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QSlider;
class QToolButton;

namespace lumetwin {

class DisparityBar;
class PreviewCanvas;

/// Shows one file of the list: its eyes in several ways, for films at any time, and what is to be said of them.
class PreviewPane : public QWidget {
    Q_OBJECT

public:
    PreviewPane(std::shared_ptr<const ConversionSettings> settings, MediaOperations operations,
                QWidget *parent = nullptr);

    /// Shows a file. The same file again keeps the time and the place.
    void showRow(const FileRow &row);
    void showNothing();
    /// The settings have changed: draws again what depends on them.
    void refresh();
    /// Settings may not be changed while a run reads them.
    void setLocked(bool locked);
    void setMode(PreviewMode mode);

signals:
    void swapAsked(bool swapped);
    /// percent of the width
    void adjustmentAsked(double adjustment);

protected:
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void build();
    QWidget *buildTools();
    QWidget *buildTimeLine();
    QWidget *buildJudgement();
    void applyFonts();
    void load(bool exact);
    void forgetWish();
    void setActualSize(bool actualSize);
    void positionMoved();
    void drawn(const PreviewShow &show);
    void examined(const StereoFindings &findings);
    void failed(const QString &reason);
    void showJudgement();
    std::string judgementWords(const StereoFindings &findings) const;
    void showTime(double seconds);

    std::shared_ptr<const ConversionSettings> settings_;
    PreviewLoader loader_;
    std::optional<FileRow> row_;
    std::optional<PreviewWish> wish_; ///< the newest one
    std::optional<PreviewFacts> facts_;
    std::optional<StereoFindings> findings_; ///< of the picture that is shown
    bool isExact_ = true;                    ///< the newest wish was for exactly this time

    QComboBox *modePopup_ = nullptr;
    QToolButton *actualSizeButton_ = nullptr;
    PreviewCanvas *canvas_ = nullptr;
    QWidget *timeLine_ = nullptr;
    QSlider *timeSlider_ = nullptr;
    QLabel *timeLabel_ = nullptr;
    QWidget *judgement_ = nullptr;
    DisparityBar *disparityBar_ = nullptr;
    QLabel *wordsLabel_ = nullptr;
    QCheckBox *swapCheck_ = nullptr;
    QPushButton *adjustButton_ = nullptr;
};

} // namespace lumetwin
