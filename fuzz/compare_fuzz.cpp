// Input: first|second.

#include <cctype>

#include "fuzz.h"

namespace {

template <class T>
int Order(const T& first, const T& second) {
  return (second < first) - (first < second);
}

// What the longer version has more counts, but for "0" at its end.
int OrderVersions(Strings first, Strings second) {
  while (first.size() > second.size() && first.back() == "0") first.pop_back();
  while (second.size() > first.size() && second.back() == "0") second.pop_back();
  return Order(first, second);
}

// The number of digits that count, and the digits.
std::pair<std::size_t, std::string> Number(std::string text) {
  if (text.rfind("0x", 0) == 0) text.erase(0, 2);
  text.erase(0, text.find_first_not_of('0'));
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return {text.size(), text};
}

}  // namespace

std::vector<World> Worlds() {
  return {{"", 5, {"0x", "0X", "0", "1", ".", ".0", "a", "A", "\x11", "\xFF", "|"}}};
}

void Check(std::string input) {
  const Strings sides = Split(input + "|", '|');
  for (const std::size_t i : {0U, 1U}) {
    const char* first = sides[i].c_str();
    const char* second = sides[1 - i].c_str();
    const int versions = OrderVersions(Split(first, '.'), Split(second, '.'));
    assert(Order(GXUtils::CompareVersions(first, second), 0) == versions);
    assert(GXUtils::CompareHexStrings(first, second) == Order(Number(first), Number(second)));
  }
}
