// Files and the host.

#include <cerrno>
#include <cstring>
#include <memory>

#include "gxclient_util.h"
#include "gxutil.h"
#include "support/exportdata.h"
#include "support/gxclient_prefix.h"
#include "support/parser.h"

namespace gxutil {
namespace {

int CheckCreateDir(CommandLine& line) {
  const std::string& path = line.Operand("PATH", "The directory");
  const bool& recursive = line.Flag("-r, --recursive", "Create missing directories above it, too");
  line.Notes(
      "With -r, a path that does not begin with a slash counts from the root directory,\n"
      "without the text before its first slash.");
  line.Parse();
  if (GXUtils::CheckCreateDir(path, recursive)) return PrintBool(true);
  const int error = errno;
  (void)PrintBool(false);
  return Fail(path, std::strerror(error));
}

int GenerateTempFile(CommandLine& line) {
  const std::string& name = line.Operand("NAME", "The beginning of its name");
  line.Parse();
  const std::string path = GXUtils::GenerateTempFile(name, nullptr);
  return path.empty() ? Fail("/tmp/" + name, std::strerror(errno)) : PrintLine(path);
}

int UnlinkOrTruncate(CommandLine& line) {
  const std::string& path = line.Operand("PATH", "The file");
  line.Parse();
  if (GXUtils::UnlinkOrTruncate(path.c_str()) == 0) return 0;
  return Fail(path, std::strerror(errno));
}

int WinGetTempDir(CommandLine& line) {
  line.Parse();
  return PrintLine(GXUtils::winGetTempDir());
}

int AddPathPrefix(CommandLine& line) {
  const std::string& path = line.Operand("PATH", "The path");
  const auto& prefix = line.Option("-p, --prefix", "PATH", "The installation prefix");
  line.Parse();
  if (prefix) gxclient_prefix = *prefix;
  return PrintLine(GXUtils::AddPathPrefix(path));
}

int BogoMips(CommandLine& line) {
  line.Parse();
  const int figure = GXUtils::GetBogoMips();
  return figure < 0 ? Fail("/proc/cpuinfo", "no figure") : PrintLine(std::to_string(figure));
}

// Names each path whose mode is wrong. The pairs are read as parse_nfs_export_option() reads them.
void ReportModes(const std::string& option) {
  Parser parser(option);
  for (;;) {
    std::string path;
    std::string mode;
    if (parser.parse_comma_escaped_string(path) != 0) {
      if (parser.current == ',') {
        parser.advance();
        (void)parser.parse_comma_escaped_string(mode);
      }
      const bool valid = mode == "ro" || mode == "rw" || mode == "disabled";
      if (!valid) (void)Fail(path, "mode '" + mode + "' is not ro, rw or disabled");
    }
    if (parser.current != ',') return;
    parser.advance();
  }
}

int NfsExports(CommandLine& line) {
  const std::string& option = line.Operand("OPTION", "PATH,ro|rw|disabled[,PATH,...]");
  line.Notes("The access is 0 for none, 1 for read-only, 2 for read-write.");
  line.Parse();
  std::vector<Exportdata*> exports;
  const int valid = parse_nfs_export_option(option, exports);
  for (const Exportdata* record : exports) {
    const std::unique_ptr<const Exportdata> owner(record);
    (void)PrintLine(std::to_string(record->access) + " " + record->path);
  }
  if (valid == 0) ReportModes(option);
  return valid != 0 ? 0 : kFailure;
}

}  // namespace

Group HostGroup() {
  return {"Files and host",
          {
              {"check-create-dir", "CheckCreateDir", "Make sure that a directory exists",
               "gxutil check-create-dir -r /tmp/demo/a/b", CheckCreateDir},
              {"generate-temp-file", "GenerateTempFile", "Create a private file below /tmp",
               "gxutil generate-temp-file draft", GenerateTempFile},
              {"unlink-or-truncate", "UnlinkOrTruncate", "Remove a file",
               "gxutil unlink-or-truncate /tmp/draft", UnlinkOrTruncate},
              {"win-get-temp-dir", "winGetTempDir", "Print the platform's own temporary directory",
               "gxutil win-get-temp-dir", WinGetTempDir},
              {"add-path-prefix", "AddPathPrefix", "Put the installation prefix before a path",
               "gxutil add-path-prefix -p /opt/app lib/x", AddPathPrefix},
              {"bogo-mips", "GetBogoMips", "Print a figure for the host's speed",
               "gxutil bogo-mips", BogoMips},
              {"nfs-exports", "parse_nfs_export_option", "Print access and path of each export",
               "gxutil nfs-exports '/home/ann,rw,/media/usb,ro'", NfsExports},
          }};
}

}  // namespace gxutil
