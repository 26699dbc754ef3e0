#include "tools/common/JsonList.h"

namespace tool {

std::string jsonText(const Json& value, int indent) {
  return value.dump(indent, ' ', false, Json::error_handler_t::replace);
}

void JsonList::add(const Json& element) {
  output_.write((empty_ ? "[\n  " : ",\n  ") + jsonText(element));
  empty_ = false;
}

void JsonList::finish() {
  output_.write(empty_ ? "[]\n" : "\n]\n");
}

}  // namespace tool
