// SPDX-License-Identifier: GPL-3.0-or-later
// The contact author of a publication, as the publication wizard offers it.
#pragma once

#include <QString>

// The contact author of a publication, offered by the publication wizard and
// kept in the settings ("contact name", "contact address", ...). Fields the
// user never set are null texts.
struct QcbsContactAuthor {
    QString name;
    QString address;
    QString phone;
    QString fax;
    QString email;

    bool operator==(const QcbsContactAuthor& other) const = default;
};
