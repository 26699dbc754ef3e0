#include "Service.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "Fields.h"
#include "Message.h"
#include "Readings.h"
#include "mif/Mif32.h"

namespace {

// Rounded up; what is too large for that stays as it is.
unsigned int wholeMinutes(unsigned int seconds) {
  return seconds <= UINT_MAX / 60 * 60 ? (seconds / 60 + (seconds % 60 != 0)) * 60 : seconds;
}

// The answer's text, after the change that it reports.
std::string applySettings(Mif32& message) {
  std::string answer = "settings accepted";
  unsigned int interval = 0;
  if (message.GetInt(kInterval, &interval, 1) != 0 && interval != wholeMinutes(interval)) {
    message.UpdInt(kInterval, wholeMinutes(interval), 1);
    answer += ", interval rounded up to " + std::to_string(wholeMinutes(interval)) + " s";
  }
  if (message.DelOid(kToken) != 0) {
    answer += ", token used up";
  }
  return answer;
}

bool closeMessage(Mif32& message, const std::string& answer) {
  message.DelEndKz();
  message.DelOid(kCheck);
  return message.AddStr(kAnswer, answer.c_str()) != 0 &&
         message.AddInt(kCheck, checkSum({message.GetData(), message.GetLen()})) != 0 &&
         message.AddEndKz() != 0;
}

}  // namespace

int runService(Channel& frontEnd) {
  const auto received = frontEnd.receive();
  if (!received) {
    return EXIT_FAILURE;  // The front end has already said why it sent nothing.
  }
  const std::string damage = damageOf(*received);
  if (!damage.empty()) {
    std::fprintf(stderr, "service: the message is damaged: %s\n", damage.c_str());
    return EXIT_FAILURE;
  }
  printMessage("service: received", *received);
  printReadings(*received);

  Mif32 message;
  message.SetData(received->data(), static_cast<unsigned int>(received->size()));
  const std::string answer = applySettings(message);
  if (!closeMessage(message, answer) || !frontEnd.send({message.GetData(), message.GetLen()})) {
    std::fprintf(stderr, "service: the answer could not be sent\n");
    return EXIT_FAILURE;
  }
  return EXIT_SUCCESS;
}
