// One line on a terminal for work that takes its time.
#ifndef ZOT_TOOLS_PROGRESS_H
#define ZOT_TOOLS_PROGRESS_H

#include <chrono>
#include <cstdint>
#include <string>

namespace tool {

// Shows on standard error how far the work is, once it has lasted a second and
// only where standard error is a terminal.  The line is gone when the object is.
//
//   Progress progress("building", total);
//   while (...) progress.at(done);
class Progress {
 public:
  // what: shown before the figure, as "checking".  total: 0 when nobody knows.
  explicit Progress(std::string what, uint64_t total = 0);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Cheap enough for every record.
  void at(uint64_t done) {
    if (wanted_ && (++calls_ & 0xFF) == 0) {
      show(done);
    }
  }

  // Takes the line away before something else is printed.
  static void hide();

 private:
  void show(uint64_t done);

  std::string what_;
  uint64_t total_;
  bool wanted_;
  uint32_t calls_ = 0;
  std::chrono::steady_clock::time_point next_;
};

}  // namespace tool

#endif
