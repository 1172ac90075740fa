#pragma once

namespace lorvane {

/// Settles how pictures get to the screen. To be called once, before the application object.
void setUpDisplay();

/// Settles how the windows are drawn. To be called once, after the application object and before
/// the first window. Where OpenGL is missing, or is itself computed by the processor, Qt Quick's
/// own software renderer is chosen: the same look at less cost.
void setUpGraphics();

} // namespace lorvane
