// SPDX-License-Identifier: GPL-3.0-or-later
// The text over the 3-D view: atom labels, axis letters, lines between picks.
#pragma once

#include <QWidget>

class QcbsStructureView;

// A transparent child laid over the view and painted by the ordinary
// raster engine: text drawn through OpenGL would cost the first frame the
// compilation of the painter's own shaders and every frame their use.
class QcbsStructureLabels : public QWidget {
    Q_OBJECT
public:
    explicit QcbsStructureLabels(QcbsStructureView* view);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QcbsStructureView* view_;
};
