#include "Channel.h"

#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>

namespace {

constexpr uint32_t kLargestMessage = 1 << 20;

}  // namespace

Channel::~Channel() {
  close(descriptor_);
}

bool Channel::send(std::span<const unsigned char> message) {
  const auto length = static_cast<uint32_t>(message.size());
  unsigned char header[sizeof length];
  std::memcpy(header, &length, sizeof length);
  return sendAll(header) && sendAll(message);
}

std::optional<std::vector<unsigned char>> Channel::receive() {
  uint32_t length = 0;
  unsigned char header[sizeof length];
  if (!receiveAll(header)) {
    return std::nullopt;
  }
  std::memcpy(&length, header, sizeof length);
  if (length > kLargestMessage) {
    return std::nullopt;
  }
  std::vector<unsigned char> message(length);
  if (!receiveAll(message)) {
    return std::nullopt;
  }
  return message;
}

bool Channel::sendAll(std::span<const unsigned char> bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0 && errno == EINTR) {
      continue;
    }
    if (sent <= 0) {
      return false;
    }
    bytes = bytes.subspan(static_cast<size_t>(sent));
  }
  return true;
}

bool Channel::receiveAll(std::span<unsigned char> bytes) {
  while (!bytes.empty()) {
    const ssize_t got = ::recv(descriptor_, bytes.data(), bytes.size(), 0);
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got <= 0) {
      return false;
    }
    bytes = bytes.subspan(static_cast<size_t>(got));
  }
  return true;
}
