#pragma once

#include <QObject>
#include <QString>

// Finds the dictionary files (*.dic) in the dictionary directories next to
// the program and reads them, once, into one pool of all dictionaries. One
// loader exists per program, in the data shared by the main windows.
class QcbsDictionaryLoader : public QObject {
    Q_OBJECT
public:
    QcbsDictionaryLoader();
    ~QcbsDictionaryLoader() override;

signals:
    // One progress line for the output pane; the loader always sends false.
    void outputMessageRequest(const QString& message, bool flag);
};
