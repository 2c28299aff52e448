#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gxclient_util.h"
#include "harness/scopedenv.h"

using namespace std::string_literals;

namespace {

// Every command of gxutil once, through a shell: what it prints and how it exits.
TEST(Gxutil, Commands) {
  const struct {
    const char* arguments;
    std::string output;
    int exitCode = 0;
  } cases[] = {
      {"--version 2>/dev/null", "gxutil 0.1.0\n"},
      {"no-such-command 2>/dev/null", "", 2},
      {"split-command-line 2>/dev/null", "", 2},
      {"split-command-line 'ls -l \"a b\"'", "ls\n-l\na b\n"},
      {"split-command-line -0 -- '-l [a,b]' | tr '\\0' ';'", "-l;[a,b];"},
      {"split-command-line a >/dev/full", "gxutil: the standard output cannot be written\n", 1},
      {"system 'printf %s,%s a \"b c\"'", "a,b cresult 0, exit status 0\n"},
      {"system -- printf %s, -- '[a,b]' '' --help", "--,[a,b],,--help,result 0, exit status 0\n"},
      {"system -- sh -c 'exit 3' 2>/dev/null", "", 3},
      {"system -- sh -c 'kill -9 $$'", "result -1\n", 125},
      {"system no-such-program 2>/dev/null", "", 128},
      {"system -- 2>/dev/null", "", 128},
      {"system -- printf '%s ' a -- b 2>/dev/null", "a -- b "},
      {"system ''", "gxutil: Empty command\n", 1},
      {"system ls -l 2>/dev/null", "", 2},
      {"system-nowait true | tr 0-9 9 | tr -s 9", "9\n"},
      {"system-nowait -- no-such-program 2>/dev/null", "", 1},
      {"check-file-exist /", "true\n"},
      {"check-file-exist /no/such", "false\n", 1},
      {"check-file-executable /etc/passwd", "false\n", 1},
      {"which /bin/sh", "/bin/sh\n"},
      {"which no-such-program", "", 1},
      {"split-string a::b: -s :", "a\n\nb\n\n"},
      {"split-string a -s ab 2>/dev/null", "", 2},
      {"strip ' a b ' ' '", "a b"},
      {"replace-in-string aaa aa b", "ba"},
      {"string-lines < <(printf 'a\\r\\nb')", "a\nb"},
      {"long-to-string -- -12", "-12\n"},
      {"long-to-string x 2>/dev/null", "", 2},
      {"encode-string-list -s '\\0' -- -a b | tr '\\0' ';'", "-a; b"},
      {"encode-string-list '[a,b]' c", "[a\\,b], c"},
      {"decode-string-list ' a ,b\\, '", "a\nb,\n"},
      {"decode-string-list 'a,b\\c' 2>/dev/null", "a\n", 1},
      {"transcode UTF-8 UTF-16 -b 6 ab | tr '\\0' .", "a.b..."},
      {"transcode ISO-8859-1 UTF-8 < <(printf '\\344')", "\xC3\xA4"},
      {"to-lower < <(printf 'A\\303\\204')", "a\xC3\xA4"},
      {"base64-encode < <(printf 'M\\0')", "TQA="},
      {"base64-decode TWFuTWE=", "ManMa"},
      {"base64-decode TWF", "gxutil: the text is malformed\n", 1},
      {"hex-ascii-to-string 4A4b", "JK"},
      {"sha256-digest abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad\n"},
      {"check-create-dir /", "true\n"},
      {"check-create-dir -r /dev/null/x", "false\n", 1},
      {"unlink-or-truncate $(" GXUTIL " generate-temp-file gxutil)", ""},
      {"generate-temp-file no/such", "gxutil: the file cannot be created\n", 1},
      {"unlink-or-truncate /no/such", "gxutil: No such file or directory\n", 1},
      {"win-get-temp-dir", "\n"},
      {"add-path-prefix -p /opt/app lib/x", "/opt/app/lib/x\n"},
      {"show-in-file-manager /no/such", "gxutil: status 1\n", 1},
      {"home-dir", "/dev/null/x\n"},
      {"running-user", "ann\n"},
      {"bogo-mips | tr 0-9 9 | tr -s 9", "9\n"},
      {"nfs-exports '/home/ann,rw,/media/usb,ro'", "2 /home/ann\n1 /media/usb\n"},
      {"nfs-exports /a,xx 2>/dev/null", "0 /a\n", 1},
      {"compare-versions 1.10 1.9", "-1\n"},
      {"compare-hex-strings 0xff FE", "1\n"},
  };
  const ScopedEnv locale("LC_ALL", "C.UTF-8");
  const ScopedEnv language("LANGUAGE", nullptr);
  const ScopedEnv home("HOME", "/dev/null/x");
  const ScopedEnv user("LOGNAME", "ann");
  for (const auto& c : cases) {
    SCOPED_TRACE(c.arguments);
    std::string output;
    int exitCode = -1;
    const std::string command = GXUTIL " "s + c.arguments;
    const char* argv[] = {"/bin/bash", "-c", command.c_str(), nullptr};
    GXUtils::System(argv, &output, &exitCode);
    EXPECT_EQ(output, c.output);
    EXPECT_EQ(exitCode, c.exitCode);
  }
}

}  // namespace
