// SPDX-License-Identifier: GPL-3.0-or-later
// A data name's row in the tree: present, absent (grey), looped or refused by the dictionary.
#pragma once

#include "views/QcbsCifBoxItem.hpp"

// A data name's row under a category row. When it is made it looks the name
// up in its block: absent, it is greyed; present, it shows whether it is
// looped and whether the dictionary refuses any of its values.
class QcbsCifBoxDataItem : public QcbsCifBoxItem {
public:
    QcbsCifBoxDataItem(THandle<CifDataBlock> block, THandle<CifDictionary> dictionary, const QString& name);

    bool isGreyedOut() const override { return greyed_; }
    bool isLooped() const { return looped_; }
    QMenu* makeContextMenu() override;

private:
    bool greyed_ = false;
    bool looped_ = false;
};
