// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLineEdit>

#include <functional>
#include <optional>

namespace lumetwin {

/// A field for a number. What it does not take stays as typed, is marked at once, and leaves the value that stood
/// there before the editing began.
class NumberField : public QLineEdit {
    Q_OBJECT

public:
    /// The number of a text; none for what the field does not take.
    using Parse = std::function<std::optional<double>(const QString &text)>;

    NumberField(const QString &start, Parse parse, QWidget *parent = nullptr);

    /// The number that is typed, or the last one before the editing when that is none.
    double value() const { return typed_.value_or(kept_); }
    /// Whether the field takes what is typed.
    bool isAccepted() const { return typed_.has_value(); }
    /// Shows a value that came from elsewhere, without a signal.
    void showValue(double value, const QString &text);

    /// What the field takes, in words; told wherever it takes something else.
    QString takes() const { return takes_; }
    /// help: the tool tip while nothing is wrong.
    void setWords(const QString &takes, const QString &help);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void read();
    void keep();
    void mark();

    Parse parse_;
    std::optional<double> typed_;
    double kept_ = 0;
    QString takes_;
    QString help_;
};

} // namespace lumetwin
