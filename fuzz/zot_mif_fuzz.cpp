// What zot-mif reads: a buffer that is written down and built again is the same, text that
// builds a buffer says the same as that buffer, and everything else is refused with a place.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "tests/tools/mif/WrittenForms.h"

namespace {

using zot_test::Buffer;
using zot_test::inputOf;
using zot_test::written;

// A buffer without fault is records up to an end marker that is its last two bytes.
void expectFaultIsTold(const mif::Message& message) {
  bool whole = false;
  message.eachPart([&](const mif::Part& part) { whole = part.type == mif::Part::Type::End; });
  if (whole == message.fault().has_value() || (message.damage() && !message.fault())) {
    std::abort();
  }
}

void expectSameAgain(const Buffer& bytes, std::endian order, const mif::View& view) {
  expectFaultIsTold({bytes, order});
  for (const bool json : {false, true}) {
    std::string text = written({bytes, order}, view, json);
    tool::Input input = inputOf(text);
    if (bytesWritten(input, std::nullopt, view.fields) != bytes) {
      std::abort();
    }
  }
}

// Nothing for a text that is refused, which must be with a place.
template <typename Read>
auto unlessRefused(Read read) -> std::optional<decltype(read())> {
  try {
    return read();
  } catch (const tool::FailureAt& failure) {
    if (std::string(failure.what()).rfind("input:", 0) != 0) {
      std::abort();
    }
    return std::nullopt;
  }
}

}  // namespace

// The first byte: bit 0 the order, bit 1 passwords shown, bits 2 and up what the rest is.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) {
    return 0;
  }
  static const mif::Fields fields = zot_test::allKinds();
  const std::endian order = (data[0] & 1) != 0 ? std::endian::big : std::endian::little;
  const mif::View view{fields, (data[0] & 2) != 0};
  std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
  switch (data[0] >> 2 & 3) {
    case 0:
      expectSameAgain({data + 1, data + size}, order, view);
      break;
    case 1: {
      tool::Input input = inputOf(text);
      if (const auto bytes = unlessRefused([&] { return bytesWritten(input, order, fields); })) {
        expectSameAgain(*bytes, order, view);
      }
      break;
    }
    default: {
      tool::Input input = inputOf(text);
      if (const auto read = unlessRefused([&] { return mif::Fields(input); })) {
        expectSameAgain({data + 1, data + size}, order, {*read, view.reveal});
      }
    }
  }
  return 0;
}
