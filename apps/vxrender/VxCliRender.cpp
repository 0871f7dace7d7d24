// VxCliRender: the rendering half of vxrender.
//
// A run:
//   1. the render path asked for (checked again against the context's version once it exists);
//   2. read the case (or make the synthetic patient);
//   3. an off-screen window of the picture's size, the library's context on it;
//   4. teeth marked, display mode, layout, jaws;
//   5. per step: the step, one frame, the picture from the back buffer.
// Whether a step or tooth exists is known only once the case is read, so those values are
// checked here, not by the parser.
#include "VxCliRender.h"
#include "VxAppEditor.h"
#include "VxAppOverlays.h"
#include "VxAppOverlays2.h"

#include <VxCaseIO.h>

#include "VxAppCase.h"
#include "VxAppHandle.h"
#include "VxAppScene.h"

#include <VxCase.h>

#include <interfaces/CPoint.h>
#include <interfaces/VxObject.h>
#include <platform/VxNativeWindow.h>

#include <cstdio>
#include <filesystem>
#include <vector>

namespace {

std::string StepRange(int count) {
    return count == 1 ? "only step 0" : "steps 0 to " + std::to_string(count - 1);
}

// The steps to draw, or empty with `error` set.
std::vector<int> ResolveSteps(const VxCliSteps& steps, int current, int count, std::string& error) {
    std::vector<int> out;
    switch (steps.kind) {
    case VxCliSteps::Kind::Current:
        out.push_back(std::min(current, count - 1));
        break;
    case VxCliSteps::Kind::Last:
        out.push_back(count - 1);
        break;
    case VxCliSteps::Kind::All:
        for (int s = 0; s < count; ++s) {
            out.push_back(s);
        }
        break;
    case VxCliSteps::Kind::One:
    case VxCliSteps::Kind::Range:
        if (steps.last >= count) {
            error = "--step: the case has " + StepRange(count) + ", not step " +
                    std::to_string(steps.last);
            return {};
        }
        for (int s = steps.first; s <= steps.last; ++s) {
            out.push_back(s);
        }
        break;
    }
    return out;
}

} // namespace

int VxCliRender(const VxCliOptions& options, std::string& error) {
    VxAppScene scene;
    std::string pathError;
    if (!scene.SetRenderPath(options.renderPath, pathError)) {
        error = "--path " + std::string(VxAppNameOf(kVxAppRenderPaths, options.renderPath)) + ": " +
                pathError;
        return 2;
    }

    std::unique_ptr<VxCase> c = VxAppLoadCase(options.caseDir, options.seed, error);
    if (!c) {
        return 1;
    }
    if (!options.writeCase.empty()) {
        std::string writeError;
        if (!VxCaseIO::Write(*c, options.writeCase, writeError)) {
            error = "--write-case: " + writeError;
            return 1;
        }
        if (!options.quiet) {
            std::printf("%s/case.json\n", options.writeCase.c_str());
        }
    }

    std::unique_ptr<VxNativeWindow> window =
        VxNativeWindow::CreateOffscreen(options.width, options.height);
    if (!scene.Open(window.get(), options.width, options.height, options.background, error)) {
        return 1;
    }
    // Now the context's version is known: a context below the test draws with the fixed path.
    if (!scene.SetRenderPath(options.renderPath, pathError) && !options.quiet) {
        std::fprintf(stderr, "vxrender: --path shader: %s\n", pathError.c_str());
    }
    scene.SetCase(c.get());

    for (int fdi : options.selectFdi) {
        if (!scene.SelectTooth(fdi, true)) {
            error = "--select: the case has no tooth " + std::to_string(fdi);
            return 1;
        }
    }
    for (int fdi : options.highlightFdi) {
        if (!scene.HighlightTooth(fdi, true)) {
            error = "--highlight: the case has no tooth " + std::to_string(fdi);
            return 1;
        }
    }
    scene.SetAxisCross(!options.noAxis);
    if (options.auxDemo && !scene.SetAuxDemo(true, error)) {
        error = "--aux-demo: " + error;
        return 1;
    }
    const std::vector<int> steps =
        ResolveSteps(options.steps, scene.GetStep(), scene.StepCount(), error);
    if (steps.empty()) {
        return 1;
    }

    scene.SetDisplay(options.display);
    scene.SetLayout(options.layout);
    scene.SetJaws(options.jaws);
    VxAppHandle handle;
    VxAppHandleChoice handleChoice;
    if (VxAppParseHandle(options.handle, handleChoice)) {
        const int fdi = options.selectFdi.empty() ? VxAppHandle::DefaultTooth(scene)
                                                  : options.selectFdi.front();
        if (!handle.Attach(scene, fdi, handleChoice, error)) {
            error = "--handle: " + error;
            return 1;
        }
        handle.FocusView(2.5);
    }
    if (options.picture != VxAppPictureKind::None && !scene.SetPicture(options.picture, error)) {
        error = "--picture: " + error;
        return 1;
    }
    for (const std::string& name : options.overlays) {
        // The cache's labels, contacts and grid are placed by their own host code.
        if (VxAppOverlays2::IsName(name) ? !VxAppOverlays2::Set(scene, name, true, error)
                                         : !VxAppOverlays::Show(name, true)) {
            error = "--overlay " + name + ": " + error;
            return 1;
        }
    }

    for (const auto& [x, y] : options.picks) {
        if (x >= options.width || y >= options.height) {
            error = "--pick: " + std::to_string(x) + "," + std::to_string(y) +
                    " lies outside the picture";
            return 1;
        }
        scene.SetStep(steps.front());
        const CPoint pixel(x, y);
        VxObject* hit = scene.Pick(pixel, VxAppScene::PickKind::Entity);
        if (hit) {
            hit->SetSelected(1);
        }
        if (!options.quiet) {
            std::printf("pick %d,%d: %s\n", x, y, scene.Describe(hit).c_str());
        }
    }

    const bool several = steps.size() > 1;
    VxAppEditor editor;
    if (options.editor && options.layout == VxAppLayout::Single) {
        VxAppEditor::FrameDentition(c->model, scene.ViewAt(CPoint(0, 0)));
    }
    for (int step : steps) {
        scene.SetStep(step);
        // Labels stand where the teeth of this step and layout put them; the grid takes the zoom.
        VxAppOverlays2::Refresh(scene);
        scene.RenderFrame();
        if (VxAppOverlays2::AfterFrame()) {
            scene.RenderFrame();
        }
        if (options.editor) {
            // The records are placed from the frame's matrices, then drawn with the next frame.
            editor.Start(&c->model);
            scene.RenderFrame();
        }
        const std::string path = VxCliOutputPath(options, step, several, steps.back());
        const std::filesystem::path parent = std::filesystem::path(path).parent_path();
        std::error_code ec;
        if (!parent.empty()) {
            std::filesystem::create_directories(parent, ec);
        }
        if (!scene.SaveSnapshot(path, error)) {
            if (ec) {
                error += " (" + ec.message() + ")";
            }
            return 1;
        }
        if (!options.quiet) {
            std::printf("%s\n", path.c_str());
        }
    }
    std::fflush(stdout);
    return 0;
}
