// The JSON list of Written.h.
#include <fmt/format.h>

#include <iterator>

#include "tools/common/ByteOrder.h"
#include "tools/common/Failure.h"
#include "tools/common/JsonList.h"
#include "tools/common/Progress.h"
#include "tools/common/Text.h"
#include "tools/mif/Written.h"
#include "tools/mif/WrittenInternal.h"

namespace mif {

namespace {

using tool::Json;

constexpr size_t kLongestElement = 1 << 20;  // bytes

Json elementOf(const Part& part, std::endian order, const View& view) {
  Json element = {{"offset", part.offset}};
  if (part.type != Part::Type::Record) {
    const bool end = part.type == Part::Type::End;
    element[end ? "end" : "rest"] = end ? Json(true) : Json(hexText(part.value));
    return element;
  }
  const StoredReading stored = storedReadingOf(part, order, view);
  const Reading& reading = stored.reading;
  element["oid"] = part.oid;
  if (!reading.name.empty()) {
    element["name"] = reading.name;
  }
  element["length"] = part.length();
  element["kind"] = nameOf(reading.kind);
  element["value"] = reading.kind == Kind::Int ? Json(*tool::numberFrom(reading.text)) : Json(reading.text);
  if (stored.bytes) {
    element["stored"] = *stored.bytes;
  }
  if (part.missing != 0) {
    element["missing"] = part.missing;
  }
  return element;
}

// Where the parser is in a file: in which line, and how far in an element.
struct Place {
  std::FILE* stream;
  uint64_t line = 1;
  size_t elementBytes = 0;
};

// Characters of a file, for a parser that takes iterators; it goes no further than it reads.
class FileIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  FileIterator() = default;
  explicit FileIterator(Place& place) : place_(&place) { ++*this; }
  reference operator*() const { return character_; }
  FileIterator& operator++() {
    place_->line += character_ == '\n' ? 1 : 0;
    const int next = getc_unlocked(place_->stream);
    if (next == EOF) {
      place_ = nullptr;
    } else if (++place_->elementBytes > kLongestElement) {
      throw tool::Failure(fmt::format("an element of more than {} bytes", kLongestElement));
    }
    character_ = static_cast<char>(next);
    return *this;
  }
  bool operator==(const FileIterator& other) const { return place_ == other.place_; }
  bool operator!=(const FileIterator& other) const { return !(*this == other); }

 private:
  Place* place_ = nullptr;
  char character_ = 0;
};

// A member as text: a string, or a number.  Empty where there is none.
std::string member(const Json& element, const char* name) {
  const auto found = element.find(name);
  if (found == element.end()) {
    return {};
  }
  if (!found->is_string() && !found->is_number_unsigned()) {
    throw tool::Failure(fmt::format("\"{}\" is neither a string nor a number from 0", name));
  }
  return found->is_string() ? found->get<std::string>() : std::to_string(found->get<uint64_t>());
}

void addElement(Builder& builder, const Json& element) {
  if (element.contains("order")) {
    builder.order(member(element, "order"));
  } else if (element.contains("end")) {
    builder.end();
  } else if (element.contains("rest")) {
    builder.rest(member(element, "rest"));
  } else {
    WrittenRecord record{
        .oid = member(element, "oid"), .kind = member(element, "kind"), .text = member(element, "value")};
    if (element.contains("stored")) {
      record.stored = member(element, "stored");
    }
    if (element.contains("missing")) {
      record.missing = member(element, "missing");
    }
    builder.record(record);
  }
}

// What the parser says behind the place, which it counts in its own way.
std::string complaint(const std::string& what) {
  const size_t at = what.find(": ", what.find("column"));
  return tool::visible(at != what.npos ? what.substr(at + 2, 200) : what);
}

}  // namespace

void writeJson(const Message& message, const View& view, tool::Output& output) {
  tool::JsonList list(output);
  list.add({{"order", tool::nameOf(message.order())}});
  eachShortPart(message, [&](const Part& part) { list.add(elementOf(part, message.order(), view)); });
  list.finish();
}

void addJson(Builder& builder, tool::Input& file) {
  Place place{file.stream()};
  tool::Progress progress("reading lines");
  // Each element is used and dropped as soon as it is whole.
  const auto take = [&](int depth, Json::parse_event_t event, Json& parsed) {
    const bool element = depth == 1 && event == Json::parse_event_t::object_end;
    const bool start =
        event == Json::parse_event_t::object_start || event == Json::parse_event_t::array_start;
    if (depth > 1 && start) {
      throw tool::Failure("an element holds strings and numbers, nothing else");
    }
    if (element) {
      addElement(builder, parsed);
      place.elementBytes = 0;
      progress.at(place.line);
    }
    return !element;
  };
  try {
    const Json list = Json::parse(FileIterator(place), FileIterator(), take);
    if (!list.empty()) {
      throw tool::Failure("the list has objects, nothing else");
    }
  } catch (const tool::Failure& failure) {
    throw tool::FailureAt(fmt::format("{}:{}: {}", file.name(), place.line, failure.what()));
  } catch (const Json::exception& error) {
    throw tool::FailureAt(fmt::format("{}:{}: {}", file.name(), place.line, complaint(error.what())));
  }
}

}  // namespace mif
