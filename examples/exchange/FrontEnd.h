// The front end's side of the exchange.
#ifndef EXCHANGE_FRONT_END_H
#define EXCHANGE_FRONT_END_H

#include <optional>
#include <vector>

#include "Channel.h"
#include "Settings.h"

// Sends the settings, damaged on the way as asked, and shows the message and the
// answer.  damage: 0 and above inverts the byte at that offset, below 0 cuts as
// many bytes off the end.  Returns the program's exit status.
int runFrontEnd(Channel& service, const std::vector<Setting>& settings, std::optional<long> damage);

#endif
