// VxSyntheticTooth: the shapes of synthetic teeth. A tooth is designed in its
// own design space (u towards mesial, v towards facial, w towards occlusal,
// origin at the crown centre) as one closed triangle mesh: a crown built from
// rings (side wall from the cervix up, then an occlusal cap with cusps and
// fissures closing at a pole), and below it one root or a root trunk that
// splits into two or three roots, each closing at its own apex. Face styles
// mark crown faces (FaceStyle_Crown) and the faces of the basic root
// (FaceStyle_BasicRoot, all faces below the cervix ring). It also builds a
// replacement ("backup") root, and reports the landmark vertices the reference
// data needs. It deliberately knows nothing about arches, frames or world
// space.
#pragma once

#include <interfaces/VxModelEnums.h>
#include <interfaces/VxPoint.h>

#include <vector>

class VxSyntheticRandom;

enum class VxToothClass {
    CentralIncisor,
    LateralIncisor,
    Canine,
    FirstPremolar,
    SecondPremolar,
    FirstMolar,
    SecondMolar
};

struct VxToothCusp {
    double u = 0.0; // position on the occlusal outline, -1..1 of the half widths
    double v = 0.0;
    double height = 0.0; // millimetres above the occlusal base
    double sigma = 0.4;  // spread, in the same normalised units
    double sigmaU = 0.0; // mesio-distal spread where it differs from sigma (0: the same)
};

struct VxToothDesign {
    int fdi = 0;
    bool upper = true;
    VxToothClass toothClass = VxToothClass::CentralIncisor;
    double width = 8.0;       // mesio-distal, mm
    double thickness = 7.0;   // labio-lingual, mm
    double crownHeight = 9.0; // cervix to occlusal base, mm
    double rootLength = 13.0;
    int rootCount = 1;
    // Side-wall half widths as fractions of width/2 and thickness/2: at the
    // cervix, the largest (at height fraction aMaxAt / bMaxAt) and at the
    // occlusal rim.
    double aCervix = 0.75, aMaxAt = 0.6, aRim = 0.95;
    double bCervix = 0.85, bMaxAt = 0.35, bRim = 0.85;
    double exponent = 2.4;     // superellipse exponent of the cross-section
    double facialShift = 0.0;  // the occlusal edge leans towards facial by this much (mm)
    double fissureDepth = 0.0; // mm
    // How far the incisal corners fall back towards the cervix (mm), mesial and
    // distal: rounded corners of incisors and canines.
    double mesialCorner = 0.0, distalCorner = 0.0;
    std::vector<VxToothCusp> cusps;
};

// Landmarks and layout of a built tooth, as vertex ids of its mesh.
struct VxToothGeometry {
    std::vector<VxPoint> positions; // design space
    std::vector<int> triangles;     // three ids a face, counter-clockwise seen from outside
    std::vector<FaceStyle_e> styles;
    double cervixW = 0.0;        // w of the cervix ring: crown above, basic root below
    double topW = 0.0;           // highest w of the crown
    std::vector<int> facialAxis; // facial column from cervix to occlusal rim
    std::vector<int> midRidge;   // across the occlusal surface, mesial rim to distal rim
    int midVertex = -1;          // the cap's pole, in the middle of midRidge
    std::vector<int> cuspTips;   // one vertex a cusp (the pole for incisors and canines)
    int mesialContact = -1;
    int distalContact = -1;
    int facialCentre = -1; // facial surface at mid crown: where attachments sit
};

class VxSyntheticTooth {
public:
    // Vertices round each ring of the crown; fixed, so face counts do not depend
    // on the seed.
    static constexpr int kRingSize = 80;

    // Design of the permanent tooth `fdi` (quadrants 1-4, positions 1-7) with the
    // seed's small variations of size and cusp heights.
    static VxToothDesign Design(int fdi, VxSyntheticRandom& rng);
    static VxToothClass ClassOf(int position);
    // The whole tooth; the result is a closed, consistently oriented mesh.
    static VxToothGeometry Build(const VxToothDesign& design);
    // A root alone (a little longer and more curved than the basic one), closed
    // by a flat cap at the cervix: the mesh a tooth may show in place of its
    // basic root. `cervixW` is VxToothGeometry::cervixW of the tooth, so that the
    // two meshes meet.
    static VxToothGeometry BuildBackupRoot(const VxToothDesign& design, double cervixW);
};
