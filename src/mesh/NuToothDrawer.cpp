// NuToothDrawer: queue or draw each placement of a tooth.
#include <mesh/NuToothDrawer.h>

#include <GL/glew.h>

#include <frame/NuRenderStatus.h>
#include <frame/VxDIBLoader.h>
#include <frame/VxRenderEnums.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxColor.h>
#include <interfaces/VxTooth.h>
#include <mesh/VxFixedDrawSteps.h>
#include <mesh/VxFixedMaterial.h>
#include <mesh/VxMaterialIni.h>
#include <mesh/VxVBOHandleMgr.h>
#include <aux/VxAuxObject.h>
#include <overlays/VxCacheStuff.h>
#include <shader/NuRenderMaterial.h>
#include <shader/NuViewTransforms.h>
#include <shader/RenderV1.h>

#include <glm/glm.hpp>

#include <optional>

namespace {
constexpr GLbitfield kAttribs = 0x41; // current, lighting
constexpr GLint kStencilTooth = 2;
constexpr float kLimitedAlpha = 102.0f;

VxFixedDrawSteps::Bitmap& TeethBitmap() {
    static VxFixedDrawSteps::Bitmap bitmap(L"\\teeth.bmp");
    return bitmap;
}

// The old fixed texture set-up, done and undone at once: the lit programs do not sample it.
void TouchFixedTexture(VxFixedDrawSteps::Bitmap& bitmap, const VxVBOHandle& handle) {
    GLint previous = 0;
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &previous);
    GLint previousBuffer = 0;
    glGetIntegerv(GL_ARRAY_BUFFER_BINDING, &previousBuffer);
    if (bitmap.texture == 0) {
        glGenTextures(1, &bitmap.texture);
    }
    glBindTexture(GL_TEXTURE_2D, bitmap.texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, bitmap.image->width, bitmap.image->height, 0, GL_RGB,
                 GL_UNSIGNED_BYTE, bitmap.image->pixels);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glBindBuffer(GL_ARRAY_BUFFER, handle.GetTextureHandle());
    glTexCoordPointer(3, GL_FLOAT, 0, nullptr);
    glBindBuffer(GL_ARRAY_BUFFER, static_cast<GLuint>(previousBuffer));
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(previous));
}
} // namespace

NuToothDrawer::~NuToothDrawer() = default;

void NuToothDrawer::Draw(VxEntity* entity) {
    VxTooth* tooth = dynamic_cast<VxTooth*>(entity);
    if (tooth == nullptr ||
        !VxFixedDrawSteps::ShowTest(tooth, m_view, tooth->IsUp(), Display_Selec_UpperTeeth,
                                    Display_Selec_LowerTeeth)) {
        return;
    }
    NuRenderStatus::GetInstance()->Set_bIsUpdateVBO(tooth->IsUpdateVBO());
    if (tooth->IsUpdateVBO()) {
        VxVBOHandleMgr::GetInstance()->BuildVBO(tooth);
    }
    if (RenderV1::GetInstance()->objectQueue.empty()) {
        m_queuedPlacements.clear(); // the last batch is drawn: nothing points here any more
    }
    const VxFixedDrawSteps::PlacementRule rule =
        VxFixedDrawSteps::RuleFor(VxFixedDrawSteps::Kind_Tooth, m_view, false);
    for (const VxPlacement& placement : VxFixedDrawSteps::Placements(tooth, rule)) {
        DrawObject(tooth, placement);
    }
}

void NuToothDrawer::DrawObject(VxTooth* tooth, const VxPlacement& placement) {
    RenderV1* renderer = RenderV1::GetInstance();
    NuRenderMaterial material;
    material.SetToothDefault();
    glm::mat4 matrix(1.0f);
    const VxMatrix* xform = nullptr;
    std::optional<VxFixedDrawSteps::CurrentColourKeeper> keepColour;
    if (placement.limited) {
        keepColour.emplace();
    }
    glPushAttrib(kAttribs);
    glStencilFunc(GL_ALWAYS, kStencilTooth, 0xFF);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    const bool textured = TeethBitmap().Active();
    if (textured) {
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    }
    if (placement.hasMatrix) {
        matrix = NuViewTransforms::FromMatrix(placement.matrix);
        m_queuedPlacements.push_back(placement.matrix);
        xform = &m_queuedPlacements.back();
    }
    VxFixedDrawSteps::PushPlacement(placement);
    if (placement.limited) {
        VxFixedDrawSteps::BeginLimited();
    }

    bool immediate = false;
    if (placement.limited) {
        const VxColor c = VxColor::GetLimitedColor();
        material.SetLimited(static_cast<float>(c.GetR()), static_cast<float>(c.GetG()),
                            static_cast<float>(c.GetB()), kLimitedAlpha);
        glColor4ub(static_cast<GLubyte>(c.GetR()), static_cast<GLubyte>(c.GetG()),
                   static_cast<GLubyte>(c.GetB()), static_cast<GLubyte>(kLimitedAlpha));
    } else if (tooth->IsSelected()) {
        material.SetToothSelected();
        VxFixedMaterial::ToothSelected().Apply();
        immediate = true;
    } else if (tooth->IsHighLight()) {
        material.SetToothHighlight();
        VxFixedMaterial::ToothHighlight().Apply();
    } else if (tooth->GetToothKind() == ToothKind_Implant) {
        material.SetToothKind2();
        VxFixedMaterial::ToothKind2().Apply();
    } else if (tooth->GetToothKind() == ToothKind_Pontic) {
        material.SetToothKind3();
        VxFixedMaterial::ToothKind3().Apply();
    } else if (tooth->GetToothKind() == ToothKind_Restored) {
        material.SetToothKind5();
        VxFixedMaterial::ToothKind5().Apply();
    } else if (tooth->IsLockShown()) {
        material.SetToothLocked();
        VxFixedMaterial::ToothLocked().Apply();
    } else {
        VxMaterialIni::ReadToothColorIni();
        VxFixedMaterial::Tooth().Apply();
    }

    const VxVBOHandle& handle = VxVBOHandleMgr::GetInstance()->GetVBOHandle(tooth);
    const DisplayMode_e mode = VxRenderStatus::GetInstance()->GetDisplayMode();
    if (mode == DisplayMode_SolidEdges || mode == DisplayMode_Solid) {
        if (textured && handle.GetTextureHandle() != 0) {
            TouchFixedTexture(TeethBitmap(), handle);
        }
        if (immediate) {
            renderer->DrawWithMaterialWithMatrix(tooth, material, matrix);
        } else {
            renderer->SendMaterialMatrix(tooth, material, matrix, placement.limited, xform);
        }
    }
    VxFixedDrawSteps::RasteriseLines(handle, tooth);

    if (placement.limited) {
        VxFixedDrawSteps::EndLimited();
    }
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glPopAttrib();
    if (immediate) {
        // A queued tooth's own overlay objects go out with the batch; this one's go here.
        std::vector<VxAuxObject*> stuff;
        VxCacheStuff::GetInstance()->GetDisplayStuffByTooth(tooth, stuff);
        for (VxAuxObject* object : stuff) {
            object->Draw();
        }
    }
    VxFixedDrawSteps::PopPlacement(placement);
}

void NuToothDrawer::DrawForSelect(VxEntity* entity, const CPoint& point) {
    VxTooth* tooth = dynamic_cast<VxTooth*>(entity);
    VxFixedDrawSteps::DrawForSelect(tooth, tooth, point);
}
