// Input: the option.

#include <memory>

#include "fuzz.h"
#include "support/exportdata.h"

namespace {

// The fields without their escapes. During the split, the bytes 1 and 2 replace the escapes.
Strings Fields(const std::string& option) {
  Strings fields = Split(Replaced(Replaced(option, "\\\\", "\1"), "\\,", "\2"), ',');
  for (std::string& field : fields) field = Replaced(Replaced(field, "\1", "\\"), "\2", ",");
  if (fields.back() == "\xFF") fields.back().clear();  // taken for the end
  return fields;
}

}  // namespace

std::vector<World> Worlds() {
  return {{"", 5, {"/,", "ro", "rw", "RO", "disabled", ",", "\\", "\xFF"}}, {"/,", 2, EveryByte()}};
}

void Check(const std::string& input) {
  if (input.find_first_of("\1\2") != std::string::npos) return;
  const Strings fields = Fields(input);
  Strings expected;
  bool valid = true;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    expected.push_back(fields[i]);
    std::string mode = "disabled";  // an empty path has no mode
    if (!fields[i].empty()) mode = ++i < fields.size() ? fields[i] : "";
    expected.push_back(mode == "ro" ? "1" : mode == "rw" ? "2" : "0");
    valid = valid && (mode == "ro" || mode == "rw" || mode == "disabled");
  }

  std::vector<Exportdata*> exports;
  Expect("every pair is valid", parse_nfs_export_option(input, exports) == 1, valid);
  Strings records;
  for (Exportdata* record : exports) {
    const std::unique_ptr<Exportdata> owner(record);
    records.push_back(record->path);
    records.push_back(std::to_string(record->access));
  }
  Expect("paths and access modes", records, expected);
}
