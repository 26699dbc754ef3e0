// The service's side of the exchange.
#ifndef EXCHANGE_SERVICE_H
#define EXCHANGE_SERVICE_H

#include "Channel.h"

// Takes one message: lists its records and what they say, rounds the interval up to whole minutes,
// removes the token, appends an answer and sends the result back.  Returns the
// process's exit status.
int runService(Channel& frontEnd);

#endif
