// A JSON list that is printed while it grows: one element a line, so that a long
// listing takes no more memory than one of its elements.
#ifndef ZOT_TOOLS_JSON_LIST_H
#define ZOT_TOOLS_JSON_LIST_H

#include <nlohmann/json.hpp>

#include "tools/common/Output.h"

namespace tool {

using Json = nlohmann::ordered_json;  // members keep the order they were given

// Texts in elements are UTF-8; what is none shows as U+FFFD.
class JsonList {
 public:
  explicit JsonList(Output& output) : output_(output) {}
  void add(const Json& element);
  void finish();  // an empty list is "[]"

 private:
  Output& output_;
  bool empty_ = true;
};

std::string jsonText(const Json& value, int indent = -1);

}  // namespace tool

#endif
