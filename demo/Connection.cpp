#include "Connection.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace {

constexpr uint32_t kStopRequested = 3;
constexpr std::chrono::milliseconds kLook{50};  // how often a stop request is looked for
constexpr int kBacklog = 8;

// 0, with errno set, when the path is too long for a socket's address.
socklen_t addressOf(const std::string& path, sockaddr_un* address) {
  *address = {};
  address->sun_family = AF_UNIX;
  if (path.size() >= sizeof address->sun_path) {
    errno = ENAMETOOLONG;
    return 0;
  }
  std::memcpy(address->sun_path, path.c_str(), path.size() + 1);
  return static_cast<socklen_t>(sizeof *address);
}

int newSocket() {
  return socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
}

bool mayComeLater(ssize_t result) {
  return result < 0 && (errno == EAGAIN || errno == EINTR);
}

}  // namespace

bool Deadline::over() const {
  const bool stopped = state_ != nullptr && __atomic_load_n(state_, __ATOMIC_RELAXED) == kStopRequested;
  return stopped || std::chrono::steady_clock::now() >= end_;
}

bool Deadline::waitFor(int descriptor, short events) const {
  while (!over()) {
    pollfd wanted = {descriptor, events, 0};
    const int ready = poll(&wanted, 1, static_cast<int>(kLook.count()));
    if (ready > 0) {
      return true;
    }
    if (ready < 0 && errno != EINTR) {
      return false;
    }
  }
  errno = ETIMEDOUT;
  return false;
}

Connection& Connection::operator=(Connection&& other) noexcept {
  std::swap(descriptor_, other.descriptor_);
  return *this;
}

Connection::~Connection() {
  if (descriptor_ >= 0) {
    close(descriptor_);
  }
}

Connection Connection::connectTo(const std::string& path, const Deadline& deadline) {
  sockaddr_un address;
  const socklen_t size = addressOf(path, &address);
  Connection connection(size != 0 ? newSocket() : -1);
  // A service that has many calls waiting says EAGAIN; poll cannot wait for that.
  while (connection.isOpen() &&
         ::connect(connection.descriptor_, reinterpret_cast<const sockaddr*>(&address), size) != 0) {
    if (!mayComeLater(-1) || deadline.over()) {
      return {};
    }
    poll(nullptr, 0, static_cast<int>(kLook.count()));
  }
  return connection;
}

Connection Connection::listenAt(const std::string& path) {
  sockaddr_un address;
  const socklen_t size = addressOf(path, &address);
  Connection connection(size != 0 ? newSocket() : -1);
  if (connection.isOpen()) {
    unlink(path.c_str());
    if (bind(connection.descriptor_, reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
        listen(connection.descriptor_, kBacklog) != 0) {
      return {};
    }
  }
  return connection;
}

Connection Connection::accept(const Deadline& deadline) {
  if (!deadline.waitFor(descriptor_, POLLIN)) {
    return {};
  }
  return Connection(accept4(descriptor_, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
}

bool Connection::send(Bytes message, const Deadline& deadline) {
  while (!message.empty()) {
    const ssize_t sent = ::send(descriptor_, message.data(), message.size(), MSG_NOSIGNAL);
    if (sent > 0) {
      message = message.subspan(static_cast<size_t>(sent));
    } else if (!mayComeLater(sent) || !deadline.waitFor(descriptor_, POLLOUT)) {
      return false;
    }
  }
  return shutdown(descriptor_, SHUT_WR) == 0;
}

std::optional<Message> Connection::receive(const Deadline& deadline) {
  Message message;
  unsigned char part[1024];
  while (message.size() <= kLargestMessage) {
    const ssize_t got = recv(descriptor_, part, sizeof part, 0);
    if (got == 0) {
      return message;
    }
    if (got > 0) {
      message.insert(message.end(), part, part + got);
    } else if (!mayComeLater(got) || !deadline.waitFor(descriptor_, POLLIN)) {
      return std::nullopt;
    }
  }
  return std::nullopt;
}
