// SPDX-License-Identifier: MIT
// The whole text of a stream in one string of the right size.
#pragma once

#include <istream>
#include <string>

// Reads the stream to its end into text: at once when its size is known
// (a file), then whatever follows. Returns false when the stream went bad.
bool cif_read_stream(std::istream& stream, std::string& text);
