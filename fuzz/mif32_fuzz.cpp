// Mif32 beside a model: scripts of all its operations over owned and lent memory, with
// claimed lengths that lie and values from its own block.
#include <utility>

#include "MifModel.h"
#include "ipaddr/ZotIpAddr.h"
#include "mif/Mif32.h"

namespace {

// A value as both sides take it.
struct Argument {
  const unsigned char* pointer = nullptr;
  uint32_t length = 0;
  MifModel::Value value;
  std::optional<Block> memory;
};

class Session {
 public:
  explicit Session(const Script& script) : script_(script) {}

  void run();

 private:
  using Step = void (Session::*)();
  static const Step kSteps[];

  // ---- What the script gives ----

  uint16_t oid() {
    const auto pick = script_.number<uint8_t>();
    return pick < 0xF0 ? pick % 5 : pick == 0xFF ? 0xFFFF : script_.number<uint16_t>();
  }

  uint64_t wide() { return script_.number<uint64_t>() >> script_.below(2) * 32; }

  // Mostly short, some up to limit.
  uint32_t length(uint32_t limit) {
    const auto pick = script_.number<uint8_t>();
    return pick < 0xF0 ? pick % 40 : script_.number<uint32_t>() % (limit + 1);
  }

  Argument argument() {
    Argument made;
    made.length = length(66000);
    const auto kind = script_.number<uint8_t>();
    // Without the end marker, which an update writes over before it takes the value.
    const std::string used = model_.used().substr(0, ModelWalk(model_.used()).end);
    if (kind < 8) {
      return made;
    }
    if (kind < 80 && !used.empty()) {
      const size_t offset = script_.below(static_cast<uint32_t>(used.size()));
      made.value = used.substr(offset, made.length);
      made.pointer = mif_.GetData() + offset;
    } else {
      made.value = script_.text(made.length);
      made.value->resize(made.length, static_cast<char>(kind));
      made.memory.emplace(*made.value);
      made.pointer = made.memory->get();
    }
    made.length = static_cast<uint32_t>(made.value->size());
    return made;
  }

  std::string text() {
    std::string bytes = argument().value.value_or("");
    std::replace(bytes.begin(), bytes.end(), '\0', 'z');
    return bytes;
  }

  std::string records() {
    std::string bytes;
    for (uint32_t count = script_.below(6); count > 0; --count) {
      const auto actual = static_cast<uint16_t>(script_.below(20));
      const auto lie = static_cast<uint16_t>(script_.below(10) == 0 ? script_.number<uint16_t>() : actual);
      bytes += hostBytes(oid()) + hostBytes(lie) + peek(script_.text(actual), 0, actual);
    }
    return bytes;
  }

  // ---- Steps ----

  void checkSize() {
    // No gigabytes: what is not small is more than a length can hold.
    const uint32_t pick = script_.number<uint16_t>();
    const uint32_t n = pick < 0xF000 ? pick % 5000 : UINT32_MAX - pick % 1000;
    require(model_.checkSize(n) == (mif_.CheckSize(n) != 0), "CheckSize");
  }

  void alloc() {
    const auto size = static_cast<uint16_t>(length(65535));
    require(model_.alloc(size) == (mif_.Alloc(size) != 0), "Alloc");
  }

  void setLen() {
    const auto claimed = static_cast<uint16_t>(length(65535));
    mif_.SetLen(claimed);
    model_.len = claimed;
  }

  void clearBuffer() {
    mif_.ClearBuffer();
    model_.clear();
  }

  void setExternalMem() {
    require(mif_.SetExternalMem(nullptr, 9, 3) == 0, "no memory is lent");
    if (!model_.external && model_.allocLen != 0 && model_.exists) {
      unsigned char* inside = mif_.GetData() + script_.number<uint16_t>() % model_.allocLen;
      require(mif_.SetExternalMem(inside, 1, 1) == 0, "its own block is lent");
    }
    Block memory(records() + std::string(script_.below(64), '\0'));
    const uint32_t pick = script_.number<uint32_t>();
    const uint32_t used = pick % 8 == 0 ? pick : pick % (memory.size() + 1);
    const bool lent = mif_.SetExternalMem(memory.get(), memory.size(), used) != 0;
    require(lent == (memory.size() != 0), "SetExternalMem");
    if (lent) {
      model_.setExternal(memory.str(), used);
      lent_.emplace(std::move(memory));
    }
  }

  void setData() {
    Argument from = argument();
    if (script_.below(2) == 0) {
      from.value = records();
      from.memory.emplace(*from.value);
      from.pointer = from.memory->get();
      from.length = from.memory->size();
    }
    if (from.pointer != mif_.GetData()) {
      model_.setData(from.value);
    }
    mif_.SetData(reinterpret_cast<const char*>(from.pointer), from.length);
  }

  void addNumber() {
    const uint16_t id = oid();
    const uint64_t value = wide();
    const auto low = static_cast<uint32_t>(value);
    switch (script_.below(3)) {
      case 0:
        require(model_.add(id, hostBytes(low), 4) == (mif_.AddInt(id, low) != 0), "AddInt");
        break;
      case 1:
        require(model_.add(id, hostBytes(low), 4) == (mif_.AddTime(id, static_cast<long>(value)) != 0),
                "AddTime");
        break;
      default:
        require(model_.addInt64(id, value) == (mif_.AddInt64(id, value) != 0), "AddInt64");
    }
  }

  void addBytes() {
    const uint16_t id = oid();
    const Argument from = argument();
    const auto cut = static_cast<uint16_t>(from.length);
    if (script_.below(2) == 0) {
      require(model_.add(id, from.value, cut) == (mif_.Add(id, from.pointer, cut) != 0), "Add");
    } else {
      const bool expected = from.value && model_.add(id, from.value, cut);
      require(expected == (mif_.AddBin(id, from.pointer, from.length) != 0), "AddBin");
    }
  }

  void addText() {
    const uint16_t id = oid();
    const std::string from = text();
    const bool expected = model_.add(id, from, static_cast<uint16_t>(from.size()));
    require(expected == (mif_.AddStr(id, from.c_str()) != 0), "AddStr");
    require(mif_.AddStr(id, nullptr) == 0, "AddStr without a text");
  }

  void addAddress() {
    const uint16_t id = oid();
    const std::string bytes = peek(script_.text(16), 0, 16);
    const uint32_t pick = script_.below(4);
    ZotIpAddr addr(Block(bytes).get(), pick < 2 ? 4 : pick == 2 ? 16 : 7);
    const uint16_t length = pick < 2 ? 4 : pick == 2 ? 16 : 0;
    require(model_.add(id, bytes, length) == (mif_.AddIpAddr(id, &addr) != 0), "AddIpAddr");
    const std::string view = hostBytes(addr.GetIpV4Addr());
    require(model_.add(id, view, 4) == (mif_.AddIpAddrV4(id, &addr) != 0), "AddIpAddrV4");
  }

  void addRaw() {
    const uint64_t value = script_.number<uint64_t>();
    const auto byte = static_cast<uint8_t>(value);
    const auto word = static_cast<uint16_t>(value);
    const auto dword = static_cast<uint32_t>(value);
    switch (script_.below(5)) {
      case 0:
        require(model_.append(hostBytes(byte)) == (mif_.RawAddByte(byte) != 0), "RawAddByte");
        break;
      case 1:
        require(model_.append(hostBytes(word)) == (mif_.RawAddWord(word) != 0), "RawAddWord");
        break;
      case 2:
        require(model_.append(hostBytes(dword)) == (mif_.RawAddDWord(dword) != 0), "RawAddDWord");
        break;
      case 3:
        require(model_.append(hostBytes(value)) == (mif_.RawAddLDWord(value) != 0), "RawAddLDWord");
        break;
      default: {
        const Argument from = argument();
        const bool expected = from.value && model_.append(*from.value);
        require(expected == (mif_.RawAddBin(from.pointer, from.length) != 0), "RawAddBin");
        const std::string chars = text();
        require(model_.append(chars) == (mif_.RawAddStr(chars.c_str()) != 0), "RawAddStr");
      }
    }
  }

  void endMarkers() {
    if (script_.below(3) == 0) {
      require(model_.delEndKz() == (mif_.DelEndKz() != 0), "DelEndKz");
    } else {
      require(model_.addEndKz() == (mif_.AddEndKz() != 0), "AddEndKz");
    }
  }

  void updateBytes() {
    const uint16_t id = oid();
    const uint32_t occurrence = script_.below(4);
    if (script_.below(3) == 0) {
      const std::string from = text();
      const auto cut = static_cast<uint16_t>(from.size());
      require(model_.updBin(id, from, cut, occurrence) == (mif_.UpdStr(id, from.c_str(), occurrence) != 0),
              "UpdStr");
      return;
    }
    const Argument from = argument();
    const auto cut = static_cast<uint16_t>(from.length);
    const bool expected = model_.updBin(id, from.value, cut, occurrence);
    require(expected == (mif_.UpdBin(id, from.pointer, cut, occurrence) != 0), "UpdBin");
  }

  void updateNumber() {
    const uint16_t id = oid();
    const uint32_t occurrence = script_.below(4);
    const uint64_t value = wide();
    const auto low = static_cast<uint32_t>(value);
    if (script_.below(2) == 0) {
      require(model_.updInt(id, low, occurrence) == (mif_.UpdInt(id, low, occurrence) != 0), "UpdInt");
    } else {
      require(model_.updInt64(id, value, occurrence) == (mif_.UpdInt64(id, value, occurrence) != 0),
              "UpdInt64");
    }
  }

  void deleteRecord() {
    const uint16_t id = oid();
    require(model_.delOid(id) == (mif_.DelOid(id) != 0), "DelOid");
  }

  // Pointers that must not be null.
  void passNulls() {
    const uint16_t id = oid();
    unsigned int size = 0;
    require(mif_.GetStr(id, nullptr, 9, 1) == 0 && mif_.GetInt(id, nullptr, 1) == 0, "a null target");
    require(mif_.GetInt64(id, nullptr, 1) == 0 && mif_.GetBinPtr(id, nullptr, nullptr, 1) == 0,
            "a null target");
    require(mif_.GetBin(id, nullptr, nullptr, 1) == 0 && mif_.UpdStr(id, nullptr, 1) == 0, "a null text");
    require(mif_.AddIpAddr(id, nullptr) == 0 && mif_.AddIpAddrV4(id, nullptr) == 0, "a null address");
    require(mif_.GetBinPtr(id, nullptr, &size, 1) == mif_.Seek(id, nullptr, nullptr, 1), "what may be null");
  }

  // ---- Looking ----

  void compare() {
    require(model_.len == mif_.GetLen(), "GetLen");
    require(model_.allocLen == mif_.GetAllocLen(), "GetAllocLen");
    unsigned int room = 77;
    require(model_.external == (mif_.IsExternalMem(&room) != 0), "IsExternalMem");
    require(room == (model_.external ? model_.allocLen - model_.len : 77), "the room in lent memory");
    require(model_.exists == (mif_.GetData() != nullptr), "GetData");
    require(!model_.exists ||
                std::equal(model_.block.begin(), model_.block.end(), reinterpret_cast<char*>(mif_.GetData())),
            "the block");
    if (model_.len < 100) {
      print();
    }
  }

  void read(uint16_t id, uint32_t occurrence) {
    const auto found = model_.find(id, occurrence);
    const ModelRecord record = found.value_or(ModelRecord{id, 77, 77});
    unsigned int offset = 77;
    unsigned int size = 77;
    require(found.has_value() == (mif_.Seek(id, &offset, &size, occurrence) != 0), "Seek");
    require(offset == record.offset && size == record.length, "what Seek stores");
    size = 77;
    require(found.has_value() == (mif_.SearchValue(id, &size, occurrence) != 0) && size == record.length,
            "SearchValue");
    unsigned char* value = nullptr;
    require(found.has_value() == (mif_.GetBinPtr(id, &value, &size, occurrence) != 0), "GetBinPtr");
    require(value == (found ? mif_.GetData() + record.offset : nullptr) && size == record.length,
            "what GetBinPtr stores");

    const uint32_t room = script_.below(3) == 0 ? record.length : length(65535);
    const std::string untouched(room, '#');
    const std::string bytes = peek(model_.block, record.offset, record.length);
    const Block bin(untouched);
    size = room;
    const bool fits = found && record.length <= room;
    require(fits == (mif_.GetBin(id, bin.get(), &size, occurrence) != 0), "GetBin");
    require(size == (fits ? record.length : room), "the length from GetBin");
    require(bin.str() == (fits ? bytes : "") + untouched.substr(fits ? bytes.size() : 0),
            "the bytes from GetBin");
    require(found.has_value() == (mif_.GetBin(id, nullptr, &size, occurrence) != 0), "GetBin for the length");

    const Block str(untouched);
    const bool ends = found && record.length < room;
    require(ends == (mif_.GetStr(id, str.chars(), static_cast<uint16_t>(room), occurrence) != 0), "GetStr");
    require(str.str() == (ends ? peek(bytes.c_str(), 0, room) : untouched), "the text from GetStr");

    unsigned int number = 77;
    const std::string four = peek(model_.block, record.offset, 4);
    require(found.has_value() == (mif_.GetInt(id, &number, occurrence) != 0), "GetInt");
    require(number == (found ? hostNumber<uint32_t>(four) : 77), "the number from GetInt");
    unsigned long long wideNumber = 77;
    const std::string eight = record.length == 4 ? peek(four, 0, 8) : peek(model_.block, record.offset, 8);
    require(found.has_value() == (mif_.GetInt64(id, &wideNumber, occurrence) != 0), "GetInt64");
    require(wideNumber == (found             ? hostNumber<uint64_t>(eight)
                           : occurrence == 0 ? 77
                                             : 0),
            "the number from GetInt64");
  }

  void print() {
    std::string expected = "Len  : " + std::to_string(model_.len) + "\nData : ";
    for (const char byte : peek(model_.block, 0, model_.len)) {
      char hex[4];
      std::snprintf(hex, sizeof hex, "%02x ", static_cast<unsigned char>(byte));
      expected += hex;
    }
    char* dump = nullptr;
    size_t size = 0;
    std::FILE* stream = open_memstream(&dump, &size);
    std::swap(stream, stdout);
    const int result = mif_.Print();
    std::swap(stream, stdout);
    std::fclose(stream);
    require(result == '\n' && dump == expected + "\n", "Print");
    std::free(dump);
  }

  Script script_;
  MifModel model_;
  std::optional<Block> lent_;
  Mif32 mif_;
};

const Session::Step Session::kSteps[] = {
    &Session::checkSize,      &Session::alloc,        &Session::setLen,       &Session::clearBuffer,
    &Session::setExternalMem, &Session::setData,      &Session::setData,      &Session::addNumber,
    &Session::addNumber,      &Session::addBytes,     &Session::addText,      &Session::addAddress,
    &Session::addRaw,         &Session::endMarkers,   &Session::endMarkers,   &Session::updateBytes,
    &Session::updateNumber,   &Session::updateNumber, &Session::deleteRecord, &Session::passNulls};

void Session::run() {
  while (script_.more()) {
    (this->*kSteps[script_.below(std::size(kSteps))])();
    compare();
    read(oid(), script_.below(4));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Session(Script(data, size)).run();
  return 0;
}
