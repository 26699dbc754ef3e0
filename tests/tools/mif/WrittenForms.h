// What zot-mif writes and reads, without files: for its tests and its fuzz target.
#ifndef ZOT_TESTS_TOOLS_MIF_WRITTEN_FORMS_H
#define ZOT_TESTS_TOOLS_MIF_WRITTEN_FORMS_H

#include <cstdlib>
#include <string>
#include <vector>

#include "tools/common/Output.h"
#include "tools/mif/Commands.h"
#include "tools/mif/Written.h"

namespace zot_test {

using Buffer = std::vector<unsigned char>;

// A file called "input"; the text must outlive it.
inline tool::Input inputOf(std::string& text) {
  text += '\n';  // a stream over memory of no bytes is refused
  return {fmemopen(text.data(), text.size(), "r"), "input"};
}

inline std::string written(const mif::Message& message, const mif::View& view, bool json) {
  char* text = nullptr;
  size_t size = 0;
  std::FILE* const stream = open_memstream(&text, &size);
  tool::Output output(stream, false);
  if (json) {
    writeJson(message, view, output);
  } else {
    writeText(message, view, [&](const std::string& line) { output.write(line + "\n"); });
  }
  std::fclose(stream);
  const std::string result(text, size);
  std::free(text);
  return result;
}

// Every kind under an OID of its own, from 0.
inline mif::Fields allKinds() {
  std::string lines;
  for (int kind = 0; kind <= static_cast<int>(mif::Kind::Key); ++kind) {
    lines += fmt::format("{} name{} {}\n", kind, kind, nameOf(static_cast<mif::Kind>(kind)));
  }
  tool::Input input = inputOf(lines);
  return mif::Fields(input);
}

}  // namespace zot_test

#endif
