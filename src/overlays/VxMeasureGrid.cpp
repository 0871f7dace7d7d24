// VxMeasureGrid: the millimetre grid and scale bar laid over each view.
#include <overlays/VxMeasureGrid.h>
