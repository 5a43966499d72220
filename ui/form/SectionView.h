// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>
#include <QWidget>

namespace lumetwin {

/// A box with a title that groups controls. Its owner places the controls.
class SectionView : public QWidget {
    Q_OBJECT

public:
    explicit SectionView(const QString &title, QWidget *parent = nullptr);

    QLabel *titleLabel;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void layoutTitle();
};

} // namespace lumetwin
