// VxLineSeg: a bounded segment between two points.
#pragma once

#include <interfaces/VxPoint.h>

class VxLineSeg {
public:
    VxLineSeg() = default;
    VxLineSeg(const VxPoint& start, const VxPoint& end) : m_start(start), m_end(end) {}

    const VxPoint& GetStartPoint() const { return m_start; }
    const VxPoint& GetEndPoint() const { return m_end; }
    double Length() const { return m_start.DistanceToPoint(m_end); }
    // Distance from p to the nearest point of the segment (not of its line).
    double DistanceToPoint(const VxPoint& p) const;
    // Shortest distance between two segments (handles parallel and degenerate segments).
    double DistanceToSegment(const VxLineSeg& other) const;

private:
    VxPoint m_start;
    VxPoint m_end;
};
