#include "gxclient_util.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cwctype>
#include <memory>
#include <stdexcept>
#include <string_view>

#include <iconv.h>

#include "support/logfile.h"

namespace GXUtils {
namespace {

constexpr std::size_t kIconvFailed = static_cast<std::size_t>(-1);

// An encoding's name as iconv gets it: the 16-bit encodings are read and written in little-endian
// order, without a byte order mark. The result is a literal or `name` itself.
const char* Normalised(const char* name) {
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
  int error = 0;           // errno if that is kIconvFailed
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

  // One call, whatever it leaves.
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

// Converts with the target that drops the characters it lacks, or with the plain target if iconv
// refuses that one. There is one call, so text that iconv() holds back for a final call is lost.
// The descriptors are closed before anything is logged, as the log may throw.
Conversion ConvertOnce(const char* from, const char* to, const char* in, std::size_t inlen,
                       char* out, std::size_t outlen) {
  std::string ignoringTarget = to;
  ignoringTarget += "//IGNORE";
  const IconvDescriptor ignoring(from, ignoringTarget.c_str());
  if (ignoring.IsOpen()) return ignoring.Convert(in, inlen, out, outlen);
  const IconvDescriptor plain(from, to);
  if (plain.IsOpen()) return plain.Convert(in, inlen, out, outlen);
  return {};
}

void LogLosses(const Conversion& done) {
  if (done.result == kIconvFailed) {
    logfile.Log(done.error == E2BIG ? "iconv: Insufficient space" : "iconv: Bad input data", 2);
    return;
  }
  if (done.inputLeft != 0) logfile.Log("iconv: Insufficient space", 2);
  if (done.result != 0) logfile.Log("iconv: Non-reversible conversion performed", 2);
}

bool IsUtf8OrLocale(std::string_view name) { return name.empty() || name == "UTF-8"; }

// Keeps the ASCII characters before the first zero byte. A dropped byte takes room as well, and the
// last byte of `out` is never written.
std::size_t KeepAscii(const char* in, std::size_t inlen, char* out, std::size_t outlen) {
  const char* end = in + std::min(inlen, std::max<std::size_t>(outlen, 1) - 1);
  char* next = out;
  for (; in != end && *in != '\0'; ++in) {
    if (static_cast<unsigned char>(*in) < 0x80) *next++ = *in;
  }
  return static_cast<std::size_t>(next - out);
}

// Converts, with every log line that Transcode() promises: both forms of it log the same lines. The
// part of `out` behind the converted text stays as it is. Returns the size of that text.
std::size_t ConvertAndLog(const char* from, const char* to, const char* in, std::size_t inlen,
                          char* out, std::size_t outlen) {
  const Conversion done = ConvertOnce(from, to, in, inlen, out, outlen);
  if (done.opened) {
    LogLosses(done);
    return done.written;
  }
  logfile.Log(std::string("iconv: Unable to convert from ") + from + " to " + to, 2);
  if (!IsUtf8OrLocale(from) || !IsUtf8OrLocale(to)) return 0;
  logfile.Log("iconv: Using ASCII truncation fallback", 2);
  return KeepAscii(in, inlen, out, outlen);
}

// A buffer of `count` * `perByte` + `more` bytes, not initialised.
class Buffer {
 public:
  Buffer(std::size_t count, std::size_t perByte, std::size_t more) {
    if (count > (SIZE_MAX - more) / perByte) throw std::length_error("the text is too long");
    size_ = count * perByte + more;
    bytes_.reset(new char[size_]);
  }
  char* Bytes() const { return bytes_.get(); }
  std::size_t Size() const { return size_; }

 private:
  std::unique_ptr<char[]> bytes_;
  std::size_t size_;
};

// Lowers the little-endian code units before the first zero one. Returns the bytes that they take.
std::size_t LowerUnits(char* bytes, std::size_t size) {
  std::size_t at = 0;
  for (; at + 1 < size; at += 2) {
    const unsigned low = static_cast<unsigned char>(bytes[at]);
    const unsigned high = static_cast<unsigned char>(bytes[at + 1]);
    const unsigned unit = low | high << 8;
    if (unit == 0) break;
    const auto lowered = static_cast<unsigned>(std::towlower(static_cast<std::wint_t>(unit)));
    bytes[at] = static_cast<char>(lowered & 0xFF);
    bytes[at + 1] = static_cast<char>(lowered >> 8 & 0xFF);
  }
  return at;
}

}  // namespace

void Transcode(const char* from, const char* to, const void* in, unsigned long inlen, void* out,
               unsigned long outlen) {
  const std::string source = Normalised(from);  // copies: a name may be part of `out`
  const std::string target = Normalised(to);
  char nothing = '\0';  // iconv() aborts on a null output and takes a null input for a reset
  const char* text = inlen == 0 ? &nothing : static_cast<const char*>(in);
  char* buffer = outlen == 0 ? &nothing : static_cast<char*>(out);
  std::memset(buffer, 0, outlen);
  (void)ConvertAndLog(source.c_str(), target.c_str(), text, inlen, buffer, outlen);
}

std::string Transcode(const char* from, const char* to, std::string in) {
  Buffer out(in.size(), 4, 8);
  const std::size_t written = ConvertAndLog(Normalised(from), Normalised(to), in.data(), in.size(),
                                            out.Bytes(), out.Size());
  in.assign(out.Bytes(), strnlen(out.Bytes(), written));  // often fits into the memory of the input
  return in;
}

std::string ToLower(std::string text) {
  Buffer wide(text.size(), 2, 4);
  Buffer narrow(text.size(), 1, 2);
  Transcode("UTF-8", "UCS-2", text.data(), text.size(), wide.Bytes(), wide.Size());
  const std::size_t lowered = LowerUnits(wide.Bytes(), wide.Size());
  Transcode("UCS-2", "UTF-8", wide.Bytes(), lowered, narrow.Bytes(), narrow.Size());
  text.assign(narrow.Bytes(), strnlen(narrow.Bytes(), narrow.Size()));
  return text;
}

}  // namespace GXUtils
