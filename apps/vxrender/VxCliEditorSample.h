// VxCliEditorSample: a sample of the in-view gap editor's screen parts, laid over a rendered
// picture so a person can see the shader path's glyph text and primitives without a gap record:
// two value cards (".3" and "1.2") and two rows of the editor's list, the second as hovered.
#pragma once

// Draws into the current frame, in the window's pixels, at its lower left corner. Needs the
// library's context current and a background loaded (the glyph store is made with it); without
// the store the cards are drawn without their values.
void VxCliDrawEditorSample(int width, int height);
