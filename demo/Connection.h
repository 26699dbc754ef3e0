// One exchange over a local socket: a message, then an answer.  A message is whole when
// its sender has shut down its half; a sender that dies before leaves it without its
// end marker.
//
// Nothing here blocks longer than its deadline, raises a signal or throws.
#ifndef DEMO_CONNECTION_H
#define DEMO_CONNECTION_H

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

#include "ProfileFormat.h"

// The end of a wait.
class Deadline {
 public:
  // state is a worker's state word, whose stop request is a deadline too; may be null.
  explicit Deadline(std::chrono::milliseconds span, const uint32_t* state = nullptr)
      : end_(std::chrono::steady_clock::now() + span), state_(state) {}

  bool over() const;

  // Waits until the descriptor is ready for events (as poll knows them); false when the
  // deadline came first.
  bool waitFor(int descriptor, short events) const;

 private:
  std::chrono::steady_clock::time_point end_;
  const uint32_t* state_;
};

// Owns a descriptor.
class Connection {
 public:
  Connection() = default;
  explicit Connection(int descriptor) : descriptor_(descriptor) {}
  Connection(Connection&& other) noexcept : descriptor_(other.descriptor_) { other.descriptor_ = -1; }
  Connection& operator=(Connection&& other) noexcept;
  ~Connection();

  // Each is closed when it failed; errno tells why.  listenAt replaces a socket that a
  // dead process left behind: its caller has made sure that none is alive.
  static Connection connectTo(const std::string& path, const Deadline& deadline);
  static Connection listenAt(const std::string& path);
  Connection accept(const Deadline& deadline);

  bool isOpen() const { return descriptor_ >= 0; }

  // Sends all bytes and shuts down this half.
  bool send(Bytes message, const Deadline& deadline);

  // All bytes up to the end of the peer's half; nothing when that did not come in time
  // or they are more than kLargestMessage.
  std::optional<Message> receive(const Deadline& deadline);

 private:
  int descriptor_ = -1;
};

#endif
