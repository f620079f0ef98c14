// SPDX-License-Identifier: GPL-3.0-or-later
// Which help page explains which kind of problem.
#pragma once

#include <QString>

#include "cif/CifError.hpp"

// Which help page explains which kind of problem. Stateless.
class QcbsErrorResource {
public:
    // The help page of a problem kind, relative to the help directory
    // ("tessary/PortableHTML/tessary_portable-3-069.html" for kind 302), or an
    // empty string when the kind has no page.
    static QString get_help_file(CifError::ErrorID id);
};
