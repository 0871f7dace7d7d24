// EnumEventInfoCreateModify: what the user decided with the last click; the host reads it by
// number.
#pragma once

enum EnumEventInfoCreateModify : int {
    EventNone = -1,
    EventListOpened = 11,
    EventLocked = 21,
    EventUnlocked = 23,
    EventValueUp = 31,
    EventValueDown = 33,
    EventAddReduction = 41,
    EventDeleteReduction = 43,
    EventAddGap = 51,
    EventDeleteGap = 53,
};
