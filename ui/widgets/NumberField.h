// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLineEdit>

#include <functional>
#include <optional>

namespace lumetwin {

/// A field for a number. A text that is not valid stays as it was typed and is marked at once. Until the text is valid
/// again, value() returns the value from before the editing.
class NumberField : public QLineEdit {
    Q_OBJECT

public:
    /// Returns the number of a text; nullopt when the text is not valid.
    using Parse = std::function<std::optional<double>(const QString &text)>;

    NumberField(const QString &start, Parse parse, QWidget *parent = nullptr);

    /// The typed number, or the value from before the editing while the text is not valid.
    double value() const { return typedValue_.value_or(previousValue_); }
    /// Whether the typed text is valid.
    bool isValid() const { return typedValue_.has_value(); }
    /// Shows a value that the user set in another control. Emits no signal.
    void showValue(double value, const QString &text);

    /// A sentence for the user about which values are valid, shown when the text is not.
    QString expectedInput() const { return expectedInput_; }
    /// help: the tool tip while the text is valid.
    void setTexts(const QString &expectedInput, const QString &help);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void parseText();
    void savePreviousValue();
    void updateMarking();

    Parse parse_;
    std::optional<double> typedValue_;
    double previousValue_ = 0;
    QString expectedInput_;
    QString help_;
};

} // namespace lumetwin
