// The raw accessors over foreign bytes, in a block of exactly their length, beside what
// their walk must find there.
#include <vector>

#include "MifModel.h"
#include "ipaddr/ZotIpAddr.h"
#include "mif/MifRecord.h"
#include "mif/zotmif.h"

namespace {

struct Wanted {
  std::string bytes;
  uint16_t oid;
  uint32_t occurrence;
  std::optional<ModelRecord> record;

  // Whether count bytes from the value on lie in the buffer.
  bool has(size_t count) const { return record && record->offset + count <= bytes.size(); }
  std::string value(size_t count) const { return peek(bytes, record->offset, count); }
  bool whole() const { return record && has(record->length); }
};

void walk(const Block& buf, const Wanted& wanted) {
  const ModelWalk expected(wanted.bytes);
  const MifRecords records(buf.get(), buf.size());
  auto at = records.begin();
  for (const ModelRecord& record : expected.records) {
    require(at != records.end() && at->oid == record.oid && at->length == record.length, "a record");
    const MifRecord shown = *at++;
    const size_t available = wanted.bytes.size() - record.offset;
    require(shown.valueOffset() == record.offset && shown.value == buf.get() + record.offset, "its place");
    require(shown.available == std::min<size_t>(available, record.length), "its bytes");
    require(shown.complete() == (available >= record.length), "whether all are there");
  }
  require(at == records.end() && at.offset() == expected.end && records.endOffset() == expected.end,
          "the end");
}

void numbers(const Block& buf, const Wanted& wanted) {
  uint32_t number = 77;
  const bool found = zotmifGetInt(buf.get(), buf.size(), wanted.oid, &number, wanted.occurrence) != 0;
  require(found == wanted.has(4), "zotmifGetInt");
  require(number == (found ? hostNumber<uint32_t>(wanted.value(4)) : 77), "the number from zotmifGetInt");

  unsigned long long wide = 77;
  const bool eight = wanted.has(8) && wanted.record->length == 8;
  const bool read = zotmifGetInt64(buf.get(), buf.size(), wanted.oid, &wide, wanted.occurrence) != 0;
  require(read == wanted.has(4), "zotmifGetInt64");
  const uint64_t expected = read ? hostNumber<uint64_t>(wanted.value(eight ? 8 : 4)) : wanted.record ? 0 : 77;
  require(wide == expected, "the number from zotmifGetInt64");
}

void bytes(const Block& buf, const Wanted& wanted, uint32_t room) {
  const std::string untouched(room, '#');
  const uint32_t length = wanted.record ? wanted.record->length : 0;
  const std::string value = wanted.whole() ? wanted.value(length) : "";

  const Block str(untouched);
  const bool ends = wanted.whole() && length < room;
  require(
      ends == (zotmifGetStr(buf.get(), buf.size(), wanted.oid, str.chars(), room, wanted.occurrence) != 0),
      "zotmifGetStr");
  const std::string text = ends ? value + '\0' : "";
  require(str.str() == text + untouched.substr(text.size()), "the text from zotmifGetStr");

  const Block bin(untouched);
  const bool fits = wanted.whole() && length <= room;
  uint32_t size = room;
  require(
      fits == (zotmifGetBinData(buf.get(), buf.size(), wanted.oid, bin.get(), &size, wanted.occurrence) != 0),
      "zotmifGetBinData");
  require(size == (wanted.record && length > room ? 0
                   : fits                         ? length
                                                  : room),
          "the length from zotmifGetBinData");
  require(bin.str() == (fits ? value : "") + untouched.substr(fits ? length : 0),
          "the bytes from zotmifGetBinData");

  const unsigned char* place = nullptr;
  size = 77;
  require(wanted.whole() ==
              (zotmifGetBinDataPtr(buf.get(), buf.size(), wanted.oid, &place, &size, wanted.occurrence) != 0),
          "zotmifGetBinDataPtr");
  require(place == (wanted.whole() ? buf.get() + wanted.record->offset : nullptr), "the place of a value");
  require(size == (wanted.whole() ? length : 77), "the length of a placed value");
}

void addresses(const Block& buf, const Wanted& wanted) {
  const uint32_t length = wanted.record ? wanted.record->length : 0;
  const bool isAddress = length == 4 || length == 16;
  const std::string value = isAddress ? wanted.value(length) : "";
  const ZotIpAddr read(Block(value).get(), static_cast<unsigned int>(value.size()));
  const auto shown = [](const ZotIpAddr& addr) {
    char text[64];
    addr.GetStr(text, sizeof text);
    return std::string(text);
  };
  const bool nothingDone = buf.size() == 0 || wanted.occurrence == 0;

  ZotIpAddr addr("9.9.9.9");
  require(isAddress == (zotmifGetIpAddr(buf.get(), buf.size(), wanted.oid, &addr, wanted.occurrence) != 0),
          "zotmifGetIpAddr");
  require(shown(addr) == (nothingDone ? "9.9.9.9" : shown(read)), "the address from zotmifGetIpAddr");
  addr = "9.9.9.9";
  require((wanted.record && !isAddress) ==
              (zotmifGetIpAddrV4(buf.get(), buf.size(), wanted.oid, &addr, wanted.occurrence) != 0),
          "zotmifGetIpAddrV4");
  require(shown(addr) == (nothingDone ? "9.9.9.9"
                          : isAddress ? shown(read)
                                      : "0.0.0.0"),
          "the address from zotmifGetIpAddrV4");
}

template <typename Number>
std::string range(const std::string& value) {
  const auto from = static_cast<int32_t>(hostNumber<Number>(value));
  const auto to = static_cast<int32_t>(hostNumber<Number>(value.substr(sizeof(Number))));
  return std::to_string(from) + (from == to ? "" : "-" + std::to_string(to));
}

std::string reversedQuad(const std::string& value) {
  std::string text;
  for (size_t i = 4; i > 0; --i) {
    text += std::to_string(static_cast<unsigned char>(value[i - 1])) + (i > 1 ? "." : "");
  }
  return text;
}

void ranges(const Block& buf, const Wanted& wanted, uint32_t room, bool ipFormat) {
  std::string expected;
  bool first = true;
  bool printed = false;
  for (const ModelRecord& record : ModelWalk(wanted.bytes).records) {
    if (record.oid != wanted.oid) {
      continue;
    }
    expected += first ? "" : ", ";
    first = false;
    const std::string value = peek(wanted.bytes, record.offset, 8);
    if (record.length == 8 && ipFormat) {
      const std::string from = reversedQuad(value);
      const std::string to = reversedQuad(value.substr(4));
      expected += from == to ? from : from + "-" + to;
    } else if (record.length == 2 || record.length == 4 || record.length == 8) {
      expected += record.length == 2   ? range<uint8_t>(value)
                  : record.length == 4 ? range<uint16_t>(value)
                                       : range<uint32_t>(value);
    }
    printed |= record.length == 2 || record.length == 4 || record.length == 8;
  }
  const Block out(std::string(room, '#'));
  require(printed == (zotmifGetRangeValuesAsString(buf.get(), buf.size(), wanted.oid, out.chars(), room,
                                                   ipFormat) != 0),
          "zotmifGetRangeValuesAsString");
  require(room == 0 || out.chars() == expected.substr(0, room - 1), "the range text");
}

void update(const Block& buf, const Wanted& wanted, uint32_t number) {
  const bool fits = wanted.has(4) && wanted.record->length == 4;
  require(fits == (zotmifUpdInt(buf.get(), buf.size(), wanted.oid, number, wanted.occurrence) != 0),
          "zotmifUpdInt");
  std::string expected = wanted.bytes;
  if (fits) {
    expected.replace(wanted.record->offset, 4, hostBytes(number));
  }
  require(buf.str() == expected, "the bytes after zotmifUpdInt");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Script script(data, size);
  Wanted wanted{};
  wanted.oid = script.number<uint8_t>();
  wanted.occurrence = script.number<uint8_t>() % 4;
  const uint32_t room = script.number<uint8_t>();
  wanted.bytes = script.rest();
  wanted.record = ModelWalk(wanted.bytes).find(wanted.oid, wanted.occurrence);
  const Block buf(wanted.bytes);
  walk(buf, wanted);
  numbers(buf, wanted);
  bytes(buf, wanted, room);
  addresses(buf, wanted);
  ranges(buf, wanted, room, wanted.occurrence % 2 != 0);
  update(buf, wanted, room);
  char out[] = "old";
  require(zotmifGetInt(nullptr, buf.size(), wanted.oid, nullptr, 1) == 0, "a null buffer");
  require(zotmifGetRangeValuesAsString(nullptr, 9, wanted.oid, out, sizeof out, 0) == 0 && *out == '\0',
          "no ranges");
  require(zotmifGetRangeValuesAsString(buf.get(), buf.size(), wanted.oid, nullptr, 9, 0) == 0, "a null text");
  require(zotmifGetBinData(buf.get(), buf.size(), wanted.oid, nullptr, nullptr, 1) == 0, "a null length");
  return 0;
}
