// SPDX-License-Identifier: GPL-3.0-or-later
// The program's built-in pictures that are not numbered icons: splash and about images.
#include "resources/QcbsImages.hpp"

#include <QPainter>
#include <QSvgRenderer>

namespace {

QPixmap render(const QString& resource, const QSize& size) {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QSvgRenderer renderer(resource);
    QPainter painter(&pixmap);
    renderer.render(&painter);
    return pixmap;
}

}  // namespace

QPixmap splashScreen() { return render(":/images/splash.svg", QSize(480, 280)); }

QPixmap aboutImage() { return render(":/images/splash.svg", QSize(360, 210)); }

QPixmap wizardImage() { return render(":/images/wizard-side.svg", QSize(150, 380)); }
