// VxGum: the gum mesh of one jaw. Besides the mesh it keeps integer lists over its face list,
// made by the gum generator (which is not part of this library):
// - bands: rows of 38 faces (19 cells of two triangles) in four families, each family a list of
//   band start face ids and a parallel list of band end face ids; the textured shader path maps
//   its gum image over these rows;
// - segments: one segment of faces between neighbouring teeth, as a list of the first face id of
//   each segment and a parallel list of end face ids; the gap editor places its cards there.
// The lists are taken as given; nothing checks them against the face count.
#pragma once

#include <interfaces/VxMesh.h>

#include <vector>

class VxGum : public VxMesh {
public:
    static constexpr int kBandFamilies = 4;
    // Faces in one row of a band.
    static constexpr int kBandRowFaces = 38;

    VxGum() = default;
    explicit VxGum(bool up) : m_up(up) {}
    ~VxGum() override;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    // Adds the upper and comparison flags and all lists to the mesh data.
    void Write(std::ostream& os, bool withTag, int version) const override;
    bool Read(VxFStream& in, bool withTag, int version) override;

    bool IsUp() const { return m_up; }
    void SetUp(bool up) { m_up = up; }
    // The comparison gum, drawn only in the final step of a comparison view.
    bool IsCmp() const { return m_cmp; }
    void SetCmp(bool cmp) { m_cmp = cmp; }

    // Band lists of family 0..3; an out-of-range family gives an empty list.
    const std::vector<int>& GetBandStartFaces(int family) const;
    const std::vector<int>& GetBandEndFaces(int family) const;
    // Replaces both lists of a family; false (nothing changed) for an unknown family or lists of
    // different lengths.
    bool SetBands(int family, const std::vector<int>& starts, const std::vector<int>& ends);

    // First face id of each segment, and the parallel list of end face ids.
    const std::vector<int>& GetSegmentFirstFaces() const { return m_segmentFirst; }
    const std::vector<int>& GetSegmentEndFaces() const { return m_segmentEnd; }
    // False (nothing changed) for lists of different lengths.
    bool SetSegments(const std::vector<int>& firstFaces, const std::vector<int>& endFaces);

private:
    bool m_up = true;
    bool m_cmp = false;
    std::vector<int> m_bandStart[kBandFamilies];
    std::vector<int> m_bandEnd[kBandFamilies];
    std::vector<int> m_segmentFirst;
    std::vector<int> m_segmentEnd;
};
