#include "workbench/tour/window_frames.h"

#include <windows.h>

namespace workbench {
namespace {

constexpr char kKey[] = "Software\\Wine\\AppDefaults\\creo_host.exe\\X11 Driver";
constexpr char kManaged[] = "Managed";  // by a window manager

bool isWine() { return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr; }

}  // namespace

WindowFrames::WindowFrames() {
    if (isWine()) RegSetKeyValueA(HKEY_CURRENT_USER, kKey, kManaged, REG_SZ, "N", sizeof "N");
}

WindowFrames::~WindowFrames() {
    if (isWine()) RegDeleteKeyValueA(HKEY_CURRENT_USER, kKey, kManaged);
}

}  // namespace workbench
