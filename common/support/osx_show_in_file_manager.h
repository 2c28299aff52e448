/// @file
/// The desktop's file manager.
#pragma once

#include <string>

/// Shows a file or directory, selected, in the desktop's file manager.
///
///     osxShowInFileManager("/home/ann/report.pdf")   // 0 if it is shown
///
/// The function works on every platform, despite its name. On Linux it asks the file manager with
/// `dbus-send`, through the interface org.freedesktop.FileManager1, if the session has a bus. If
/// that fails and `DISPLAY` or `WAYLAND_DISPLAY` is set, `xdg-open` opens the directory that holds
/// the item. On macOS the function runs `open -R`.
///
/// The programs are found along `PATH`, inherit no file descriptor of the client and write to none
/// of its streams. The call blocks for up to 5 seconds for an answer of the file manager, or 10 if
/// the bus itself does not answer. It leaves SIGCHLD alone. The programs are orphans, so the client
/// has none to reap, unless it adopts orphans itself, as process 1 of a PID namespace does. The
/// call may run on any thread, while no thread changes the environment. A client may define this
/// function itself; docs/linking.md shows how.
///
/// @param path the file or directory, up to its first NUL byte, in any encoding. A relative path
///        counts from the working directory.
/// @retval 0 the file manager shows it, or `xdg-open` or `open` was started.
/// @retval 1 the path does not exist or cannot be reached. A symbolic link without a target exists.
/// @retval 2 a program, session bus or display that could show it is missing, or a program failed.
/// @retval 3 the file manager did not answer in time, or exited before it answered. It may still
///         show the item, so the call tried nothing else.
int osxShowInFileManager(const std::string& path);
