// What a block of code writes to standard output and standard error, whether
// through stdio, straight to the descriptor, or from a child process.
#ifndef ZOT_TESTS_CAPTURE_H
#define ZOT_TESTS_CAPTURE_H

#include <functional>
#include <string>

namespace zot_test {

struct Output {
  std::string out;
  std::string err;
};

Output captured(const std::function<void()>& body);

}  // namespace zot_test

#endif
