// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/files/FileListModel.h"
#include "ui/files/FileLooks.h"

#include <QTimer>
#include <QWidget>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <vector>

class QLabel;
class QPushButton;
class QSplitter;
class QToolButton;

namespace lumetwin {

class FileListView;
class PreviewPane;

/// The functions that the panel calls outside of itself. Tests replace them.
struct FilesPanelServices {
    MediaOperations operations;
    std::function<void(const std::filesystem::path &file)> openFile;
    std::function<void(const std::filesystem::path &file)> showInFolder;
    /// Chooses the path of a new text file. The choice comes later, or never.
    std::function<void(QWidget *parent, std::function<void(const std::filesystem::path &file)> chosen)> chooseReport;
};

/// The files of the input beside the form: what each one is, what will become of it, its preview, and after a run what
/// has become of it.
class FilesPanel : public QWidget {
    Q_OBJECT

public:
    FilesPanel(std::shared_ptr<const ConversionSettings> settings, FilesPanelServices services,
               QWidget *parent = nullptr);
    ~FilesPanel() override;

    /// The input has changed: lists its files. The results of an earlier run are forgotten.
    void setInput();
    /// The settings have changed.
    void settingsChanged();
    /// Gives the focus to the list, or to the way back while it is empty.
    void focusFiles();
    /// Nothing is read from the disk while the panel is hidden.
    void setActive(bool active);
    /// Whether the panel stands where the form was, and its button leads back there.
    void setReplacesForm(bool replacesForm);

    // A run. Files cannot be left out meanwhile.
    void runBegan();
    void fileBegan(const std::string &name);
    void fileProgressed(double fraction);
    void fileEnded(const FileResult &result);
    void runEnded();
    /// Takes back in what was left out because only failed files were to be converted again.
    void takeBackIn();

    const FileListModel &model() const { return model_; }

signals:
    void closeAsked();
    void leftOutChanged(const std::set<std::filesystem::path> &files);
    void swapAsked(bool swapped);
    void adjustmentAsked(double adjustment);
    void turnDirectionAsked();
    void startAsked();

protected:
    void changeEvent(QEvent *event) override;

private:
    /// What the settings say about the list. When it changes, the files are listed again.
    struct Listing {
        ConversionDirection direction;
        InputLayout layout;
        std::optional<std::filesystem::path> outputFolder;

        bool operator==(const Listing &) const = default;
    };

    void build();
    QWidget *buildHeader();
    QWidget *buildAdvice();
    QWidget *buildFooter();
    void applyLooks();
    void list(bool keepsLooks);
    void listed(const std::vector<FileRow> &rows, const std::set<std::string> &outputs, const QString &failure);
    void showCurrent();
    void scheduleTotals();
    void showTotals();
    void showAdvice();
    void leaveOut(bool (*isMeant)(const FileRow &, const ConversionSettings &));
    void convertFailedAgain();
    void copyReport();
    void saveReport();

    std::shared_ptr<const ConversionSettings> settings_;
    FilesPanelServices services_;
    FileListModel model_;
    FileLooks looks_;
    Listing listing_{};
    bool isActive_ = false;
    bool keepsLooks_ = true; ///< no change since the last listing makes the looks at the files untrue
    std::optional<std::set<std::filesystem::path>> leftOutBefore_; ///< while what failed is converted again
    QTimer totalsTimer_;

    QLabel *titleLabel_ = nullptr;
    QToolButton *closeButton_ = nullptr;
    QPushButton *backButton_ = nullptr;
    QWidget *advice_ = nullptr;
    QLabel *adviceLabel_ = nullptr;
    QPushButton *leaveOutButton_ = nullptr;
    QPushButton *turnButton_ = nullptr;
    QSplitter *splitter_ = nullptr;
    FileListView *list_ = nullptr;
    QLabel *emptyLabel_ = nullptr;
    PreviewPane *preview_ = nullptr;
    QLabel *totalsLabel_ = nullptr;
    QPushButton *againButton_ = nullptr;
    QPushButton *reportButton_ = nullptr;
};

} // namespace lumetwin
