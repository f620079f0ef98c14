// SPDX-License-Identifier: GPL-3.0-or-later
// A data name's dictionary definition as rich text, with links to the names it mentions.
#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>

#include "cif/CifDictionary.hpp"
#include "editor/QcbsFontStyleSettings.hpp"
#include "support/THandle.hpp"

class QPushButton;
class QTextBrowser;
class QUrl;

// A data name's dictionary definition as rich text: its name, category,
// type, units, permitted values with their meanings, range, whether a
// standard uncertainty is allowed, its loop rules, the names it is related
// to or replaced by (links that show their own definitions, with Back to
// return) and the definition's text. A category name shows the category's
// definition and its data names. Close emits userDidClose().
class QcbsDataItemInfo : public QWidget {
    Q_OBJECT
public:
    QcbsDataItemInfo(QString dataName, THandle<CifDictionary> dictionary,
                     THandle<QcbsFontStyleSettings> styles, QWidget* parent = nullptr);

    // The name whose definition shows.
    const QString& dataName() const { return dataName_; }
    QTextBrowser* browser() const { return browser_; }

    // The definition of the data name as rich text, the names in the font of
    // the editor. Links are "INFO" + data name.
    static QString definitionHtml(const THandle<CifDictionary>& dictionary, const QString& dataName,
                                  const QcbsFontStyleSettings& styles);

public slots:
    // Shows another name's definition; Back returns to the one before.
    void showDataName(const QString& dataName);
    void back();

signals:
    void userDidClose();

private:
    void followLink(const QUrl& link);
    void render();

    QString dataName_;
    THandle<CifDictionary> dictionary_;
    THandle<QcbsFontStyleSettings> styles_;
    QStringList history_;
    QTextBrowser* browser_;
    QPushButton* back_;
};
