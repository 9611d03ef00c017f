#include "workbench/panel/windows/buttons_page.h"

#include <algorithm>

#include "driver/obk_ctrlr.h"
#include "workbench/panel/controls.h"
#include "workbench/panel/windows/texts.h"

namespace workbench {
namespace {

struct Special {
    Text label;
    std::int32_t event;
};
constexpr Special kSpecials[ButtonsPage::kSpecialCount] = {
    {Text::front, kEventSpecialFirst1}, {Text::right, kEventSpecialFirst1 + 1}, {Text::bottom, kEventSpecialFirst1 + 2},
    {Text::fit, kEventSpecialLast1},    {Text::back, kEventSpecialFirst2},      {Text::left, kEventSpecialFirst2 + 1},
    {Text::top, kEventSpecialLast2},
};

constexpr DWORD kStyle = WS_TABSTOP | BS_PUSHBUTTON;

}  // namespace

ButtonsPage::ButtonsPage(HWND parent, Desk& desk) : mDesk(desk) {
    create(parent, L"ObkPanelPage", text(Text::buttonsPage), WS_CHILD | WS_CLIPCHILDREN, WS_EX_CONTROLPARENT);
    int id = panel::kFirstButton;
    for (HWND& button : mButtons) button = add(L"BUTTON", L"", kStyle | BS_MULTILINE, id++);
    mSpecialTitle = add(L"STATIC", text(Text::specialEvents), SS_LEFT);
    id = panel::kFirstSpecial;
    for (std::size_t i = 0; i < kSpecialCount; ++i)
        mSpecials[i] = add(L"BUTTON", text(kSpecials[i].label), kStyle, id++);
    refresh();
}

void ButtonsPage::refresh() {
    const std::string mode = mDesk.modeTold();
    for (int number = 1; number <= kButtonCount; ++number) {
        const std::wstring label = mDesk.labelOf(mode, number, false);
        std::wstring caption = std::to_wstring(number) + L"\n" + (label.empty() ? text(Text::unbound) : label);
        for (std::size_t at = 0; (at = caption.find(L'&', at)) != caption.npos; at += 2) caption.insert(at, 1, L'&');
        setText(mButtons[static_cast<std::size_t>(number - 1)], caption);
    }
}

void ButtonsPage::layOut(int width, int height) {
    constexpr int kColumns = 3;
    const int gap = px(8), title = px(18), special = px(28);
    const int specialRows = width < px(480) ? 2 : 1;
    const int rows = kButtonCount / kColumns;
    const int below = title + specialRows * (special + gap) + gap;
    const int buttonHeight = std::clamp((height - below - gap) / rows - gap, px(30), px(90));
    const int buttonWidth = (width - gap) / kColumns - gap;
    for (int i = 0; i < kButtonCount; ++i) {
        place(mButtons[static_cast<std::size_t>(i)], gap + i % kColumns * (buttonWidth + gap),
              gap + i / kColumns * (buttonHeight + gap), buttonWidth, buttonHeight);
    }
    const int top = gap + rows * (buttonHeight + gap);
    place(mSpecialTitle, gap, top, width - 2 * gap, title);
    const int inRow = (static_cast<int>(kSpecialCount) + specialRows - 1) / specialRows;
    const int specialWidth = (width - gap) / inRow - gap;
    for (int i = 0; i < static_cast<int>(kSpecialCount); ++i) {
        place(mSpecials[static_cast<std::size_t>(i)], gap + i % inRow * (specialWidth + gap),
              top + title + i / inRow * (special + gap), specialWidth, special);
    }
}

LRESULT ButtonsPage::handle(UINT message, WPARAM wParam, LPARAM lParam) {
    const int id = LOWORD(wParam);
    if (message == WM_COMMAND && HIWORD(wParam) == BN_CLICKED) {
        if (id >= panel::kFirstButton && id < panel::kFirstButton + kButtonCount)
            mDesk.pressButton(id - panel::kFirstButton + 1);
        if (id >= panel::kFirstSpecial && id < panel::kFirstSpecial + static_cast<int>(kSpecialCount)) {
            mDesk.pressSpecial(kSpecials[id - panel::kFirstSpecial].event);
        }
        return 0;
    }
    return Pane::handle(message, wParam, lParam);
}

}  // namespace workbench
