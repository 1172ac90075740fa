#pragma once

namespace lorvane {

/// Keeps others out of what this process writes, before it writes anything: every file and folder
/// that it or a library makes is its user's alone, whatever the umask that it was started with, and
/// no crash leaves its memory, with speech and text in it, in a file.
void keepPrivate();

} // namespace lorvane
