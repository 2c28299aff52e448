/// @file
/// Utility functions of the client: running programs, text, encodings, files and the host.
///
/// What holds for all of them:
/// - A byte string is a std::string without an encoding; a NUL byte in it is ordinary data, except
///   where it becomes a path, a program name, an argument or a user's name, which end at their
///   first NUL byte. A parameter of type const char* is NUL-terminated and not null; nor is an
///   argument array.
/// - What a function takes by value it works on: a text moved in is not copied, and the result may
///   stand in its memory, with more capacity than it needs.
/// - Pointers that return a result are optional unless the function says otherwise, and are written
///   only on the results that the function names.
/// - What a call leaves in errno means something only where the function says so.
/// - Nothing is logged and nothing is thrown unless the function says so. Log lines go to
///   Logfile::Log() on `logfile`, untranslated; the text of a GXException is translated by gettext
///   in the text domain that the client has set. Exceptions of the standard library (memory
///   exhausted, above all) and of the client's log pass through; nothing that the call opened or
///   started stays behind then.
/// - Three functions touch state of the whole process and are called from one thread at a time:
///   System() changes the action for SIGCHLD while it runs; calcHomeDir() and calcRunningUser()
///   read the environment, the locale and the password database. The others may run on any thread,
///   as long as the objects passed by reference or pointer are not shared, and nothing that they
///   read is changed meanwhile: the environment (the runners, Which(), ShowInFileManager(); also
///   Transcode(), ToLower() and what logs, as the C library looks for its settings there), the
///   locale (SystemNowait(), CompareHexStrings(), Transcode(), ToLower(), HexASCIIToString(),
///   GetBogoMips()) or `gxclient_prefix` (AddPathPrefix()).
///
/// The types of the client that a caller meets have headers of their own: `support/gxexception.h`
/// and `support/exportdata.h`.
#pragma once

#include <list>
#include <string>
#include <vector>

/// The functions of the module, but for parse_nfs_export_option(), which is a global one.
namespace GXUtils {

/// @defgroup processes Processes
/// Running programs and finding them.
///
/// The runners execute a program by the rules of execvp(): a name with "/" in it is a path, and any
/// other one is looked for along PATH. No shell reads a command.
/// @{

/// Cuts a command line into its arguments, the first one being the program.
///
/// Only the space byte separates; runs of it count once. A double quote opens a quoted argument
/// only as the first byte of a field (at the start, after a separating space or right after a
/// closing quote) and the next double quote closes it, with no space needed after it; `""` gives an
/// empty argument. There is no escape character, so no argument can hold both a space and a double
/// quote, or begin with a quote. A quote that is never closed loses its field: up to and including
/// the next space, or to the end. Every other byte, tab, newline, backslash, single quote and NUL
/// included, is an ordinary part of an argument.
///
///     ls -l "my file"    ls, -l, my file
///     a"b c" "d"e        a"b, c", d, e
///
/// @return the arguments in order; none for a command line of spaces only or of a lost field.
std::vector<std::string> SplitCommandLine(std::string commandLine);

/// Runs a program and waits for it. Its standard output and error are captured together.
///
/// `argv` is an array of NUL-terminated strings that ends in a null pointer; entry 0 is the
/// program. An array without an entry counts as the program name "", which is never found. The
/// program shares the caller's standard input and inherits no other descriptor below 1024. The call
/// blocks until the program has exited and every process that inherited its output has closed it.
///
/// @param output what the program wrote is appended as it arrives, whatever the result, in pieces
///        of at most 255 bytes; a NUL byte and what follows it in its piece are lost. No string of
///        `argv` is part of it. Null: the output is thrown away. A read that fails or is
///        interrupted by a signal ends the capture; it is not retried. The pipe is then closed: a
///        program that writes on is ended by SIGPIPE (result -1), or gets EPIPE where it ignores
///        that signal.
/// @param exitCode receives the exit status (0 to 255) when the result is 0 or -2, otherwise it is
///        not written.
/// @retval 0 the program exited with a status other than 127 and 128
/// @retval -1 the run failed: the program was ended by a signal, the wait failed or was interrupted
///         (the program is then left unreaped), or one of the system calls below failed
/// @retval -2 the program could not be executed (status 128), or it exited with status 127 or 128
///         of its own, which is not told apart
///
/// Logs one line with level 2 when the result is -2, once the run is over:
/// - "Failed to start command " and entry 0, for status 128
/// - "Command ", entry 0 and " not found", for status 127
///
/// Writes one line to the standard error stream, not to the log, when sigaction, pipe (or making it
/// close-on-exec), fork or the final sigaction fails: "Error: sigaction() failed", "Error: pipe()
/// failed", "Error: fork() failed", "Error: sigaction() restore failed".
///
/// While it runs, the action for SIGCHLD is the default one, so that a handler of the client's does
/// not see any child end; before it returns or throws, the former action is back. Not to be called
/// from two threads at once.
///
/// An exception while output is appended (memory exhausted) closes the pipe and passes once the
/// program has ended.
int System(const char* const* argv, std::string* output = nullptr, int* exitCode = nullptr);

/// The same for a command line, which SplitCommandLine() cuts into the program and its arguments. A
/// command without any argument, such as one of spaces only, counts as the program name "".
///
/// @throws GXException code 6, with the translation of "Empty command", when `command` has length
///         0.
int System(std::string command, std::string* output = nullptr, int* exitCode = nullptr);

/// Closes the descriptors from `firstFd` to 1023, except `keepFd`. Descriptors that are not open
/// are skipped; those from 1024 on are never closed. A `firstFd` below 0 counts as 0, one above
/// 1023 closes nothing, and a `keepFd` outside the range keeps nothing.
///
/// Meant for a child between fork() and exec: it is async-signal-safe. Elsewhere it also closes
/// what other threads of the process have open.
void CloseAllFds(int firstFd, int keepFd);

/// Starts a program in a session of its own, without a controlling terminal, and returns without
/// waiting for it to end.
///
/// `argv` and what the program inherits are as with System(): it shares the caller's standard input
/// and, without the out-pointers, standard output and error. Where `stdoutFd` (`stderrFd`) is
/// given, its standard output (error) goes into a new pipe, which ends when the program and
/// whatever it started have closed it. The call blocks until the program has been executed or has
/// failed to, and after a failure for up to a second more, in which the child writes its error. It
/// leaves the action for SIGCHLD alone and may run on any thread.
///
/// The out-pointers are written on success only, with ordinary blocking descriptors, not
/// close-on-exec.
///
/// @return the process id, that of a child of the caller, who waits for it and closes the read ends
///         stored in the out-pointers; or one of the values below
/// @retval -1 nothing was started: a pipe could not be made or made close-on-exec, or fork failed
/// @retval -2 the program could not be executed, and its child has been waited for; or this could
///         not be learnt because the read that waits for it failed or was interrupted by a signal.
///         That read is not retried, and the program may then be running, left to itself: signal
///         handlers are best installed with SA_RESTART.
///
/// Nothing is logged. A child whose exec failed writes one line to its standard error, the text of
/// the error in the caller's locale, and exits with status 1. That is the pipe for `stderrFd`,
/// which is closed and lost with the result -2, or else the caller's own standard error, descriptor
/// 2: no stream of the caller's is used or written. If the line cannot be written within a second, as
/// to a full pipe, it is lost.
int SystemNowait(const char* const* argv, int* stdoutFd = nullptr, int* stderrFd = nullptr);

/// The same for a command line, cut as by System().
///
/// @throws GXException code 11, with the translation of "Empty command", when `command` has length
///         0.
int SystemNowait(std::string command, int* stdoutFd = nullptr, int* stderrFd = nullptr);

/// Tests whether stat() succeeds on `path`.
///
/// @return whether a file of any kind exists there and can be reached. A symbolic link counts when
///         its target exists.
bool CheckFileExist(std::string path);

/// Tests one execute bit of `path`, that of the first class which the real user and group id of the
/// process belong to: owner, group, others. An owner without the owner's bit gets false whatever
/// the other bits say. Supplementary groups and effective ids do not count, the superuser is not
/// special, and the kind of file does not matter: a directory that may be searched passes.
///
/// @return that bit; false when stat() fails.
bool CheckFileExecutable(std::string path);

/// Finds a program along PATH: the first entry + "/" + `name` that passes the test of
/// CheckFileExecutable(), exactly as built. Only a leading "/" makes a name absolute: it is then
/// tested as it is, and PATH is not read. An empty entry of PATH, the only one of an empty PATH,
/// stands for the root directory, and an empty name finds the first entry that is a searchable
/// directory. Reads the environment.
///
/// System() and SystemNowait() do not use it. They may find another file: an empty entry is the
/// working directory there, effective ids and all groups count, and directories are passed over.
///
/// @return the path found; the empty string when there is none or PATH is not set.
std::string Which(std::string name);

/// @}

/// @defgroup text Text
/// Cutting, trimming, joining and comparing.
///
/// Characters are bytes; nothing depends on an encoding or, CompareHexStrings() apart, on the
/// locale.
/// @{

/// Cuts a text at every separator byte.
///
/// @return the fields, one more than there are separators, empty ones included: joined with the
///         separator they give the text back. `a::b:` at ':' is `a`, an empty field, `b` and
///         another empty one.
std::vector<std::string> SplitString(std::string text, char separator);

/// Trims a text.
///
/// @return `text` without the bytes at its two ends that are in `set`. An empty set removes
///         nothing.
std::string Strip(std::string text, std::string set);

/// Replaces every occurrence of `pattern` in `text` that overlaps none before it, from left to
/// right; what was inserted is not searched again. An empty pattern changes nothing. Neither
/// `pattern` nor `replacement` may point into `text`.
///
/// @return a copy of the rewritten text.
std::string ReplaceInString(std::string& text, const char* pattern, const char* replacement);

/// Assembles lines from a text that arrives in pieces. Lines end with a line feed or with a
/// carriage return and a line feed, also where a piece ends between the two; other carriage returns
/// are data.
///
/// @param tail the unfinished line, kept by the caller between the calls and empty at first. Not
///        null; `chunk` may point into it. What is left in it at the end of the text is a last line
///        without a line end. Each call searches it once for line ends that the caller may have put
///        there, so a line that arrives in very many pieces costs time in the square of their
///        number. A call that throws leaves it as it was.
/// @return the lines completed by `chunk`, without their line ends.
std::vector<std::string> StringLines(const char* chunk, std::string* tail);

/// Writes a number in decimal.
///
/// @return the digits of `value`, after a minus sign for negative ones, and nothing else.
std::string LongToString(long value);

/// Stores a list of byte strings in one text that DecodeStringList() reads back.
///
/// The elements stand in order with the separator between them, followed by a space when it is the
/// comma or NUL. A separator or backslash inside an element has a backslash before it; every other
/// byte stands for itself. An empty list is the empty text, and so is a list of one empty element.
/// With the backslash as separator, which the format cannot have, the text is built the same way: a
/// list of one element can be read back, one of several cannot.
///
/// @return the text: `a\,b, c\\d` for the elements `a,b` and `c\d` and the separator ','.
std::string EncodeStringList(const std::list<std::string>& elements, char separator);

/// Reads back what EncodeStringList() wrote. `*output` is cleared first; `text` is not one of its
/// elements.
///
/// Each separator that is not escaped ends an element, so that n of them make n + 1 elements, empty
/// ones included. Elements lose the six white space bytes `" \f\n\r\t\v"` at both ends, also where
/// they were escaped. A blank text is the empty list: a list of one blank element does not come
/// back, nor does one of empty elements that a blank separator joins. With the backslash as
/// separator, every backslash is read as an escape.
///
/// @param output not null: that is a programming error and stops the process in every build.
/// @retval true the whole text was read: `  x ,y\, z  ,` is `x`, `y, z` and an empty element
/// @retval false a backslash escapes neither a backslash nor the separator, or ends the text: one
///         line is logged with level 4 ("DecodeStringList: Bad escape sequence" or
///         "DecodeStringList: Trailing slash") and `*output` keeps the elements that a separator
///         had closed
bool DecodeStringList(const std::string& text, std::list<std::string>* output, char separator);

/// Compares two dotted versions, component by component, as texts of unsigned bytes: "1.10" is
/// lower than "1.9", "1.0" is lower than "1.0a". A missing component equals the component "0" and
/// is lower than any other, "00" and the empty one included: "1.2" equals "1.2.0" and is lower than
/// "1.2.00".
///
/// @return below, equal to or above 0, as the first is lower, equal or higher; only the sign
///         counts.
/// @throws std::logic_error when an argument is null.
int CompareVersions(const char* first, const char* second);

/// Compares two hexadecimal numbers of any length. A leading "0x" (not "0X") and leading zeros do
/// not count, nor does the case of letters. The digits are not checked: longer is higher, then the
/// first difference of the bytes decides, lowered by tolower() in the current locale and taken as
/// unsigned. "0x00FF" equals "ff" and is lower than "100".
///
/// @retval -1 the first is lower
/// @retval 0 they are equal
/// @retval 1 the first is higher
int CompareHexStrings(const char* first, const char* second);

/// @}

/// @defgroup encodings Encodings
/// Character encodings and the case of letters.
/// @{

/// Converts text from one character encoding to another with iconv().
///
/// The encodings are names that iconv_open() knows; musl knows fewer than glibc. The empty name is
/// the locale's encoding, with musl UTF-8 in every locale. "UTF-16" and "UCS-2", spelt just so,
/// mean little-endian code units without a byte order mark; every other name goes to iconv as it
/// is. `outlen` bytes at `out` are set to zero, then the converted text is written from the first
/// one on. Nothing tells its length: a caller finds the end at the first zero byte or code unit,
/// which is missing when the text fills the whole buffer. `outlen` 0 with a null `out` is fine.
///
/// Characters that the target does not have are dropped where iconv knows the suffix "//IGNORE".
/// Elsewhere the conversion stops there, or the C library replaces them (musl by "*", which counts
/// as not reversible, and in "UCS-2" by U+FFFD, which does not). There is exactly one call of
/// iconv().
///
/// glibc reports a text in which something was dropped or is invalid as bad input, with exceptions
/// such as these. Between UTF-8 and the encodings of the UCS-4 family, and within either, values
/// above the range of Unicode are converted like characters, as surrogates are within that family;
/// values from 0x80000000 on in UCS-4 vanish, mostly without a line. So do the tag characters,
/// U+E0000 to U+E007F, where the target does not have them. And a text of more than about 8,000
/// characters is converted in blocks: a character that the target does not have then ends the
/// conversion with its block, and an invalid byte vanishes without a line unless it is in the last
/// block.
///
/// Where iconv cannot convert between UTF-8 and the locale's encoding at all (both names empty or
/// "UTF-8"), the ASCII characters before the first zero byte are kept and all other bytes dropped;
/// at most `outlen` - 1 bytes of the input are then looked at.
///
/// What iconv holds back until a final call is lost, without a line: the last shift of a target
/// that has shifts (UTF-7, ISO-2022-JP and the like), and a last letter that another one may join
/// (from CP1255, CP1258 and TCVN, to EUC-JISX0213, BIG5-HKSCS and the like). "a" is the empty text
/// when it comes from CP1258.
///
/// What iconv reports is a line logged with level 2, and what was converted so far stays in the
/// buffer:
/// - "iconv: Insufficient space": the text does not fit, or iconv left some of it over
/// - "iconv: Bad input data": invalid or incomplete input, or something dropped
/// - "iconv: Non-reversible conversion performed": characters were replaced by others
/// - "iconv: Unable to convert from X to Y": an encoding is not known, or iconv cannot load it now
/// - "iconv: Using ASCII truncation fallback": after the line above, where that is what happens
///
/// @throws std::logic_error when a name is null, before the buffer is touched.
void Transcode(const char* from, const char* to, const void* in, unsigned long inlen, void* out,
               unsigned long outlen);

/// The same for a whole string. The converted text has room for 4 bytes for each byte of `in` and 8
/// more, which is too little for few texts, such as one of many shifts in ISO-2022-JP.
///
/// @return the converted text up to its first zero byte: for targets without zero bytes (UTF-8, the
///         locale's encoding, single-byte sets), not for 16-bit ones. Empty when iconv cannot
///         convert and the ASCII characters are not kept either.
/// @throws std::length_error when four times the length does not fit into a size.
std::string Transcode(const char* from, const char* to, std::string in);

/// Lowers the letters of a UTF-8 text as towlower() of the current locale does: letters outside
/// ASCII as well in a UTF-8 locale, with musl in every locale.
///
/// The result ends at the first NUL character. Characters outside the Basic Multilingual Plane and
/// invalid bytes are dropped, replaced or end it, as with Transcode(), and a text that grows by
/// more than two bytes (a lower-case letter can be longer) is cut at a character: Transcode(),
/// which converts to "UCS-2" and back, logs such problems. There is no ASCII fallback.
///
/// @return the lowered text; the empty string where iconv cannot convert at all.
/// @throws std::length_error as Transcode().
std::string ToLower(std::string text);

/// @}

/// @defgroup codecs Codecs
/// Base64, hexadecimal text and SHA-256.
/// @{

/// Encodes bytes as Base64 (RFC 4648, section 4): padded with "=", without line breaks.
///
/// @return the text, 4 characters for every 3 bytes begun.
std::string Base64Encode(std::string data);

/// The same for the `len` bytes at `data`, which may be null when `len` is 0. They stay the
/// caller's and are not changed.
///
/// @throws std::length_error, before anything is read, when no string can hold the text, as with a
///         -1 that was cast.
std::string Base64Encode(const unsigned char* data, unsigned long len);

/// Decodes Base64 text (RFC 4648, section 4), strictly as to its length and characters, leniently
/// as to its padding: `TWFu` is "Man", `TQ==` and `TR==` are "M", `QQ==QQ==` is "AA", `A===` is the
/// byte 0x04.
///
/// "=" may stand anywhere and counts as a digit with the value 64: it leaves out the second byte of
/// its group where it is the third character and the third byte where it is the fourth, and
/// elsewhere adds what is left of its value in the low 8 bits of a byte. It does not end the
/// decoding; the groups after it are decoded as well. Bits that padding leaves over need not be
/// zero.
///
/// @return the bytes; the empty string for a text whose length is not a multiple of 4 or that holds
///         a byte which is neither a Base64 digit nor "=", such as a line break, and for the empty
///         text.
std::string Base64Decode(std::string text);

/// Turns pairs of hexadecimal digits, of either case and any number, into the bytes that they
/// spell.
///
/// A pair is read as strtol() reads a text of two characters in base 16: white space of the current
/// locale or a sign may stand in for the first digit, as in " a", "+a" (both 0x0A) and "-1" (0xFF,
/// the low 8 bits of the number), and a NUL byte ends a pair early. White space after a digit is
/// refused.
///
/// @return the bytes, "Hello" for `48656c6c6f`; the empty string for a text of odd length or with a
///         pair that strtol() does not read to its end, and for the empty text.
std::string HexASCIIToString(std::string hex);

/// Computes the SHA-256 digest (FIPS 180-4) of all bytes of `data`.
///
/// @param digest receives the 32 bytes of the digest; not null.
void SHA256Digest(const std::string& data, unsigned char* digest);

/// @}

/// @defgroup host Files, users and the host
/// Directories and temporary files, the user's name and home, the desktop, the host's speed.
///
/// Paths are handed to the system as they are: nothing is normalised, resolved or converted.
/// @{

/// Makes sure that something exists at `path`, a directory by default: what is missing is made with
/// mode 0755 less the umask. Anything that exists there counts, a file included. Symbolic links are
/// followed; one without a target is in the way.
///
/// @param path absolute. Without `recursive`, a relative path counts from the working directory.
///        With it, one that does not exist there hangs on the root directory: what stands before
///        its first "/" is dropped, and a path without one, the empty one included, is kept whole.
/// @param recursive makes every missing directory above `path` as well, from the root on.
/// @retval true what `path` stands for exists now
/// @retval false a directory could not be made, with errno of that mkdir(); the ones made before
///         stay. Also where another process makes the same directory at the same moment.
bool CheckCreateDir(std::string path, bool recursive);

/// Creates an empty file with a new name in /tmp: "/tmp/", `name` and six characters, mode 0600.
///
/// The template, "/tmp/", `name` and "XXXXXX", is cut to 511 bytes. So a `name` of more than 500
/// bytes, or with a NUL byte, is refused, unless what is left of it happens to end in "XXXXXX". One
/// with "/" in it names a file in a directory below /tmp, which has to exist; with ".." in it, that
/// leads out of /tmp. The file is the caller's to remove.
///
/// @param fd receives the descriptor, open for reading and writing and not close-on-exec, which is
///        the caller's from then on; -1 on failure. Null: the file is closed.
/// @return the path; the empty string on failure.
std::string GenerateTempFile(std::string name, int* fd);

/// Removes a file, or a symbolic link itself, with unlink(). Nothing is truncated.
///
/// @retval 0 it is removed
/// @retval -1 it is not, with errno set; so for a directory
int UnlinkOrTruncate(const char* path);

/// The temporary directory of a platform that has one of its own.
///
/// @return the empty string: POSIX systems have none.
std::string winGetTempDir();

/// The home directory: the value of HOME as it is, the empty string when it is not set. Only where
/// HOME is "/", it is the one that the password database has for `user` (a name in UTF-8, as
/// calcRunningUser() gives it), or "/root" for an unknown user.
///
/// Each call makes the per-user directory ".gannorex" in it where nothing of that name is there,
/// with CheckCreateDir(), which makes none of the directories above it; an empty home stands for
/// the root directory there. That this fails is not reported. Reads the environment and the
/// password database with calls that are not reentrant: not to be called while another thread uses
/// either. The name is converted by Transcode(), which logs what it cannot convert.
std::string calcHomeDir(std::string user);

/// The name of the running user in UTF-8: the first of LOGNAME, USERNAME and USER that is set, also
/// to the empty string; else the login name of the real user id; else the empty string. Not to be
/// called while another thread uses the environment or the password database; logs as
/// calcHomeDir().
std::string calcRunningUser();

/// Makes a path of the installation a full one.
///
/// @return `path` when it begins with "/", otherwise `gxclient_prefix` + "/" + `path`, which is
///         rooted at "/" until the client has set the prefix. `lib/x` is `/opt/app/lib/x` with the
///         prefix `/opt/app`.
std::string AddPathPrefix(std::string path);

/// Asks the desktop's file manager to show a file or directory, through the client's
/// osxShowInFileManager(), which is called on every platform.
///
/// @return its status, unchanged: 0 when the file is shown. support/osx_show_in_file_manager.h
///         lists the rest and says how long the call may block.
int ShowInFileManager(const std::string& path);

/// A rough figure for the speed of the host: the sum of the integer parts of the "bogomips" lines
/// in /proc/cpuinfo, one for each processor, where what is not a number counts as 0. Numbers and
/// sums beyond the range of int are its nearest end.
///
/// @return the sum; -1 where the file cannot be read or has no such line (macOS, some processors).
int GetBogoMips();

/// @}

}  // namespace GXUtils

struct Exportdata;

/// Reads an option that lists NFS exports: path "," mode, and further pairs after one more ","
/// each. The mode is exactly "ro", "rw" or "disabled". Inside a field, `\,` stands for a comma and
/// `\\` for a backslash; any other backslash stands for itself. A last field of the byte 0xFF alone
/// counts as empty. `/home/ann,rw,/media/usb,ro` makes the records (`/home/ann`, 2) and
/// (`/media/usb`, 1).
///
/// @ingroup host
/// @param exports is emptied first; the records it pointed to are not deleted. Receives one record
///        a pair, in order, valid or not; they are made with new and the caller's to delete. Access
///        is 1 for "ro", 2 for "rw", and 0 for "disabled", for another word and without a mode. An
///        empty path makes a record with access 0 and has no mode: what follows its comma is the
///        next path. An empty option, or the end of one after a comma, is an empty path. After an
///        exception the records made before it are in the vector.
/// @retval 1 every pair was valid; an empty path does not count against it
/// @retval 0 at least one was not
int parse_nfs_export_option(std::string option, std::vector<Exportdata*>& exports);
