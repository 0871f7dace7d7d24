// VxOcclusalPlane: everything is inline; this unit keeps the one-pair-per-class layout and
// checks that the header stands on its own.
#include <interfaces/VxOcclusalPlane.h>
