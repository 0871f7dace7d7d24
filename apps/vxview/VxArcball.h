// VxArcball: the turn of a left drag. Two points on the window's arcball (from
// VxOpenGLRender::MapScreenCoordToSphere, in view axes: x right, y up, z towards the eye) give
// the rotation that carries the direction of the first onto the second, which the viewer hands
// to VxViewManager::RotateView. It keeps no state and knows nothing of views.
#pragma once

#include <interfaces/VxMatrix.h>
#include <interfaces/VxPoint.h>
#include <interfaces/VxVector.h>

// 3 x 3; the identity when either point is at the centre of the sphere or the two are parallel.
VxMatrix VxArcballRotation(const VxPoint& from, const VxPoint& to);

// A drag across the screen in a view, turned into a model-space move for TranslateView: the view
// maps the model by rotation x scale x (p + translation), and the shorter side of the view spans
// two view units. dx to the right, dy downwards, in pixels.
VxVector VxPanToModel(const VxMatrix& rotation, double scale, int viewWidth, int viewHeight,
                      double dx, double dy);
