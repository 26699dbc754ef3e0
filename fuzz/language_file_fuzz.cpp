// Two foreign language files: tables of their forms, loaded, looked up, added to and
// reloaded between the languages, also when memory runs short, beside the format said
// record by record.
#include <signal.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>

#include "LanguageModel.h"
#include "multilang/ZOT_MultiLanguage.h"

namespace {

// Of the library's reallocations and cleared blocks the one that fails; 0 is none.
uint32_t untilFailure = 0;

bool hasMemory() {
  return untilFailure == 0 || --untilFailure != 0;
}

// Runs that crashed left their directories.
void removeLeftBehind(const std::string& parent, const std::string& prefix) {
  for (const auto& entry : std::filesystem::directory_iterator(parent)) {
    const std::string name = entry.path().filename();
    const int owner = name.starts_with(prefix) ? std::atoi(name.c_str() + prefix.size()) : 0;
    if (owner > 0 && kill(owner, 0) != 0 && errno == ESRCH) {
      std::error_code ignored;
      std::filesystem::remove_all(entry.path(), ignored);
    }
  }
}

// A directory for the whole run, in memory where the system has such a place.
const std::string& directory() {
  static const std::string path = [] {
    const std::string parent = access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    const std::string prefix = "zot_language_fuzz_";
    removeLeftBehind(parent, prefix);
    return parent + '/' + prefix + std::to_string(getpid());
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

constexpr char kDefault[] = "default";

void checkLookup(ProgramTexts* table, const Held& held, uint32_t element, uint32_t sub) {
  const std::string ofAny = std::to_string(static_cast<int32_t>(sub)) + " (Text missing)";
  const std::string ofPair = std::to_string(static_cast<int32_t>(element)) + ' ' + ofAny;
  // Two results in a row are valid together.
  const char* first = table->getPrgTextDefA(element, sub, 0, nullptr, nullptr, 9);
  const char* last = table->getPrgTextDefA(element, sub, 1, nullptr, nullptr, 9);
  require(first == expectedText(held, element, sub, false, ofAny), "a text of any element");
  require(last == expectedText(held, element, sub, true, ofPair), "a text of one element");

  for (const int size : {0, 1, 4, 300}) {
    const auto useElement = static_cast<signed char>(size % 3 - 1);  // -1 counts as set
    const std::string text = expectedText(held, element, sub, useElement != 0, kDefault);
    const Block dst(std::string(static_cast<size_t>(size), '#'));
    const char* result = table->getPrgTextDefA(element, sub, useElement, kDefault, dst.chars(), size);
    const bool none = expectedText(held, element, sub, useElement != 0, "").empty() && text == kDefault;
    require(result == text && (result == kDefault) == none, "a text or the default");
    std::string copy = text.substr(0, dst.size() - std::min(dst.size(), 1u));
    copy.resize(dst.size(), '\0');
    require(dst.str() == copy, "a copied text");
  }
}

void checkLookups(ProgramTexts* table, const Held& held) {
  checkLookup(table, held, 1, 77);
  for (size_t i = 0; i < held.size(); i += held.size() / 4 + 1) {
    checkLookup(table, held, held[i].element, held[i].sub);
    checkLookup(table, held, held[i].element + 1, held[i].sub);
  }
  if (!held.empty()) {
    checkLookup(table, held, held.back().element, held.back().sub);
  }
}

using Wide = std::vector<unsigned short>;

// The only wide text there is.
void checkWideLookup(ProgramTexts* table, bool givesDefault, int size) {
  static constexpr std::string_view kMessage("zotmllib: WCHAR not implemented for this OS", 44);
  static constexpr unsigned short kWideDefault[] = {'d', 0};
  const Wide message(kMessage.begin(), kMessage.end());
  const auto isMessage = [&](const unsigned short* text) {
    return std::equal(message.begin(), message.end(), text);
  };
  Wide dst(static_cast<size_t>(size), '#'), copy = dst;
  std::copy_n(message.begin(), std::min(dst.size(), message.size()), copy.begin());
  if (size > 0) {
    copy.back() = 0;
  }
  const unsigned short* first = table->getPrgTextDefW(1, 77, 1, nullptr, dst.data(), size);
  require(dst == copy, "a copied wide text");
  const unsigned short* last = table->getPrgTextDefW(1, 77, 0, nullptr, nullptr, size);
  require(first != last && isMessage(first) && isMessage(last), "two wide texts");
  dst.assign(dst.size(), '#');
  const unsigned short* result = table->getPrgTextDefW(1, 77, 1, kWideDefault, dst.data(), size);
  require(dst == copy, "a copied wide text beside a default");
  require(givesDefault ? result == kWideDefault : isMessage(result), "a wide text or the default");
}

void checkStandIn(ZOT_MultiLanguage* loader, int size) {
  const std::unique_ptr<DummyProgramTexts> standIn(loader->GetDummyProgramTexts());
  checkLookup(standIn.get(), {}, 1, 77);
  checkWideLookup(standIn.get(), true, size);
  require(loader->RefreshAllRegisteredChildren() == 1, "a stand-in is not registered");
}

// The same texts added one by one, with lookups between them, make the same table.
void checkAdding(const Held& held) {
  ProgramTexts table(nullptr, 0, 0, 0);
  Held added;
  for (const Entry& entry : held) {
    require(table.AddText(entry.element, entry.sub, entry.raw.c_str()) == 1, "whether a text is added");
    require(table.AddText(entry.element, entry.sub, nullptr) == 0, "a null text");
    added.push_back(entry);
    if (added.size() % (held.size() / 4 + 1) == 0) {
      checkLookups(&table, added);
    }
  }
  checkLookups(&table, added);
  table.ClearAllTexts();
  checkLookups(&table, {});
}

void checkShortString(ZOT_MultiLanguage* loader, const std::string& bytes) {
  const Block buffer(bytes);
  loader->convertDelphiString(buffer.chars(), buffer.size());
  if (!bytes.empty()) {
    std::string expected = bytes.substr(1) + bytes.back();
    expected[std::min<size_t>(static_cast<unsigned char>(bytes[0]), bytes.size() - 1)] = '\0';
    require(buffer.str() == expected, "a terminated short string");
  }
  loader->convertDelphiString(nullptr, 9);
}

void checkRecords(ZOT_MultiLanguage* loader, uint32_t number, const Form& form) {
  tMlForms record;
  const std::unique_ptr<FILE, int (*)(FILE*)> file(loader->openFormId(number, &record), std::fclose);
  require((file != nullptr) == form.found, "whether a form is found");
  require(loader->openFormId(number, nullptr) == nullptr, "a form that nobody takes");
  tMlTexte text;
  for (const Entry& entry : form.entries) {
    require(loader->readElementText(file.get(), &text) == 1, "whether a text record is read");
    require(text.element == entry.element && text.subElement == entry.sub && text.text == entry.raw,
            "a text record");
  }
  require(!form.found || form.whole || loader->readElementText(file.get(), &text) == 0, "a damaged record");
}

// A table, and what it holds by the format.
struct Table {
  Table(uint32_t ofForm, uint32_t ofElement, signed char onlyElement)
      : number(ofForm), element(ofElement), only(onlyElement) {}

  ProgramTexts* load(ZOT_MultiLanguage* loader, ProgramTexts* into) const {
    return loader->loadProgramTexts(number, element, only, into);
  }

  Held wanted(const Form& form) const {
    Held entries = form.entries;
    std::erase_if(entries, [&](const Entry& entry) { return only != 0 && entry.element != element; });
    return entries;
  }

  // A form that is not found leaves the table as it is.
  void hold(const Form& form) { held = form.found ? wanted(form) : held; }

  void check() const { checkLookups(texts.get(), held); }

  // One that cannot be loaded at first is made and registered by hand.
  void open(ZOT_MultiLanguage* loader, const Form& form) {
    texts.reset(load(loader, nullptr));
    require((texts != nullptr) == form.whole, "whether a new table is loaded");
    if (texts != nullptr) {
      hold(form);
    } else {
      texts = std::make_unique<ProgramTexts>(nullptr, number, element, only);
      require(loader->ptListAdd(texts.get()) == 1, "a table is registered");
    }
    check();
  }

  uint32_t number, element;
  signed char only;
  std::unique_ptr<ProgramTexts> texts;
  Held held;
};

// What is left of these texts where memory ran out: those that were read before.
Held heldOf(ProgramTexts* table, const Held& all) {
  return {all.begin(), std::find_if(all.begin(), all.end(), [=](const Entry& entry) {
            return table->getPrgTextDefA(entry.element, entry.sub, 1, kDefault, nullptr, 0) == kDefault;
          })};
}

// One allocation fails somewhere in a load and its lookups: a load that succeeds is whole.
void checkShortMemory(ZOT_MultiLanguage* loader, Table* table, const Form& form, uint32_t failing) {
  table->texts->ClearAllTexts();
  table->held.clear();
  for (ProgramTexts* into : {table->texts.get(), static_cast<ProgramTexts*>(nullptr)}) {
    loader->SetLanguageFileName(nullptr);
    loader->SetLanguageFilePath(directory().c_str());
    untilFailure = failing;
    ProgramTexts* const loaded = table->load(loader, into);
    if (into != nullptr) {
      table->held = loaded != nullptr ? table->wanted(form) : heldOf(into, table->wanted(form));
      table->check();
    } else if (const std::unique_ptr<ProgramTexts> fresh(loaded); fresh != nullptr) {
      checkLookups(fresh.get(), table->wanted(form));
    }
    require(form.whole || loaded == nullptr, "whether a table is loaded without memory");
    untilFailure = 0;
  }
}

// The two files, and how the loader is told their names.
struct Files {
  bool isGerman(uint32_t language) const { return language == 1 && german && !isOneFile; }
  const File& of(uint32_t language) const { return isGerman(language) ? german : english; }
  std::string pathOf(uint32_t language) const {
    return directory() + '/' + (isGerman(language) ? germanName : englishName);
  }

  void store(ZOT_MultiLanguage* loader, uint32_t naming) {
    isOneFile = naming == 1;
    loader->SetLanguageFilePath((directory() + (isOneFile ? "/" : "")).c_str());
    if (naming != 2) {
      germanName = "t.de";
      englishName = "t.en";
      loader->SetLanguageFileBaseName("t");
    }
    if (isOneFile) {
      loader->SetLanguageFileName(englishName);
    }
    put(german, germanName);
    put(english, englishName);
  }

  File german, english;
  const char* germanName = "deutsch.dat";
  const char* englishName = "english.dat";
  bool isOneFile = false;
};

using Tables = std::array<Table, 3>;

void check(const Tables& tables) {
  for (const Table& table : tables) {
    table.check();
  }
}

void checkLanguage(ZOT_MultiLanguage* loader, uint32_t language, const Files& files, Tables* tables) {
  loader->SetLanguageId(language);
  require(loader->buildFilePathName(3) == files.pathOf(language), "the path of a language file");
  bool areWhole = true;
  for (Table& table : *tables) {
    const Form form = readForm(files.of(language), table.number);
    table.hold(form);
    areWhole = areWhole && form.whole;
  }
  check(*tables);
  require(loader->RefreshAllRegisteredChildren() == areWhole, "whether all tables are reloaded");
  Table& first = tables->front();
  const Form form = readForm(files.of(language), first.number);
  checkRecords(loader, first.number, form);
  const bool isLoaded = first.load(loader, first.texts.get()) == first.texts.get();
  require(isLoaded == form.whole, "whether a table is reloaded");
  first.check();
}

// A table that is not registered any more is not reloaded, however often it was registered.
void checkUnregistered(ZOT_MultiLanguage* loader, Table* table) {
  require(loader->ptListAdd(table->texts.get()) == 1, "a table is registered again");
  loader->unregisterChild(nullptr);
  loader->unregisterChild(table->texts.get());
  table->texts->ClearAllTexts();
  table->held.clear();
  loader->RefreshAllRegisteredChildren();
}

// More than the loader takes at once, of few bytes.
std::string madeLong(std::string file) {
  constexpr size_t kTextsAt = 160;  // behind one form record
  const std::string texts = file.substr(std::min(kTextsAt, file.size()));
  while (!texts.empty() && file.size() < 40000) {
    file += texts;
  }
  return file;
}

}  // namespace

// The linker's --wrap option sends the library's calls here.
extern "C" void* __real_calloc(size_t count, size_t size);
extern "C" void* __wrap_calloc(size_t count, size_t size) {
  return hasMemory() ? __real_calloc(count, size) : nullptr;
}
extern "C" void* __real_realloc(void* block, size_t size);
extern "C" void* __wrap_realloc(void* block, size_t size) {
  return hasMemory() ? __real_realloc(block, size) : nullptr;
}

// Options, form and element in a byte each, the German file's length in two, the files.
// The options: bit 0 one element only, bits 1 and 2 no German and no English file, bits 3
// and 4 the files' names, the rest which allocation fails, or 7 for files made long.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Script script(data, size);
  const uint32_t options = script.number<uint8_t>();
  const uint32_t number = script.number<uint8_t>(), element = script.number<uint8_t>();
  File german = script.text(script.number<uint16_t>()), english = script.rest();
  if (options >> 5 == 7) {
    german = madeLong(*german);
    english = madeLong(*english);
  }
  const std::string shortString = english->substr(std::min<size_t>(element, english->size()), number);
  Files files = {(options & 2) != 0 ? File() : german, (options & 4) != 0 ? File() : english};

  auto loader = std::make_unique<ZOT_MultiLanguage>();
  files.store(loader.get(), options >> 3 & 3);
  require(loader->GetOsLanguage() == 2 && loader->ptListAdd(nullptr) == 0, "the loader's own answers");
  checkShortString(loader.get(), shortString);
  checkStandIn(loader.get(), static_cast<int>(element) % 64);

  const signed char only = (options & 1) != 0 ? 1 : 0;
  Tables tables = {Table(number, element, only), Table(number + 1, element, only),
                   Table(number, element, only == 0 ? 1 : 0)};
  for (Table& table : tables) {
    table.open(loader.get(), readForm(files.english, table.number));
  }
  checkWideLookup(tables[0].texts.get(), false, static_cast<int>(element) % 64);
  checkAdding(tables[0].held);
  // Twice, and no place is left for a new one.
  require(loader->ptListAdd(tables[2].texts.get()) == 1, "a table is registered again");
  for (const uint32_t language : {1u, 2u, 1u, 12u}) {
    checkLanguage(loader.get(), language, files, &tables);
  }
  const Form form = readForm(files.english, number);
  checkShortMemory(loader.get(), &tables[0], form, options >> 5);
  tables[0].load(loader.get(), tables[0].texts.get());
  tables[0].hold(form);
  checkUnregistered(loader.get(), &tables[2]);
  check(tables);
  loader.reset();  // the tables outlive it
  check(tables);
  return 0;
}
