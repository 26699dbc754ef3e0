// What a block of code writes to standard output and standard error, whether
// through stdio, straight to the descriptor, or from a child process.
#ifndef ZOT_TESTS_CAPTURE_H
#define ZOT_TESTS_CAPTURE_H

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace zot_test {

struct Output {
  std::string out;
  std::string err;
};

inline Output captured(const std::function<void()>& body) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  body();
  std::string err = testing::internal::GetCapturedStderr();
  return {testing::internal::GetCapturedStdout(), std::move(err)};
}

}  // namespace zot_test

#endif
