// SPDX-License-Identifier: MIT
// The messages of a read or check in the order produced, counted by kind.
#include "cif/CifErrorContainer.hpp"

int CifErrorContainer::errors_of_type(CifError::ErrorType type) const {
    int count = 0;
    for (const CifError& error : errors_) {
        if (error.type() == type) ++count;
    }
    return count;
}
