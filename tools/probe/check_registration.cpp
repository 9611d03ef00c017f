// Where Creo found the probe's entry and message file.
#include <system_error>

#include "tools/probe/checker.h"
#include "tools/probe/registrations.h"
#include "tools/seat/file.h"
#include "tools/seat/registration_file.h"
#include "tools/seat/registration_search.h"
#include "tools/seat/text.h"
#include "tools/seat/wide_text.h"

namespace probe {

namespace {

namespace fs = std::filesystem;

// Registration files that configuration files in the places of those name.
std::vector<fs::path> namedFiles(const std::vector<fs::path>& folders) {
    std::vector<fs::path> files;
    for (const fs::path& folder : folders) {
        for (const std::string& name : seat::namedRegistrationFiles(seat::readFile(folder / "config.pro").bytes)) {
            files.push_back(seat::pathOf(name));
        }
    }
    return files;
}

// The last item of the probe's menu in a menu bar; empty when it is not there.
std::wstring lastItemIn(HMENU bar) {
    for (int i = 0; i < GetMenuItemCount(bar); ++i) {
        wchar_t text[256] = L"";
        GetMenuStringW(bar, static_cast<UINT>(i), text, 256, MF_BYPOSITION);
        const HMENU menu = GetSubMenu(bar, i);
        if (std::wstring_view(text) != L"Orbikon Probe" || menu == nullptr) continue;
        wchar_t item[256] = L"";
        GetMenuStringW(menu, static_cast<UINT>(GetMenuItemCount(menu) - 1), item, 256, MF_BYPOSITION);
        return item;
    }
    return {};
}

class RegistrationChecker : public Checker {
  public:
    explicit RegistrationChecker(Context& context) : mContext(context), mFindings(context.findings) {}

    void start() override {
        std::error_code error;
        const fs::path current = fs::current_path(error);
        const auto named = namedFiles({current, mContext.loadPoint / "text"});
        const std::string machine = sizeof(void*) == 8 ? "x86e_win64" : "i486_nt";
        std::string origins;
        for (const auto& place :
             seat::registrationPlaces({current, named, mContext.loadPoint, machine, mContext.language})) {
            if (!place.isFound || place.isShadowed || !hasEntry(place.file)) continue;
            origins += (origins.empty() ? "" : ", ") + seat::textOf(place.file) + " (" + place.origin + ")";
        }
        mFindings.tell("registration.file", !origins.empty(), origins.empty() ? "in none of them" : origins);
    }

    // The menu bar tells the text where there is one.
    void look() override {
        const HWND window = firstThreadWindow();
        const HMENU bar = window != nullptr ? GetMenu(window) : nullptr;
        if (bar == nullptr || mFindings.outcome("messages.umlauts") != Outcome::notMet) return;
        const std::wstring item = lastItemIn(bar);
        if (!item.empty())
            mFindings.tell("messages.umlauts", item.ends_with(kUmlauts), "the menu: " + seat::utf8Text(item.c_str()));
    }

    void perform(Task task, bool yes) override {
        if (task != Task::umlauts) return;
        mFindings.tell("messages.umlauts", yes, yes ? "the user says yes" : "the user says no");
    }

  private:
    bool hasEntry(const fs::path& file) const {
        const seat::RegistrationFile registration(seat::readFile(file).bytes);
        return !registration.entriesOf(seat::kProbeId).empty();
    }

    Context& mContext;
    Findings& mFindings;
};

}  // namespace

std::unique_ptr<Checker> makeRegistrationChecker(Context& context) {
    return std::make_unique<RegistrationChecker>(context);
}

}  // namespace probe
