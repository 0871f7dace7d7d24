// VxAttachment: type tag and defaults of an attachment.
#include <interfaces/VxAttachment.h>

#include <interfaces/VxLine.h>
#include <interfaces/VxStdAttach.h>

VxAttachment::VxAttachment() : m_current(VxMatrix::Identity(4)) {}

VxAttachment::VxAttachment(VxStdAttach* stdAttach, VxTooth* tooth)
    : m_std(stdAttach), m_tooth(tooth), m_current(VxMatrix::Identity(4)) {}

VxAttachment::~VxAttachment() = default;

ObjectType_e VxAttachment::GetObjectType() const {
    return ObjectType_Attachment;
}

bool VxAttachment::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_Attachment || VxMesh::IsKindOf(type);
}

bool VxAttachment::IsHitByRay(const VxLine& ray, const VxMatrix& placement) const {
    if (VxMesh::IsHitByRay(ray, placement)) {
        return true;
    }
    if (m_std == nullptr || placement.Rows() != 4 || placement.Cols() != 4) {
        return false;
    }
    for (const auto& part : m_parts) {
        if (part && m_std->IsHitByRay(ray, placement * part->matrix)) {
            return true;
        }
    }
    return false;
}

VxBBox VxAttachment::GetBBox() const {
    VxBBox box = VxMesh::GetBBox();
    if (m_std == nullptr) {
        return box;
    }
    const VxBBox shape = m_std->GetBBox();
    if (shape.IsEmpty()) {
        return box;
    }
    const VxPoint& lo = shape.GetMinPnt();
    const VxPoint& hi = shape.GetMaxPnt();
    for (const auto& part : m_parts) {
        if (!part) {
            continue;
        }
        for (int corner = 0; corner < 8; ++corner) {
            box.Add(part->matrix.Transform(VxPoint(corner & 1 ? hi[0] : lo[0],
                                                   corner & 2 ? hi[1] : lo[1],
                                                   corner & 4 ? hi[2] : lo[2])));
        }
    }
    return box;
}
