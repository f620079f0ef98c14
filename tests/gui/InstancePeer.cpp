// SPDX-License-Identifier: GPL-3.0-or-later
// A stand-in for another user's program at the single-instance socket, run as that user.
//   instance_peer listen PATH   listens at PATH (mode 0777) and prints the bytes each
//                               connection brought, one line each, until one brings "stop"
//   instance_peer send PATH FILE  sends FILE's bytes to PATH and prints "sent" when the
//                               other end read to the end without closing early
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

namespace {

bool address(const char* path, sockaddr_un& out) {
    std::memset(&out, 0, sizeof out);
    out.sun_family = AF_UNIX;
    if (std::strlen(path) >= sizeof out.sun_path) return false;
    std::strcpy(out.sun_path, path);
    return true;
}

// Everything the peer sends until it closes, waiting at most 10 s.
std::string readAll(int fd) {
    std::string bytes;
    char buffer[4096];
    pollfd wait{fd, POLLIN, 0};
    while (::poll(&wait, 1, 10000) > 0) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got <= 0) break;
        bytes.append(buffer, static_cast<std::size_t>(got));
    }
    return bytes;
}

int listenAt(const char* path) {
    sockaddr_un where{};
    const int server = ::socket(AF_UNIX, SOCK_STREAM, 0);
    if (server < 0 || !address(path, where) ||
        ::bind(server, reinterpret_cast<sockaddr*>(&where), sizeof where) != 0 || ::chmod(path, 0777) != 0 ||
        ::listen(server, 8) != 0) {
        std::perror("listen");
        return 1;
    }
    std::printf("listening\n");
    std::fflush(stdout);
    for (;;) {
        pollfd wait{server, POLLIN, 0};
        if (::poll(&wait, 1, 30000) <= 0) return 2;  // nobody came
        const int client = ::accept(server, nullptr, nullptr);
        if (client < 0) return 1;
        const std::string bytes = readAll(client);
        ::close(client);
        std::printf("%zu\n", bytes.size());
        std::fflush(stdout);
        if (bytes == "stop") return 0;
    }
}

int sendTo(const char* path, const char* file) {
    std::stringstream text;
    text << std::ifstream(file, std::ios::binary).rdbuf();
    const std::string bytes = text.str();
    sockaddr_un where{};
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    if (socket < 0 || !address(path, where) ||
        ::connect(socket, reinterpret_cast<sockaddr*>(&where), sizeof where) != 0) {
        std::perror("connect");
        return 1;
    }
    const bool written = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL) == ssize_t(bytes.size());
    ::shutdown(socket, SHUT_WR);
    readAll(socket);  // until the other end closes
    std::printf(written ? "sent\n" : "refused\n");
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "listen") == 0) return listenAt(argv[2]);
    if (argc == 4 && std::strcmp(argv[1], "send") == 0) return sendTo(argv[2], argv[3]);
    std::fprintf(stderr, "usage: instance_peer listen PATH | send PATH FILE\n");
    return 2;
}
