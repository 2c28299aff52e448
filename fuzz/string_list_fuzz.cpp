// Input: a text to decode. The decoded list survives the round trip.

#include "fuzz.h"

using namespace GXUtils;

std::vector<TextSet> ShortTexts() {
  return {{6, {",", "\\", "a", " ", ";", std::string(1, '\0')}}, {2, EveryByte()}};
}

void Check(const std::string& input) {
  for (const char separator : {',', ';', '\0', '\xFF'}) {
    std::list<std::string> list;
    if (!DecodeStringList(input, &list, separator)) continue;
    const std::string text = EncodeStringList(list, separator);
    std::list<std::string> again;
    Expect<int>("the text is valid", DecodeStringList(text, &again, separator), true);
    Expect<Strings>("the list", {again.begin(), again.end()}, {list.begin(), list.end()});
  }
}
