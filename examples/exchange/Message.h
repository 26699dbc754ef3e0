// What both sides do with a whole message: check it, and show it to people.
#ifndef EXCHANGE_MESSAGE_H
#define EXCHANGE_MESSAGE_H

#include <cstdint>
#include <span>
#include <string>

#include "Fields.h"

using Bytes = std::span<const unsigned char>;

// The check sum that a message's last record carries.
uint32_t checkSum(Bytes bytes);

// Why these bytes are no sound message; empty when they are one.
std::string damageOf(Bytes message);

// An ISO 8859-1 text for the terminal: in quotes, in UTF-8, control bytes spelled out.
std::string quotedText(Bytes value);

// Prints what one side reads out of a field whose bytes are not its text.
void printReading(const Field& field, const std::string& reading);

// Prints the records as a table (offset, OID, length, value), then the bytes in hex.
void printMessage(const char* title, Bytes message);

#endif
