// Enumerations the model hands to the renderer: face styles, tooth kinds, tooth-number notations
// and cephalometric measure points. Only the numeric values are relied on by the drawers; the
// names say what the model means by them.
#pragma once

// Role of a face within a tooth mesh. The buffers of a tooth that shows its backup root leave out
// the faces of style FaceStyle_BasicRoot, so that value must stay 4.
enum FaceStyle_e : int {
    FaceStyle_Normal = 0,
    FaceStyle_Crown = 1,
    FaceStyle_Root = 2,
    FaceStyle_Boundary = 3,
    FaceStyle_BasicRoot = 4,
};

// Clinical kind of a tooth. Kinds 2, 3 and 5 get their own tooth colours; 2 and 3 also get the
// "(I)" and "(P)" suffixes of the tooth labels, 6 is labelled with its deciduous number (FDI + 40)
// and 4 has no reference data drawn.
enum ToothKind_e : int {
    ToothKind_Normal = 0,
    ToothKind_Unerupted = 1,
    ToothKind_Implant = 2,
    ToothKind_Pontic = 3,
    ToothKind_Missing = 4,
    ToothKind_Restored = 5,
    ToothKind_Deciduous = 6,
};

// Tooth-number notation of VxFDI::toString.
enum FDIShowType_e : int {
    FDIShowType_FDI = 0,       // two-digit ISO 3950: "11" ... "48", deciduous "51" ... "85"
    FDIShowType_Universal = 1, // "1" ... "32" from upper right third molar; deciduous "A" ... "T"
    FDIShowType_Palmer = 2,    // quadrant letters and position: "UR1", "LL8", deciduous "URA"
};

// Landmark ids of the cephalometric measure. The renderer's key-point overlay reads ids 22, 23
// and 26; a host may store any id below MEASURE_POINT_Count.
enum MEASURE_POINT : int {
    MEASURE_POINT_Sella = 0,
    MEASURE_POINT_Nasion = 1,
    MEASURE_POINT_Orbitale = 2,
    MEASURE_POINT_Porion = 3,
    MEASURE_POINT_ANS = 4,
    MEASURE_POINT_PNS = 5,
    MEASURE_POINT_PointA = 6,
    MEASURE_POINT_PointB = 7,
    MEASURE_POINT_Pogonion = 8,
    MEASURE_POINT_Menton = 9,
    MEASURE_POINT_Gnathion = 10,
    MEASURE_POINT_Gonion = 11,
    MEASURE_POINT_Articulare = 12,
    MEASURE_POINT_Basion = 13,
    MEASURE_POINT_Condylion = 14,
    MEASURE_POINT_UpperIncisorTip = 15,
    MEASURE_POINT_UpperIncisorApex = 16,
    MEASURE_POINT_LowerIncisorTip = 17,
    MEASURE_POINT_LowerIncisorApex = 18,
    MEASURE_POINT_UpperMolarMesial = 19,
    MEASURE_POINT_LowerMolarMesial = 20,
    MEASURE_POINT_Pterygoid = 21,
    MEASURE_POINT_RefLineStart = 22, // start of the reference line of the key-point overlay
    MEASURE_POINT_RefLineEnd = 23,   // its end
    MEASURE_POINT_SoftNasion = 24,
    MEASURE_POINT_SoftPogonion = 25,
    MEASURE_POINT_KeyPoint = 26, // point whose distance from the reference line is scaled
    MEASURE_POINT_Count = 64,
};
