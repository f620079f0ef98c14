// SPDX-License-Identifier: MIT
// What every THandle instantiation shares: the fatal report of a null dereference.
#include "support/THandleCommon.hpp"

#include <cxxabi.h>

#include <cstdio>
#include <cstdlib>

void THandleCommon::null_handle_error(const std::type_info& type) {
    int status = 0;
    char* readable = abi::__cxa_demangle(type.name(), nullptr, nullptr, &status);
    std::fprintf(stderr, "Fatal error: dereferenced a null THandle<%s>\n",
                 status == 0 && readable != nullptr ? readable : type.name());
    std::fflush(stderr);
    std::free(readable);
    std::abort();
}
