// VxFixedDrawSteps: the shared body of the fixed-function drawers.
#include <mesh/VxFixedDrawSteps.h>

#include <GL/glew.h>

#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxAttachment.h>
#include <interfaces/VxFilledWedge.h>
#include <interfaces/VxGum.h>
#include <interfaces/VxJaw.h>
#include <interfaces/VxMesh.h>
#include <interfaces/VxModel.h>
#include <interfaces/VxTooth.h>
#include <interfaces/VxTransformMatrix.h>
#include <mesh/VxDrawerFiles.h>
#include <mesh/VxSelectNames.h>
#include <mesh/VxVBOHandle.h>
#include <platform/VxFileSystem.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <cstdlib>

namespace {

constexpr GLbitfield kLimitedAttribs = 0x6000; // enable, colour buffer
// Point size lives in the point group, which the lighting push does not cover; it goes on the
// same push so that points mode leaves the size as it found it.
constexpr GLbitfield kPointAttribs = GL_LIGHTING_BIT | GL_POINT_BIT;
// Near vertices of a pick lie strictly within this many pixels of the point on each axis.
constexpr int kNearVertexPixels = 10;

bool g_hasSelectProjection = false;
double g_selectProjection[16];

void BindVertexBuffer(unsigned int buffer) {
    glBindBufferARB(GL_ARRAY_BUFFER, buffer);
    glVertexPointer(3, GL_FLOAT, 0, nullptr);
}

// Edges and points need only positions: the normal and texture arrays that the caller enabled
// would otherwise be read from wherever their pointers were last left.
void PositionsOnly() {
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
}

void DrawEdges(const VxVBOHandle& handle, VxMesh* mesh) {
    if (handle.GetEdgeHandle() == 0) {
        return;
    }
    VxFixedDrawSteps::CurrentColourKeeper keepColour;
    glPushAttrib(GL_LIGHTING_BIT);
    glDisable(GL_LIGHTING);
    glDisable(GL_LIGHT0);
    glColor3f(0.0f, 0.0f, 0.0f);
    PositionsOnly();
    BindVertexBuffer(handle.GetEdgeHandle());
    glDrawArrays(GL_LINES, 0, 2 * mesh->GetEdgeCount());
    glPopAttrib();
}

void DrawPoints(const VxVBOHandle& handle, VxMesh* mesh) {
    if (handle.GetVertexHandle() == 0) {
        return;
    }
    VxFixedDrawSteps::CurrentColourKeeper keepColour;
    glPushAttrib(kPointAttribs);
    glDisable(GL_LIGHTING);
    glDisable(GL_LIGHT0);
    glPointSize(5.0f);
    glColor3f(1.0f, 0.0f, 0.0f);
    PositionsOnly();
    BindVertexBuffer(handle.GetVertexHandle());
    glDrawArrays(GL_POINTS, 0, mesh->GetVertexCount());
    glPopAttrib();
}

void BindFaceBuffers(const VxVBOHandle& handle) {
    BindVertexBuffer(handle.GetPosHandle());
    glBindBufferARB(GL_ARRAY_BUFFER, handle.GetNormalHandle());
    glNormalPointer(GL_FLOAT, 0, nullptr);
}

bool IsSolid(DisplayMode_e mode) {
    return mode == DisplayMode_SolidEdges || mode == DisplayMode_Solid;
}

// The array-buffer binding belongs to the caller's client state, which no attribute push of the
// drawers covers.
class ArrayBufferKeeper {
public:
    ArrayBufferKeeper() { glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &m_binding); }
    ~ArrayBufferKeeper() { glBindBufferARB(GL_ARRAY_BUFFER, static_cast<GLuint>(m_binding)); }

private:
    GLint m_binding = 0;
};

} // namespace

VxFixedDrawSteps::PlacementRule VxFixedDrawSteps::RuleFor(Kind kind, const VxViewRegion* view,
                                                          bool isCmp) {
    if (kind == Kind_Jaw) {
        return Placement_All;
    }
    const Display_Mode mode = VxViewManager::GetInstance()->GetDisplayMode();
    if (mode == Display_Mode_Normal) {
        return Placement_All;
    }
    if (mode != Display_Mode_Compare) {
        return Placement_Nothing;
    }
    const unsigned int step =
        view != nullptr ? view->GetDisplayStep() : static_cast<unsigned int>(Display_Step_Both);
    switch (step) {
    case Display_Step_Initial:
        if (kind == Kind_Tooth) {
            return Placement_Once;
        }
        return isCmp ? Placement_Nothing : Placement_Once;
    case Display_Step_Final:
        if (kind == Kind_Tooth) {
            return Placement_LimitedOnly;
        }
        if (kind == Kind_Gum) {
            return isCmp ? Placement_Once : Placement_Nothing;
        }
        return isCmp ? Placement_LimitedOnly : Placement_Nothing;
    case Display_Step_Both:
        return Placement_All;
    default:
        return Placement_Nothing;
    }
}

std::vector<VxPlacement> VxFixedDrawSteps::Placements(VxEntity* entity, PlacementRule rule) {
    std::vector<VxPlacement> out;
    if (rule == Placement_Nothing) {
        return out;
    }
    if (rule == Placement_Once) {
        out.emplace_back();
        return out;
    }
    const std::set<DrawInfo_s> infos = VxTransformMatrix::GetInstance()->GetDrawInfos(entity);
    if (infos.empty()) {
        out.emplace_back();
        return out;
    }
    for (const DrawInfo_s& info : infos) {
        if (rule == Placement_LimitedOnly && !info.limited) {
            continue;
        }
        VxPlacement p;
        p.hasMatrix = true;
        p.matrix = info.matrix;
        // Limit positions of the final step are drawn opaque.
        p.limited = rule == Placement_All && info.limited;
        out.push_back(p);
    }
    return out;
}

bool VxFixedDrawSteps::ShowTest(VxObject* object, const VxViewRegion* view, bool up,
                                unsigned int upBit, unsigned int lowBit) {
    const unsigned int mask =
        view != nullptr ? view->GetUpDownSelec() : static_cast<unsigned int>(Display_Selec_All);
    if ((up && (mask & upBit) == 0) || (!up && (mask & lowBit) == 0)) {
        object->SetShelter(1);
        return false;
    }
    object->SetShelter(0);
    return true;
}

void VxFixedDrawSteps::ShelterAsShownIn(VxModel* model, const VxViewRegion* view) {
    if (model == nullptr) {
        return;
    }
    // The same bits and jaw sources as the drawers' own show tests.
    std::vector<VxEntity*> entities;
    model->GetEntities(entities);
    for (VxEntity* entity : entities) {
        if (entity == nullptr || entity->IsDeleted() || !entity->IsVisible()) {
            continue;
        }
        if (auto* tooth = dynamic_cast<VxTooth*>(entity)) {
            ShowTest(tooth, view, tooth->IsUp(), Display_Selec_UpperTeeth,
                     Display_Selec_LowerTeeth);
        } else if (auto* gum = dynamic_cast<VxGum*>(entity)) {
            ShowTest(gum, view, gum->IsUp(), Display_Selec_UpperGum, Display_Selec_LowerGum);
        } else if (auto* jaw = dynamic_cast<VxJaw*>(entity)) {
            ShowTest(jaw, view, jaw->IsUp(), Display_Selec_UpperJaw, Display_Selec_LowerJaw);
        } else if (auto* attachment = dynamic_cast<VxAttachment*>(entity)) {
            // A hidden tooth hides its attachments without sheltering them.
            if (attachment->GetTooth() != nullptr && attachment->GetTooth()->IsVisible()) {
                ShowTest(attachment, view, attachment->GetTooth()->IsUp(), Display_Selec_UpperTeeth,
                         Display_Selec_LowerTeeth);
            }
        } else if (auto* wedge = dynamic_cast<VxFilledWedge*>(entity)) {
            if (wedge->GetToothLeft() != nullptr) {
                ShowTest(wedge, view, wedge->GetToothLeft()->IsUp(), Display_Selec_UpperTeeth,
                         Display_Selec_LowerTeeth);
            }
        }
    }
}

VxFixedDrawSteps::CurrentColourKeeper::CurrentColourKeeper() {
    glGetFloatv(GL_CURRENT_COLOR, m_colour);
}

VxFixedDrawSteps::CurrentColourKeeper::~CurrentColourKeeper() {
    glColor4fv(m_colour);
}

void VxFixedDrawSteps::PushPlacement(const VxPlacement& placement) {
    if (!placement.hasMatrix) {
        return;
    }
    double m[16];
    placement.matrix.ToArray(m);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glMultMatrixd(m);
}

void VxFixedDrawSteps::PopPlacement(const VxPlacement& placement) {
    if (placement.hasMatrix) {
        glMatrixMode(GL_MODELVIEW);
        glPopMatrix();
    }
}

void VxFixedDrawSteps::BeginLimited() {
    glPushAttrib(kLimitedAttribs);
    glEnable(GL_COLOR_MATERIAL);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_BLEND);
}

void VxFixedDrawSteps::EndLimited() {
    glPopAttrib();
}

bool VxFixedDrawSteps::Bitmap::Active() {
    if (!PathFileExistsW(VxDrawerFiles::Path(suffix).Str().c_str())) {
        return false;
    }
    if (image == nullptr && !tried) {
        // Once per process: a file that does not decode would otherwise raise the loader's
        // message box at every frame.
        tried = true;
        image = LoadDIB(VxDrawerFiles::Path(suffix).Str().c_str());
    }
    return image != nullptr;
}

void VxFixedDrawSteps::Rasterise(const VxVBOHandle& handle, VxMesh* mesh, int faceCount,
                                 Bitmap* bitmap) {
    ArrayBufferKeeper keepBinding;
    const DisplayMode_e mode = VxRenderStatus::GetInstance()->GetDisplayMode();
    if (IsSolid(mode) && handle.GetPosHandle() != 0) {
        const bool textured = bitmap != nullptr && handle.GetTextureHandle() != 0;
        GLint previousTexture = 0;
        GLboolean wasTextured = GL_FALSE;
        if (textured) {
            glGetIntegerv(GL_TEXTURE_BINDING_2D, &previousTexture);
            wasTextured = glIsEnabled(GL_TEXTURE_2D);
            if (bitmap->texture == 0) {
                glGenTextures(1, &bitmap->texture);
            }
            glBindTexture(GL_TEXTURE_2D, bitmap->texture);
            // Uploaded at every draw, as the file may have been replaced; the image itself is
            // read once.
            glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, bitmap->image->width, bitmap->image->height, 0,
                         GL_RGB, GL_UNSIGNED_BYTE, bitmap->image->pixels);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
            glBindBufferARB(GL_ARRAY_BUFFER, handle.GetTextureHandle());
            glTexCoordPointer(3, GL_FLOAT, 0, nullptr);
            glEnable(GL_TEXTURE_2D);
        } else {
            glDisableClientState(GL_TEXTURE_COORD_ARRAY);
        }
        BindFaceBuffers(handle);
        glDrawArrays(GL_TRIANGLES, 0, faceCount * 3);
        if (textured) {
            if (!wasTextured) {
                glDisable(GL_TEXTURE_2D);
            }
            glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(previousTexture));
        }
    }
    if (mode == DisplayMode_SolidEdges || mode == DisplayMode_Edges) {
        DrawEdges(handle, mesh);
    }
    if (mode == DisplayMode_Points) {
        DrawPoints(handle, mesh);
    }
}

void VxFixedDrawSteps::RasteriseLines(const VxVBOHandle& handle, VxMesh* mesh) {
    ArrayBufferKeeper keepBinding;
    const DisplayMode_e mode = VxRenderStatus::GetInstance()->GetDisplayMode();
    if (mode == DisplayMode_SolidEdges || mode == DisplayMode_Edges) {
        DrawEdges(handle, mesh);
    }
    if (mode == DisplayMode_Points) {
        DrawPoints(handle, mesh);
    }
}

void VxFixedDrawSteps::RasteriseParts(const VxVBOHandle& handle, VxMesh* stdMesh,
                                      const std::vector<VxMatrix>& parts) {
    ArrayBufferKeeper keepBinding;
    const DisplayMode_e mode = VxRenderStatus::GetInstance()->GetDisplayMode();
    if (IsSolid(mode) && handle.GetPosHandle() != 0) {
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
        BindFaceBuffers(handle);
        glMatrixMode(GL_MODELVIEW);
        for (const VxMatrix& part : parts) {
            double m[16];
            part.ToArray(m);
            glPushMatrix();
            glMultMatrixd(m);
            glDrawArrays(GL_TRIANGLES, 0, 3 * stdMesh->GetFaceCount());
            glPopMatrix();
        }
    }
    if (mode == DisplayMode_SolidEdges || mode == DisplayMode_Edges) {
        DrawEdges(handle, stdMesh);
    }
    if (mode == DisplayMode_Points) {
        DrawPoints(handle, stdMesh);
    }
}

void VxFixedDrawSteps::SetSelectProjection(const double* projection16) {
    g_hasSelectProjection = projection16 != nullptr;
    if (g_hasSelectProjection) {
        for (int i = 0; i < 16; ++i) {
            g_selectProjection[i] = projection16[i];
        }
    }
}

// Names are object addresses (VxSelectNames), so the pick can hand back the entity, face, edge
// or vertex itself. Flagged placements are limit positions and are never picked.
void VxFixedDrawSteps::DrawForSelect(VxEntity* entity, VxMesh* mesh, const CPoint& point) {
    if (entity == nullptr || mesh == nullptr) {
        return;
    }
    VxRenderStatus* status = VxRenderStatus::GetInstance();
    const bool wholeEntity = status->ExistSelectType(entity->GetObjectType());
    const bool faces = status->ExistSelectType(ObjectType_Face);
    const bool edges = status->ExistSelectType(ObjectType_Edge);
    const bool vertices = status->ExistSelectType(ObjectType_Vertex);
    const std::vector<VxVertex>& vtx = mesh->GetVertices();
    const std::vector<VxFace>& faceList = mesh->GetFaces();
    const std::vector<VxEdge>& edgeList = mesh->GetEdges();

    std::vector<VxPlacement> placements = Placements(entity, Placement_All);
    for (const VxPlacement& placement : placements) {
        if (placement.limited) {
            continue;
        }
        PushPlacement(placement);
        if (wholeEntity) {
            glPushName(VxSelectNames::NameOf(entity));
            glBegin(GL_TRIANGLES);
            for (const VxFace& f : faceList) {
                for (int k = 0; k < 3; ++k) {
                    const VxPoint& p = vtx[f.GetVtxId(k)].GetPos();
                    glVertex3d(p[0], p[1], p[2]);
                }
            }
            glEnd();
            glPopName();
        }
        if (faces) {
            for (const VxFace& f : faceList) {
                glPushName(VxSelectNames::NameOf(&f));
                glBegin(GL_TRIANGLES);
                for (int k = 0; k < 3; ++k) {
                    const VxPoint& p = vtx[f.GetVtxId(k)].GetPos();
                    glVertex3d(p[0], p[1], p[2]);
                }
                glEnd();
                glPopName();
            }
        }
        if (edges) {
            for (const VxEdge& e : edgeList) {
                int a, b;
                e.Get2VtxId(a, b);
                glPushName(VxSelectNames::NameOf(&e));
                glBegin(GL_LINES);
                glVertex3d(vtx[a].GetPos()[0], vtx[a].GetPos()[1], vtx[a].GetPos()[2]);
                glVertex3d(vtx[b].GetPos()[0], vtx[b].GetPos()[1], vtx[b].GetPos()[2]);
                glEnd();
                glPopName();
            }
        }
        VxOpenGLRender* render = status->GetRender();
        if (vertices && render != nullptr &&
            VxViewManager::GetInstance()->GetActiveView() != nullptr) {
            // The pick window is loaded now; screen positions need the frame's projection.
            std::vector<const VxVertex*> near;
            glMatrixMode(GL_PROJECTION);
            glPushMatrix();
            if (g_hasSelectProjection) {
                glLoadMatrixd(g_selectProjection);
            }
            for (const VxVertex& v : vtx) {
                const VxPoint placed =
                    placement.hasMatrix ? placement.matrix.Transform(v.GetPos()) : v.GetPos();
                const CPoint s = render->MapModelPointToScreen(placed);
                if (std::abs(s.x - point.x) < kNearVertexPixels &&
                    std::abs(s.y - point.y) < kNearVertexPixels) {
                    near.push_back(&v);
                }
            }
            glPopMatrix();
            glMatrixMode(GL_MODELVIEW);
            for (const VxVertex* v : near) {
                glPushName(VxSelectNames::NameOf(v));
                glBegin(GL_POINTS);
                glVertex3d(v->GetPos()[0], v->GetPos()[1], v->GetPos()[2]);
                glEnd();
                glPopName();
            }
        }
        PopPlacement(placement);
    }
}
