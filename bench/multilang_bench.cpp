// Interface texts beside a key file of GLib, which is what GTK programs keep short texts in.
#include <glib.h>

#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "Directory.h"
#include "Row.h"
#include "multilang/LanguageRecords.h"
#include "multilang/ProgramTexts.h"
#include "multilang/ZOT_MultiLanguage.h"

namespace {

constexpr uint32_t kForm = 7;

std::string textOf(uint32_t element) {
  return "Text of the control " + std::to_string(element);
}

template <typename Record>
void write(std::ofstream& file, const Record& record, size_t size = sizeof(Record)) {
  file.write(reinterpret_cast<const char*>(&record), static_cast<std::streamsize>(size));
}

void writeLanguageFile(const std::string& path, uint32_t texts) {
  std::ofstream file(path, std::ios::binary);
  write(file, tMlHeader{3, "1.0", 1, {}});
  write(file, tMlForms{texts, kForm, sizeof(tMlHeader) + sizeof(tMlForms), {}});
  for (uint32_t element = 1; element <= texts; ++element) {
    const std::string text = textOf(element);
    tMlTexte record{0, element, 0, {}};
    record.text[0] = static_cast<char>(text.size());
    std::memcpy(record.text + 1, text.data(), text.size());
    const auto size = static_cast<uint32_t>(offsetof(tMlTexte, text) + 1 + text.size());
    write(file, size);
    write(file, record, size);
  }
}

// The form is a group, element and sub-element number are the key.
void writeKeyFile(const std::string& path, uint32_t texts) {
  std::ofstream file(path);
  file << "[7]\n";
  for (uint32_t element = 1; element <= texts; ++element) {
    file << element << ".0=" << textOf(element) << '\n';
  }
}

// Both files with so many texts, for as long as a benchmark runs.
struct Files {
  explicit Files(const benchmark::State& state) : count(static_cast<uint32_t>(state.range(0))) {
    writeLanguageFile(path("texts.en"), count);
    writeKeyFile(path("texts.ini"), count);
  }
  std::string path(const char* name) const { return directory.path() / name; }

  uint32_t count;
  Directory directory;
};

using Table = std::unique_ptr<ProgramTexts>;
using KeyFile = std::unique_ptr<GKeyFile, decltype(&g_key_file_free)>;

void setUp(ZOT_MultiLanguage& loader, const Files& files) {
  loader.SetLanguageFilePath(files.directory.path().c_str());
  loader.SetLanguageFileBaseName("texts");
  loader.SetLanguageId(2);
}

KeyFile loadKeyFile(const std::string& path) {
  KeyFile file(g_key_file_new(), g_key_file_free);
  g_key_file_load_from_file(file.get(), path.c_str(), G_KEY_FILE_NONE, nullptr);
  return file;
}

// All texts from a file, then one of them, because whatever serves the lookups
// belongs to the cost; and freed again.
void load(benchmark::State& state) {
  const Files files(state);
  ZOT_MultiLanguage loader;
  setUp(loader, files);
  measure(state, [&] {
    const Table table(loader.loadProgramTexts(kForm, 0, 0, nullptr));
    benchmark::DoNotOptimize(table->getPrgTextDefA(files.count, 0, 1, nullptr, nullptr, 0));
  });
}

void loadGlib(benchmark::State& state) {
  const Files files(state);
  const std::string path = files.path("texts.ini");
  const std::string last = std::to_string(files.count) + ".0";
  measure(state, [&] {
    const KeyFile file = loadKeyFile(path);
    char* text = g_key_file_get_value(file.get(), "7", last.c_str(), nullptr);
    benchmark::DoNotOptimize(text);
    g_free(text);
  });
}

// The elements in the file's order, as a window is filled, or in one that jumps about.
enum class Order { kFile, kShuffled };

std::vector<uint32_t> elementsIn(Order order, uint32_t count) {
  const uint32_t step = order == Order::kFile ? 1 : 6'700'417;  // a prime: every element comes once
  std::vector<uint32_t> elements(count);
  uint32_t element = 0;
  for (uint32_t& next : elements) {
    next = element + 1;
    element = (element + step) % count;
  }
  return elements;
}

std::vector<std::string> keysOf(const std::vector<uint32_t>& elements) {
  std::vector<std::string> keys;
  for (const uint32_t element : elements) {
    keys.push_back(std::to_string(element) + ".0");
  }
  return keys;
}

// Each text once, as a copy of the caller's own: GLib gives nothing else, and only a
// copy stands when another thread reloads the table.
void lookUp(benchmark::State& state) {
  const Files files(state);
  ZOT_MultiLanguage loader;
  setUp(loader, files);
  const Table table(loader.loadProgramTexts(kForm, 0, 0, nullptr));
  const std::vector<uint32_t> elements = elementsIn(Order::kFile, files.count);
  char text[64];
  measure(state, [&] {
    for (const uint32_t element : elements) {
      benchmark::DoNotOptimize(table->getPrgTextDefA(element, 0, 1, nullptr, text, sizeof text));
    }
  });
  require(text == textOf(elements.back()), "look up");
}

void lookUpGlib(benchmark::State& state) {
  const Files files(state);
  const KeyFile file = loadKeyFile(files.path("texts.ini"));
  const std::vector<std::string> keys = keysOf(elementsIn(Order::kFile, files.count));
  measure(state, [&] {
    for (const std::string& key : keys) {
      char* text = g_key_file_get_value(file.get(), "7", key.c_str(), nullptr);
      benchmark::DoNotOptimize(text);
      g_free(text);
    }
  });
}

constexpr int kTexts = 1000;
BENCHMARK(load)->Name("load/ours")->Arg(kTexts);
BENCHMARK(loadGlib)->Name("load/glib")->Arg(kTexts);
BENCHMARK(lookUp)->Name("look_up/ours")->Arg(kTexts);
BENCHMARK(lookUpGlib)->Name("look_up/glib")->Arg(kTexts);

// One lookup after the other in a table of so many texts.
template <Order order>
void lookUpOne(benchmark::State& state) {
  const Files files(state);
  ZOT_MultiLanguage loader;
  setUp(loader, files);
  const Table table(loader.loadProgramTexts(kForm, 0, 0, nullptr));
  const std::vector<uint32_t> elements = elementsIn(order, files.count);
  char text[64];
  size_t next = 0;
  measure(state, [&] {
    benchmark::DoNotOptimize(table->getPrgTextDefA(elements[next], 0, 1, nullptr, text, sizeof text));
    next = next + 1 == elements.size() ? 0 : next + 1;
  });
}

template <Order order>
void lookUpOneGlib(benchmark::State& state) {
  const Files files(state);
  const KeyFile file = loadKeyFile(files.path("texts.ini"));
  const std::vector<std::string> keys = keysOf(elementsIn(order, files.count));
  size_t next = 0;
  measure(state, [&] {
    char* text = g_key_file_get_value(file.get(), "7", keys[next].c_str(), nullptr);
    benchmark::DoNotOptimize(text);
    g_free(text);
    next = next + 1 == keys.size() ? 0 : next + 1;
  });
}

// How a lookup grows: in 10,000 texts, beside one in 100.  In random order the caches
// count as well: 10,000 texts with their index fill them.
BENCHMARK(lookUpOne<Order::kFile>)->Name("look_up_growth/ours")->Arg(10'000);
BENCHMARK(lookUpOne<Order::kFile>)->Name("look_up_growth/in_100")->Arg(100);

BENCHMARK(lookUpOne<Order::kShuffled>)->Name("look_up_random/ours")->Arg(10'000);
BENCHMARK(lookUpOne<Order::kShuffled>)->Name("look_up_random/in_100")->Arg(100);

// Growth: 10 texts to 100,000.
BENCHMARK(load)->Name("growth_load/ours")->RangeMultiplier(10)->Range(10, 100'000);
BENCHMARK(loadGlib)->Name("growth_load/glib")->RangeMultiplier(10)->Range(10, 100'000);
BENCHMARK(lookUpOne<Order::kShuffled>)->Name("growth_look_up/ours")->RangeMultiplier(10)->Range(10, 100'000);
BENCHMARK(lookUpOneGlib<Order::kShuffled>)
    ->Name("growth_look_up/glib")
    ->RangeMultiplier(10)
    ->Range(10, 100'000);

}  // namespace
