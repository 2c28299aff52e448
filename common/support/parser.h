/// @file
/// The reader of lists of fields.
#pragma once

#include <cstdint>
#include <string>

/// Reads the fields of a list with commas between them. It holds its own copy of the text.
///
///     Parser parser("a\\,b,c");
///     std::string field;
///     parser.parse_comma_escaped_string(field);   // 1; field is "a,b", current is ','
///     parser.advance();
///     parser.parse_comma_escaped_string(field);   // 1; field is "c", current is -1
///
/// A backslash before a comma or a backslash makes it part of the field. Any other backslash is
/// ordinary data.
///
/// @note `current` is -1 at the end of the text, and also at a byte 0xFF. Such a byte is part of
///       its field, unless it is the whole last field: that one counts as empty.
class Parser {
 public:
  /// Begins to read a text, at its first byte.
  ///
  /// @param source the text. Bytes after the first 4,294,967,295 are dropped.
  explicit Parser(std::string source);

  /// Moves to the next byte. At the end of the text, `current` becomes -1 and `pos` is unchanged.
  void advance();

  /// Reads a field, from the current byte to the next comma or to the end of the text.
  ///
  /// Afterwards `current` is the comma, which the call does not skip, or -1 at the end.
  ///
  /// @param out receives the field without its escapes.
  /// @retval 1 a field was read.
  /// @retval 0 the field is empty, and so is `out`.
  int parse_comma_escaped_string(std::string& out);

  std::string text;   ///< The text being read.
  std::uint32_t pos;  ///< The index of the byte after the current one; the size at the end.
  int current;        ///< The current byte as a signed char, negative from 0x80 on; -1 at the end.
};
