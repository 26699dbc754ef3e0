// Two foreign language files: a table of one form, loaded, looked up and reloaded between
// the languages, beside the format said record by record.
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <vector>

#include "Script.h"
#include "multilang/ZOT_MultiLanguage.h"

namespace {

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
};

using File = std::optional<std::string>;  // nothing when it is missing

uint32_t numberAt(const std::string& bytes, size_t offset) {
  return hostNumber<uint32_t>(std::string_view(bytes).substr(offset, 4));
}

void readEntries(const std::string& bytes, uint32_t count, size_t at, Form* form) {
  for (uint32_t i = 0; i < count; ++i) {
    if (at + 4 > bytes.size() || numberAt(bytes, at) > 268 || at + 4 + numberAt(bytes, at) > bytes.size()) {
      return;
    }
    std::string record = bytes.substr(at + 4, numberAt(bytes, at));
    at += 4 + record.size();
    record.resize(268, '\0');
    const auto length = static_cast<unsigned char>(record[12]);
    form->entries.push_back({numberAt(record, 4), numberAt(record, 8), record.substr(13, length).c_str()});
  }
  form->whole = true;
}

Form readForm(const File& file, uint32_t number) {
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

std::string resolved(const std::string& raw) {
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

// A directory for the whole run, in memory where the system has such a place.
const std::string& directory() {
  static const std::string path = [] {
    const std::string parent = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    return parent + "/zot_language_fuzz_" + std::to_string(getpid());
  }();
  static const bool made = std::filesystem::create_directories(path) &&
                           std::atexit([] { std::filesystem::remove_all(directory()); }) == 0;
  require(made, "a directory of our own");
  return path;
}

void put(const File& file, const char* name) {
  const std::string path = directory() + '/' + name;
  if (file) {
    std::ofstream(path, std::ios::binary) << *file;
  } else {
    std::filesystem::remove(path);
  }
}

// What the table holds; the first entry with the numbers wins.
using Held = std::vector<Entry>;

std::string expected(const Held& held, uint32_t element, uint32_t sub, bool useElement,
                     const std::string& missing) {
  const auto entry = std::find_if(held.begin(), held.end(), [=](const Entry& each) {
    return each.sub == sub && (!useElement || each.element == element);
  });
  return entry != held.end() ? resolved(entry->raw) : missing;
}

void checkLookup(ProgramTexts* table, const Held& held, uint32_t element, uint32_t sub) {
  const std::string ofAny = std::to_string(static_cast<int32_t>(sub)) + " (Text missing)";
  const std::string ofPair = std::to_string(static_cast<int32_t>(element)) + ' ' + ofAny;
  // Two results in a row are valid together.
  const char* first = table->getPrgTextDefA(element, sub, 0, nullptr, nullptr, 9);
  const char* last = table->getPrgTextDefA(element, sub, 1, nullptr, nullptr, 9);
  require(first == expected(held, element, sub, false, ofAny), "a text of any element");
  require(last == expected(held, element, sub, true, ofPair), "a text of one element");

  static constexpr char kDefault[] = "default";
  for (const int size : {0, 1, 4, 300}) {
    const auto useElement = static_cast<signed char>(size % 3 - 1);  // -1 counts as set
    const std::string text = expected(held, element, sub, useElement != 0, kDefault);
    const Block dst(std::string(static_cast<size_t>(size), '#'));
    const char* result = table->getPrgTextDefA(element, sub, useElement, kDefault, dst.chars(), size);
    const bool none = expected(held, element, sub, useElement != 0, "").empty() && text == kDefault;
    require(result == text && (result == kDefault) == none, "a text or the default");
    std::string copy = text.substr(0, dst.size() - std::min(dst.size(), 1u));
    copy.resize(dst.size(), '\0');
    require(dst.str() == copy, "a copied text");
  }
}

void checkLookups(ProgramTexts* table, const Held& held) {
  checkLookup(table, held, 1, 77);
  for (size_t i = 0; i < held.size(); i += held.size() / 16 + 1) {
    checkLookup(table, held, held[i].element, held[i].sub);
    checkLookup(table, held, held[i].element + 1, held[i].sub);
  }
}

void checkRecords(ZOT_MultiLanguage* loader, uint32_t number, const Form& form) {
  tMlForms record;
  const std::unique_ptr<FILE, int (*)(FILE*)> file(loader->openFormId(number, &record), std::fclose);
  require((file != nullptr) == form.found, "whether a form is found");
  tMlTexte text;
  for (const Entry& entry : form.entries) {
    require(loader->readElementText(file.get(), &text) == 1, "whether a text record is read");
    require(text.element == entry.element && text.subElement == entry.sub && text.text == entry.raw,
            "a text record");
  }
  require(!form.found || form.whole || loader->readElementText(file.get(), &text) == 0, "a damaged record");
}

}  // namespace

// Options, form and element in a byte each, the German file's length in two, the files.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Script script(data, size);
  const auto options = script.number<uint8_t>();
  const uint32_t number = script.number<uint8_t>(), element = script.number<uint8_t>();
  const signed char only = (options & 1) != 0 ? 1 : 0;
  File german = script.text(script.number<uint16_t>()), english = script.rest();
  german = (options & 2) != 0 ? File() : german;
  english = (options & 4) != 0 ? File() : english;
  put(german, "t.de");
  put(english, "t.en");

  ZOT_MultiLanguage loader;
  loader.SetLanguageFilePath(directory().c_str());
  loader.SetLanguageFileBaseName("t");
  Held held;
  // A form that is not found leaves the table as it is.
  const auto hold = [&](const Form& form) {
    if (form.found) {
      held = form.entries;
      std::erase_if(held, [&](const Entry& entry) { return only != 0 && entry.element != element; });
    }
  };
  const Form first = readForm(english, number);
  std::unique_ptr<ProgramTexts> table(loader.loadProgramTexts(number, element, only, nullptr));
  require((table != nullptr) == first.whole, "whether a new table is loaded");
  if (table != nullptr) {
    hold(first);
  } else {
    table = std::make_unique<ProgramTexts>(nullptr, number, element, only);
    require(loader.ptListAdd(table.get()) == 1, "a table is registered");
  }
  checkLookups(table.get(), held);
  for (const uint32_t language : {1u, 2u, 1u, 12u}) {
    const Form form = readForm(language == 1 && german ? german : english, number);
    loader.SetLanguageId(language);
    hold(form);
    checkLookups(table.get(), held);
    checkRecords(&loader, number, form);
    require(loader.RefreshAllRegisteredChildren() == form.whole, "whether all tables are reloaded");
    const bool loaded = loader.loadProgramTexts(number, element, only, table.get()) == table.get();
    require(loaded == form.whole, "whether a table is reloaded");
    checkLookups(table.get(), held);
  }
  return 0;
}
