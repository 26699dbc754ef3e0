#include <fmt/format.h>

#include <algorithm>

#include "tools/common/JsonList.h"
#include "tools/common/Progress.h"
#include "tools/common/Text.h"
#include "tools/mif/Commands.h"
#include "tools/mif/Reading.h"

namespace mif {

namespace {

// A part of one message, known in both by its key: OID and occurrence for records.
struct Entry {
  Part part;
  uint32_t occurrence = 0;

  auto key() const { return std::tuple(part.type, part.oid, occurrence); }
};

std::vector<Entry> entriesOf(const Message& message) {
  std::vector<Entry> entries;
  std::vector<uint32_t> counts(0x10000);
  message.eachPart([&](const Part& part) {
    const bool record = part.type == Part::Type::Record;
    entries.push_back({part, record ? ++counts[part.oid] : 0});
  });
  return entries;
}

bool sameBytes(const Part& a, const Part& b) {
  return a.missing == b.missing && std::equal(a.value.begin(), a.value.end(), b.value.begin(), b.value.end());
}

// Tells differences as they are found, in the order of offsets.
class Differences {
 public:
  Differences(const View& view, bool json, tool::Output& output)
      : view_(view), json_(json), list_(output), output_(output) {}

  void changed(const Entry& a, const Entry& b, std::endian order) { tell("changed", &a, &b, order); }
  void removed(const Entry& a, std::endian order) { tell("removed", &a, nullptr, order); }
  void added(const Entry& b, std::endian order) { tell("added", nullptr, &b, order); }
  void moved(const Entry& a, const Entry& b, std::endian order) { tell("moved", &a, &b, order); }

  tool::Exit finish() {
    if (json_) {
      list_.finish();
    }
    return count_ == 0 ? tool::Exit::Done : tool::Exit::Findings;
  }

 private:
  void tell(const char* change, const Entry* a, const Entry* b, std::endian order) {
    ++count_;
    if (!json_) {
      tellSide('-', tool::Colour::Red, a, order);
      tellSide('+', tool::Colour::Green, b, order);
      return;
    }
    const Entry& some = a != nullptr ? *a : *b;
    tool::Json element = {{"change", change}};
    if (some.part.type == Part::Type::Record) {
      element["oid"] = some.part.oid;
      if (const Field* const field = view_.fields.find(some.part.oid)) {
        element["name"] = field->name;
      }
      element["occurrence"] = some.occurrence;
    } else {
      element[some.part.type == Part::Type::End ? "end" : "rest"] = true;
    }
    for (const auto& [side, entry] : {std::pair("a", a), std::pair("b", b)}) {
      if (entry != nullptr) {
        element[side] = sideOf(*entry, order);
      }
    }
    list_.add(element);
  }

  tool::Json sideOf(const Entry& entry, std::endian order) const {
    tool::Json side = {{"offset", entry.part.offset}};
    if (entry.part.type == Part::Type::Record) {
      const Reading reading = readingOf(entry.part, order, view_);
      side["length"] = entry.part.length();
      side["kind"] = nameOf(reading.kind);
      side["value"] = reading.text;
      if (entry.part.missing != 0) {
        side["missing"] = entry.part.missing;
      }
    } else if (entry.part.type == Part::Type::Rest) {
      side["value"] = hexText(entry.part.value);
    }
    return side;
  }

  void tellSide(char sign, tool::Colour colour, const Entry* entry, std::endian order) {
    if (entry == nullptr) {
      return;
    }
    const Part& part = entry->part;
    std::string line = fmt::format("{} {:>7}  ", sign, part.offset);
    if (part.type == Part::Type::Record) {
      const Reading reading = readingOf(part, order, view_);
      line += fmt::format("{}/{} {}{}{} {}", part.oid, entry->occurrence, reading.name,
                          reading.name.empty() ? "" : " ", nameOf(reading.kind), quotedText(reading));
      line += reading.wrong.empty() ? "" : fmt::format("  ({})", reading.wrong);
    } else {
      line += part.type == Part::Type::End ? "end" : "rest " + hexText(part.value);
    }
    output_.print("{}\n", output_.paint(colour, line));
  }

  const View& view_;
  bool json_;
  tool::JsonList list_;
  tool::Output& output_;
  uint64_t count_ = 0;
};

bool byKey(const Entry* a, const Entry* b) {
  return a->key() < b->key();
}

// The entries of one side, to be found by their key.
std::vector<const Entry*> sorted(const std::vector<Entry>& entries) {
  std::vector<const Entry*> pointers;
  pointers.reserve(entries.size());
  for (const Entry& entry : entries) {
    pointers.push_back(&entry);
  }
  std::sort(pointers.begin(), pointers.end(), byKey);
  return pointers;
}

const Entry* find(const std::vector<const Entry*>& entries, const Entry& wanted) {
  const auto found = std::lower_bound(entries.begin(), entries.end(), &wanted, byKey);
  return found != entries.end() && (*found)->key() == wanted.key() ? *found : nullptr;
}

}  // namespace

tool::Exit diff(const DiffOptions& options, tool::Output& output) {
  const Fields fields = readFields(options.input.fields);
  const Message first = readMessage(options.first, options.input);
  const Message second = readMessage(options.second, options.input);
  const std::vector<Entry> a = entriesOf(first);
  const std::vector<Entry> b = entriesOf(second);
  const auto sortedA = sorted(a);
  const auto sortedB = sorted(b);
  const View view{fields, options.reveal};
  Differences differences(view, options.json, output);
  uint64_t furthest = 0;  // of the common records seen so far, in the second file
  tool::Progress progress("comparing records", a.size());
  for (const Entry& entry : a) {
    progress.at(static_cast<uint64_t>(&entry - a.data()));
    const Entry* const other = find(sortedB, entry);
    if (other == nullptr) {
      differences.removed(entry, first.order());
      continue;
    }
    if (!sameBytes(entry.part, other->part)) {
      differences.changed(entry, *other, first.order());
    } else if (other->part.offset < furthest) {
      differences.moved(entry, *other, first.order());
    }
    furthest = std::max(furthest, other->part.offset);
  }
  for (const Entry& entry : b) {
    if (find(sortedA, entry) == nullptr) {
      differences.added(entry, second.order());
    }
  }
  return differences.finish();
}

}  // namespace mif
