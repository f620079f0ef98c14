// SPDX-License-Identifier: MIT
// What every THandle instantiation shares: the fatal report of a null dereference.
#pragma once

#include <typeinfo>

// What every THandle<T> instantiation shares: the fatal report of a null
// dereference.
class THandleCommon {
public:
    // Writes a fatal message naming the handled type to stderr and aborts.
    [[noreturn]] static void null_handle_error(const std::type_info& type);
};

// The count shared by the handles of one object. Objects that live in
// storage of their owner (the items of a document's arena) carry a release
// that gives the object back to that owner instead of deleting it.
struct THandleCount {
    long count = 1;
    void (*release)(THandleCount* count) = nullptr;
};
