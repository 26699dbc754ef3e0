// Lists what a one-star search finds: find_files 'DIRECTORY/*.h'
#include <cstdio>

#include "os/ZotOsFile.h"

int main(int argc, char** argv) {
  const char* pattern = argc > 1 ? argv[1] : "*";
  ZotOsFindData find = {};
  char name[ZOT_OS_FIND_TEXT];
  uint32_t type = 0;
  uint32_t size = 0;
  uint32_t hit = ZotOsFindFirst(&find, pattern, name, &type, nullptr, &size);
  if (hit == 0) {
    std::printf("nothing matches %s\n", pattern);
    return 1;
  }
  for (; hit == 1; hit = ZotOsFindNext(&find, name, &type, nullptr, &size)) {
    if (type == ZOT_OS_FIND_DIRECTORY) {
      std::printf("%s/\n", name);
    } else {
      std::printf("%s: %u bytes\n", name, size);
    }
  }
  ZotOsFindClose(&find);
  return 0;
}
