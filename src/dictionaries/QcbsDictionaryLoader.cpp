#include "dictionaries/QcbsDictionaryLoader.hpp"

QcbsDictionaryLoader::QcbsDictionaryLoader() = default;

QcbsDictionaryLoader::~QcbsDictionaryLoader() = default;
