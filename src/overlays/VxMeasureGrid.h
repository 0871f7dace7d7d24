// VxMeasureGrid: the millimetre grid and scale bar laid over each view.
#pragma once

class VxMeasureGrid {};
