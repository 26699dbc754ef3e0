#include <cstdio>

#include "mif/Mif32.h"

int main() {
  Mif32 message;
  message.AddInt(1, 300);
  message.AddStr(2, "office");
  message.AddEndKz();  // message.GetData(), message.GetLen(): what goes over the wire

  Mif32 received;
  received.SetData(message.GetData(), message.GetLen());
  unsigned int interval = 0;
  char profile[32];
  if (received.GetInt(1, &interval, 1) == 1 && received.GetStr(2, profile, sizeof profile, 1) == 1) {
    std::printf("%s: every %u seconds\n", profile, interval);
  }
  received.Print();
}
