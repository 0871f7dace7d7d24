// VxCacheStuff: the collision faces and their labels. A contact between the jaws is shown as the
// touching faces of both teeth coloured by how deep each vertex lies in the other tooth; every
// contact or gap gets a small value label at its place. Neighbours within one jaw get a label
// only: their side contacts are expected and would only hide the teeth.
#include <overlays/VxCacheStuff.h>

#include <aux/VxAuxFace.h>
#include <aux/VxAuxRender.h>
#include <aux/VxAuxText.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxGapInfo.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxUtility.h>
#include <overlays/VxOverlayLayout.h>

#include <set>

namespace {

// A mesh of the record that is not a tooth has no jaw: it is never across the jaws.
bool AcrossJaws(const VxGapInfo* gap) {
    const auto* a = dynamic_cast<const VxTooth*>(gap->GetMesh(0));
    const auto* b = dynamic_cast<const VxTooth*>(gap->GetMesh(1));
    return a != nullptr && b != nullptr && a->IsUp() != b->IsUp();
}

bool Visible(const VxMesh* mesh) {
    return mesh != nullptr && mesh->IsVisible();
}

// A missing mesh hides nothing behind it, so it counts as sheltered.
bool Sheltered(const VxMesh* mesh) {
    return mesh == nullptr || mesh->IsSheltered();
}

} // namespace

void VxCacheStuff::ShowCollisionInfo(const std::vector<VxGapInfo*>& gaps) {
    RemoveCollisionStuff();
    for (VxGapInfo* gap : gaps) {
        if (gap == nullptr) {
            continue;
        }
        if (AcrossJaws(gap)) {
            ShowCollisionFaces(gap, 0);
            ShowCollisionFaces(gap, 1);
        }
        ShowCollisionText(gap);
    }
}

void VxCacheStuff::ShowCollisionInfoInWorkDesignWedge(const std::vector<VxGapInfo*>& gaps,
                                                      double threshold) {
    RemoveCollisionStuff();
    for (VxGapInfo* gap : gaps) {
        if (gap == nullptr) {
            continue;
        }
        if (AcrossJaws(gap)) {
            ShowCollisionFaces(gap, 0);
            ShowCollisionFaces(gap, 1);
        }
        // While wedges are designed only the gaps wide enough to take one are worth a label.
        if (gap->IsGap() && gap->GetValue() >= threshold) {
            ShowCollisionTextInWorkDesignWedge(gap);
        }
    }
}

void VxCacheStuff::RemoveCollisionStuff() {
    VxAuxRender* aux = VxRenderStatus::GetInstance()->GetAuxRender();
    if (aux == nullptr) {
        return;
    }
    for (VxAuxObject* object : m_collisionObjects) {
        aux->RemoveAuxObject(object, true);
    }
    m_collisionObjects.clear();
}

void VxCacheStuff::ShowCollisionFaces(VxGapInfo* gap, int i) {
    VxMesh* mesh = gap->GetMesh(i);
    if (!Visible(mesh)) {
        return;
    }
    auto* face = new VxAuxFace(mesh);
    const std::vector<int>& faces = gap->GetFaces(i);
    face->SetFaces(faces);
    const std::map<int, double>& depths = gap->GetVertexDepth(i);
    for (const auto& entry : depths) {
        face->AddColorVtx(entry.first, VxOverlayLayout::CollisionDepthColor(entry.second));
    }
    // A corner the measure left without a depth reads as touching, not as a black hole.
    const VxColor touching = VxOverlayLayout::CollisionDepthColor(0.0);
    const int faceCount = mesh->GetFaceCount();
    std::set<int> missing;
    for (int f : faces) {
        if (f < 0 || f >= faceCount) {
            continue;
        }
        int v[3];
        mesh->GetFaces()[static_cast<size_t>(f)].Get3VtxId(v[0], v[1], v[2]);
        for (int id : v) {
            if (depths.count(id) == 0) {
                missing.insert(id);
            }
        }
    }
    for (int id : missing) {
        face->AddColorVtx(id, touching);
    }
    m_collisionObjects.push_back(face);
    if (VxAuxRender* aux = VxRenderStatus::GetInstance()->GetAuxRender()) {
        aux->AddAuxObject(face);
    }
}

void VxCacheStuff::ShowCollisionText(VxGapInfo* gap) {
    VxMesh* a = gap->GetMesh(0);
    VxMesh* b = gap->GetMesh(1);
    // Neither tooth on screen, or both behind something: the value would float over nothing.
    // Checked before building, so a dropped label costs no glyphs.
    if ((!Visible(a) && !Visible(b)) || (Sheltered(a) && Sheltered(b))) {
        return;
    }
    auto* text = new VxAuxText();
    text->SetTextType(Text_ModelNoDepth);
    text->SetSize(8);
    text->SetText(VxUtility::FormatCollision(gap->GetValue()));
    text->SetHitPriority(AuxHitPriority_Normal);
    text->SetColor(VxOverlayLayout::CollisionTextColor(gap->IsGap(), AcrossJaws(gap)));
    text->SetTextPos(gap->GetValuePos());
    m_collisionObjects.push_back(text);
    if (VxAuxRender* aux = VxRenderStatus::GetInstance()->GetAuxRender()) {
        aux->AddAuxObject(text);
    }
}

void VxCacheStuff::ShowCollisionTextInWorkDesignWedge(VxGapInfo* gap) {
    ShowCollisionText(gap);
}
