// One typical life of everything that the library hands out: it is made, used and given back.
#ifndef TESTS_LIVES_H
#define TESTS_LIVES_H

#include <ostream>
#include <span>

namespace zot_test {

struct Life {
  const char* name;
  // Whether every result said success.
  bool (*live)();
  // Whether a success is true; asked when nothing fails any more.  May be null.
  bool (*holds)();
};
inline void PrintTo(const Life& life, std::ostream* out) {
  *out << life.name;
}

std::span<const Life> allLives();
std::span<const Life> interruptibleLives();  // they transfer bytes or wait

// Lays the files that the lives work on in the current directory; no promise is broken yet.
void prepareLife();

// What a life found untrue while it went on, or null.
const char* brokenPromise();

}  // namespace zot_test

#endif
