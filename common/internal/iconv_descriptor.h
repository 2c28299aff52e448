/// @file
/// Private to the project and not installed: the names of encodings, and the owner of a conversion
/// descriptor.
#pragma once

#include <cerrno>
#include <cstddef>
#include <stdexcept>
#include <string_view>

#include <iconv.h>

namespace GXInternal {

constexpr std::size_t kIconvFailed = static_cast<std::size_t>(-1);

// An encoding's name as iconv gets it: the 16-bit encodings are read and written in little-endian
// order, without a byte order mark. The result is a literal or `name` itself.
inline const char* Normalised(const char* name) {
  if (name == nullptr) throw std::logic_error("an encoding's name is null");
  const std::string_view plain = name;
  if (plain == "UTF-16") return "UTF-16LE";
  if (plain == "UCS-2") return "UCS-2LE";
  return name;
}

// What one conversion call did.
struct Conversion {
  bool opened = false;
  std::size_t result = 0;  // of iconv()
  int error = 0;           // errno where that is kIconvFailed
  std::size_t inputLeft = 0;
  std::size_t written = 0;
};

// Calls iconv(), whose input pointer is char** with some libraries and const char** with others.
template <class Input>
std::size_t CallIconv(std::size_t (*function)(iconv_t, Input, std::size_t*, char**, std::size_t*),
                      iconv_t descriptor, const char** in, std::size_t* inlen, char** out,
                      std::size_t* outlen) {
  return function(descriptor, const_cast<Input>(in), inlen, out, outlen);
}

class IconvDescriptor {
 public:
  IconvDescriptor(const char* from, const char* to) : descriptor_(iconv_open(to, from)) {}
  IconvDescriptor(const IconvDescriptor&) = delete;
  IconvDescriptor& operator=(const IconvDescriptor&) = delete;
  ~IconvDescriptor() {
    if (IsOpen()) (void)iconv_close(descriptor_);
  }

  bool IsOpen() const { return descriptor_ != reinterpret_cast<iconv_t>(-1); }

  // One call, whatever it leaves. A null `in` asks for what iconv() has held back of the text.
  Conversion Convert(const char* in, std::size_t inlen, char* out, std::size_t outlen) const {
    Conversion done;
    done.opened = true;
    done.inputLeft = inlen;
    std::size_t room = outlen;
    done.result = CallIconv(iconv, descriptor_, &in, &done.inputLeft, &out, &room);
    done.error = errno;
    done.written = outlen - room;
    return done;
  }

 private:
  iconv_t descriptor_;
};

}  // namespace GXInternal
