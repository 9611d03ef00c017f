// The probe's window for those who steer it.
#pragma once

namespace probe {

inline constexpr const wchar_t* kWindowClass = L"OrbikonProbeWindow";

// Its list of tasks, in their order; the text below it; the two buttons.
enum WindowControl : int { kList = 1001, kText, kYes, kNo };

}  // namespace probe
