// VxPolyline: length and a brute-force self-intersection test in 3D. The test compares every
// pair of segments (O(n^2)), which is fine for the curves and outlines drawn here (hundreds of
// points); it does not report where the polyline crosses itself.
#include <interfaces/VxPolyline.h>

#include <interfaces/VxLineSeg.h>
#include <interfaces/VxTolerance.h>

#include <cstddef>

namespace {
// Consecutive points closer than the tolerance make zero-length segments that would "touch"
// both neighbours; they are merged first. A last point that repeats the first is dropped too and
// the polyline counts as closed: an outline handed over with its first point repeated is a
// loop, not a curve that touches itself at its ends.
std::vector<VxPoint> DistinctPoints(const std::vector<VxPoint>& points, bool& closed,
                                    double tolerance) {
    std::vector<VxPoint> out;
    out.reserve(points.size());
    for (const VxPoint& p : points) {
        if (out.empty() || out.back().DistanceToPoint(p) > tolerance) {
            out.push_back(p);
        }
    }
    // An open A-B-A keeps its repeated point: it doubles back rather than closing a loop.
    while (out.size() > (closed ? 1u : 3u) &&
           out.back().DistanceToPoint(out.front()) <= tolerance) {
        out.pop_back();
        closed = true;
    }
    return out;
}
} // namespace

double VxPolyline::Length() const {
    double len = 0.0;
    for (std::size_t i = 1; i < m_points.size(); ++i) {
        len += m_points[i - 1].DistanceToPoint(m_points[i]);
    }
    if (m_closed && m_points.size() > 2) {
        len += m_points.back().DistanceToPoint(m_points.front());
    }
    return len;
}

bool VxPolyline::IsSelfIntersect() const {
    return IsSelfIntersect(VxTolerance::kZero);
}

bool VxPolyline::IsSelfIntersect(double tolerance) const {
    bool closed = m_closed;
    const std::vector<VxPoint> pts = DistinctPoints(m_points, closed, tolerance);
    const std::size_t n = pts.size();
    // A closed polyline needs three distinct points before its closing segment means anything.
    if (n < 3) {
        return false;
    }
    std::vector<VxLineSeg> segs;
    segs.reserve(n);
    for (std::size_t i = 0; i + 1 < n; ++i) {
        segs.emplace_back(pts[i], pts[i + 1]);
    }
    if (closed) {
        segs.emplace_back(pts[n - 1], pts[0]);
    }
    const std::size_t m = segs.size();
    for (std::size_t i = 0; i < m; ++i) {
        for (std::size_t j = i + 1; j < m; ++j) {
            const bool adjacent = (j == i + 1) || (closed && i == 0 && j == m - 1);
            if (!adjacent) {
                if (segs[i].DistanceToSegment(segs[j]) <= tolerance) {
                    return true;
                }
                continue;
            }
            // Adjacent segments share one end; they only cross if one doubles back along the
            // other, i.e. the far end of either comes within tolerance of the other segment.
            const VxLineSeg& first = (j == i + 1) ? segs[i] : segs[j];
            const VxLineSeg& second = (j == i + 1) ? segs[j] : segs[i];
            if (second.DistanceToPoint(first.GetStartPoint()) <= tolerance ||
                first.DistanceToPoint(second.GetEndPoint()) <= tolerance) {
                return true;
            }
        }
    }
    return false;
}
