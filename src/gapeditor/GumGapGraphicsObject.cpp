#include <gapeditor/GumGapGraphicsObject.h>

GumGapGraphicsObject::GumGapGraphicsObject() : points(4) {}

void GumGapGraphicsObject::ApplyValueStates() {
    // Compared in float against float limits: the stored value is a float, and 0.05 must fall on
    // the "no gap" side exactly, as 0.45 must on the "up still allowed" side.
    const float v = value;
    if (v > 0.05f) {
        buttonState = 3;
        cardState = 1;
        if (v < 0.25f) {
            downState = 3;
        } else if (v > 0.45f) {
            upState = 3;
        }
    } else if (v < -0.05f) {
        buttonState = 3;
        cardState = 2;
        if (v > -0.25f) {
            downState = 3;
        }
    } else {
        buttonState = 1;
        cardState = 3;
    }
}
