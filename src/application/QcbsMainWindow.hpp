#pragma once

#include <QMainWindow>
#include <QPointer>
#include <QString>
#include <QStringList>

#include "application/QcbsContactAuthor.hpp"
#include "application/QcbsMainWindowSharedData.hpp"
#include "support/THandle.hpp"
#include "validation/QcbsOutputPane.hpp"

class RecentFilesMenu;

// One editor window holding one document. All windows share one
// QcbsMainWindowSharedData; the options that hold for the whole program are
// class-wide members, read from the settings by loadSettings() and written
// back by saveSettings().
class QcbsMainWindow : public QMainWindow {
    Q_OBJECT
public:
    // Whether a new window starts with a new untitled document or empty.
    enum WindowStartupSetting { StartEmpty, StartWithNewFile };

    explicit QcbsMainWindow(THandle<QcbsMainWindowSharedData> sharedData,
                            WindowStartupSetting startup = StartEmpty, QWidget* parent = nullptr);
    ~QcbsMainWindow() override;

    const THandle<QcbsMainWindowSharedData>& sharedData() const { return sharedData_; }

    // Reads the text styles, then the window's settings keys in their fixed
    // order; a missing key gives its default.
    void loadSettings();
    // Saves the dictionary settings, the text styles, this window's size (as
    // the size of new windows), the recent files and the window's settings keys.
    void saveSettings();
    // Applies the class-wide options to this window.
    void initialiseSettings();
    // Applies initialiseSettings() to every main window of the program.
    static void initialiseAllInstSettings();
    // Gives the current editor the line-number option and the text styles.
    void initialiseEditorSettings();
    // Reads the mandatory data names of publication and crystal blocks from
    // mandatory_items_file into the shared lists (empty unless
    // check_mandatory_items is on).
    void loadMandatoryDataItemSettings();

    // The pane writeToOutputPane() writes to. Until the window has one, the
    // writes are kept, one entry per call (with "<br>" when a line break was
    // asked for), and the pane set later receives them first.
    void setOutputPane(QcbsOutputPane* pane);
    QcbsOutputPane* outputPane() const { return outputPane_; }
    const QStringList& pendingOutputPaneWrites() const { return pendingOutputPaneWrites_; }

    // Options shared by every window.
    static bool text_buttons;
    static int initial_app_width;
    static int initial_app_height;
    static int max_consec_error;
    static bool reuse_window;
    static bool start_with_template;
    static QString template_file;
    static bool check_mandatory_items;
    static QString mandatory_items_file;
    static QcbsContactAuthor contact_author;
    static RecentFilesMenu* recentFiles;

public slots:
    // Opens a file in this window or a new one; `interactive` allows questions.
    virtual void fileOpen(const QString& filename, bool interactive);
    // Appends rich text to the output pane, followed by "<br>" when
    // `lineBreak` is true.
    void writeToOutputPane(const QString& text, bool lineBreak);

private:
    void makeRecentFilesList();
    void connectSharedData();
    void writeHtmlToOutputPane(const QString& html);

    THandle<QcbsMainWindowSharedData> sharedData_;
    QPointer<QcbsOutputPane> outputPane_;
    QStringList pendingOutputPaneWrites_;
};
