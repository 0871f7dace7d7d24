// VxAppAuxDemo: a sample of the aux objects placed on a patient, so that a host developer sees
// each kind drawn over real teeth: a sphere half inside a tooth with its hidden half showing, a
// dashed box around a tooth, a single and a dual arrow, a two-outline polyline (one outline
// crossing itself), an arch curve and a yellow pipe, a translucent plane and a ruled grid, a
// circle, a torus arc, and a depth-coloured patch of a tooth's faces. Positions come from the
// teeth's own geometry at the case's current placements, so any case with the upper and lower
// incisors, canines and lateral incisors works.
#pragma once

#include <interfaces/VxPoint.h>

#include <string>

class VxAuxObject;
class VxAuxRender;
class VxCase;

// Adds the sample to the registry (which owns it from then on). Returns the number of objects
// added, 0 with `error` set when the case lacks the teeth the sample stands on. `focus`
// receives the middle of the sample (between the incisors), for framing the view.
int VxAppAddAuxDemo(VxCase& c, VxAuxRender* aux, VxPoint& focus, std::string& error);
// One line naming the kind of a hit aux object ("arrow", "polyline point 3", ...).
std::string VxAppDescribeAux(const VxAuxObject* object);
