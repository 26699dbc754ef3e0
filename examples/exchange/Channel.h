// Messages over a stream socket: each is preceded by its length in 32 bits.
#ifndef EXCHANGE_CHANNEL_H
#define EXCHANGE_CHANNEL_H

#include <optional>
#include <span>
#include <vector>

// One end of the connection; closes it.
class Channel {
 public:
  explicit Channel(int descriptor) : descriptor_(descriptor) {}
  ~Channel();
  Channel(const Channel&) = delete;
  Channel& operator=(const Channel&) = delete;

  bool send(std::span<const unsigned char> message);

  // Nothing when the other side has closed its end or sends more than a message holds.
  std::optional<std::vector<unsigned char>> receive();

 private:
  bool sendAll(std::span<const unsigned char> bytes);
  bool receiveAll(std::span<unsigned char> bytes);

  int descriptor_;
};

#endif
