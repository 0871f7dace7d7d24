// VxBenchScene: the scene most benchmark programs measure in. An off-screen window of the given
// size with its context, one full-window view, the synthetic patient (seed 1) installed and given
// to the renderer, seen from the front with its box's diagonal at 2.3 view units, and one frame
// drawn so that buffers and programs are made before anything is timed. Header-only: every
// bench/*.cpp is a program of its own.
#pragma once

#include <GL/glew.h>

#include <VxCase.h>
#include <VxSyntheticPatient.h>

#include <aux/VxAuxRender.h>
#include <frame/OpenGLVersion.h>
#include <frame/VxDIBLoader.h>
#include <frame/VxOpenGLRender.h>
#include <frame/VxRenderStatus.h>
#include <interfaces/VxBBox.h>
#include <interfaces/VxXForm.h>
#include <platform/VxNativeWindow.h>
#include <views/VxViewManager.h>
#include <views/VxViewRegion.h>

#include <memory>
#include <string>

struct VxBenchScene {
    std::unique_ptr<VxNativeWindow> window;
    std::unique_ptr<VxCase> patient;
    VxOpenGLRender* render = nullptr;
    VxAuxRender* aux = nullptr;
    VxBBox box;
    std::string error; // why the scene could not be made; benchmarks skip with it

    // False, with `error` set, when no GL context could be had.
    bool Open(int width, int height, bool shaderPath) {
        window = VxNativeWindow::CreateOffscreen(width, height);
        render = VxRenderStatus::GetInstance()->GetRender();
        aux = VxRenderStatus::GetInstance()->GetAuxRender();
        g_bDIBShowMessage = false;
        if (!render->Create(window.get(), 24, 8)) {
            error = "no GL context";
            return false;
        }
        OpenGLVersion::GetInstance()->Set_btestversion(shaderPath);
        render->ResizeViewport(width, height);
        VxViewManager* views = VxViewManager::GetInstance();
        views->Clear();
        views->SetTotalViewSize(width, height);
        views->CreateSingleView();
        patient = VxSyntheticPatient::Generate(1);
        patient->Install();
        render->SetModel(&patient->model);
        box = patient->model.GetBBox();
        VxXForm xf;
        xf.SetRotation(VxViewManager::GetFixedMatrix(VxViewManager::View_Front) *
                       VxViewManager::GetReferenceRotation(patient->model));
        xf.SetScale(2.3 / box.Diagonal());
        const VxPoint c = box.Center();
        xf.SetTranslation(VxVector(-c[0], -c[1], -c[2]));
        views->GetView(0)->SetXForm(xf);
        render->RenderScene(true);
        glFinish();
        return true;
    }

    // A point of the patient's box at fractions (u, v, w) of its extent.
    VxPoint InBox(double u, double v, double w) const {
        const VxPoint& a = box.GetMinPnt();
        const VxPoint& b = box.GetMaxPnt();
        return VxPoint(a[0] + u * (b[0] - a[0]), a[1] + v * (b[1] - a[1]),
                       a[2] + w * (b[2] - a[2]));
    }
};
