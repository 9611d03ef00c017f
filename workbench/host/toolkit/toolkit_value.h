// What a check command's callbacks get and set; opaque to the plug-in.
#pragma once

#include "toolkit/pro_toolkit.h"

struct uiCmdValue {
    ProBoolean state = PRO_B_FALSE;
};
