// SPDX-License-Identifier: MIT
// The whole text of a file in one read through the operating system.
#include "cif/CifFileText.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace {

// Closes the file on every way out, keeping errno as the failure left it.
struct OpenFile {
    int fd;
    ~OpenFile() {
        const int saved = errno;
        if (fd >= 0) ::close(fd);
        errno = saved;
    }
};

// Reads up to count bytes at data; the number read, or -1 on an error.
long read_some(int fd, char* data, std::size_t count) {
    for (;;) {
        const ssize_t got = ::read(fd, data, count);
        if (got >= 0 || errno != EINTR) return static_cast<long>(got);
    }
}

// A device or a pipe: read until it ends, fails or passes the cap.
CifFileRead read_stream(int fd, std::string& text, std::size_t cap) {
    char buffer[1 << 16];
    for (;;) {
        const long got = read_some(fd, buffer, sizeof buffer);
        if (got <= 0) return CifFileRead::read;
        if (text.size() + static_cast<std::size_t>(got) > cap) {
            text.clear();
            return CifFileRead::too_long;
        }
        text.append(buffer, static_cast<std::size_t>(got));
    }
}

}  // namespace

CifFileRead cif_read_file(const std::string& path, std::string& text, std::size_t cap) {
    text.clear();
    OpenFile file{::open(path.c_str(), O_RDONLY | O_CLOEXEC)};
    struct stat status {};
    if (file.fd < 0) {
        // A directory one may not open is still a directory.
        const int saved = errno;
        if (::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) return CifFileRead::directory;
        errno = saved;
        return CifFileRead::not_opened;
    }
    if (::fstat(file.fd, &status) != 0) return CifFileRead::read_error;
    if (S_ISDIR(status.st_mode)) return CifFileRead::directory;
    if (!S_ISREG(status.st_mode)) return read_stream(file.fd, text, cap);
    // One byte more than the size, so that the first read usually meets the end.
    const auto size = static_cast<std::size_t>(status.st_size);
    std::size_t filled = 0;
    long first = 0;
#ifdef __cpp_lib_string_resize_and_overwrite
    // Read straight into the string, not over zeros laid down first.
    text.resize_and_overwrite(size + 1, [&](char* data, std::size_t count) {
        first = read_some(file.fd, data, count);
        return first > 0 ? static_cast<std::size_t>(first) : 0;
    });
#else
    text.resize(size + 1);
    first = read_some(file.fd, text.data(), text.size());
    if (first > 0) text.resize(static_cast<std::size_t>(first));
#endif
    if (first < 0) {
        text.clear();
        return CifFileRead::read_error;
    }
    filled = static_cast<std::size_t>(first);
    // Short of what was asked at the size the file had: its end, with no
    // read more to see it (the usual case, one read a file).
    if (first == 0 || filled == size) {
        text.resize(filled);
        return CifFileRead::read;
    }
    // A short read part way, or a file grown since: read on to its end.
    text.resize(std::max(filled, size + 1));
    for (;;) {
        if (filled == text.size()) text.resize(text.size() * 2);
        const std::size_t wanted = text.size() - filled;
        const long got = read_some(file.fd, text.data() + filled, wanted);
        if (got < 0) {
            text.clear();
            return CifFileRead::read_error;
        }
        if (got == 0) break;
        filled += static_cast<std::size_t>(got);
        // Short of what was asked at the size the file had: its end, with
        // no read more to see it (the usual case, one read a file).
        if (filled == size && static_cast<std::size_t>(got) < wanted) break;
    }
    text.resize(filled);
    return CifFileRead::read;
}
