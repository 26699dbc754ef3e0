#include "mif/Mif32.h"
#include "zotmacguiutils.h"

int main() {
  Mif32 record;
  record.AddInt(7, 300);
  record.AddEndKz();
  unsigned int value = 0;
  const ZotIpAddr address("127.0.0.1");
  return record.GetInt(7, &value, 1) == 1 && value == 300 && address.IsLocalHost() == 1 ? 0 : 1;
}
