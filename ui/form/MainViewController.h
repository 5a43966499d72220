// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "model/ConversionSettings.h"
#include "model/FileResult.h"
#include "ui/alerts/Alert.h"
#include "ui/form/FormServices.h"
#include "ui/widgets/Points.h"

#include <QPointer>
#include <QWidget>

#include <memory>
#include <optional>
#include <set>
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
struct DroppedInput;
struct NumberRange;

/// The form of the main window. It has a control for every field of the settings and copies each change into them, runs
/// the checks before a batch, and shows the progress sheet.
class MainViewController : public QWidget {
    Q_OBJECT

public:
    explicit MainViewController(FormServices services = {}, QWidget *parent = nullptr);
    ~MainViewController() override;

    const std::shared_ptr<ConversionSettings> settings = std::make_shared<ConversionSettings>();

    // Actions of the controls. Those that end in "Changed" copy a control's new state into the settings.
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
    void inputLayoutChanged(int index);
    void resizeModeChanged(int index);
    /// Runs the checks, and then the batch if they allow it.
    void startConversion();

    /// Does what dropping these paths on the input does. Returns whether any of them can be used.
    bool openInput(const std::vector<std::filesystem::path> &paths);
    /// Adds files, and the files of folders, to the input. Without an input it is openInput. Returns whether any of
    /// them can be used; does nothing while a batch runs.
    bool addToInput(const std::vector<std::filesystem::path> &paths);

    /// Gives the focus to the chosen direction, not to the start button.
    void focusFirstControl();
    /// Chooses a direction. Does nothing while a batch runs.
    void setDirection(ConversionDirection direction);

    // For the panel of files. The first three do nothing while a batch runs.
    void setSwapped(bool swapped);
    void setDisparityAdjustment(double adjustment);
    void turnDirection();
    /// Not to be called while a batch runs.
    void setLeftOut(const std::set<std::filesystem::path> &files);
    /// Shows in the header whether the panel of files is open.
    void showFilesPanelState(bool open);

    // Used by the checks before a run.
    /// Copies the values of the fields into the settings. It does not move the sliders.
    void commitFields();
    /// Checks the "resize" check box, shows the size fields and sets the focus to the first one.
    void turnOnResize();
    /// The first field in use whose text is not valid; null when all are valid.
    NumberField *firstInvalidField() const;
    /// The caption of a field.
    QString fieldName(const NumberField *field) const;
    /// Whether the user has already answered the question about AVI files for this input.
    bool isAVIQuestionAnswered() const { return aviQuestionAnswered_; }
    void setAVIQuestionAnswered() { aviQuestionAnswered_ = true; }
    void presentProgressSheet();

    /// The sheet of the current run; null between runs.
    ProgressViewController *progressSheet() const;
    /// Whether a batch is running and has not been stopped.
    bool isConverting() const;

signals:
    /// Another input was chosen.
    void inputChanged();
    /// A control has changed the settings.
    void settingsChanged();
    /// The checks have ended without a run.
    void startRefused();
    /// The user wants to open or close the panel of files.
    void filesPanelAsked();

    void batchStarted();
    /// 0 to 1.
    void batchProgressed(double fraction);
    void batchFinished(bool success, const QString &message);
    /// The run has finished or was stopped. In the first case the sheet still shows the result.
    void batchEnded();
    /// The batch has returned, and the form can be used again.
    void batchLeft();
    void fileBegan(const std::string &name);
    /// 0 to 1.
    void fileProgressed(double fraction);
    /// Also after the run was stopped.
    void fileEnded(const FileResult &result);

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
    void reportChanges();
    QLabel *caption(QLabel *&label, const std::string &text, QWidget *parent, char mnemonic = 0);
    QLabel *unit(QLabel *&label, const char *text, QWidget *parent);
    NumberField *stereoField(const char *name, const NumberRange &range, QLabel *caption, const char *help);
    NumberField *sizeField(const char *name, std::int64_t start, QLabel *caption);
    QToolButton *resetButton(const char *name, const NumberRange &range, QLabel *caption, ValueSlider *slider);

    // Appearance and layout
    void applyColours();
    void applyFonts();
    void layoutDocument();
    void layoutSections();
    void layoutOptions();
    void layoutCommon();
    void layoutOptionsArea();
    void showPath(ElidedLabel *label, const QString &path);

    // State
    void updateResetButtons();
    void readSizeFields();
    void updateResizePreview();
    void setInputFolder(const std::filesystem::path &folder);
    void setInputFiles(const DroppedInput &input);
    void inputChosen(const std::vector<std::filesystem::path> &paths);
    void setOutputFolder(const std::filesystem::path &folder);
    void outputChosen(const std::filesystem::path &folder);
    void inputWasSet();
    void warnAboutAVI();
    bool isIdle() const;
    void updateEnabledState();
    void checkFile(const std::filesystem::path &file);
    void setChecking(bool checking);
    void showCheckResult();

    FormServices services_;
    QWidget *contentView = nullptr; ///< the scrolled form and the start button below it
    HeaderBand *headerView = nullptr;
    QLabel *titleLabel = nullptr;
    QLabel *subtitleLabel = nullptr;
    QPushButton *filesButton = nullptr;
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
    QFrame *startLine = nullptr; ///< line above the start button, shown while the form scrolls
    QScrollArea *scrollView = nullptr;
    QWidget *documentView = nullptr;
    QComboBox *inputLayoutPopup = nullptr;
    QLabel *lblInputLayout = nullptr;
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

    QPointer<QWidget> lastClicked_; ///< the focused control if the user clicked it; only this one reacts to the wheel
    PointScale scale_ = PointScale::current(); ///< x is smaller in a narrow window
    bool aviQuestionAnswered_ = false;
    std::optional<Alert> checkResult_; ///< of the spatial check, until it can be shown
    QPointer<PreflightSequence> preflight_;
    std::unique_ptr<BatchPresentation> batch_;
};

} // namespace lumetwin
