// What the panel says, in English and German. User-interface thread.
#pragma once

#include <cstddef>

namespace workbench {

enum class Text : std::size_t {
    title,
    buttonsPage,
    bindingsPage,
    devicePage,
    capHint,
    hold,
    release,
    gain,
    curve,
    noDaemon,
    motionIdle,
    motionView,
    motionComponents,
    motionScrolling,
    noMode,
    specialEvents,
    front,
    right,
    bottom,
    fit,
    back,
    left,
    top,
    unbound,
    missing,
    inherited,
    allModes,
    search,
    bind,
    unbind,
    undo,
    button,
    command,
    commandName,
    found,
    noMenuFile,
    partialMenuFile,
    devices,
    rotationMode,
    contextFlag,
    apply,
    daemonDies,
    daemonReturns,
    applications,
    noApplication,
    recording,
    record,
    count,
};

void setGerman(bool isGerman);
const wchar_t* text(Text which);

}  // namespace workbench
