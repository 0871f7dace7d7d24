// VxAuxBox: twelve dashed edges.
#include <aux/VxAuxBox.h>

#include <GL/glew.h>

#include <aux/VxAuxLine.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxEntity.h>
#include <interfaces/VxTransformMatrix.h>

VxAuxBox::VxAuxBox() {
    for (VxAuxLine*& e : m_edges) {
        e = new VxAuxLine();
        e->SetType(AuxLineType_Dashed);
        e->SetColor(VxColor(150, 100, 150, 100));
        e->SetDrawHidden(true);
    }
}

VxAuxBox::VxAuxBox(const VxAuxBox& other) : VxAuxObject(other), m_entity(other.m_entity) {
    for (int i = 0; i < kEdgeCount; ++i) {
        m_edges[i] = new VxAuxLine(*other.m_edges[i]);
    }
}

VxAuxBox& VxAuxBox::operator=(const VxAuxBox& other) {
    if (this != &other) {
        VxAuxObject::operator=(other);
        m_entity = other.m_entity;
        for (int i = 0; i < kEdgeCount; ++i) {
            *m_edges[i] = *other.m_edges[i];
        }
    }
    return *this;
}

VxAuxBox::~VxAuxBox() {
    for (VxAuxLine* e : m_edges) {
        delete e;
    }
}

ObjectType_e VxAuxBox::GetObjectType() const {
    return ObjectType_AuxBox;
}

bool VxAuxBox::IsKindOf(ObjectType_e type) const {
    return type == ObjectType_AuxBox || VxAuxObject::IsKindOf(type);
}

void VxAuxBox::SetBox(const VxBBox& box) {
    const VxPoint& a = box.GetMinPnt();
    const VxPoint& b = box.GetMaxPnt();
    const VxPoint c[8] = {VxPoint(a[0], a[1], a[2]), VxPoint(b[0], a[1], a[2]),
                          VxPoint(b[0], b[1], a[2]), VxPoint(a[0], b[1], a[2]),
                          VxPoint(a[0], a[1], b[2]), VxPoint(b[0], a[1], b[2]),
                          VxPoint(b[0], b[1], b[2]), VxPoint(a[0], b[1], b[2])};
    for (int i = 0; i < 4; ++i) {
        m_edges[i]->SetStartPoint(c[i]);
        m_edges[i]->SetStopPoint(c[(i + 1) % 4]);
        m_edges[4 + i]->SetStartPoint(c[4 + i]);
        m_edges[4 + i]->SetStopPoint(c[4 + (i + 1) % 4]);
        m_edges[8 + i]->SetStartPoint(c[i]);
        m_edges[8 + i]->SetStopPoint(c[4 + i]);
    }
}

void VxAuxBox::SetEntity(VxEntity* entity) {
    m_entity = entity;
    if (entity != nullptr) {
        SetBox(entity->GetBBox());
    }
}

void VxAuxBox::Draw() {
    if (!IsVisible()) {
        return;
    }
    const std::set<DrawInfo_s> infos = VxTransformMatrix::GetInstance()->GetDrawInfos(m_entity);
    if (!infos.empty()) {
        DrawCore(&infos.begin()->matrix);
    } else {
        DrawCore(nullptr);
    }
}

void VxAuxBox::DrawCore(const VxMatrix* placement) {
    if (placement != nullptr) {
        double m[16];
        placement->ToArray(m);
        glMatrixMode(GL_MODELVIEW);
        glPushMatrix();
        glMultMatrixd(m);
    }
    for (VxAuxLine* e : m_edges) {
        e->Draw();
    }
    if (placement != nullptr) {
        glMatrixMode(GL_MODELVIEW);
        glPopMatrix();
    }
}

void VxAuxBox::DrawHighlight() {
    if (!IsVisible()) {
        return;
    }
    for (VxAuxLine* e : m_edges) {
        e->DrawHighlight();
    }
}

bool VxAuxBox::HitTest(int x, int y) {
    for (VxAuxLine* e : m_edges) {
        if (e->HitTest(x, y)) {
            return true;
        }
    }
    return false;
}
