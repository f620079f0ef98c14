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
