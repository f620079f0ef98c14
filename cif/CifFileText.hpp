// SPDX-License-Identifier: MIT
// The whole text of a file in one read through the operating system.
#pragma once

#include <cstddef>
#include <string>

// How reading a file's text went.
enum class CifFileRead {
    read,        // text holds the whole file
    directory,   // the name is a directory
    not_opened,  // it could not be opened (errno tells why)
    read_error,  // reading a regular file failed part way
    too_long,    // a device or pipe gave more than the cap
};

// Reads a file whole into text. A regular file's size is taken from the
// open file, then one read of a byte more than that size, which ends it
// when it comes back short at that size (a file that grew meanwhile is
// read on to its end): far cheaper than a stream for the many small files
// of a checking run. A device or a pipe,
// which may never end (/dev/zero), is read up to `cap` bytes, and a read
// error there ends its text.
CifFileRead cif_read_file(const std::string& path, std::string& text, std::size_t cap);
