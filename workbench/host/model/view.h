// How a model is looked at. Screen coordinates: pixels from the lower left corner of the graphics window, x right,
// y up, z towards the viewer.
#pragma once

#include "workbench/host/model/geometry.h"

namespace workbench {

class View {
  public:
    View();  // default orientation

    // Model to screen, with shift and scale in it.
    Transform matrix() const;

    // Rotation part only: rows are the images of the model's axes.
    const Transform& orientation() const { return mOrientation; }

    // Looks along another direction; the middle of what was fitted last stays in its place, so does the scale. False
    // when a row of the upper left 3x3 block is not of length 1, and nothing is changed.
    bool setOrientation(const Transform& orientation);
    void setDefaultOrientation();

    // Fills the window with the box, centred. An empty box is ignored.
    void refit(const Bounds& box);

    // Size of the window in pixels.
    void resize(int width, int height);
    int width() const { return mWidth; }
    int height() const { return mHeight; }

    void turn(Vec3 angles);          // about the screen's axes through the middle of what was fitted last, radians
    void pan(double dx, double dy);  // pixels
    void zoom(double factor);        // about the middle of the window; kept within sane limits

  private:
    Transform mOrientation;
    Vec3 mPivot;          // model point that `mShift` places
    Vec3 mShift;          // from the middle of the window, pixels
    double mScale = 1.0;  // pixels a model unit
    int mWidth = 800;
    int mHeight = 600;
};

// Orientation of a standard view ("front", "top", ...; "default" is the oblique one).
struct StandardView {
    const char* name;
    Transform orientation;
};
const StandardView* findStandardView(const char* name);

}  // namespace workbench
