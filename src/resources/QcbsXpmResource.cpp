// SPDX-License-Identifier: GPL-3.0-or-later
// The program's numbered built-in pictures, drawn from SVG resources at the asked size.
#include "resources/QcbsXpmResource.hpp"

#include <QGuiApplication>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace {

struct Picture {
    int number;
    const char* name;
    const char* resource;
};

// The one table from image number to picture. Add new pictures here, in
// ascending number order, and list their files in tessary.qrc.
constexpr Picture kPictures[] = {
    {QcbsXpmResource::Copy, "copy", ":/images/copy.svg"},
    {QcbsXpmResource::Paste, "paste", ":/images/paste.svg"},
    {QcbsXpmResource::Warning, "warning", ":/images/warning.svg"},
    {QcbsXpmResource::Error, "error", ":/images/error.svg"},
    {QcbsXpmResource::Remark, "remark", ":/images/remark.svg"},
    {QcbsXpmResource::Help, "help", ":/images/help.svg"},
    {QcbsXpmResource::CategoryClosed, "category closed", ":/images/category-closed.svg"},
    {QcbsXpmResource::CategoryOpen, "category open", ":/images/category-open.svg"},
    {QcbsXpmResource::Item, "item", ":/images/item.svg"},
    {QcbsXpmResource::LoopedItem, "looped item", ":/images/item-looped.svg"},
    {QcbsXpmResource::GreyedItem, "greyed item", ":/images/item-greyed.svg"},
    {QcbsXpmResource::BlockClosed, "block closed", ":/images/block-closed.svg"},
    {QcbsXpmResource::BlockOpen, "block open", ":/images/block-open.svg"},
    {QcbsXpmResource::Undo, "undo", ":/images/undo.svg"},
    {QcbsXpmResource::Redo, "redo", ":/images/redo.svg"},
    {QcbsXpmResource::Cut, "cut", ":/images/cut.svg"},
    {QcbsXpmResource::EditComment, "editComment", ":/images/comment.svg"},
    {QcbsXpmResource::EditUncomment, "editUncomment", ":/images/uncomment.svg"},
    {QcbsXpmResource::Insert, "insert", ":/images/insert.svg"},
    {QcbsXpmResource::InsertTemplate, "insert template", ":/images/insert-template.svg"},
    {QcbsXpmResource::ItemHelp, "item help", ":/images/item-help.svg"},
    {QcbsXpmResource::SelectAll, "selectall", ":/images/select-all.svg"},
    {QcbsXpmResource::FileNew, "fileNew", ":/images/file-new.svg"},
    {QcbsXpmResource::FileOpen, "fileOpen", ":/images/file-open.svg"},
    {QcbsXpmResource::NewWindow, "newWindow", ":/images/window-new.svg"},
    {QcbsXpmResource::FileSave, "fileSave", ":/images/file-save.svg"},
    {QcbsXpmResource::FileSaveAs, "fileSaveAs", ":/images/file-save-as.svg"},
    {QcbsXpmResource::FilePrint, "filePrint", ":/images/file-print.svg"},
    {QcbsXpmResource::FileClose, "fileClose", ":/images/file-close.svg"},
    {QcbsXpmResource::FileExit, "fileExit", ":/images/exit.svg"},
    {QcbsXpmResource::MergeTemplate, "merge template", ":/images/merge-template.svg"},
    {QcbsXpmResource::ZoomIn, "zoom in", ":/images/zoom-in.svg"},
    {QcbsXpmResource::ZoomOut, "zoom out", ":/images/zoom-out.svg"},
    {QcbsXpmResource::Preferences, "preferences", ":/images/preferences.svg"},
    {QcbsXpmResource::Check, "check", ":/images/check.svg"},
    {QcbsXpmResource::Browser, "browser", ":/images/browser.svg"},
    {QcbsXpmResource::PublicationWizard, "publication wizard", ":/images/wizard-publication.svg"},
    {QcbsXpmResource::CrystalWizard, "crystal wizard", ":/images/wizard-crystal.svg"},
    {QcbsXpmResource::EditLoop, "edit loop", ":/images/loop-edit.svg"},
    {QcbsXpmResource::NewLoop, "new loop", ":/images/loop-new.svg"},
    {QcbsXpmResource::Find, "find", ":/images/find.svg"},
    {QcbsXpmResource::FindPrevious, "find previous", ":/images/find-previous.svg"},
    {QcbsXpmResource::FindNext, "find next", ":/images/find-next.svg"},
    {QcbsXpmResource::Replace, "replace", ":/images/replace.svg"},
    {QcbsXpmResource::GoToLine, "go to line", ":/images/go-to-line.svg"},
    {QcbsXpmResource::SpecialCharacters, "special characters", ":/images/special-characters.svg"},
    {QcbsXpmResource::About, "about", ":/images/about.svg"},
    {QcbsXpmResource::HomePage, "home page", ":/images/home-page.svg"},
    {QcbsXpmResource::OpenInViewer, "open in viewer", ":/images/visualiser-open.svg"},
    {QcbsXpmResource::EditorPage, "editor page", ":/images/editor-tab.svg"},
    {QcbsXpmResource::VisualiserPage, "visualiser page", ":/images/visualiser-tab.svg"},
    {QcbsXpmResource::Program, "program", ":/images/program.svg"},
};

const Picture* find(int number) {
    for (const Picture& picture : kPictures)
        if (picture.number == number) return &picture;
    return nullptr;
}

QPixmap render(const Picture& picture, int size) {
    if (size <= 0) return QPixmap();
    const qreal ratio = qApp ? qApp->devicePixelRatio() : 1.0;
    const QString cacheKey = QString("QcbsXpmResource/%1/%2/%3").arg(picture.number).arg(size).arg(ratio);
    QPixmap pixmap;
    if (QPixmapCache::find(cacheKey, &pixmap)) return pixmap;

    QSvgRenderer renderer{QString::fromLatin1(picture.resource)};
    if (!renderer.isValid()) return QPixmap();
    const int pixels = qRound(size * ratio);
    pixmap = QPixmap(pixels, pixels);
    pixmap.fill(Qt::transparent);
    {
        QPainter painter(&pixmap);
        renderer.render(&painter);
    }
    pixmap.setDevicePixelRatio(ratio);
    QPixmapCache::insert(cacheKey, pixmap);
    return pixmap;
}

}  // namespace

QPixmap QcbsXpmResource::get_xpm(int number, int size) {
    const Picture* picture = find(number);
    return picture ? render(*picture, size) : QPixmap();
}

QPixmap QcbsXpmResource::get_xpm(const QString& name, int size) {
    for (const Picture& picture : kPictures)
        if (name == QLatin1String(picture.name)) return render(picture, size);
    return QPixmap();
}

QList<int> QcbsXpmResource::numbers() {
    QList<int> list;
    for (const Picture& picture : kPictures) list.append(picture.number);
    return list;
}

QString QcbsXpmResource::name(int number) {
    const Picture* picture = find(number);
    return picture ? QString::fromLatin1(picture->name) : QString("");
}
