// What is dumped builds the same bytes again, and is what the client's loader shows:
// generated and damaged language files in both byte orders.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <random>

#include "multilang/ZOT_MultiLanguage.h"
#include "tools/lang/Catalogue.h"
#include "tools/lang/TextFile.h"

namespace {

using lang::Place;
using lang::Texts;

class Generator {
 public:
  explicit Generator(unsigned int seed) : random_(seed) {}

  unsigned int below(unsigned int limit) { return static_cast<unsigned int>(random_() % limit); }

  std::string text() {
    const std::string_view marks = "\\\"'\n\t\r\b\1&% ";
    std::string bytes(1 + below(below(8) == 0 ? 120 : 20), ' ');
    for (char& byte : bytes) {
      byte = below(3) == 0 ? marks[below(11)] : static_cast<char>(1 + below(255));
    }
    return bytes;
  }

  std::string file(std::endian order) {
    std::map<Place, lang::Text> texts;
    for (unsigned int i = below(12); i > 0; --i) {
      texts[{below(4), below(3) * 1000, below(3)}] = {text(), 0};
    }
    return lang::textFile(texts, order);
  }

  void damage(std::string& bytes) {
    const auto size = static_cast<unsigned int>(bytes.size());
    switch (below(4)) {
      case 0:
        bytes.resize(below(size + 1));
        break;
      case 1:
        bytes += text();
        break;
      default:
        for (unsigned int hits = 1 + below(4); hits > 0; --hits) {
          // Numbers are small, so that some of these still make sense.
          bytes[below(size)] = static_cast<char>(below(2) != 0 ? below(8) : below(0x100));
        }
    }
  }

 private:
  std::mt19937 random_;
};

std::string catalogueOf(const Texts& texts, const Texts* reference = nullptr) {
  char* text = nullptr;
  size_t size = 0;
  std::FILE* const stream = open_memstream(&text, &size);
  tool::Output output(stream, false);
  lang::writeCatalogue(texts, reference, output);
  std::fclose(stream);
  const std::string catalogue(text, size);
  std::free(text);
  return catalogue;
}

// Every text that the client's own loader has of a form, where it loads the form.
void expectWhatTheLoaderShows(const Texts& texts, const std::string& path) {
  ZOT_MultiLanguage loader;
  loader.SetLanguageFileName(path.c_str());
  for (unsigned int form = 0; form < 4; ++form) {
    const std::unique_ptr<ProgramTexts> table(loader.loadProgramTexts(form, 0, 0, nullptr));
    for (unsigned int element = 0; table != nullptr && element < 3000; element += 1000) {
      for (unsigned int sub = 0; sub < 3; ++sub) {
        const auto found = texts.texts.find({form, element, sub});
        const std::string dumped = found != texts.texts.end() ? found->second.bytes : "";
        ASSERT_EQ(dumped, table->getPrgTextDefA(element, sub, 1, "", nullptr, 0));
      }
    }
  }
}

TEST(ZotLang, BuildsTheBytesThatWereDumped) {
  const std::string path = testing::TempDir() + "/zot-lang-test." + std::to_string(getpid());
  unsigned int damaged = 0, kept = 0;
  for (unsigned int seed = 0; seed < 6000; ++seed) {
    SCOPED_TRACE(seed);
    Generator generator(seed);
    const std::endian order = seed % 2 == 0 ? std::endian::little : std::endian::big;
    std::string bytes = generator.file(order);
    const bool isDamaged = seed % 3 != 0;
    if (isDamaged) {
      generator.damage(bytes);
    }
    Texts texts = lang::readTextFile("f", bytes, order);
    if (texts.damage.empty() && texts.notKept.empty()) {
      ASSERT_EQ(bytes, lang::textFile(texts.texts, order));
      ++kept;
    } else {
      ASSERT_TRUE(isDamaged || std::find(bytes.begin(), bytes.end(), '\4') != bytes.end());
      ++damaged;
    }
    if (order == std::endian::native) {
      std::ofstream(path, std::ios::binary) << bytes;
      expectWhatTheLoaderShows(texts, path);
      std::remove(path.c_str());  // cheaper than to replace it: nothing goes to the disk
    }
    // gettext takes what was written for it: a few, since each needs a process.
    if (seed % 100 < 2) {
      texts.damage.clear();
      const Texts again = lang::readCatalogue("f.po", catalogueOf(texts, seed % 200 < 2 ? &texts : nullptr));
      ASSERT_TRUE(again.damage.empty()) << again.damage[0].text;
      std::erase_if(texts.texts, [](const auto& entry) { return !lang::fitsCatalogue(entry.second.bytes); });
      const auto isSame = [](const auto& one, const auto& other) {
        return one.first == other.first && one.second.bytes == other.second.bytes;
      };
      ASSERT_TRUE(
          std::equal(texts.texts.begin(), texts.texts.end(), again.texts.begin(), again.texts.end(), isSame));
    }
  }
  EXPECT_GT(damaged, 2000u);
  EXPECT_GT(kept, 1500u);
}

}  // namespace
