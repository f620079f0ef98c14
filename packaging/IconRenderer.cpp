// SPDX-License-Identifier: MIT
// Renders the application icon's SVG as a square PNG of one size, for the hicolor theme.
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: tessary_icon_renderer ICON.svg OUT.png SIZE\n");
        return 2;
    }
    QSvgRenderer svg(QString::fromLocal8Bit(argv[1]));
    const int size = std::atoi(argv[3]);
    if (!svg.isValid() || size <= 0) {
        std::fprintf(stderr, "tessary_icon_renderer: cannot render %s at size %s\n", argv[1], argv[3]);
        return 1;
    }
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    svg.render(&painter);
    painter.end();
    return image.convertToFormat(QImage::Format_ARGB32).save(QString::fromLocal8Bit(argv[2]), "PNG") ? 0 : 1;
}
