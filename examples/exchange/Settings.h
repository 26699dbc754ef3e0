// Settings as people write them: "name = value", one a line or one an argument.
#ifndef EXCHANGE_SETTINGS_H
#define EXCHANGE_SETTINGS_H

#include <optional>
#include <string>
#include <vector>

#include "Fields.h"

struct Setting {
  const Field* field;
  std::string value;
};

// What a line says; nothing, with the reason in *error, when it names no setting.
std::optional<Setting> parseSetting(const std::string& line, std::string* error);

// All settings of a file; blank lines and those that begin with '#' say nothing.
std::optional<std::vector<Setting>> readSettings(const std::string& path, std::string* error);

#endif
