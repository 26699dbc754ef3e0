// What a program prints, in colour where a person reads it.
#ifndef ZOT_TOOLS_OUTPUT_H
#define ZOT_TOOLS_OUTPUT_H

#include <fmt/format.h>

#include <cstdio>
#include <string>
#include <string_view>

namespace tool {

enum class Colour { Bold, Dim, Red, Green, Yellow, Cyan };

class Output {
 public:
  // Colours only on a terminal, and never with NO_COLOR in the environment.
  explicit Output(std::FILE* stream = stdout);
  Output(std::FILE* stream, bool colours);

  // Throws when the stream takes no more; hides a progress line first.
  template <typename... Arguments>
  void print(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    write(fmt::format(format, std::forward<Arguments>(arguments)...));
  }
  void write(std::string_view text);

  // Throws when what was printed did not all get out.
  void flush();

  // The text in this colour, or as it is.
  std::string paint(Colour colour, std::string_view text) const;

  // Whether a person reads it: lists have a heading then.
  bool terminal() const { return terminal_; }

 private:
  std::FILE* stream_;
  bool terminal_;
  bool colours_;
};

}  // namespace tool

#endif
