// SPDX-License-Identifier: GPL-3.0-or-later
// The program's numbered built-in pictures, drawn from SVG resources at the asked size.
#pragma once

#include <QList>
#include <QPixmap>
#include <QString>

// The program's numbered built-in pictures (icons of the error list, the tree
// of blocks and categories, menus). Each number names one team-made SVG
// picture in the program's resources; a picture is drawn at the asked size on
// first use and kept in the pixmap cache.
class QcbsXpmResource {
public:
    // Image numbers in use. The numbers are fixed: other parts of the program
    // and stored layouts refer to them.
    enum Image {
        Copy = 1,
        Paste = 7,
        Warning = 10,
        Error = 11,
        Remark = 12,
        Help = 18,
        CategoryClosed = 48,
        CategoryOpen = 49,
        Item = 50,
        LoopedItem = 51,
        GreyedItem = 52,
        BlockClosed = 56,
        BlockOpen = 57,
        // The editor's context menu.
        Undo = 60,
        Redo = 61,
        Cut = 62,
        EditComment = 63,
        EditUncomment = 64,
        Insert = 65,
        InsertTemplate = 66,
        ItemHelp = 67,
        SelectAll = 68,
        // The main window's actions, pages and window.
        FileNew = 69,
        FileOpen = 70,
        NewWindow = 71,
        FileSave = 72,
        FileSaveAs = 73,
        FilePrint = 74,
        FileClose = 75,
        FileExit = 76,
        MergeTemplate = 77,
        ZoomIn = 78,
        ZoomOut = 79,
        Preferences = 80,
        Check = 81,
        Browser = 82,
        PublicationWizard = 83,
        CrystalWizard = 84,
        EditLoop = 85,
        NewLoop = 86,
        Find = 87,
        FindPrevious = 88,
        FindNext = 89,
        Replace = 90,
        GoToLine = 91,
        SpecialCharacters = 92,
        About = 93,
        HomePage = 94,
        OpenInViewer = 95,
        EditorPage = 96,
        VisualiserPage = 97,
        Program = 98,
    };

    static constexpr int kDefaultSize = 16;

    // The picture of an image number as a square pixmap of `size` pixels
    // (device-independent); a null pixmap for a number without a picture.
    static QPixmap get_xpm(int number, int size = kDefaultSize);

    // The same picture looked up by its short name ("copy", "warning", ...),
    // the name menus use for their icons; a null pixmap for an unknown name.
    static QPixmap get_xpm(const QString& name, int size = kDefaultSize);

    // Every image number that has a picture, in ascending order.
    static QList<int> numbers();

    // The short name of an image number, or an empty string.
    static QString name(int number);
};
