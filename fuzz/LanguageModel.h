// A language file and a table of its texts, said record by record, for the fuzz target to
// hold the loader against.
#ifndef FUZZ_LANGUAGE_MODEL_H
#define FUZZ_LANGUAGE_MODEL_H

#include <optional>
#include <vector>

#include "Script.h"

struct Entry {
  uint32_t element;
  uint32_t sub;
  std::string raw;  // escapes as in the file
};

// What a file says about one form.
struct Form {
  bool found = false;
  bool whole = false;
  std::vector<Entry> entries;  // those before the damage
  size_t bytes = 0;            // of their records
};

using File = std::optional<std::string>;  // nothing when it is missing

inline uint32_t numberAt(const std::string& bytes, size_t offset) {
  return hostNumber<uint32_t>(std::string_view(bytes).substr(offset, 4));
}

inline void readEntries(const std::string& bytes, uint32_t count, size_t at, Form* form) {
  for (uint32_t i = 0; i < count; ++i) {
    if (at + 4 > bytes.size() || numberAt(bytes, at) > 268 || at + 4 + numberAt(bytes, at) > bytes.size()) {
      return;
    }
    std::string record = bytes.substr(at + 4, numberAt(bytes, at));
    at += 4 + record.size();
    form->bytes += 4 + record.size();
    record.resize(268, '\0');
    const auto length = static_cast<unsigned char>(record[12]);
    form->entries.push_back({numberAt(record, 4), numberAt(record, 8), record.substr(13, length).c_str()});
  }
  form->whole = true;
}

inline Form readForm(const File& file, uint32_t number) {
  Form form;
  if (!file || file->size() < 64 || !file->starts_with("\0031.0")) {
    return form;
  }
  for (size_t i = 0, at = 64; i < numberAt(*file, 12) && at + 96 <= file->size(); ++i, at += 96) {
    if (numberAt(*file, at + 4) == number) {
      form.found = true;
      readEntries(*file, numberAt(*file, at), numberAt(*file, at + 8), &form);
      break;
    }
  }
  return form;
}

inline std::string resolved(const std::string& raw) {
  static const std::string letters = "btnr0\\\"'", meanings("\b\t\n\r\0\\\"'", 8);
  std::string text;
  for (size_t i = 0; i < raw.size(); ++i) {
    if (raw[i] != '\\') {
      text += raw[i];
    } else if (const size_t at = letters.find(raw.c_str()[++i]); at != std::string::npos) {
      text += meanings[at];
    }
  }
  return text.c_str();
}

// What the table holds; the first entry with the numbers wins.
using Held = std::vector<Entry>;

inline std::string expectedText(const Held& held, uint32_t element, uint32_t sub, bool useElement,
                                const std::string& missing) {
  const auto entry = std::find_if(held.begin(), held.end(), [=](const Entry& each) {
    return each.sub == sub && (!useElement || each.element == element);
  });
  return entry != held.end() ? resolved(entry->raw) : missing;
}

#endif
