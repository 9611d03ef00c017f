#include "tests/mnu/windows/resource_dll.h"

#include <windows.h>

bool makeResourceDll(const std::string& path, const std::string& templateDll,
                     const std::vector<DllResource>& resources) {
    constexpr WORD kNeutralLanguage = 0;
    if (!CopyFileA(templateDll.c_str(), path.c_str(), FALSE)) return false;
    const HANDLE update = BeginUpdateResourceA(path.c_str(), TRUE);
    if (!update) return false;
    bool isDone = true;
    for (const DllResource& resource : resources) {
        std::string bytes = resource.bytes;
        isDone &= UpdateResourceA(update, resource.type, resource.name, kNeutralLanguage, bytes.data(),
                                  static_cast<DWORD>(bytes.size())) != FALSE;
    }
    return EndUpdateResourceA(update, FALSE) != FALSE && isDone;
}
