// The system and its languages.

#include <algorithm>
#include <clocale>
#include <cstring>
#include <fstream>
#include <iterator>

#include <langinfo.h>
#include <nettle/version.h>
#include <sys/utsname.h>
#include <unistd.h>
#ifdef __GLIBC__
#include <gnu/libc-version.h>
#endif

#include "gxclient_util.h"
#include "gxutil_doctor.h"
#include "internal/iconv_descriptor.h"

extern "C" char** environ;

namespace gxutil {
namespace {

constexpr char kUtf8Advice[] = "Set LANG to a UTF-8 locale, such as C.UTF-8, and log in again.";

bool Converts(const char* from, const char* to) {
  return GXInternal::IconvDescriptor(from, to).IsOpen();
}

std::string InLocale(const char* text) { return GXUtils::Transcode("UTF-8", "", text); }

// Whether the locale's encoding has letters outside ASCII: Latin, Greek, Cyrillic, Hebrew, Arabic,
// Thai, Japanese or Chinese ones.
bool HasMoreThanAscii() {
  const char* const letters[] = {"ä", "ł", "ω", "я", "א", "ا", "ก", "あ", "漢"};
  return std::any_of(std::begin(letters), std::end(letters), [](const char* letter) {
    const std::string bytes = InLocale(letter);
    return !bytes.empty() && static_cast<unsigned char>(bytes[0]) >= 0x80;
  });
}

// What becomes of a character that the locale's encoding does not have.
std::string WithMissingCharacters() {
  const char* const sample = "a😀b";
  const std::string converted = InLocale(sample);
  if (converted == sample || converted.size() > 3) return "has every character";
  if (converted == "ab") return "leaves out characters that it does not have";
  if (converted == "a") return "ends a text at a character that it does not have";
  return "replaces characters that it does not have";
}

// The value of PRETTY_NAME in a file of os-release(5); empty where there is none.
std::string PrettyName(const char* path) {
  const std::string key = "PRETTY_NAME=";
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);) {
    if (line.rfind(key, 0) == 0) return GXUtils::Strip(line.substr(key.size()), "\"'");
  }
  return {};
}

}  // namespace

Fact ModuleVersion() {
  std::string text = std::string("gxclient_util ") + GXUTIL_VERSION;
  text += ", nettle " + std::to_string(nettle_version_major());
  return {text + "." + std::to_string(nettle_version_minor())};
}

Fact SystemVersion() {
  utsname name{};
  if (uname(&name) != 0) return {"unknown"};
  std::string text = std::string(name.sysname) + " " + name.release + " " + name.machine;
#ifdef __GLIBC__
  text.append(", glibc ").append(gnu_get_libc_version());
#endif
  return {text};
}

Fact Distribution() {
  for (const char* path : {"/etc/os-release", "/usr/lib/os-release"}) {
    const std::string name = PrettyName(path);
    if (!name.empty()) return {name};
  }
  return {"unknown"};
}

Fact LanguageVariables() {
  std::string found;
  for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
    for (const char* name : {"LANG=", "LANGUAGE=", "LC_"}) {
      if (std::strncmp(*entry, name, std::strlen(name)) == 0) found.append(*entry) += ' ';
    }
  }
  return {found.empty() ? "LANG and the LC_ variables are not set" : found};
}

Fact Locale() {
  const bool installed = std::setlocale(LC_ALL, "") != nullptr;  // as main() did
  const std::string name = std::setlocale(LC_CTYPE, nullptr);
  if (installed) return {name};
  return {name, "LANG or an LC_ variable names one that is not installed",
          "Install it, or set the variable to one that 'locale -a' lists."};
}

Fact Encoding() {
  const std::string name = nl_langinfo(CODESET);
  if (!Converts("", "UTF-8") || !Converts("UTF-8", "")) {
    return {name, "iconv does not convert between it and UTF-8", kUtf8Advice};
  }
  if (HasMoreThanAscii()) return {name + ", " + WithMissingCharacters()};
  const std::string value = name + ", has no letters with accents, nor those of other scripts";
  if (!HasDesktop()) return {value};  // usual in a script or on a server
  return {value, "names lose them", kUtf8Advice};
}

Fact SpeedFigure() {
  const int figure = GXUtils::GetBogoMips();
  return {figure < 0 ? "no figure" : std::to_string(figure) + " bogomips"};
}

}  // namespace gxutil
