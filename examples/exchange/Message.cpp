#include "Message.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

#include "mif/MifRecord.h"

namespace {

std::string text(const char* format, auto... arguments) {
  char buffer[160];
  std::snprintf(buffer, sizeof buffer, format, arguments...);
  return buffer;
}

std::string integerText(const MifRecord& record) {
  uint32_t number = 0;
  mifCopyBounded(&number, record.value, record.available, 0, sizeof number);
  return std::to_string(number);
}

// A value below 2^32 is stored as the first four bytes of its eight.
std::string integer64Text(const MifRecord& record) {
  uint64_t number = 0;
  mifCopyBounded(&number, record.value, record.available, 0, record.length == 4 ? 4 : sizeof number);
  return std::to_string(number);
}

std::string hexText(Bytes value) {
  std::string shown;
  for (const unsigned char byte : value) {
    shown += text(shown.empty() ? "%02x" : " %02x", byte);
  }
  return shown;
}

std::string valueText(const MifRecord& record) {
  const Bytes value(record.value, record.available);
  const Field* field = fieldByOid(record.oid);
  switch (field != nullptr ? field->kind : FieldKind::Binary) {
    case FieldKind::Integer:
      return integerText(record);
    case FieldKind::Integer64:
      return integer64Text(record);
    case FieldKind::Text:
    case FieldKind::Password:  // scrambled as it stands here
      return quotedText(value);
    default:
      return hexText(value);
  }
}

void printTable(Bytes message) {
  std::printf("  %6s  %5s  %6s  %-12s %s\n", "offset", "OID", "length", "field", "value");
  const MifRecords records(message.data(), message.size());
  auto record = records.begin();
  for (; record != records.end(); ++record) {
    const Field* field = fieldByOid(record->oid);
    const std::string_view name = field != nullptr ? field->name : "?";
    std::printf("  %6" PRIu64 "  %5u  %6u  %-12.*s %s\n", record->offset, record->oid, record->length,
                static_cast<int>(name.size()), name.data(), valueText(*record).c_str());
  }
  std::printf("  %6" PRIu64 "  %5u  %6s  end marker\n", record.offset(), kMifEndMarker, "-");
}

void printHex(Bytes message) {
  for (size_t line = 0; line < message.size(); line += 16) {
    const Bytes row = message.subspan(line, std::min<size_t>(16, message.size() - line));
    std::printf("  %06zx  %-47s  ", line, hexText(row).c_str());
    for (const unsigned char byte : row) {
      std::putchar(byte >= 0x20 && byte < 0x7F ? byte : '.');
    }
    std::putchar('\n');
  }
}

// A message is whole records up to an end marker that is its last two bytes.
std::string structuralDamage(Bytes message) {
  const MifRecords records(message.data(), message.size());
  auto record = records.begin();
  for (; record != records.end(); ++record) {
    if (!record->complete()) {
      return text("the record at offset %" PRIu64 " (OID %u) claims %u bytes, %zu are there", record->offset,
                  record->oid, record->length, record->available);
    }
  }
  if (record.offset() + kMifEndMarkerSize > message.size()) {
    return text("it stops at offset %zu without an end marker", message.size());
  }
  if (mifLoad<unsigned short>(message.data() + record.offset()) != kMifEndMarker) {
    return text("there is no end marker at offset %" PRIu64, record.offset());
  }
  if (record.offset() + kMifEndMarkerSize != message.size()) {
    return text("bytes follow the end marker at offset %" PRIu64, record.offset());
  }
  return {};
}

}  // namespace

// FNV-1a: enough to notice damage, no protection against intent.
uint32_t checkSum(Bytes bytes) {
  uint32_t sum = 2166136261u;
  for (const unsigned char byte : bytes) {
    sum = (sum ^ byte) * 16777619u;
  }
  return sum;
}

std::string damageOf(Bytes message) {
  std::string damage = structuralDamage(message);
  if (!damage.empty()) {
    return damage;
  }
  MifRecord last = {};
  for (const MifRecord& record : MifRecords(message.data(), message.size())) {
    last = record;
  }
  if (last.oid != kCheck || last.length != sizeof(uint32_t)) {
    return "it does not end with its check sum";
  }
  const uint32_t sum = checkSum(message.first(static_cast<size_t>(last.offset)));
  if (mifLoad<uint32_t>(last.value) != sum) {
    return text("its check sum is %u, its bytes add up to %u", mifLoad<uint32_t>(last.value), sum);
  }
  return {};
}

std::string quotedText(Bytes value) {
  std::string shown = "\"";
  for (const unsigned char byte : value) {
    if (byte == '"' || byte == '\\') {
      shown += '\\';
    }
    // The terminal expects UTF-8; the message holds ISO 8859-1, whose control bytes
    // stand below each half of the printable ones.
    const bool control = (byte & 0x7F) < 0x20 || byte == 0x7F;
    shown += control       ? text("\\x%02x", byte)
             : byte < 0x80 ? std::string(1, static_cast<char>(byte))
                           : text("%c%c", 0xC0 | byte >> 6, 0x80 | (byte & 0x3F));
  }
  return shown + '"';
}

void printReading(const Field& field, const std::string& reading) {
  std::printf("  %-12.*s %s\n", static_cast<int>(field.name.size()), field.name.data(), reading.c_str());
}

void printMessage(const char* title, Bytes message) {
  std::printf("%s (%zu bytes)\n", title, message.size());
  printTable(message);
  std::putchar('\n');
  printHex(message);
  std::putchar('\n');
  std::fflush(stdout);
}
