// VxFontOutlines: FreeType outline -> flattened contours -> GLU tessellation -> display list.
#include <platform/VxFontOutlines.h>

#include <GL/glew.h>
#include <GL/glu.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <vector>

namespace {

using Vertex = std::array<double, 3>;
using Contour = std::vector<Vertex>;

// Flattens one outline into contours in em units. Curves are cut into as many straight pieces as
// keep the chord error under `tolerance` (the second difference of the control points bounds it).
struct Flattener {
    double scale = 1.0;
    double tolerance = 0.005;
    std::vector<Contour> contours;
    double px = 0.0;
    double py = 0.0;

    void Add(double x, double y) {
        contours.back().push_back({x, y, 0.0});
        px = x;
        py = y;
    }
    int Steps(double ddx, double ddy, double factor) const {
        double d = std::sqrt(ddx * ddx + ddy * ddy) * factor;
        int n = int(std::ceil(std::sqrt(d / tolerance)));
        return std::clamp(n, 1, 64);
    }

    static int MoveTo(const FT_Vector* to, void* user) {
        auto* f = static_cast<Flattener*>(user);
        f->contours.emplace_back();
        f->Add(to->x * f->scale, to->y * f->scale);
        return 0;
    }
    static int LineTo(const FT_Vector* to, void* user) {
        auto* f = static_cast<Flattener*>(user);
        f->Add(to->x * f->scale, to->y * f->scale);
        return 0;
    }
    static int ConicTo(const FT_Vector* c, const FT_Vector* to, void* user) {
        auto* f = static_cast<Flattener*>(user);
        double x0 = f->px, y0 = f->py;
        double x1 = c->x * f->scale, y1 = c->y * f->scale;
        double x2 = to->x * f->scale, y2 = to->y * f->scale;
        int n = f->Steps(x0 - 2 * x1 + x2, y0 - 2 * y1 + y2, 0.25);
        for (int i = 1; i <= n; ++i) {
            double t = double(i) / n, u = 1.0 - t;
            f->Add(u * u * x0 + 2 * u * t * x1 + t * t * x2,
                   u * u * y0 + 2 * u * t * y1 + t * t * y2);
        }
        return 0;
    }
    static int CubicTo(const FT_Vector* c1, const FT_Vector* c2, const FT_Vector* to, void* user) {
        auto* f = static_cast<Flattener*>(user);
        double x0 = f->px, y0 = f->py;
        double x1 = c1->x * f->scale, y1 = c1->y * f->scale;
        double x2 = c2->x * f->scale, y2 = c2->y * f->scale;
        double x3 = to->x * f->scale, y3 = to->y * f->scale;
        double ax = std::max(std::fabs(x0 - 2 * x1 + x2), std::fabs(x1 - 2 * x2 + x3));
        double ay = std::max(std::fabs(y0 - 2 * y1 + y2), std::fabs(y1 - 2 * y2 + y3));
        int n = f->Steps(ax, ay, 0.75);
        for (int i = 1; i <= n; ++i) {
            double t = double(i) / n, u = 1.0 - t;
            double a = u * u * u, b = 3 * u * u * t, cc = 3 * u * t * t, d = t * t * t;
            f->Add(a * x0 + b * x1 + cc * x2 + d * x3, a * y0 + b * y1 + cc * y2 + d * y3);
        }
        return 0;
    }
};

// Vertices the tessellator makes where contours cross; they must live until the polygon ends.
struct TessState {
    std::deque<Vertex> extra;
    bool failed = false;
};

void TessBegin(GLenum type) {
    glBegin(type);
}
void TessEnd() {
    glEnd();
}
void TessVertex(void* data) {
    glVertex3dv(static_cast<const GLdouble*>(data));
}
void TessCombine(GLdouble coords[3], void* [4], GLfloat[4], void** out, void* user) {
    auto* state = static_cast<TessState*>(user);
    state->extra.push_back({coords[0], coords[1], coords[2]});
    *out = state->extra.back().data();
}
void TessError(GLenum, void* user) {
    static_cast<TessState*>(user)->failed = true;
}

// Drops the closing point that repeats the first, and contours too small to enclose anything.
void Tidy(std::vector<Contour>& contours) {
    for (Contour& c : contours) {
        if (c.size() > 1 && c.front() == c.back()) {
            c.pop_back();
        }
    }
    contours.erase(std::remove_if(contours.begin(), contours.end(),
                                  [](const Contour& c) { return c.size() < 3; }),
                   contours.end());
}

void EmitPolygons(std::vector<Contour>& contours) {
    GLUtesselator* tess = gluNewTess();
    if (tess == nullptr) {
        return;
    }
    TessState state;
    using Callback = void (*)();
    gluTessCallback(tess, GLU_TESS_BEGIN, reinterpret_cast<Callback>(&TessBegin));
    gluTessCallback(tess, GLU_TESS_END, reinterpret_cast<Callback>(&TessEnd));
    gluTessCallback(tess, GLU_TESS_VERTEX, reinterpret_cast<Callback>(&TessVertex));
    gluTessCallback(tess, GLU_TESS_COMBINE_DATA, reinterpret_cast<Callback>(&TessCombine));
    gluTessCallback(tess, GLU_TESS_ERROR_DATA, reinterpret_cast<Callback>(&TessError));
    // TrueType and PostScript faces wind their outer contours in opposite senses; non-zero
    // filling treats both alike and still leaves the counters of "O" or "8" open.
    gluTessProperty(tess, GLU_TESS_WINDING_RULE, GLU_TESS_WINDING_NONZERO);
    gluTessNormal(tess, 0.0, 0.0, 1.0);
    glNormal3d(0.0, 0.0, 1.0);
    gluTessBeginPolygon(tess, &state);
    for (Contour& c : contours) {
        gluTessBeginContour(tess);
        for (Vertex& v : c) {
            gluTessVertex(tess, v.data(), v.data());
        }
        gluTessEndContour(tess);
    }
    gluTessEndPolygon(tess);
    gluDeleteTess(tess);
}

void EmitLines(const std::vector<Contour>& contours) {
    for (const Contour& c : contours) {
        glBegin(GL_LINE_LOOP);
        for (const Vertex& v : c) {
            glVertex3dv(v.data());
        }
        glEnd();
    }
}

} // namespace

bool VxFontOutlines::UseFontOutlines(FT_FaceRec_* face, unsigned long first, unsigned long count,
                                     unsigned listBase, float deviation, float /*extrusion*/,
                                     int format, GLYPHMETRICSFLOAT* metrics, bool embolden) {
    if (face == nullptr || !FT_IS_SCALABLE(face) || face->units_per_EM == 0) {
        return false;
    }
    const double em = face->units_per_EM;
    for (unsigned long k = 0; k < count; ++k) {
        const unsigned long ch = first + k;
        FT_UInt index = FT_Get_Char_Index(face, FT_ULong(ch));
        Flattener flat;
        flat.scale = 1.0 / em;
        flat.tolerance = deviation > 0.0f ? double(deviation) : 0.002;
        double advance = 0.0;
        GLYPHMETRICSFLOAT gm;
        if (FT_Load_Glyph(face, index, FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP | FT_LOAD_NO_HINTING) ==
                0 &&
            face->glyph->format == FT_GLYPH_FORMAT_OUTLINE) {
            FT_GlyphSlot slot = face->glyph;
            if (embolden) {
                // Bold drawn from a regular face: the outline grows by a 24th of the em, as the
                // rasterised text of the same font does.
                FT_Outline_Embolden(&slot->outline, FT_Pos(em / 24.0));
            }
            FT_Outline_Funcs funcs{};
            funcs.move_to = &Flattener::MoveTo;
            funcs.line_to = &Flattener::LineTo;
            funcs.conic_to = &Flattener::ConicTo;
            funcs.cubic_to = &Flattener::CubicTo;
            FT_Outline_Decompose(&slot->outline, &funcs, &flat);
            advance = slot->metrics.horiAdvance / em;
            gm.gmfBlackBoxX = float(slot->metrics.width / em);
            gm.gmfBlackBoxY = float(slot->metrics.height / em);
            gm.gmfptGlyphOrigin.x = float(slot->metrics.horiBearingX / em);
            gm.gmfptGlyphOrigin.y = float(slot->metrics.horiBearingY / em);
        }
        gm.gmfCellIncX = float(advance);
        Tidy(flat.contours);

        glNewList(listBase + GLuint(k), GL_COMPILE);
        if (format == WGL_FONT_LINES) {
            EmitLines(flat.contours);
        } else {
            EmitPolygons(flat.contours);
        }
        glTranslated(advance, 0.0, 0.0);
        glEndList();
        if (metrics != nullptr) {
            metrics[k] = gm;
        }
    }
    return true;
}
