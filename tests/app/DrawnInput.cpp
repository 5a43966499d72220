// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/app/DrawnInput.h"

#include <QImage>
#include <QPainter>

#include <fstream>

namespace lumetwin::test {

void drawInput(const std::filesystem::path &folder) {
    const auto save = [&](const char *name, int disparity) {
        QImage photo(1280, 360, QImage::Format_RGB32);
        photo.fill(QColor(70, 110, 150));
        QPainter painter(&photo);
        for (const int eye : {0, 1})
            for (int column = 0; column < 12; ++column)
                for (int row = 0; row < 7; ++row) {
                    const int shift = eye * disparity * (column - 4) / 6;
                    painter.setClipRect(eye * 640, 0, 640, 360);
                    painter.fillRect(eye * 640 + column * 53 + (row * 17 + column * 29) % 31 + shift, row * 52 + 8,
                                     18 + (column * row) % 17, 30,
                                     QColor::fromHsv((column * 67 + row * 41) % 360, 130, 230));
                }
        painter.end();
        photo.save(QString::fromStdString((folder / name).string()));
    };
    save("Arrival.png", 6);
    save("Bridge, from the other side of the river.png", 8);
    save("寺.png", 5);
    QImage flat(900, 600, QImage::Format_RGB32);
    flat.fill(QColor(200, 180, 150));
    QPainter(&flat).fillRect(100, 150, 420, 300, QColor(120, 60, 60));
    flat.save(QString::fromStdString((folder / "Cat.jpg").string()));
    std::ofstream(folder / "Notes.txt") << "x";
    std::ofstream(folder / "Torn.mov") << "x";
}

} // namespace lumetwin::test
