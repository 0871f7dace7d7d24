// EventIPRinfo: the gap a decision of the editor was about, as the host reads it back.
#pragma once

struct EventIPRinfo {
    bool isUp = false;
    int index = 0;
    int firstId = 0;
    int secondId = 0;
    double value = 0.0; // the record's value when the event was raised
    int reserved1 = 0;
    int reserved2 = 0;
};
