#include "Settings.h"

#include <cerrno>
#include <cstring>
#include <fstream>

namespace {

std::string trimmed(const std::string& text) {
  const char* blanks = " \t\r";
  const size_t first = text.find_first_not_of(blanks);
  return first == std::string::npos ? std::string()
                                    : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace

std::optional<Setting> parseSetting(const std::string& line, std::string* error) {
  const size_t equals = line.find('=');
  const std::string name = trimmed(line.substr(0, equals));
  for (const Field& field : kFields) {
    if (field.setting && field.name == name && equals != std::string::npos) {
      return Setting{&field, trimmed(line.substr(equals + 1))};
    }
  }
  *error = "no setting is called \"" + name + "\", or it lacks a value: " + line;
  return std::nullopt;
}

std::optional<std::vector<Setting>> readSettings(const std::string& path, std::string* error) {
  std::ifstream file(path);
  if (!file) {
    *error = path + ": " + std::strerror(errno);
    return std::nullopt;
  }
  std::vector<Setting> settings;
  for (std::string line; std::getline(file, line);) {
    if (trimmed(line).empty() || trimmed(line).front() == '#') {
      continue;
    }
    const std::optional<Setting> setting = parseSetting(line, error);
    if (!setting) {
      return std::nullopt;
    }
    settings.push_back(*setting);
  }
  return settings;
}
