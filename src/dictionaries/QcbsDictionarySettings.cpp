#include "dictionaries/QcbsDictionarySettings.hpp"

QcbsDictionarySettings::QcbsDictionarySettings() { setObjectName("DictionarySettings"); }

QcbsDictionarySettings::~QcbsDictionarySettings() = default;

void QcbsDictionarySettings::saveSettings() const {
    if (!changed_) return;
    // Nothing can be switched yet: the pools of dictionaries come with the
    // dictionary reader of the CIF library.
}
