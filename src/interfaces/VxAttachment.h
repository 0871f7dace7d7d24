// VxAttachment: an attachment bonded to a tooth: which standard shape, which tooth, the placed
// parts, the frame and matrix it currently stands at, and the treatment steps it is on for. The
// attachment owns its parts (shared pointers); the standard shape and the tooth are the host's.
#pragma once

#include <interfaces/VxAttachmentPart.h>
#include <interfaces/VxFrame.h>
#include <interfaces/VxMatrix.h>
#include <interfaces/VxMesh.h>

#include <memory>
#include <vector>

class VxStdAttach;
class VxTooth;

class VxAttachment : public VxMesh {
public:
    // Identity current matrix, steps 0 to 0.
    VxAttachment();
    VxAttachment(VxStdAttach* stdAttach, VxTooth* tooth);
    ~VxAttachment() override;

    ObjectType_e GetObjectType() const override;
    bool IsKindOf(ObjectType_e type) const override;
    // An attachment is drawn as its standard shape once per part, at placement x part matrix; it
    // is hit (and boxed) where it is drawn, and by any geometry of its own.
    bool IsHitByRay(const VxLine& ray, const VxMatrix& placement) const override;
    VxBBox GetBBox() const override;

    VxStdAttach* GetStdAttachment() const { return m_std; }
    void SetStdAttachment(VxStdAttach* stdAttach) { m_std = stdAttach; }
    VxTooth* GetTooth() const { return m_tooth; }
    void SetTooth(VxTooth* tooth) { m_tooth = tooth; }
    std::vector<std::shared_ptr<VxAttachmentPart>>& AttachParts() { return m_parts; }
    const std::vector<std::shared_ptr<VxAttachmentPart>>& AttachParts() const { return m_parts; }
    // Frame of the attachment on its tooth, before GetCurrentMatrix moves it to the current step.
    const VxFrame& GetCurFrame() const { return m_frame; }
    void SetCurFrame(const VxFrame& frame) { m_frame = frame; }
    const VxMatrix& GetCurrentMatrix() const { return m_current; }
    void SetCurrentMatrix(const VxMatrix& m) { m_current = m; }
    // First and last treatment step the attachment is on the tooth.
    int GetStartStep() const { return m_startStep; }
    int GetEndStep() const { return m_endStep; }
    void SetSteps(int startStep, int endStep) {
        m_startStep = startStep;
        m_endStep = endStep;
    }
    // Comparison attachment: shown only in the final step of a comparison view.
    bool IsCmp() const { return m_cmp; }
    void SetCmp(bool cmp) { m_cmp = cmp; }

private:
    VxStdAttach* m_std = nullptr;
    VxTooth* m_tooth = nullptr;
    std::vector<std::shared_ptr<VxAttachmentPart>> m_parts;
    VxFrame m_frame;
    VxMatrix m_current;
    int m_startStep = 0;
    int m_endStep = 0;
    bool m_cmp = false;
};
