#pragma once

#include <QMainWindow>
#include <QString>

// One editor window holding one document.
class QcbsMainWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit QcbsMainWindow(QWidget* parent = nullptr);
    ~QcbsMainWindow() override;

public slots:
    // Opens a file in this window or a new one; `interactive` allows questions.
    virtual void fileOpen(const QString& filename, bool interactive);
};
