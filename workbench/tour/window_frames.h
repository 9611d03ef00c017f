// Title bars for the host's windows where no window manager draws them.
#pragma once

namespace workbench {

// On a virtual display nobody frames windows, and Wine leaves the place of a title bar black there. As long as this
// lives, Wine frames the windows of hosts that are started itself. Elsewhere than under Wine nothing is done.
class WindowFrames {
  public:
    WindowFrames();
    ~WindowFrames();
    WindowFrames(const WindowFrames&) = delete;
    WindowFrames& operator=(const WindowFrames&) = delete;
};

}  // namespace workbench
