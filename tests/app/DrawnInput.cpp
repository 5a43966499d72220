// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/app/DrawnInput.h"

#include <QImage>
#include <QPainter>
#include <QRandomGenerator>

#include <fstream>

namespace lumetwin::test {

void drawInput(const std::filesystem::path &folder) {
    unsigned seed = 0;
    const auto save = [&](const char *name, int depth) {
        QImage photo(1280, 360, QImage::Format_RGB32);
        QLinearGradient sky(0, 0, 0, 360);
        sky.setColorAt(0, QColor(60, 110, 170));
        sky.setColorAt(1, QColor(190, 180, 150));
        QPainter painter(&photo);
        painter.fillRect(photo.rect(), sky);
        painter.setPen(Qt::NoPen);
        QRandomGenerator random(++seed);
        for (int thing = 0; thing < 260; ++thing) {
            const int x = random.bounded(-20, 660), y = random.bounded(360), size = random.bounded(6, 30);
            const int shift = depth * (180 - y) / 180; // nearer below
            painter.setBrush(QColor::fromHsv(random.bounded(360), random.bounded(60, 180), random.bounded(90, 250)));
            for (const int eye : {0, 1}) {
                painter.setClipRect(eye * 640, 0, 640, 360);
                painter.drawRoundedRect(eye * 640 + x + eye * shift, y, size, size * 3 / 2, 3, 3);
            }
        }
        painter.end();
        photo.save(QString::fromStdString((folder / name).string()));
    };
    save("Arrival.png", 6);
    save("Bridge, from the other side of the river.png", 14);
    save("寺.png", 5);
    QImage flat(900, 600, QImage::Format_RGB32);
    flat.fill(QColor(200, 180, 150));
    QPainter(&flat).fillRect(100, 150, 420, 300, QColor(120, 60, 60));
    flat.save(QString::fromStdString((folder / "Cat.jpg").string()));
    std::ofstream(folder / "Notes.txt") << "x";
    std::ofstream(folder / "Torn.mov") << "x";
}

} // namespace lumetwin::test
