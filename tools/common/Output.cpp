#include "tools/common/Output.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "tools/common/Failure.h"
#include "tools/common/Progress.h"

namespace tool {

namespace {

bool mayColour() {
  const char* const terminal = std::getenv("TERM");
  return std::getenv("NO_COLOR") == nullptr && terminal != nullptr && std::strcmp(terminal, "dumb") != 0;
}

const char* codeOf(Colour colour) {
  switch (colour) {
    case Colour::Bold:
      return "1";
    case Colour::Dim:
      return "2";
    case Colour::Red:
      return "31";
    case Colour::Green:
      return "32";
    case Colour::Yellow:
      return "33";
    case Colour::Cyan:
      return "36";
  }
  return "0";
}

}  // namespace

Output::Output(std::FILE* stream) : Output(stream, isatty(fileno(stream)) != 0 && mayColour()) {}

Output::Output(std::FILE* stream, bool colours)
    : stream_(stream), terminal_(isatty(fileno(stream)) != 0), colours_(colours) {}

void Output::write(std::string_view text) {
  if (terminal_) {
    Progress::hide();
  }
  if (std::fwrite(text.data(), 1, text.size(), stream_) != text.size()) {
    throw Failure(fmt::format("standard output: {}", std::strerror(errno)));
  }
}

void Output::flush() {
  if (std::fflush(stream_) != 0) {
    throw Failure(fmt::format("standard output: {}", std::strerror(errno)));
  }
}

std::string Output::paint(Colour colour, std::string_view text) const {
  return colours_ && !text.empty() ? fmt::format("\033[{}m{}\033[0m", codeOf(colour), text)
                                   : std::string(text);
}

}  // namespace tool
