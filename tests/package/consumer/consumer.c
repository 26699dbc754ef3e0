#include <string.h>

#include "zotmacguiutils.h"

int main(void) {
  char text[4];
  unsigned char address[4];
  strcpy_zot(text, sizeof text, "abcdef");
  return strcmp(text, "abc") == 0 && zot_inet_pton4("10.0.0.1", address) == 1 && ZotOsFileExists("/") == 1
             ? 0
             : 1;
}
