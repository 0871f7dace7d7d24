// ObjectSelected: what the editor found under the cursor, the record id and the element.
#pragma once

#include <gapeditor/Enumerationofpng.h>

struct ObjectSelected {
    int id = 0;
    Enumerationofpng element = static_cast<Enumerationofpng>(-1);
};
