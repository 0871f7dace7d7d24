// VxSyntheticCollision: measures how two closed meshes meet when each stands at
// a placement, the way the model library hands it to the collision overlay. A
// contact lists, for each mesh, the faces with a corner inside the other mesh
// and the depth of each such corner below the other's surface (corners outside
// get depth 0), with the greatest depth as value; a gap gives the smallest
// distance between the two. Inside means odd ray parity. Only the region where
// the two placed bounding boxes meet is examined, and distances are searched
// through a grid of nearby triangles, so a pair costs milliseconds. It does not
// find self-intersections and assumes rigid placements.
#pragma once

#include <interfaces/VxGapInfo.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxMesh.h>

class VxSyntheticCollision {
public:
    // False (and `out` untouched) when the meshes stay farther apart than
    // `maxGap` (mm).
    static bool Measure(VxMesh* a, const VxMatrix& placeA, VxMesh* b, const VxMatrix& placeB,
                        double maxGap, VxGapInfo& out);
    // Ray parity in the mesh's own coordinates; the mesh must be closed.
    static bool IsInside(const VxMesh& mesh, const VxPoint& p);
    // Distance from p to the closest point of triangle (a, b, c), and that point.
    static double PointTriangleDistance(const VxPoint& p, const VxPoint& a, const VxPoint& b,
                                        const VxPoint& c, VxPoint* closest = nullptr);
};
