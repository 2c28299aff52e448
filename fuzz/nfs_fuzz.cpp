// Input: the option.

#include <memory>

#include "fuzz.h"
#include "support/exportdata.h"

namespace {

// The fields with their escapes resolved, empty ones for those that cannot be read: a byte 0xFF
// that is all of the last field is taken for the end.
Strings Fields(const std::string& option) {
  Strings fields(1);
  for (std::size_t i = 0; i < option.size(); ++i) {
    const std::string pair = option.substr(i, 2);
    const bool escaped = pair == "\\," || pair == "\\\\";
    if (pair[0] == ',') fields.emplace_back();
    if (pair[0] != ',') fields.back() += escaped ? option[++i] : pair[0];
  }
  if (fields.back() == "\xFF") fields.back().clear();
  return fields;
}

}  // namespace

std::vector<World> Worlds() {
  return {{"", 5, {"/,", "ro", "rw", "RO", "disabled", ",", "\\", "\xFF"}}, {"/,", 2, EveryByte()}};
}

void Check(std::string input) {
  const Strings fields = Fields(input);
  std::vector<Exportdata*> exports = {nullptr};
  const int result = parse_nfs_export_option(input, exports);
  bool valid = true;
  std::size_t records = 0;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const std::unique_ptr<Exportdata> record(exports.at(records++));
    assert(record->path == fields[i]);
    std::string mode = "disabled";  // of an empty path, which no mode follows
    if (!fields[i].empty()) mode = ++i < fields.size() ? fields[i] : "";
    assert(record->access == (mode == "ro" ? 1 : mode == "rw" ? 2 : 0));
    valid = valid && (mode == "ro" || mode == "rw" || mode == "disabled");
  }
  assert(records == exports.size() && result == (valid ? 1 : 0));
}
