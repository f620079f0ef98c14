// SPDX-License-Identifier: GPL-3.0-or-later
// The 3-D view of a crystal structure: drawing, turning, zooming, picking and measuring atoms.
#include "visualiser/QcbsStructureView.hpp"

#include <QMouseEvent>
#include <QOpenGLContext>
#include <QOpenGLFunctions>
#include <QPainter>
#include <QPrinter>
#include <QResizeEvent>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "cif/CifDisplacement.hpp"
#include "visualiser/QcbsOpenGLSupport.hpp"
#include "visualiser/QcbsStructureLabels.hpp"
#include "visualiser/QcbsStructureRenderer.hpp"

namespace {

// Mouse travel below this many pixels is a click, not a drag.
constexpr int click_slack = 3;
// Extra pixels around an atom that still pick it.
constexpr float pick_slack = 2.0f;

QString number(double value, int decimals) { return QString::number(value, 'f', decimals); }

}  // namespace

QcbsStructureView::QcbsStructureView(QWidget* parent)
    : QOpenGLWidget(parent), labels_(new QcbsStructureLabels(this)) {
    setObjectName("structureview");
    setFormat(structureViewFormat());
    setMinimumSize(160, 120);
    setFocusPolicy(Qt::StrongFocus);
}

QcbsStructureView::~QcbsStructureView() { releaseRenderer(); }

void QcbsStructureView::releaseRenderer() {
    if (!renderer_) return;
    // The renderer frees its buffers only in its own context.
    if (context() != nullptr && isValid()) {
        makeCurrent();
        renderer_.reset();
        doneCurrent();
    } else {
        renderer_.reset();
    }
}

void QcbsStructureView::setStructure(THandle<CifStructure> structure, bool keepFrame) {
    structure_ = structure;
    const std::size_t count = structure_.is_null() || !structure_->usable()
                                  ? 0
                                  : QcbsStructureScene::atomSet(*structure_, options_.contents).atoms.size();
    if (!keepFrame ||
        std::any_of(picks_.begin(), picks_.end(), [&](int n) { return std::size_t(n) >= count; }))
        picks_.clear();
    rebuild();
    if (!keepFrame) camera_.frame(scene_.centre(), scene_.radius());
}

void QcbsStructureView::setOptions(const QcbsSceneOptions& options) {
    const bool newSet = options.contents != options_.contents;
    options_ = options;
    if (newSet) picks_.clear();
    rebuild();
    if (newSet) camera_.frame(scene_.centre(), scene_.radius());
}

void QcbsStructureView::rebuild() {
    if (!structure_.is_null() && structure_->usable()) {
        scene_.build(*structure_, options_, picks_);
    } else {
        scene_.clear();
    }
    uploaded_ = false;
    redraw();
}

void QcbsStructureView::viewAlong(int axis) {
    if (structure_.is_null() || !structure_->usable() || axis < 0 || axis > 2) return;
    const gemmi::Mat33& orth = structure_->cell().orth.mat;
    const auto column = [&](int i) {
        return QVector3D(float(orth[0][i]), float(orth[1][i]), float(orth[2][i]));
    };
    // Down a: b to the right, c up; down b: c right, a up; down c: a right, b up.
    camera_.lookAlong(column(axis), column((axis + 2) % 3));
    redraw();
}

void QcbsStructureView::resetView() {
    camera_.reset();
    camera_.frame(scene_.centre(), scene_.radius());
    redraw();
}

void QcbsStructureView::initializeGL() {
    renderer_ = std::make_unique<QcbsStructureRenderer>();
    QString problem;
    if (!renderer_->initialize(&problem)) {
        problem_ = problem;
        renderer_.reset();
        // Not from inside initialisation: the receiver may take this widget away.
        QMetaObject::invokeMethod(
            this, [this, problem] { emit openGLFailed(problem); }, Qt::QueuedConnection);
        return;
    }
    uploaded_ = false;
    connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, &QcbsStructureView::releaseRenderer,
            Qt::UniqueConnection);
}

void QcbsStructureView::resizeGL(int width, int height) { camera_.setViewport(QSize(width, height)); }

void QcbsStructureView::resizeEvent(QResizeEvent* event) {
    // Picking works on the widget's size even before anything is drawn.
    camera_.setViewport(event->size());
    labels_->setGeometry(rect());
    QOpenGLWidget::resizeEvent(event);
}

void QcbsStructureView::paintGL() {
    camera_.setViewport(size());
    if (!renderer_) {
        QOpenGLFunctions* gl = context()->functions();
        gl->glClearColor(0, 0, 0, 1);
        gl->glClear(GL_COLOR_BUFFER_BIT);
        return;
    }
    if (!uploaded_) {
        renderer_->upload(scene_);
        uploaded_ = true;
    }
    renderer_->render(camera_, QcbsStructureScene::background());
    ++frames_;
    emit framePainted();
}

long long QcbsStructureView::lastTriangles() const { return renderer_ ? renderer_->triangles() : 0; }

void QcbsStructureView::redraw() {
    update();
    labels_->update();
}

void QcbsStructureView::paintOverlay(QPainter& painter) const {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    QFont font = painter.font();
    font.setPointSizeF(9.0);
    painter.setFont(font);
    const float scale = camera_.pixelsPerAngstrom();
    // Light text with a dark edge reads on the background and on light atoms alike.
    const QColor text(240, 240, 240), edge(0, 0, 0, 200);
    for (int n : scene_.labelled()) {
        const QcbsStructureScene::Atom& atom = scene_.atoms()[std::size_t(n)];
        const float offset = atom.radius * scale * 0.7f + 2.0f;
        const QPointF at = camera_.project(atom.position) + QPointF(offset, -offset);
        painter.setPen(edge);
        for (const QPointF& shift : {QPointF(1, 1), QPointF(-1, -1), QPointF(1, -1), QPointF(-1, 1)})
            painter.drawText(at + shift, atom.label);
        painter.setPen(text);
        painter.drawText(at, atom.label);
    }
    const std::vector<QVector3D>& ends = scene_.axisEnds();
    if (ends.size() == 4) {
        const QColor colours[4] = {QColor(220, 220, 220), QColor(240, 80, 80), QColor(90, 210, 90),
                                   QColor(100, 140, 255)};
        const char* const names[4] = {"O", "a", "b", "c"};
        QFont bold = font;
        bold.setBold(true);
        bold.setPointSizeF(11.0);
        painter.setFont(bold);
        for (int i = 0; i < 4; ++i) {
            painter.setPen(colours[i]);
            painter.drawText(camera_.project(ends[std::size_t(i)]) + QPointF(4, -4), names[i]);
        }
        painter.setFont(font);
    }
    if (picks_.size() >= 2) {
        QPen pen(QcbsStructureScene::highlight(), 1.5, Qt::DashLine);
        painter.setPen(pen);
        std::vector<QPointF> points;
        for (int pick : picks_) {
            for (const QcbsStructureScene::Atom& atom : scene_.atoms()) {
                if (atom.index == pick) points.push_back(camera_.project(atom.position));
            }
        }
        for (std::size_t i = 1; i < points.size(); ++i) painter.drawLine(points[i - 1], points[i]);
    }
}

int QcbsStructureView::atomAt(const QPoint& point) const {
    int best = -1;
    float bestDepth = 0.0f;
    const float scale = camera_.pixelsPerAngstrom();
    for (std::size_t n = 0; n < scene_.atoms().size(); ++n) {
        const QcbsStructureScene::Atom& atom = scene_.atoms()[n];
        float depth = 0.0f;
        const QPointF at = camera_.project(atom.position, &depth);
        const float reach = atom.radius * scale + pick_slack;
        const double dx = at.x() - point.x(), dy = at.y() - point.y();
        if (dx * dx + dy * dy > double(reach) * reach) continue;
        if (best < 0 || depth < bestDepth) {
            best = int(n);
            bestDepth = depth;
        }
    }
    return best;
}

QPointF QcbsStructureView::screenPosition(int sceneAtom) const {
    if (sceneAtom < 0 || std::size_t(sceneAtom) >= scene_.atoms().size()) return QPointF();
    return camera_.project(scene_.atoms()[std::size_t(sceneAtom)].position);
}

QString QcbsStructureView::describe(int index) const {
    const CifBuiltAtom& atom =
        QcbsStructureScene::atomSet(*structure_, options_.contents).atoms[std::size_t(index)];
    const gemmi::SmallStructure::Site& site = structure_->sites()[std::size_t(atom.site)];
    const CifSiteSource& source = structure_->source(atom.site);
    QString text = QString::fromStdString(site.label) + " (" + QString::fromStdString(site.element.name()) +
                   "): x " + number(atom.fract.x, 4) + ", y " + number(atom.fract.y, 4) + ", z " +
                   number(atom.fract.z, 4) + "; occupancy " + QString::number(site.occ, 'g', 4);
    const std::string code = structure_->symmetry_code(atom);
    if (code != "x,y,z") text += "; at " + QString::fromStdString(code);
    if (!source.disorder_group.empty())
        text += "; disorder group " + QString::fromStdString(CifStructure::disorder_key(source));
    if (source.has_aniso && !cif_ellipsoid(structure_->displacement(atom)).positive_definite)
        text += "; displacements not positive definite";
    return text;
}

QString QcbsStructureView::measure() const {
    const CifAtomSet& set = QcbsStructureScene::atomSet(*structure_, options_.contents);
    std::vector<gemmi::Position> at;
    QStringList names;
    for (int pick : picks_) {
        const CifBuiltAtom& atom = set.atoms[std::size_t(pick)];
        at.push_back(atom.pos);
        names << QString::fromStdString(structure_->sites()[std::size_t(atom.site)].label);
    }
    if (picks_.size() == 2)
        return names.join(QChar(0x2013)) + ": " + number(at[0].dist(at[1]), 3) + QString::fromUtf8(" Å");
    const gemmi::Vec3 u = at[0] - at[1], v = at[2] - at[1];
    const double cosine = u.dot(v) / std::sqrt(u.length_sq() * v.length_sq());
    const double angle = std::acos(std::clamp(cosine, -1.0, 1.0)) * 180.0 / M_PI;
    return names.join(QChar(0x2013)) + ": " + number(angle, 1) + QString::fromUtf8("°");
}

QString QcbsStructureView::pickAt(const QPoint& point) {
    if (structure_.is_null() || !structure_->usable()) return QString();
    const int sceneAtom = atomAt(point);
    if (sceneAtom < 0) {
        picks_.clear();
        statusText_.clear();
    } else {
        const int index = scene_.atoms()[std::size_t(sceneAtom)].index;
        if (picks_.size() >= 3) picks_.clear();
        if (picks_.empty() || picks_.back() != index) picks_.push_back(index);
        statusText_ = picks_.size() == 1 ? describe(index) : measure();
    }
    rebuild();
    emit statusMessage(statusText_);
    return statusText_;
}

void QcbsStructureView::mousePressEvent(QMouseEvent* event) {
    pressPoint_ = lastPoint_ = event->position().toPoint();
    dragged_ = false;
}

void QcbsStructureView::mouseMoveEvent(QMouseEvent* event) {
    const QPoint point = event->position().toPoint();
    if ((point - pressPoint_).manhattanLength() > click_slack) dragged_ = true;
    if (!dragged_) return;
    const QPoint delta = point - lastPoint_;
    lastPoint_ = point;
    const bool pan = (event->buttons() & (Qt::RightButton | Qt::MiddleButton)) ||
                     ((event->buttons() & Qt::LeftButton) && (event->modifiers() & Qt::ShiftModifier));
    if (pan) {
        camera_.panBy(delta);
    } else if (event->buttons() & Qt::LeftButton) {
        camera_.rotateBy(delta);
    }
    redraw();
}

void QcbsStructureView::mouseReleaseEvent(QMouseEvent* event) {
    if (!dragged_ && event->button() == Qt::LeftButton) pickAt(event->position().toPoint());
    dragged_ = false;
}

void QcbsStructureView::mouseDoubleClickEvent(QMouseEvent* event) {
    // The press that ends a double click is no new drag; its release picks the same atom again, which is kept
    // once.
    pressPoint_ = lastPoint_ = event->position().toPoint();
    dragged_ = false;
    if (structure_.is_null() || !structure_->usable() || event->button() != Qt::LeftButton) return;
    const int sceneAtom = atomAt(event->position().toPoint());
    if (sceneAtom < 0) return;
    const CifBuiltAtom& atom = QcbsStructureScene::atomSet(*structure_, options_.contents)
                                   .atoms[std::size_t(scene_.atoms()[std::size_t(sceneAtom)].index)];
    const int line = structure_->source(atom.site).line;
    if (line > 0) emit atomActivated(line);
}

void QcbsStructureView::wheelEvent(QWheelEvent* event) {
    const int steps = event->angleDelta().y();
    if (steps == 0) return;
    camera_.zoomBy(std::pow(1.0015f, float(steps)));
    redraw();
}

QImage QcbsStructureView::picture() {
    QImage image = grabFramebuffer();
    if (image.isNull()) return image;
    QPainter painter(&image);
    paintOverlay(painter);
    return image;
}

bool QcbsStructureView::exportPng(const QString& fileName) {
    const QImage image = picture();
    return !image.isNull() && image.save(fileName, "PNG");
}

void QcbsStructureView::print(QPrinter* printer) {
    const QImage image = picture();
    QPainter painter(printer);
    if (!painter.isActive()) return;
    const QRect page = painter.viewport();
    QString caption;
    if (!structure_.is_null()) caption = "data_" + QString::fromStdString(structure_->block_name());
    const int captionHeight = painter.fontMetrics().height() * 2;
    painter.drawText(QRect(page.left(), page.top(), page.width(), captionHeight),
                     Qt::AlignLeft | Qt::AlignTop, caption);
    const QRect room(page.left(), page.top() + captionHeight, page.width(), page.height() - captionHeight);
    const QSize fitted = image.size().scaled(room.size(), Qt::KeepAspectRatio);
    painter.drawImage(QRect(room.topLeft(), fitted), image);
}
