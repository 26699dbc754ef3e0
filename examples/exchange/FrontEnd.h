// The front end's side of the exchange.
#ifndef EXCHANGE_FRONT_END_H
#define EXCHANGE_FRONT_END_H

#include <optional>
#include <string>
#include <vector>

#include "Channel.h"
#include "Settings.h"

// What becomes of the message on its way.
struct Sending {
  // 0 and above inverts the byte at that offset, below 0 cuts as many bytes off the end.
  std::optional<long> damage;
  std::string copy;  // the file that gets what is sent; empty: none
};

// Sends the settings and shows the message and the answer.  Returns the program's
// exit status.
int runFrontEnd(Channel& service, const std::vector<Setting>& settings, const Sending& sending);

#endif
