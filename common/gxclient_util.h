/// @file
/// Utility functions of the client: processes, text, encodings, codecs, files and the host.
///
/// These rules hold for every function, unless its comment states otherwise:
/// - A `std::string` holds bytes in no particular encoding. A NUL byte in it is ordinary data, but
///   a path, a name or an argument of a program must not contain one.
/// - A `const char*` is NUL-terminated and must not be null.
/// - Several threads may call a function at once on different objects, while no thread changes the
///   environment, the locale or `gxclient_prefix`.
/// - `errno` is meaningful after a call only if its comment mentions it.
/// - A function logs only the lines that its comment lists, at level 2 (programs, encodings) or 4
///   (stored lists). They go to Logfile::Log() on the object `logfile`, in English.
/// - A function throws the exceptions that its comment lists, those of the standard library, such
///   as `std::bad_alloc`, and those of the log. The call then leaves no file descriptor open and no
///   child process behind.
///
/// The directory support/ declares the rest: Logfile in logfile.h, GXException in gxexception.h,
/// Exportdata in exportdata.h, `gxclient_prefix` in gxclient_prefix.h and osxShowInFileManager() in
/// osx_show_in_file_manager.h. docs/guide.md has an example of every function and a table of the
/// functions that read the environment or the locale.
#pragma once

#include <list>
#include <string>
#include <vector>

/// The functions of the library. parse_nfs_export_option() alone is in the global namespace.
namespace GXUtils {

/// @defgroup processes Processes
/// Functions that run programs and find them.
/// @{

/// Splits a command line into arguments, the first of which is the program.
///
///     SplitCommandLine("ls -l \"my file\"")   // {"ls", "-l", "my file"}
///     SplitCommandLine("a\"b c\" \"d\"e")     // {"a\"b", "c\"", "d", "e"}
///     SplitCommandLine("a \"b c")             // {"a", "c"}: the quote is not closed
///
/// Only spaces separate arguments; several spaces count as one. A double quote at the beginning of
/// an argument opens a quoted argument, which the next double quote ends. Text directly after that
/// is a new argument: `"a b"c` is two arguments. Every other byte is ordinary data, even a tab,
/// newline, backslash, single quote, NUL byte or later double quote. `""` is an empty argument.
///
/// @note An unclosed double quote drops the text up to and including the next space. If no space
///       follows, it drops the rest of the text.
/// @note There is no escape character. An argument cannot hold both a space and a double quote, and
///       cannot begin with a double quote. Pass such arguments in an array to System() or
///       SystemNowait().
///
/// @param commandLine the command line.
/// @return the arguments in order. The vector is empty if the text has only spaces, or only an
///         unclosed argument.
std::vector<std::string> SplitCommandLine(std::string commandLine);

/// Runs a program, waits for it to exit and captures its standard output and error together.
///
///     const char* const argv[] = {"ls", "-d", "/tmp", nullptr};
///     std::string output;
///     int exitCode = 0;
///     if (GXUtils::System(argv, &output, &exitCode) == 0 && exitCode == 0) {
///       // output is "/tmp" and a newline
///     }
///
/// No shell is involved. The program is found along `PATH`, unless its name contains "/". If `PATH`
/// is not set, the default path of the system counts. The program shares the caller's standard
/// input. Of the other file descriptors it inherits only those from 1024 on that are not
/// close-on-exec. The call blocks until the program has exited and every process that inherited its
/// output has closed it. It returns earlier if a read or the wait fails or is interrupted.
///
/// @note The result 0 means that the program ran. Whether it succeeded is in `exitCode`.
///
/// @param argv the program and its arguments, then a null pointer. The array must not be null. If
///        its first entry is null, the program name is "", which does not exist. The strings must
///        not point into `*output`.
/// @param output if not null, the captured bytes are appended to it as they arrive, whatever the
///        result. If null, the output is discarded. The bytes arrive in pieces of at most 255; a
///        NUL byte and the rest of its piece are dropped. A read that fails or is interrupted ends
///        the capture and closes the pipe. The output may then be short, and the call waits for the
///        program. A program that writes on is killed by SIGPIPE (-1), or gets EPIPE if it ignores
///        that signal.
/// @param exitCode if not null, receives the exit status (0 to 255) when the result is 0 or -2. If
///        the result is -1, `*exitCode` is unchanged.
/// @retval 0 the program exited with a status other than 127 and 128.
/// @retval -1 one of these events:
///         - a signal killed the program
///         - waiting for it failed or was interrupted, so the call has not reaped it
///         - another system call failed, which writes one line to the standard error stream, not to
///           the log: "Error: sigaction() failed", "Error: pipe() failed", "Error: fork() failed"
///           or "Error: sigaction() restore failed"
/// @retval -2 the status is 127 or 128. 127 means that the program ran and exited with 127. 128
///         means that it could not be executed, or exited with 128 itself. After the run, one line
///         is logged at level 2: "Failed to start command X" (128) or "Command X not found" (127,
///         although X was found). X is `argv[0]`.
///
/// Call from one thread at a time: SIGCHLD has its default action during the call, so the client's
/// own handler sees no child exit. The previous action is restored before the call returns or
/// throws, unless the system refuses ("restore failed").
///
/// The call does not retry a read or wait that a signal handler interrupts: install handlers with
/// SA_RESTART. If appending to `*output` throws, the call closes the pipe, and the exception
/// propagates once the program has exited. docs/processes.md has the details.
int System(const char* const* argv, std::string* output = nullptr, int* exitCode = nullptr);

/// Runs a command line, waits for the program to exit and captures its output and error together.
///
///     std::string output;
///     int exitCode = 0;
///     if (GXUtils::System("ls -d /tmp", &output, &exitCode) == 0 && exitCode == 0) {
///       // output is "/tmp" and a newline
///     }
///
/// SplitCommandLine() splits the command; no shell is involved. The call then does the same as
/// System() with an array, whose comment has all details.
///
/// @note The result 0 means that the program ran. Whether it succeeded is in `exitCode`.
/// @note Pass a name that others chose in an array: quotes and spaces in it would split a command.
///
/// @param command the command line. If SplitCommandLine() finds no argument in it, as in one of
///        spaces, the program name is "", which does not exist.
/// @param output if not null, the captured bytes are appended to it, whatever the result. If null,
///        the output is discarded. The bytes arrive in pieces of at most 255; a NUL byte and the
///        rest of its piece are dropped. A failed or interrupted read ends the capture: the output
///        may be short.
/// @param exitCode if not null, receives the exit status (0 to 255) when the result is 0 or -2. If
///        the result is -1, `*exitCode` is unchanged.
/// @retval 0 the program exited with a status other than 127 and 128.
/// @retval -1 a signal killed the program, waiting for it failed or was interrupted, or a system
///         call failed, which writes one line to the standard error stream.
/// @retval -2 the status is 127 or 128. 127 means that the program ran and exited with 127. 128
///         means that it could not be executed, or exited with 128 itself. One line is logged at
///         level 2: "Failed to start command X" (128) or "Command X not found" (127, although X was
///         found). X is the first argument.
/// @throws GXException with code 6 and the translation of "Empty command" if `command` is empty.
///
/// Call from one thread at a time: SIGCHLD has its default action during the call.
int System(std::string command, std::string* output = nullptr, int* exitCode = nullptr);

/// Closes the file descriptors from `firstFd` to 1023, except one.
///
///     CloseAllFds(3, statusFd);   // in a forked child, before exec
///
/// Descriptors that are not open are skipped. Those from 1024 on stay open; a program inherits them
/// unless they are close-on-exec. The function is async-signal-safe and meant for a child between
/// fork() and exec. Elsewhere it also closes the descriptors of other threads.
///
/// @param firstFd the first descriptor to close. A negative number counts as 0; above 1023 the call
///        closes nothing.
/// @param keepFd the descriptor to leave open. One outside the range, such as -1, keeps none.
void CloseAllFds(int firstFd, int keepFd);

/// Starts a program in its own session, without a controlling terminal, and returns without waiting
/// for it to exit.
///
///     const char* const argv[] = {"date", nullptr};
///     int out = -1;
///     const int pid = GXUtils::SystemNowait(argv, &out);
///     if (pid > 0) {
///       // read from `out` until the end of file, then:
///       close(out);
///       waitpid(pid, nullptr, 0);
///     }
///
/// No shell is involved. The program is found along `PATH`, unless its name contains "/". If `PATH`
/// is not set, the default path of the system counts. The program shares the caller's standard
/// input. It shares the standard output and error as well, unless the caller asks for a pipe. Of
/// the other file descriptors it inherits only those from 1024 on that are not close-on-exec. The
/// call leaves SIGCHLD alone, so several threads may call it at once.
///
/// @param argv the program and its arguments, then a null pointer. The array must not be null. If
///        its first entry is null, the program name is "", which does not exist.
/// @param stdoutFd if not null, receives the read end of a new pipe that carries the program's
///        standard output. The descriptor is blocking and not close-on-exec. Read from it, as the
///        program stalls while the pipe is full, and close it. The pipe ends when the program and
///        everything that it started have closed it. If the result is -1 or -2, `*stdoutFd` is
///        unchanged and no pipe stays open.
/// @param stderrFd the same for the program's standard error, with a separate pipe.
/// @return the process id of the program, a child that the caller waits for; or a negative number:
/// @retval -1 nothing was started: a pipe could not be made, or fork() failed. The call does not
///         report the reason.
/// @retval -2 the program could not be executed, and its child has been reaped. Or the call could
///         not learn whether the program started, because its read failed or a signal handler
///         interrupted it. Then the program may be running, and only waiting for any child reaps
///         it: the caller does not get its process id. Install handlers with SA_RESTART.
///
/// The call logs nothing. If the program cannot be executed, its child writes the error message, in
/// the caller's locale, and a newline to its standard error. The child then exits with status 1;
/// the call waits for it, up to one second. If `stderrFd` is not null, the message is lost.
/// docs/processes.md has the details.
int SystemNowait(const char* const* argv, int* stdoutFd = nullptr, int* stderrFd = nullptr);

/// Starts a command line in its own session and returns without waiting for it to exit.
///
///     const int pid = GXUtils::SystemNowait("xterm -title Log");
///     if (pid > 0) {
///       // later: waitpid(pid, nullptr, 0)
///     }
///
/// SplitCommandLine() splits the command; no shell is involved. The call then does the same as
/// SystemNowait() with an array, whose comment has all details.
///
/// @note Pass a name that others chose in an array: quotes and spaces in it would split a command.
///
/// @param command the command line. If SplitCommandLine() finds no argument in it, as in one of
///        spaces, the program name is "", which does not exist.
/// @param stdoutFd if not null, receives the read end of a pipe with the program's standard output,
///        which the caller reads and closes. If the result is -1 or -2, `*stdoutFd` is unchanged
///        and no pipe stays open.
/// @param stderrFd the same for the program's standard error, with a separate pipe.
/// @return the process id of the program, a child that the caller waits for; or a negative number:
/// @retval -1 nothing was started: a pipe could not be made, or fork() failed. The call does not
///         report the reason.
/// @retval -2 the program could not be executed; its child wrote the error message to its standard
///         error and has been reaped. If `stderrFd` is not null, the message is lost. Or the call
///         could not learn whether the program started, because its read failed or was interrupted:
///         then the program may be running, and only waiting for any child reaps it.
/// @throws GXException with code 11 and the translation of "Empty command" if `command` is empty.
int SystemNowait(std::string command, int* stdoutFd = nullptr, int* stderrFd = nullptr);

/// Tests whether a file exists and can be reached.
///
///     CheckFileExist("/etc/passwd")   // true
///     CheckFileExist("/no/such")      // false
///
/// @param path the path of a file of any kind. A symbolic link counts if its target exists.
/// @return whether stat() succeeds. False may also mean that a directory of the path cannot be
///         searched.
bool CheckFileExist(std::string path);

/// Tests whether the execute bit that applies to the caller is set.
///
///     CheckFileExecutable("/bin/sh")       // true
///     CheckFileExecutable("/etc/passwd")   // false
///
/// The call looks at one bit: the owner's if the process has the owner's real user id, else the
/// group's if it has the group's real group id, else the one for others. So an owner without that
/// bit gets false, whatever the other bits are.
///
/// @note The answer can differ from the result of running the file: effective ids, supplementary
///       groups, access lists and mount options do not count, and root is not special.
/// @note A directory that may be searched passes.
///
/// @param path the path of a file of any kind; symbolic links are followed.
/// @return whether that bit is set; false if stat() fails.
bool CheckFileExecutable(std::string path);

/// Finds a program along `PATH`.
///
///     Which("ls")        // "/usr/bin/ls"
///     Which("/bin/ls")   // "/bin/ls"
///     Which("no-such")   // ""
///
/// Each candidate is an entry of `PATH`, "/" and `name`, joined without change. The result is the
/// first one that passes the test of CheckFileExecutable(). A name that begins with "/" is the only
/// candidate. A name with "/" elsewhere is looked up like any other.
///
/// @note System() and SystemNowait() may find another file:
///       - an empty entry of `PATH` is the working directory for them, the root directory here
///       - they pass over directories, and use effective ids and all groups
///       - a name with "/" is a path for them
///       - if `PATH` is not set, they use the default path of the system
///
/// @param name the name of the program. An empty name finds the first entry of `PATH` that passes.
/// @return the path; the empty string if there is none or `PATH` is not set.
std::string Which(std::string name);

/// @}

/// @defgroup text Text
/// Functions that split, trim, join and compare byte strings.
/// @{

/// Splits a text at every separator.
///
///     SplitString("a::b:", ':')   // {"a", "", "b", ""}
///     SplitString("", ':')        // {""}
///
/// @param text the text to split.
/// @param separator the byte between two fields; may be NUL.
/// @return the fields, one more than there are separators. Empty fields count, so joining the
///         fields with the separator gives `text` back.
std::vector<std::string> SplitString(std::string text, char separator);

/// Removes given bytes from both ends of a text.
///
///     Strip("..a.b..", ".")   // "a.b"
///
/// @param text the text to trim.
/// @param set the bytes to remove, in any order. An empty set removes none.
/// @return `text` from its first to its last byte that is not in `set`; the empty string if there
///         is no such byte.
std::string Strip(std::string text, std::string set);

/// Replaces every occurrence of a pattern, in the text itself.
///
///     std::string text = "aXbX";
///     ReplaceInString(text, "X", "--");   // returns "a--b--", and so is text
///
/// The search goes from left to right and does not look at inserted bytes again. Replacing "a" by
/// "aa" in "aaa" gives six bytes.
///
/// @note The function changes its argument `text` and also returns a copy of it.
///
/// @param text the text that is changed.
/// @param pattern the bytes to look for; must not point into `text`. An empty pattern changes
///        nothing.
/// @param replacement the bytes to insert; must not point into `text`.
/// @return a copy of the changed text.
std::string ReplaceInString(std::string& text, const char* pattern, const char* replacement);

/// Collects the lines of a text that arrives in pieces.
///
///     std::string tail;
///     StringLines("one, tw", &tail);        // {}, tail is "one, tw"
///     StringLines("o\nthree\n\n", &tail);   // {"one, two", "three", ""}, tail is ""
///
/// A line ends with a newline, or with a carriage return and a newline. A carriage return at the
/// end of a piece waits in the tail. Any other carriage return is part of its line.
///
/// @note The function does not return a last line without a newline. It is in `*tail` at the end of
///       the text.
/// @note Each call searches the whole tail, so a line in many pieces takes quadratic time.
///
/// @param chunk the next piece of the text, up to its first NUL byte; may point into `*tail`.
/// @param tail the unfinished line, which the caller keeps between the calls; empty at first. Must
///        not be null. If the call throws, the tail is unchanged.
/// @return the lines that `chunk` completes, without their line ends.
std::vector<std::string> StringLines(const char* chunk, std::string* tail);

/// Writes a number in decimal.
///
///     LongToString(-42)   // "-42"
///
/// @param value the number.
/// @return the digits, after a minus sign if `value` is negative.
std::string LongToString(long value);

/// Stores a list of strings in one text, which DecodeStringList() reads.
///
///     EncodeStringList({"a,b", "c"}, ',')   // "a\\,b, c"
///     EncodeStringList({"a", "b;"}, ';')    // "a;b\\;"
///
/// A separator or a backslash inside an element gets a backslash before it. If the separator is a
/// comma or NUL, a space follows it between two elements.
///
/// @note Some lists do not come back, because DecodeStringList() removes white space: the element
///       "a " becomes "a". A list whose text is only white space becomes the empty list: {""} with
///       the text "", or {"", ""} with the separator and text " ".
///
/// @param elements the strings to store.
/// @param separator the byte between two elements. It must not be a backslash: a list of several
///        elements could then not be read.
/// @return the text; the empty string for an empty list.
std::string EncodeStringList(const std::list<std::string>& elements, char separator);

/// Reads a list of strings from a text of EncodeStringList().
///
///     std::list<std::string> list;
///     DecodeStringList("  x ,y\\, z  ,", &list, ',')   // true; list is {"x", "y, z", ""}
///     DecodeStringList("a,b\\", &list, ',')            // false; list is {"a"}
///
/// Every separator that is not escaped ends an element, so n of them make n + 1 elements. White
/// space is removed from both ends of an element, even an escaped separator. White space means
/// spaces, tabs, newlines, vertical tabs, form feeds and carriage returns. A text of white space
/// only is the empty list, even if the separator is white space.
///
/// @param text the text to read; must not be an element of `*output`.
/// @param output receives the elements; cleared first. Must not be null; a null pointer aborts the
///        process, in release builds too.
/// @param separator the byte between two elements; must not be a backslash.
/// @retval true the whole text was read.
/// @retval false a backslash is not followed by a backslash or the separator. `*output` keeps the
///         elements that ended before it. One line is logged at level 4: "DecodeStringList:
///         Trailing slash" if the backslash is the last byte, else "DecodeStringList: Bad escape
///         sequence".
bool DecodeStringList(const std::string& text, std::list<std::string>* output, char separator);

/// Compares two dotted versions as text, component by component.
///
///     CompareVersions("1.2", "1.3")     // below 0
///     CompareVersions("1.2", "1.2.0")   // 0
///     CompareVersions("1.10", "1.9")    // below 0, since "10" is below "9" as text
///
/// Two components compare as strings of unsigned bytes. A missing component equals "0". It is lower
/// than any other component, such as "00", or the empty one in "1.".
///
/// @note Components are not numbers: "1.10" is lower than "1.9", and "1.01" is lower than "1.1".
/// @note This is not a strict weak order, so std::sort() must not use it. "1" equals "1.0", but
///       "1.-" is higher than "1" and lower than "1.0".
///
/// @param first the first version.
/// @param second the second version.
/// @return a number below, equal to or above 0 if the first version is lower, equal or higher. Only
///         the sign has a meaning.
/// @throws std::logic_error if a version is null.
int CompareVersions(const char* first, const char* second);

/// Compares two hexadecimal numbers of any length.
///
///     CompareHexStrings("0x00FF", "ff")   // 0
///     CompareHexStrings("ff", "100")      // -1
///
/// A prefix "0x" (not "0X"), leading zeros and the case of letters do not count. The longer of the
/// remaining texts is the higher. Texts of one length compare byte by byte, as unsigned values
/// after tolower().
///
/// @note The digits are not checked, so "0XFF" is higher than "ff".
///
/// @param first the first number.
/// @param second the second number.
/// @retval -1 the first number is lower.
/// @retval 0 the numbers are equal.
/// @retval 1 the first number is higher.
int CompareHexStrings(const char* first, const char* second);

/// @}

/// @defgroup encodings Encodings
/// Functions that convert text between encodings and to lower case.
/// @{

/// Converts text from one character encoding to another, into a buffer.
///
///     char out[8];
///     GXUtils::Transcode("UTF-8", "UTF-16", "ab", 2, out, sizeof out);
///     // out holds the bytes 61 00 62 00 00 00 00 00
///
/// @param from the encoding of the input: a name that iconv_open() accepts. The empty name is the
///        encoding of the locale. "UTF-16" and "UCS-2", in exactly this spelling, mean
///        little-endian code units without a byte order mark.
/// @param to the encoding of the output, named in the same way.
/// @param in the input, which may hold NUL bytes; may be null if `inlen` is 0.
/// @param inlen the number of bytes of the input.
/// @param out the buffer, which must not overlap `in` and may be null if `outlen` is 0. The call
///        fills it with zeros, then writes the converted text to its start. The text ends at the
///        first zero byte, or zero code unit in a 16-bit encoding. If the text fills the buffer, no
///        zero ends it.
/// @param outlen the size of the buffer in bytes.
/// @throws std::logic_error if a name is null, before the buffer is changed.
///
/// A conversion that loses text does not fail, and the buffer keeps the converted text. Most losses
/// are logged at level 2, as one of these lines:
/// - "iconv: Insufficient space": the buffer is too small, or iconv() left some input unconverted
/// - "iconv: Bad input data": the input is invalid or incomplete, or a character that the target
///   encoding does not have was dropped
/// - "iconv: Non-reversible conversion performed": characters were replaced by others
/// - "iconv: Unable to convert from X to Y": iconv_open() cannot convert between the two. X and Y
///   are the names that it got, such as UCS-2LE for "UCS-2".
/// - "iconv: Using ASCII truncation fallback": follows the line above if each name is empty or
///   "UTF-8". Of the first `outlen` - 1 bytes of the input, the call keeps the ASCII characters
///   before the first zero byte and drops the others.
///
/// @note A missing line does not prove that the text is whole. docs/encodings.md lists the losses
///       that iconv() does not report, above all in texts of more than 8,000 characters.
void Transcode(const char* from, const char* to, const void* in, unsigned long inlen, void* out,
               unsigned long outlen);

/// Converts a string from one character encoding to another.
///
///     Transcode("ISO-8859-1", "UTF-8", "gr\374n")   // "grün"
///     Transcode("UTF-8", "ISO-8859-1", "5 €")       // "5 ", and logs "iconv: Bad input data"
///
/// @note The result ends at the first zero byte, so it is useless for 16-bit targets such as
///       "UTF-16". Use the form with a buffer for these.
///
/// @param from the encoding of the input: a name that iconv_open() accepts. The empty name is the
///        encoding of the locale. "UTF-16" and "UCS-2", in exactly this spelling, mean
///        little-endian code units without a byte order mark.
/// @param to the encoding of the result, named in the same way.
/// @param in the text to convert, which may hold NUL bytes.
/// @return the converted text up to its first zero byte, cut after 4 x the length of `in` + 8
///         bytes. If iconv_open() cannot convert, the result is the empty string; or, if each name
///         is empty or "UTF-8", the ASCII characters of `in` before the first zero byte.
/// @throws std::logic_error if a name is null.
/// @throws std::length_error if four times the length of `in` is too large for a size.
///
/// A conversion that loses text does not fail. Most losses are logged at level 2, as "iconv:
/// Insufficient space", "iconv: Bad input data", "iconv: Non-reversible conversion performed",
/// "iconv: Unable to convert from X to Y" or "iconv: Using ASCII truncation fallback". The comment
/// of the form with a buffer has their meanings. docs/encodings.md lists the losses without a line.
std::string Transcode(const char* from, const char* to, std::string in);

/// Lowers the letters of a UTF-8 text, as towlower() does in the current locale.
///
///     ToLower("GRÜN")   // "grün" in a UTF-8 locale, "grÜn" in the locale "C"
///
/// @note The result ends at the first NUL byte. Characters above U+FFFF and invalid bytes are
///       dropped; in a text of more than 8,000 characters they may end the result. Some lower-case
///       letters take more bytes: the result is cut, at a character, after the length of `text` + 2
///       bytes.
///
/// @param text the text in UTF-8.
/// @return the lowered text; the empty string if iconv() cannot convert between UTF-8 and UCS-2.
/// @throws std::length_error if twice the length of `text` is too large for a size.
///
/// The call converts to UCS-2 and back with Transcode(), which logs most losses at level 2, as
/// "iconv: Bad input data", "iconv: Insufficient space" or "iconv: Unable to convert from X to Y".
/// docs/encodings.md has the details.
std::string ToLower(std::string text);

/// @}

/// @defgroup codecs Codecs
/// Functions for Base64, hexadecimal text and SHA-256.
/// @{

/// Encodes a string as Base64, with padding and without line breaks.
///
///     Base64Encode("Hello")   // "SGVsbG8="
///
/// @param data the bytes to encode.
/// @return the text, four characters for every group of three bytes; the last group may be shorter.
std::string Base64Encode(std::string data);

/// Encodes an array of bytes as Base64, with padding and without line breaks.
///
///     const unsigned char data[] = {0xFF, 0x00};
///     Base64Encode(data, sizeof data)   // "/wA="
///
/// @param data the bytes to encode; may be null if `len` is 0.
/// @param len the number of bytes.
/// @return the text, four characters for every group of three bytes; the last group may be shorter.
/// @throws std::length_error if the text is too long for a string, before `data` is read.
std::string Base64Encode(const unsigned char* data, unsigned long len);

/// Decodes Base64 text.
///
///     Base64Decode("SGVsbG8=")   // "Hello"
///     Base64Decode("SGVsbG8")    // "", since the length is not a multiple of 4
///
/// @note An empty text and a rejected text both give the empty string. Line breaks are rejected.
/// @note Several texts decode to the same bytes. "=" is accepted anywhere, as a digit of the value
///       64. Four characters give three bytes, less one for each "=" in the third or fourth place.
///       So "QQ==QQ==" is "AA", and "A===" is the byte 0x04. Unused bits need not be zero: "TQ=="
///       and "TR==" are both "M".
///
/// @param text the text to decode.
/// @return the bytes; the empty string if the length is not a multiple of 4, or if a byte is
///         neither a Base64 digit nor "=".
std::string Base64Decode(std::string text);

/// Converts pairs of hexadecimal digits to bytes.
///
///     HexASCIIToString("48656c6C6F")   // "Hello"
///     HexASCIIToString("48656")        // "", since the length is odd
///
/// @note An empty text and a rejected text both give the empty string.
/// @note strtol() reads each pair. So white space or a sign may replace the first digit: " a" and
///       "+a" are the byte 0x0A, "-1" is 0xFF. A NUL byte ends a pair early: "\0a" is 0x00.
///
/// @param hex the digits, in either case; any number of them.
/// @return the bytes; the empty string if the length is odd, or if strtol() does not read a pair to
///         its end.
std::string HexASCIIToString(std::string hex);

/// Computes a SHA-256 digest.
///
///     unsigned char digest[32];
///     SHA256Digest("abc", digest);   // ba 78 16 bf ... 15 ad
///
/// @param data the bytes, NUL bytes included.
/// @param digest receives the 32 bytes of the digest; must not be null.
void SHA256Digest(const std::string& data, unsigned char* digest);

/// @}

/// @defgroup host Files, users and the host
/// Functions for directories, temporary files, the user, the desktop and the host.
/// @{

/// Makes sure that a path exists, and creates a directory if it does not.
///
///     CheckCreateDir("/tmp/demo", false)      // true
///     CheckCreateDir("/tmp/demo/a/b", true)   // true, also creates /tmp/demo/a
///
/// New directories have mode 0755, less the umask. Symbolic links are followed; if one has no
/// target, the result is false.
///
/// @note Anything that exists counts: the result is true if `path` is a file.
/// @note With `recursive`, a relative path that does not exist is read from the root directory: its
///       part before the first "/" is dropped, and "x" means "/x". The result is about that path.
///       Without `recursive`, the path counts from the working directory.
///
/// @param path the absolute path of the directory; must not contain NUL bytes.
/// @param recursive whether to create the missing directories above it as well.
/// @retval true the path exists now.
/// @retval false a directory could not be created, and `errno` has the reason. It is EEXIST if
///         another process creates the directory at that moment. Directories created before it
///         stay.
bool CheckCreateDir(std::string path, bool recursive);

/// Creates a new empty file in /tmp with mode 0600.
///
///     int fd = -1;
///     const std::string path = GXUtils::GenerateTempFile("draft", &fd);
///     if (!path.empty()) {
///       // path is like "/tmp/draftri1H4v"; write to fd, then:
///       close(fd);
///       unlink(path.c_str());
///     }
///
/// The path is "/tmp/", `name` and six characters that make it unique. `TMPDIR` does not count. The
/// caller closes the descriptor and removes the file.
///
/// @param name the first part of the file name, without NUL bytes. The call allows 500 bytes, most
///        file systems 249. A name with "/" means a file in a directory below /tmp, which must
///        exist; ".." in it leads out of /tmp.
/// @param fd if not null, receives the file descriptor, open for reading and writing and not
///        close-on-exec; -1 on failure. If null, the file is closed.
/// @return the path; the empty string if the file could not be created, and `errno` has the reason.
std::string GenerateTempFile(std::string name, int* fd);

/// Removes a file, or a symbolic link itself.
///
///     UnlinkOrTruncate("/tmp/draftri1H4v")   // 0
///
/// @note The function does not truncate, and a directory is an error.
///
/// @param path the path of the file; must not be null.
/// @retval 0 the file is removed.
/// @retval -1 it is not, and `errno` has the reason.
int UnlinkOrTruncate(const char* path);

/// Returns the platform's own temporary directory, which Linux and macOS do not have.
///
///     winGetTempDir()   // ""
///
/// @return the empty string.
std::string winGetTempDir();

/// Returns the home directory, and creates the client's directory ".gannorex" in it.
///
///     // with HOME=/home/ann
///     calcHomeDir("ann")   // "/home/ann"; /home/ann/.gannorex exists now
///
/// If `HOME` is not "/", the result is its value, unchanged. If it is "/", the password database
/// decides: Transcode() converts `user`, which logs losses, and getpwnam() looks it up.
///
/// @note Each call creates ".gannorex" if it does not exist, but not the directories above it, and
///       does not report a failure. If `HOME` is empty or not set, the call creates "/.gannorex".
///
/// @param user the user's name in UTF-8, as calcRunningUser() returns it; used if `HOME` is "/".
/// @return the value of `HOME`; the empty string if it is not set. If it is "/", the home directory
///         of `user` in the password database, or "/root" for an unknown user.
///
/// If `HOME` is "/", call from one thread at a time, while no other thread reads the password
/// database.
std::string calcHomeDir(std::string user);

/// Returns the name of the running user in UTF-8.
///
///     // with LOGNAME=ann
///     calcRunningUser()   // "ann"
///
/// @note The function trusts the environment, so the name does not prove who the user is.
///
/// @return the first of `LOGNAME`, `USERNAME` and `USER` that is set, even if it is empty; else the
///         login name of the real user id; the empty string if it has none.
///
/// Transcode() converts the name from the encoding of the locale and logs losses. If no variable is
/// set, getpwuid() looks the name up: call from one thread at a time, while no other thread reads
/// the password database.
std::string calcRunningUser();

/// Puts the installation prefix before a relative path.
///
///     // with gxclient_prefix = "/opt/app"
///     AddPathPrefix("lib/x")    // "/opt/app/lib/x"
///     AddPathPrefix("/etc/x")   // "/etc/x"
///
/// @note The path is not normalised: ".." may lead out of the prefix. While `gxclient_prefix` is
///       empty, "lib/x" becomes "/lib/x".
///
/// @param path an absolute or relative path.
/// @return `path` if it begins with "/", else `gxclient_prefix`, "/" and `path`.
std::string AddPathPrefix(std::string path);

/// Shows a file or directory in the desktop's file manager.
///
///     ShowInFileManager("/home/ann/report.pdf")   // 0 if it is shown
///
/// The result is that of osxShowInFileManager(), on every platform. The client may define that
/// function. The values below are those of the default one, which blocks for up to 10 seconds.
///
/// @param path the file or directory. A relative path counts from the working directory.
/// @retval 0 the file manager shows it, or a program that will show it was started.
/// @retval 1 the path does not exist or cannot be reached.
/// @retval 2 a program, session bus or display that could show it is missing.
/// @retval 3 the file manager did not answer; it may still show the path.
int ShowInFileManager(const std::string& path);

/// Returns a rough figure for the speed of the host.
///
///     GetBogoMips()   // 19200 with four processors of 4800.00
///
/// @return the sum of the "bogomips" values of all processors in /proc/cpuinfo, each without its
///         fraction. The sum is at most INT_MAX. -1 if the file cannot be read, as on macOS, or has
///         no such line, as for some processors.
int GetBogoMips();

/// @}

}  // namespace GXUtils

struct Exportdata;

/// Reads an option that lists NFS exports.
///
///     std::vector<Exportdata*> exports;
///     parse_nfs_export_option("/home/ann,rw,/media/usb,ro", exports);
///     // returns 1; exports are {"/home/ann", 2} and {"/media/usb", 1}
///     for (const Exportdata* record : exports) delete record;   // needs support/exportdata.h
///
/// The option is a list of pairs, path and mode, with commas between all fields. A backslash before
/// a comma or a backslash makes it part of the field. The modes are "ro" (access 1), "rw" (2) and
/// "disabled" (0), in exactly this spelling.
///
/// @note The records are the caller's to delete, whatever the result. The call first clears
///       `exports` and does not delete the records in it, so delete them before the next call.
///
/// @ingroup host
/// @param option the option. Its paths are not checked. An empty path has no mode, so the field
///        after it is a path again. An empty option is one empty path, and a comma after the last
///        mode begins another. A last field of the single byte 0xFF counts as empty.
/// @param exports receives one record for each pair, in order, valid or not. An invalid pair and an
///        empty path have access 0. After an exception, the vector has the records made before it.
/// @retval 1 every pair was valid. An empty path counts as valid.
/// @retval 0 a mode is missing or unknown.
int parse_nfs_export_option(std::string option, std::vector<Exportdata*>& exports);
