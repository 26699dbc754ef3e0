#include "tools/lang/TextFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <set>

#include "multilang/LanguageRecords.h"
#include "multilang/ProgramTexts.h"
#include "tools/common/Failure.h"
#include "tools/common/Progress.h"
#include "tools/common/Text.h"
#include "tools/lang/Catalogue.h"
#include "tools/lang/Languages.h"

namespace lang {

namespace {

constexpr std::string_view kVersion = "1.0";
constexpr size_t kSizeField = sizeof(uint32_t);
constexpr size_t kTextAt = offsetof(tMlTexte, text) + 1;

// Between a file's order and this host's; the same either way.
uint32_t turned(uint32_t value, std::endian order) {
  return order == std::endian::native ? value : __builtin_bswap32(value);
}

// What tables make of a text in a file, as the client's own code does it.
class Resolver {
 public:
  std::string operator()(const std::string& inFile) {
    table_.ClearAllTexts();
    if (table_.AddText(0, 0, inFile.c_str()) == 0) {
      throw std::bad_alloc();
    }
    return table_.getPrgTextDefA(0, 0, 1, "", nullptr, 0);
  }

 private:
  ProgramTexts table_{nullptr, 0, 0, 0};
};

class Reader {
 public:
  Reader(Texts& texts, std::string_view bytes)
      : texts_(texts), bytes_(bytes), progress_("reading", bytes.size()) {}

  void read(std::optional<std::endian> order) {
    if (!hasHeader()) {
      texts_.isRead = false;
      return;
    }
    texts_.order = order ? *order : likelyOrder();
    const uint32_t forms = numberAt(offsetof(tMlHeader, formCount));
    for (uint32_t i = 0; i < forms; ++i) {
      const uint64_t at = sizeof(tMlHeader) + uint64_t{i} * sizeof(tMlForms);
      if (!has(at, sizeof(tMlForms))) {
        damage(at, fmt::format("form record {} of {} is cut off", i + 1, forms));
        return;
      }
      if (!readForm(at)) {
        return;
      }
    }
  }

 private:
  bool hasHeader() {
    tMlHeader header;
    if (!has(0, sizeof header)) {
      damage(bytes_.size(), "no language file: it ends within the header of 64 bytes");
      return false;
    }
    std::memcpy(&header, bytes_.data(), sizeof header);
    const std::string_view version(header.version, std::min<size_t>(header.versionLength, 10));
    if (version != kVersion) {
      damage(0, fmt::format("no language file: its version is \"{}\", not \"1.0\"", tool::visible(version)));
      return false;
    }
    return true;
  }

  // This host's, unless the numbers make sense in the other order only.
  std::endian likelyOrder() {
    const auto makesSense = [this](std::endian order) {
      texts_.order = order;
      const uint64_t forms = numberAt(offsetof(tMlHeader, formCount));
      if (!has(sizeof(tMlHeader), forms * sizeof(tMlForms))) {
        return false;
      }
      const uint64_t offset = sizeof(tMlHeader) + offsetof(tMlForms, textOffset);
      return forms == 0 || numberAt(offset) <= bytes_.size();
    };
    const auto other = std::endian::native == std::endian::little ? std::endian::big : std::endian::little;
    return !makesSense(std::endian::native) && makesSense(other) ? other : std::endian::native;
  }

  bool has(uint64_t at, uint64_t size) const { return at <= bytes_.size() && size <= bytes_.size() - at; }

  uint32_t numberAt(uint64_t at) const {
    uint32_t value;
    std::memcpy(&value, bytes_.data() + at, sizeof value);
    return turned(value, *texts_.order);
  }

  void damage(uint64_t at, std::string text) { tell(texts_.damage, at, std::move(text)); }
  void notKept(uint64_t at, std::string text) { tell(texts_.notKept, at, std::move(text)); }

  // A file may have a million of a kind; nobody reads so many, nor is there room for them.
  static void tell(std::vector<tool::Finding>& findings, uint64_t at, std::string text) {
    constexpr size_t kMost = 1000;
    if (findings.size() < kMost) {
      findings.push_back({std::move(text), at});
    } else if (findings.size() == kMost) {
      findings.push_back({"and more from here on", at});
    }
  }

  // False when nothing behind this form is worth reading.
  bool readForm(uint64_t at) {
    const uint32_t count = numberAt(at + offsetof(tMlForms, textCount));
    const uint32_t form = numberAt(at + offsetof(tMlForms, formNumber));
    uint64_t text = numberAt(at + offsetof(tMlForms, textOffset));
    if (!forms_.insert(form).second) {
      damage(at,
             fmt::format("form {} stands there a second time, and only its first record is ever read", form));
      return true;
    }
    if (count == 0) {
      notKept(at, fmt::format("form {} has no texts, and no catalogue can tell of it", form));
    }
    for (uint32_t i = 0; i < count; ++i) {
      const auto where = [&] { return fmt::format("form {}: text {} of {}", form, i + 1, count); };
      if (!has(text, kSizeField)) {
        damage(text, fmt::format("{} is cut off", where()));
        return true;
      }
      const uint32_t size = numberAt(text);
      if (size > sizeof(tMlTexte)) {
        damage(text, fmt::format("{} has {} bytes, 268 at most", where(), size));
        return true;
      }
      if (!has(text + kSizeField, size)) {
        damage(text, fmt::format("{} is cut off: {} of {} bytes are there", where(),
                                 bytes_.size() - text - kSizeField, size));
        return true;
      }
      // Records that cannot all stand side by side: texts that several forms share could
      // be multiplied without end.
      recordBytes_ += kSizeField + size;
      if (recordBytes_ > bytes_.size()) {
        damage(at, "the forms share their texts");
        return false;
      }
      readText(form, text, size);
      text += kSizeField + size;
      progress_.at(text);
    }
    return true;
  }

  void readText(uint32_t form, uint64_t at, uint32_t size) {
    tMlTexte record = {};
    std::memcpy(&record, bytes_.data() + at + kSizeField, size);
    const Place place = {form, turned(record.element, *texts_.order),
                         turned(record.subElement, *texts_.order)};
    const auto length = static_cast<unsigned char>(record.text[0]);
    const std::string inFile(record.text + 1, strnlen(record.text + 1, length));
    std::string text = resolved_(inFile);
    const auto tell = [&](const char* what) { notKept(at, fmt::format("{} {}", nameOf(place), what)); };
    if (!places_.insert(place).second) {
      tell("stands there a second time, and only the first is ever shown");
      return;
    }
    if (text.empty()) {
      tell("is empty, and a catalogue takes that for a missing text");
      return;
    }
    if (!fitsCatalogue(text)) {
      tell("has a byte 4, which gettext refuses");
    }
    texts_.texts[place] = {std::move(text), at};
  }

  Texts& texts_;
  std::string_view bytes_;
  tool::Progress progress_;
  Resolver resolved_;
  std::set<uint32_t> forms_;
  std::set<Place> places_;
  uint64_t recordBytes_ = 0;
};

class Writer {
 public:
  explicit Writer(std::endian order) : order_(order) {}

  void number(uint64_t value) {
    if (value > UINT32_MAX) {
      throw tool::Failure("too many texts for a language file: its offsets have 32 bits");
    }
    const uint32_t inFile = turned(static_cast<uint32_t>(value), order_);
    bytes_.append(reinterpret_cast<const char*>(&inFile), sizeof inFile);
  }
  void shortString(std::string_view text) {
    bytes_ += static_cast<char>(text.size());
    bytes_ += text;
  }
  void fillTo(size_t size) { bytes_.resize(size, '\0'); }
  size_t size() const { return bytes_.size(); }
  void append(const Writer& other) { bytes_ += other.bytes_; }
  std::string take() { return std::move(bytes_); }

 private:
  std::endian order_;
  std::string bytes_;
};

// What else a file would lose that is built of these texts.
void compareWithBuilt(Texts& texts, std::string_view bytes) {
  for (const auto& [place, text] : texts.texts) {
    const size_t length = escaped(text.bytes).size();
    if (length > kLongestText) {
      texts.notKept.push_back({fmt::format("{} has {} bytes when all its escapes are written, {} at most",
                                           nameOf(place), length, kLongestText),
                               text.at});
    }
  }
  if (!texts.notKept.empty()) {
    return;
  }
  const std::string built = textFile(texts.texts, *texts.order);
  if (built != bytes) {
    const auto differs = std::mismatch(bytes.begin(), bytes.end(), built.begin(), built.end()).first;
    texts.notKept.push_back(
        {"from here on a file that is built again differs: another order of the records, "
         "other escapes, or bytes that nobody reads",
         static_cast<uint64_t>(differs - bytes.begin())});
  }
}

}  // namespace

std::string escaped(std::string_view text) {
  constexpr std::string_view plain = "\b\t\n\r\\\"'", letters = "btnr\\\"'";
  std::string inFile;
  for (const char c : text) {
    const size_t at = plain.find(c);
    if (at != plain.npos) {
      inFile += '\\';
    }
    inFile += at != plain.npos ? letters[at] : c;
  }
  return inFile;
}

Texts readTextFile(const std::string& file, std::string_view bytes, std::optional<std::endian> order) {
  Texts texts;
  texts.file = file;
  texts.language = languageOfFile(file);
  Reader(texts, bytes).read(order);
  if (texts.damage.empty()) {
    compareWithBuilt(texts, bytes);
  }
  return texts;
}

std::string textFile(const std::map<Place, Text>& texts, std::endian order) {
  std::map<uint32_t, uint64_t> counts;
  for (const auto& [place, text] : texts) {
    ++counts[place.form];
  }
  Writer file(order), records(order);
  file.shortString(kVersion);
  file.fillTo(offsetof(tMlHeader, formCount));
  file.number(counts.size());
  file.fillTo(sizeof(tMlHeader));

  const size_t textsAt = sizeof(tMlHeader) + counts.size() * sizeof(tMlForms);
  auto next = texts.begin();
  for (const auto& [form, count] : counts) {
    const size_t end = file.size() + sizeof(tMlForms);
    file.number(count);
    file.number(form);
    file.number(textsAt + records.size());
    file.fillTo(end);
    for (uint64_t i = 0; i < count; ++i, ++next) {
      const std::string inFile = escaped(next->second.bytes);
      records.number(kTextAt + inFile.size());
      records.number(0);
      records.number(next->first.element);
      records.number(next->first.subElement);
      records.shortString(inFile);
    }
  }
  file.append(records);
  return file.take();
}

}  // namespace lang
