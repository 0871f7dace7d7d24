// GumGapGraphicsObject: one gap of the in-view editor, between two neighbouring teeth of a jaw.
// Four points (the anchor twice on the gum, then the leader's end twice), six small state fields
// that say which look each element has, the signed value in millimetres (above zero a
// reduction, below zero a space) and the host's two ids of the gap, handed back untouched.
#pragma once

#include <interfaces/VxPoint.h>

#include <vector>

class GumGapGraphicsObject {
public:
    GumGapGraphicsObject();

    // The value's sign and size decide which card, which button and which arrows are shown;
    // magnitudes of at most 0.05 count as no gap. Sets button, card, up and down states.
    void ApplyValueStates();

    std::vector<VxPoint> points; // start, start, end, end
    int buttonState = 1;         // 1 add, 2 add hovered, 3 delete, 4 delete hovered
    int lockState = 3;           // 1 locked, 2 locked hovered, 3 unlocked, 4 unlocked hovered
    int cardState = 3;           // 1 reduction card, 2 gap card, 3 none
    int downState = 1;           // 1 normal, 2 hovered, 3 disabled
    int upState = 1;             // 1 normal, 2 hovered, 3 disabled
    int listState = 1;           // 1 closed, 2..8 open (elements 52..58)
    float value = 0.0f;
    int firstId = 0;
    int secondId = 0;
};
