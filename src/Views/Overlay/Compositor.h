#pragma once

namespace lorvane {

/// Whether something composes the windows of the desktop, so that transparent parts show what lies
/// beneath. Main thread only.
bool isCompositorRunning();

} // namespace lorvane
