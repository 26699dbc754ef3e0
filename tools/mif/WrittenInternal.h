// What the two forms of Written.h share.
#ifndef ZOT_TOOLS_MIF_WRITTEN_INTERNAL_H
#define ZOT_TOOLS_MIF_WRITTEN_INTERNAL_H

#include <functional>
#include <optional>
#include <string>

#include "tools/common/Files.h"
#include "tools/mif/Builder.h"
#include "tools/mif/Reading.h"

namespace mif {

// A reading from which the record's bytes come again: as bytes, where its own text does not
// give them, or with the bytes beside it where it is a password.
struct StoredReading {
  Reading reading;
  std::optional<std::string> bytes;  // hexadecimal
};

StoredReading storedReadingOf(const Part& record, std::endian order, const View& view);

// All parts; a long rest comes in several.
void eachShortPart(const Message& message, const std::function<void(const Part&)>& visit);

// Adds the elements of a JSON list.  Throws tool::FailureAt.
void addJson(Builder& builder, tool::Input& file);

}  // namespace mif

#endif
