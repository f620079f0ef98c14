#pragma once

#include <QObject>

// Which dictionaries are enabled, kept in the settings under
// "dictionaries/" + name + version. One object exists per program, in the
// data shared by the main windows.
class QcbsDictionarySettings : public QObject {
    Q_OBJECT
public:
    QcbsDictionarySettings();
    ~QcbsDictionarySettings() override;

    // Writes the enabled state of every dictionary, but only once a
    // dictionary was switched on or off.
    void saveSettings() const;

    bool changed() const { return changed_; }

private:
    bool changed_ = false;
};
