// minimal_host: the smallest complete host of vxrender. It makes an offscreen window of
// 1280 x 800, brings the renderer up in the order the library needs, shows the synthetic patient
// in the five-view layout over a background picture, picks a tooth with a click, reads the frame
// back and checks that the background, the four dividing lines, the model and the pick are where
// they belong. Exit status 0 means the picture and the pick are right.
//
// The part between the "host" markers is the README's host code, word for word (a test compares
// them).
//
// Usage: minimal_host [output.png]
#include <vxrender.h>

#include <VxSyntheticPatient.h>

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <vector>

namespace {

// A 64 x 64 24-bit BMP with a smooth two-colour gradient, written by hand so the example needs
// no files of its own.
bool WriteBackground(const char* path) {
    const int w = 64, h = 64, row = w * 3;
    std::vector<unsigned char> bmp(54 + row * h, 0);
    auto put32 = [&](int at, unsigned v) {
        for (int i = 0; i < 4; ++i)
            bmp[at + i] = static_cast<unsigned char>(v >> (8 * i));
    };
    bmp[0] = 'B';
    bmp[1] = 'M';
    put32(2, static_cast<unsigned>(bmp.size()));
    put32(10, 54);
    put32(14, 40);
    put32(18, w);
    put32(22, h);
    bmp[26] = 1;
    bmp[28] = 24;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            unsigned char* p = &bmp[54 + y * row + x * 3]; // B, G, R
            p[0] = static_cast<unsigned char>(150 + y);
            p[1] = static_cast<unsigned char>(110 + y / 2);
            p[2] = static_cast<unsigned char>(90);
        }
    }
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bmp.data()), static_cast<std::streamsize>(bmp.size()));
    return static_cast<bool>(out);
}

struct Pixels {
    int w, h;
    std::vector<unsigned char> rgba; // bottom-up, as GL reads them
    const unsigned char* At(int x, int y) const {
        return &rgba[(static_cast<size_t>(y) * w + x) * 4];
    }
};

int Diff(const unsigned char* a, const unsigned char* b) {
    int d = 0;
    for (int i = 0; i < 3; ++i)
        d = std::max(d, std::abs(a[i] - b[i]));
    return d;
}

// A dividing line is one or two pixels wide and differs from the background on both sides of
// it, which agree with each other. `vertical` tells which way the line runs.
bool IsLine(const Pixels& px, int x, int y, bool vertical) {
    const int dx = vertical ? 4 : 0, dy = vertical ? 0 : 4;
    if (x - dx < 0 || y - dy < 0 || x + dx >= px.w || y + dy >= px.h)
        return false;
    const unsigned char* a = px.At(x - dx, y - dy);
    const unsigned char* b = px.At(x + dx, y + dy);
    return Diff(a, b) <= 6 && Diff(px.At(x, y), a) > 10;
}

// The snapshot (rows from the top, COLORREF pixels) into the bottom-up RGBA rows of GL.
void ReadSnapshot(const CImage& shot, Pixels& px) {
    for (int y = 0; y < px.h; ++y) {
        for (int x = 0; x < px.w; ++x) {
            const COLORREF c = shot.GetPixel(x, px.h - 1 - y);
            unsigned char* p = &px.rgba[(static_cast<size_t>(y) * px.w + x) * 4];
            p[0] = GetRValue(c);
            p[1] = GetGValue(c);
            p[2] = GetBValue(c);
            p[3] = 255;
        }
    }
}

} // namespace

int main(int argc, char** argv) {
    const int W = 1280, H = 800;
    const char* background = "/tmp/vxrender_minimal_host_bk.bmp";
    if (!WriteBackground(background)) {
        std::fprintf(stderr, "minimal_host: cannot write %s\n", background);
        return 1;
    }
    auto window = VxNativeWindow::CreateOffscreen(W, H); // or VxNativeWindow::FromX11(dpy, win)
    if (!window) {
        std::fprintf(stderr, "minimal_host: no offscreen window\n");
        return 1;
    }

    // --- host: begin
    // 1-3. The renderer, its background (before Create, which loads it), the GL context.
    VxOpenGLRender* render = VxRenderStatus::GetInstance()->GetRender();
    render->SetBkGround(CString::FromUtf8(background));
    if (!render->Create(window.get(), 24, 8)) { // depth and stencil bits
        std::fprintf(stderr, "minimal_host: no OpenGL context\n");
        return 1;
    }

    // 4. The views: total size, then one view of the whole window.
    VxViewManager* views = VxViewManager::GetInstance();
    views->SetTotalViewSize(W, H);
    views->CreateSingleView();

    // 5. The model, to the renderer and to the selecter. The host owns it; the library keeps
    // pointers, so it must outlive every frame and pick.
    std::unique_ptr<VxCase> patient = VxSyntheticPatient::Generate(1);
    patient->Install(); // placements, plan, references
    render->SetModel(&patient->model);
    VxRenderStatus::GetInstance()->GetSelecter()->SetModel(&patient->model);

    // 6. The window's size, now and on every resize. Without it the renderer keeps its start-up
    // size of 100 x 100: a black picture with a small square, and picks that find nothing.
    render->ResizeViewport(W, H);
    views->SetTotalViewSize(W, H);
    views->AdjustSingleView();

    // The view's transform: the model seen from the front, its box diagonal a little under the
    // two view units that the view's shorter side spans.
    const VxBBox box = patient->model.GetBBox();
    const VxPoint centre = box.Center();
    VxXForm fit;
    fit.SetRotation(VxViewManager::GetFixedMatrix(VxViewManager::View_Front) *
                    VxViewManager::GetReferenceRotation(patient->model));
    fit.SetScale(1.8 / box.Diagonal());
    fit.SetTranslation(VxVector(-centre[0], -centre[1], -centre[2]));
    views->GetView(0)->SetXForm(fit);
    render->RenderScene(true); // a layout switch maps through the last frame's matrices
    views->SwitchTo5View(patient->model);

    // 7. A frame: the model, then the host's overlays, then Flush (glFlush and the swap).
    render->RenderScene(true);
    CImage* shot = render->CreateSnapshot(CRect(0, 0, W, H)); // before the swap
    render->Flush();

    // 8. A click (pixels, y from the top), right after a frame: the clicked view becomes the
    // active one, and the model's shelter flags are made those of that view, since a pick
    // follows the jaws that the last drawn view showed (here the lower arch, not the front).
    // Then the stencil under the cursor says what kind of thing is there, and DoSelect which.
    const CPoint click(W / 2 - 6, H / 5 - 12); // the front view, on an upper incisor
    views->SetActiveView(views->GetView(click));
    render->RenderScene(true);
    VxFixedDrawSteps::ShelterAsShownIn(&patient->model, views->GetActiveView());
    VxRenderStatus::GetInstance()->SetSelectType({ObjectType_Tooth});
    render->ProcessFeedback(click);
    VxObject* picked = VxRenderStatus::GetInstance()->GetSelecter()->DoSelect(click);
    // --- host: end

    if (shot == nullptr) {
        std::fprintf(stderr, "minimal_host: no snapshot\n");
        return 1;
    }
    if (argc > 1) {
        shot->Save(CString::FromUtf8(argv[1]));
    }
    Pixels px{W, H, std::vector<unsigned char>(static_cast<size_t>(W) * H * 4)};
    ReadSnapshot(*shot, px);
    delete shot;

    // Checks: background in a corner, the four lines of the five-view layout.
    int failures = 0;
    auto expect = [&](bool ok, const char* what) {
        if (!ok) {
            std::fprintf(stderr, "minimal_host: %s\n", what);
            ++failures;
        }
    };
    const unsigned char* corner = px.At(2, 2);
    expect(std::abs(corner[0] - 90) <= 3 && corner[2] > 140, "background not in the corner");
    // The model may cover parts of a line (it is drawn after the furniture), so each line is
    // sampled along its length and must show on most of it.
    auto lineShare = [&](int x0, int y0, int x1, int y1) {
        const bool vertical = x0 == x1;
        int hits = 0, n = 64;
        for (int i = 0; i < n; ++i) {
            int x = x0 + (x1 - x0) * i / (n - 1), y = y0 + (y1 - y0) * i / (n - 1);
            hits += IsLine(px, x, y, vertical) ? 1 : 0;
        }
        return static_cast<double>(hits) / n;
    };
    const int y35 = 3 * H / 5;
    expect(lineShare(0, y35, W - 1, y35) > 0.5, "no horizontal line at 3H/5");
    expect(lineShare(W / 2 - 1, 0, W / 2 - 1, y35 - 2) > 0.5,
           "no line at W/2 - 1 in the lower row");
    expect(lineShare(W / 3 - 1, y35 + 2, W / 3 - 1, H - 1) > 0.5,
           "no line at W/3 - 1 in the upper row");
    expect(lineShare(2 * W / 3 - 1, y35 + 2, 2 * W / 3 - 1, H - 1) > 0.5,
           "no line at 2W/3 - 1 in the upper row");
    // And no line where the layout has none: the middle of the lower row's left view.
    expect(lineShare(W / 4, 2, W / 4, y35 / 4) < 0.2, "a line where the layout has none");
    // The model shows: each view has pixels that are not background.
    int modelPixels = 0;
    for (int y = 0; y < H; y += 4)
        for (int x = 0; x < W; x += 4)
            modelPixels += px.At(x, y)[0] > 150 ? 1 : 0;
    expect(modelPixels > 2000, "too little of the model on screen");
    // The click on the upper incisors of the front view picks one of them.
    const VxTooth* tooth = picked && picked->IsKindOf(ObjectType_Tooth)
                               ? static_cast<const VxTooth*>(picked)
                               : nullptr;
    expect(tooth != nullptr, "the click on the front view picked no tooth");
    if (tooth) {
        const int fdi = tooth->GetFDI();
        expect(fdi == 11 || fdi == 12 || fdi == 21 || fdi == 22,
               "the click on the upper incisors picked another tooth");
        std::printf("minimal_host: the click picked tooth %d\n", fdi);
    }
    std::printf("minimal_host: %s (%d views, GL %s)\n", failures ? "FAILED" : "ok",
                static_cast<int>(views->GetAllViews().size()),
                reinterpret_cast<const char*>(glGetString(GL_VERSION)));
    return failures ? 1 : 0;
}
