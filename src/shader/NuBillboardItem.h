// NuBillboardItem: one queued 3D label: its two anchor points and its text.
#pragma once

#include <interfaces/CString.h>
#include <interfaces/VxPoint.h>

struct NuBillboardItem {
    VxPoint first;
    VxPoint second;
    CString text;
};
