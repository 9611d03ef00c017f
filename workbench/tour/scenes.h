// The scenes of the tour, in the order in which they are played.
#pragma once

#include <span>

#include "workbench/tour/stage.h"

namespace workbench {

struct Scene {
    const char* name;
    const char* title;
    const char* text;  // what it is about
    void (*play)(Stage& stage);
    bool (*isPossible)() = nullptr;  // null: always
};

std::span<const Scene> scenes();

void playFirstStart(Stage& stage);
void playStart(Stage& stage);
void playViewTurn(Stage& stage);
void playMoveMode(Stage& stage);
void playTranslation(Stage& stage);
void playGroupTurn(Stage& stage);
void playRelease(Stage& stage);
void playTreeScrolling(Stage& stage);
void playListScrolling(Stage& stage);
void playCommandByMacro(Stage& stage);
void playCommandByMapkey(Stage& stage);
void playStandardViews(Stage& stage);
void playToggles(Stage& stage);
void playPanel(Stage& stage);
void playDaemonLoss(Stage& stage);
void playInstaller(Stage& stage);
bool isPackageThere();  // packaging/package.sh has made an installer
void playTrouble(Stage& stage);
void playFirstContact(Stage& stage);

}  // namespace workbench
