// Stands in for a program of the family: holds the named locks it is given and prints every
// notice that reaches the names it listens on, one "notice <text>" line each, until its
// standard input closes.
//   guard_standin [--hold NAME]... [--listen NAME]...
#include "AbstractSocket.h"
#include "NamedMutex.h"

#include <QByteArray>
#include <QString>
#include <cstdio>
#include <memory>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kNoticeWaitMs = 1000;
constexpr size_t kMaxNoticeBytes = 512;

QByteArray ReadNotice(int fd) {
    QByteArray text;
    char buffer[kMaxNoticeBytes];
    while (text.size() < static_cast<qsizetype>(kMaxNoticeBytes) &&
           abstractsocket::WaitReadable(fd, kNoticeWaitMs)) {
        const ssize_t n = ::recv(fd, buffer, sizeof(buffer), MSG_DONTWAIT);
        if (n <= 0) {
            break;
        }
        text.append(buffer, n);
    }
    return text;
}

// Listeners are served in the order given, so a notice sent before one to a later name is
// printed before it.
void Serve(const std::vector<int>& listeners) {
    std::vector<pollfd> entries{{STDIN_FILENO, POLLIN, 0}};
    for (const int fd : listeners) {
        entries.push_back({fd, POLLIN, 0});
    }
    while (::poll(entries.data(), entries.size(), -1) >= 0) {
        if (entries[0].revents != 0) {
            char c;
            if (::read(STDIN_FILENO, &c, 1) <= 0) {
                return;
            }
        }
        for (size_t i = 1; i < entries.size(); ++i) {
            for (int fd; (fd = ::accept4(entries[i].fd, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
                std::printf("notice %s\n", ReadNotice(fd).constData());
                std::fflush(stdout);
                ::close(fd);
            }
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::unique_ptr<NamedMutex>> locks;
    std::vector<int> listeners;
    for (int i = 1; i + 1 < argc; i += 2) {
        const QString option = QString::fromLocal8Bit(argv[i]);
        const QString name = QString::fromUtf8(argv[i + 1]);
        if (option == QStringLiteral("--hold")) {
            locks.push_back(std::make_unique<NamedMutex>());
            if (locks.back()->Create(name) != NamedMutex::State::Created) {
                std::fprintf(stderr, "cannot hold %s\n", argv[i + 1]);
                return 1;
            }
        } else if (option == QStringLiteral("--listen")) {
            listeners.push_back(abstractsocket::Listen(NamedMutex::AddressFor(name)));
            if (listeners.back() < 0) {
                std::fprintf(stderr, "cannot listen on %s\n", argv[i + 1]);
                return 1;
            }
        }
    }
    std::printf("ready\n");
    std::fflush(stdout);
    Serve(listeners);
    return 0;
}
