// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/alerts/CheckingDialog.h"

#include "ui/widgets/Localized.h"
#include "ui/widgets/Points.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace lumetwin {

CheckingDialog::CheckingDialog(std::int64_t total, QWidget *parent)
    : QDialog(parent), total_(total), label_(new QLabel(this)), bar_(new QProgressBar(this)) {
    setObjectName(QStringLiteral("checking"));
    setWindowTitle(QStringLiteral("Lumetwin"));
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_DeleteOnClose);
    bar_->setRange(0, static_cast<int>(total));
    bar_->setAccessibleName(toQString(text("spoken.check.progress")));
    bar_->setMinimumWidth(PointScale::current().horizontal(300));
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(toQString(text("button.cancel")), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    for (QWidget *part : std::initializer_list<QWidget *>{label_, bar_, buttons})
        layout->addWidget(part);
    setCheckedCount(0);
}

void CheckingDialog::setCheckedCount(std::int64_t count) {
    label_->setText(toQString(formatted("check.videos.format", count, total_)));
    bar_->setValue(static_cast<int>(count));
}

int CheckingDialog::checkedCount() const {
    return bar_->value();
}

QString CheckingDialog::labelText() const {
    return label_->text();
}

void CheckingDialog::dismiss() {
    dismissed_ = true;
    close();
}

void CheckingDialog::done(int result) {
    const bool first = !std::exchange(dismissed_, true);
    QDialog::done(result); // deletes the dialog later, because the caller may still be inside one of its functions
    if (first)
        emit cancelled();
}

} // namespace lumetwin
