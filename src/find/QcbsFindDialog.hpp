// SPDX-License-Identifier: GPL-3.0-or-later
// The modeless "Find Text" dialog.
#pragma once

#include "find/QcbsSearchDialog.hpp"

class QPushButton;

// "Find Text": the find text, "&Find" (doFind()) and "Close", the
// direction and the options.
class QcbsFindDialog : public QcbsSearchDialog {
    Q_OBJECT
public:
    explicit QcbsFindDialog(QWidget* parent = nullptr);
    QPushButton* buttonFind() const { return buttonFind_; }

private:
    QPushButton* buttonFind_ = nullptr;
};
