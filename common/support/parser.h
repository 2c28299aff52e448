#pragma once

#include <cstdint>
#include <string>

/// A reader over its own copy of a text, with the byte at hand to look at.
///
/// Lists of fields are written with a comma between them; `\,` and `\\` stand for a comma and a
/// backslash that belong to the field. A backslash before any other byte, or at the end of the
/// text, stands for itself.
///
/// `current` is -1 for two things, the end of the text and the byte 0xFF. A field goes on over the
/// bytes 0xFF in it; only where such a byte is the last one of the text and a whole field, it is
/// taken for the end and that field is not read.
class Parser {
 public:
  /// Stands at the first byte of `source`. Of a text longer than 2^32 - 1 bytes, which is what
  /// `pos` can count, the rest is cut off.
  explicit Parser(std::string source);

  /// Moves one byte on. At the end of the text `current` becomes -1 and `pos` stays.
  void advance();

  /// Reads one field, from the byte at hand to the next comma that is not escaped or to the end of
  /// the text, and stands there afterwards: `current` is ',' or -1.
  ///
  /// @param out receives the field with its escapes resolved; its former content is replaced.
  /// @retval 1 a field was read
  /// @retval 0 the field has no byte, and `out` is empty
  int parse_comma_escaped_string(std::string& out);

  /// The text being read.
  std::string text;
  std::uint32_t pos;  ///< the index of the next byte to read; the byte at hand is the one before it
  int current;        ///< the byte at hand as a signed char, negative from 0x80 on
};
