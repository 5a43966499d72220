// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionSettings.h"
#include "ui/alerts/Alert.h"
#include "ui/form/FormServices.h"
#include "ui/widgets/Points.h"

#include <QPointer>
#include <QWidget>

#include <memory>
#include <optional>
#include <vector>

class QAbstractButton;
class QCheckBox;
class QComboBox;
class QFrame;
class QLabel;
class QPushButton;
class QRadioButton;
class QScrollArea;
class QToolButton;

namespace lumetwin {

class BatchPresentation;
class ColouredButton;
class DropFolderView;
class ElidedLabel;
class HeaderBand;
class NumberField;
class PreflightSequence;
class ProgressViewController;
class SectionView;
class ValueSlider;
struct StereoRange;

/// The form of the main window. It keeps every field of its settings record in step with a control, runs the checks
/// before a batch, and presents the progress sheet.
class MainViewController : public QWidget {
    Q_OBJECT

public:
    explicit MainViewController(FormServices services = {}, QWidget *parent = nullptr);
    ~MainViewController() override;

    const std::shared_ptr<ConversionSettings> settings = std::make_shared<ConversionSettings>();

    // Actions of the controls. Those that end in "Changed" take over a control's new state.
    void directionChanged(QAbstractButton *sender);
    void selectInputFolder();
    void selectOutputFolder();
    void checkSpatialMedia();
    void fovSliderChanged(double value);
    void fovFieldChanged();
    void disparitySliderChanged(double value);
    void disparityFieldChanged();
    void baselineSliderChanged(double value);
    void baselineFieldChanged();
    void formatChanged(int index);
    void photoFormatChanged(int index);
    void compressionChanged(double value);
    void halfWidthChanged(bool checked);
    void swapLRChanged(bool checked);
    void copyAudioChanged(bool checked);
    void keepTimingChanged(bool checked);
    void enableResizeChanged(bool checked);
    void resizeDimChanged();
    void resizeModeChanged(int index);
    /// Runs the checks and, when nothing speaks against it, the batch.
    void startConversion();

    /// Takes paths as if they had been dropped on the input.
    bool openInput(const std::vector<std::filesystem::path> &paths);

    // For the checks before a run.
    /// Takes over what is still typed in the fields. The sliders stay where they are.
    void commitFields();
    /// Checks the resize box and shows the size fields.
    void turnOnResize();
    /// The first field in use that holds something it does not take; none when all are well.
    NumberField *wrongField() const;
    /// What a field is for, as it is written before it.
    QString nameOf(const NumberField *field) const;
    /// Whether the user has already said what is to become of the AVI files of this input.
    bool aviSettled() const { return aviSettled_; }
    void settleAVI() { aviSettled_ = true; }
    void presentProgressSheet();

    /// The sheet of the current run; none between runs.
    ProgressViewController *progressSheet() const;
    /// Whether a batch runs that has not been stopped.
    bool isConverting() const;

signals:
    void batchStarted();
    /// 0 to 1.
    void batchProgressed(double fraction);
    void batchFinished(bool success, const QString &message);
    /// The run is over or stopped: nothing shows it any more, or the sheet shows its end.
    void batchEnded();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // Building
    void buildInterface();
    void buildHeader();
    void buildDirection();
    void buildInput();
    void buildOutput();
    void buildSpatialOptions();
    void buildSBSOptions();
    void buildCommonOptions();
    void buildStartButton();
    void setTabOrders();
    void updateTabStop();
    void setShortcuts();
    QLabel *caption(QLabel *&label, const std::string &text, QWidget *parent, char mnemonic = 0);
    QLabel *unit(QLabel *&label, const char *text, QWidget *parent);
    NumberField *stereoField(const char *name, const StereoRange &range, QLabel *caption, const char *help);
    NumberField *sizeField(const char *name, std::int64_t start, QLabel *caption);
    QToolButton *resetButton(const char *name, const StereoRange &range, QLabel *caption, ValueSlider *slider);

    // Looks and layout
    void applyColours();
    void applyFonts();
    void layoutDocument();
    void layoutSections();
    void layoutOptions();
    void layoutCommon();
    void layoutOptionsArea();
    void layoutStartButton(const PointFrame &frame, double documentHeight, QPoint origin);
    void showPath(ElidedLabel *label, const QString &path);

    // State
    void updateResets();
    void takeSizes();
    void updateResizePreview();
    void setInputFolder(const std::filesystem::path &folder);
    void setInputFiles(const std::vector<std::filesystem::path> &files);
    void inputChosen(const std::vector<std::filesystem::path> &paths);
    void setOutputFolder(const std::filesystem::path &folder);
    void outputChosen(const std::filesystem::path &folder);
    void warnOfAVI();
    void updateUse();
    void checkFile(const std::filesystem::path &file);
    void setChecking(bool checking);
    void showAnswer();

    FormServices services_;
    QWidget *contentView = nullptr; ///< everything: the scrolled form, and below it the start button
    HeaderBand *headerView = nullptr;
    QLabel *titleLabel = nullptr;
    QLabel *subtitleLabel = nullptr;
    SectionView *directionSection = nullptr;
    QRadioButton *spatialToSBSButton = nullptr;
    QRadioButton *sbsToSpatialButton = nullptr;
    SectionView *inputSection = nullptr;
    DropFolderView *inputDropView = nullptr;
    ElidedLabel *inputPathLabel = nullptr;
    QPushButton *checkSpatialBtn = nullptr;
    QPushButton *inputSelectBtn = nullptr;
    SectionView *outputSection = nullptr;
    DropFolderView *outputDropView = nullptr;
    ElidedLabel *outputPathLabel = nullptr;
    QPushButton *outputSelectBtn = nullptr;
    SectionView *optionsSection = nullptr;
    QWidget *spatialOptionsView = nullptr;
    QWidget *sbsOptionsView = nullptr;
    ValueSlider *fovSlider = nullptr;
    NumberField *fovField = nullptr;
    QToolButton *fovReset = nullptr;
    ValueSlider *disparitySlider = nullptr;
    NumberField *disparityField = nullptr;
    QToolButton *disparityReset = nullptr;
    ValueSlider *baselineSlider = nullptr;
    NumberField *baselineField = nullptr;
    QToolButton *baselineReset = nullptr;
    QComboBox *formatPopup = nullptr;
    QComboBox *photoFormatPopup = nullptr;
    ValueSlider *compressionSlider = nullptr;
    QLabel *compressionLabel = nullptr;
    QCheckBox *halfWidthCheck = nullptr;
    SectionView *commonSection = nullptr;
    QCheckBox *swapLRCheck = nullptr;
    QCheckBox *copyAudioCheck = nullptr;
    QCheckBox *keepTimingCheck = nullptr;
    QCheckBox *enableResizeCheck = nullptr;
    NumberField *resizeWidthField = nullptr;
    NumberField *resizeHeightField = nullptr;
    QComboBox *resizeModePopup = nullptr;
    QLabel *resizeWarningLabel = nullptr;
    ColouredButton *startButton = nullptr;
    QFrame *startLine = nullptr; ///< above the start button while the form scrolls behind it
    QScrollArea *scrollView = nullptr;
    QWidget *documentView = nullptr;
    QLabel *lblFOV = nullptr;
    QLabel *lblDisparity = nullptr;
    QLabel *lblBaseline = nullptr;
    QLabel *lblFovUnit = nullptr;
    QLabel *lblDispUnit = nullptr;
    QLabel *lblBaseUnit = nullptr;
    QLabel *lblFmt = nullptr;
    QLabel *lblPhotoFmt = nullptr;
    QLabel *lblQuality = nullptr;
    QLabel *lblEyeW = nullptr;
    QLabel *lblEyeH = nullptr;
    QLabel *lblCross = nullptr;
    QLabel *lblPx = nullptr;
    QLabel *lblResizeMode = nullptr;

    QPointer<QWidget> clicked_; ///< the control that the user clicked last; the wheel may change that one
    PointScale scale_ = PointScale::current(); ///< narrower where the window is
    bool aviSettled_ = false;
    std::optional<Alert> answer_; ///< of a check, until it can be shown
    QPointer<PreflightSequence> preflight_;
    std::unique_ptr<BatchPresentation> batch_;
};

} // namespace lumetwin
