// Enumerationofpng: the in-view gap editor's element codes. One value is at once the code an
// element leaves in the pick buffer, the key of its image, and the argument of the editor's draw
// operations; an element has one value for its normal look and one for its look under the
// cursor. Values without an image are drawn from primitives. -1 (no enumerator) stands for none.
#pragma once

enum Enumerationofpng : int {
    PngBtnAddNormal = 11,
    PngBtnAddHover = 12,
    PngBtnDelNormal = 13,
    PngBtnDelHover = 14,
    PngBtnLockNormal = 21,
    PngBtnLockHover = 22,
    PngBtnUnlockNormal = 23,
    PngBtnUnlockHover = 24,
    PngBtnUpNormal = 31,
    PngBtnUpHover = 32,
    PngBtnDownNormal = 33,
    PngBtnDownHover = 34,
    PngBtnUpDisabled = 35,
    PngBtnDownDisabled = 36,
    PngGapCard = 41,
    PngListBackground = 50,
    PngList51 = 51,
    PngListAdd = 52,
    PngListAddRow1 = 53,
    PngListAddRow2 = 54,
    PngListReduction = 55,
    PngListReductionRow = 56,
    PngListGap = 57,
    PngListGapRow = 58,
    PngStepActive = 61,
    PngStepDone = 62,
    PngStepNormal = 63,
    PngRowFirst = 101,
    PngRowSecond = 105,
};
