// What the service reads out of a message's bytes with the raw accessors.
#ifndef EXCHANGE_READINGS_H
#define EXCHANGE_READINGS_H

#include "Message.h"

// Prints the text of every address, range, password and key in a sound message; a
// value that does not have the form of its field is named as such.
void printReadings(Bytes message);

#endif
