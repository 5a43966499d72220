// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/widgets/Symbol.h"

#include <QWidget>

#include <vector>

namespace lumetwin {

/// Shows the content of a drop target as one symbol, or as two that overlap in the same space.
class DropIcon : public QWidget {
    Q_OBJECT

public:
    explicit DropIcon(QWidget *parent = nullptr);

    std::vector<Symbol> symbols() const { return symbols_; }
    void setSymbols(const std::vector<Symbol> &symbols);
    void setColour(const QColor &colour);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    std::vector<Symbol> symbols_{Symbol::folder};
    QColor colour_;
};

} // namespace lumetwin
