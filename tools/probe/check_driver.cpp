// The driver library, the device's axes and buttons, and who moves the view.
#include <algorithm>
#include <cstdlib>
#include <optional>

#include "driver/obk_ctrlr.h"
#include "driver/search.h"
#include "tools/probe/checker.h"
#include "tools/probe/device_reader.h"
#include "tools/probe/view_matrix.h"
#include "tools/seat/file.h"
#include "tools/seat/pe_file.h"
#include "tools/seat/wide_text.h"

namespace probe {

namespace {

constexpr int kDevice = 0;
constexpr char kApplication[] = "xtopCreo";  // as the plug-in connects
constexpr int kPushMs = 5000;
constexpr int kButtonsMs = 10000;
constexpr int kFirm = 50, kFirmest = 1000, kReleased = 10;
constexpr long long kFastestMs = 30, kSlowestMs = 15000;

struct AxisRow {
    Task task;
    const char* row;
    std::size_t axis;
};
constexpr AxisRow kAxisRows[] = {
    {Task::pushRight, "axis.tx", 0}, {Task::pushUp, "axis.ty", 1}, {Task::pushTowards, "axis.tz", 2},
    {Task::turnX, "axis.rx", 3},     {Task::turnY, "axis.ry", 4},  {Task::turnZ, "axis.rz", 5},
};

bool isKnownEvent(std::int32_t code) {
    const auto isIn = [code](std::int32_t first, std::int32_t last) { return code >= first && code <= last; };
    return isIn(kEventSettingsChanged1, kEventSettingsChanged2) || isIn(kEventSpecialFirst1, kEventSpecialLast1) ||
           isIn(kEventSpecialFirst2, kEventSpecialLast2) || code == kEventResendMode || code >= APPL_FUNC_START;
}

std::string textOfAxes(const DeviceReader::Axes& axes) {
    std::string text;
    for (const int value : axes) text += (text.empty() ? "" : " ") + std::to_string(value);
    return text;
}

int largest(const DeviceReader::Axes& axes) {
    int most = 0;
    for (const int value : axes) most = std::max(most, std::abs(value));
    return most;
}

class DriverChecker : public Checker {
  public:
    explicit DriverChecker(Context& context) : mContext(context), mFindings(context.findings) {}

    ~DriverChecker() override { restoreLegacy(); }

    void start() override {
        DriverSearch search;
        const bool isTried = mContext.attempt("driver.library", [&] {
            search = loadDriver(driverPlaces(mContext.ownFile.wstring(), mContext.hostFile.wstring()));
        });
        if (!isTried) return;
        std::string places;
        for (const auto& [file, code] : search.failures)
            places += "; " + seat::utf8Text(file.c_str()) + ": " + loadingProblem(code);
        if (search.library == nullptr) return mFindings.tell("driver.library", false, "in no place" + places);
        const auto program = seat::readPeFile(seat::readFile(search.file).bytes);
        mFindings.tell("driver.library", true,
                       seat::utf8Text(search.file.c_str()) + ", " +
                           (program ? seat::machineName(program->machine) : "unread") + places);
        std::string missing;
        for (const auto ordinal : missingOrdinals(search.library)) missing += " " + std::to_string(ordinal);
        mFindings.tell("driver.ordinals", missing.empty(), missing.empty() ? "all ten" : "missing:" + missing);
    }

    void perform(Task task, bool) override {
        if (task == Task::device) return connect();
        const bool isPush = std::ranges::find(kAxisRows, task, &AxisRow::task) != std::end(kAxisRows);
        if (!isPush && task != Task::buttons && task != Task::legacyOn && task != Task::legacyOff) return;
        if (!mReader) return;
        restoreLegacy();
        mTask = task;
        mReader->resetPeaks();
        mEnd = Deadline(task == Task::buttons ? kButtonsMs : kPushMs);
        mHasView = readView(mView);
        if (task == Task::legacyOff) switchLegacyOff();
        mContext.begin(task);
    }

    void tick() override {
        if (!mReader) return;
        const long long readsMs = mReader->readsMs();
        if (readsMs >= 0) {
            mFindings.tell(
                "driver.blocks", readsMs >= kFastestMs && readsMs <= kSlowestMs,
                std::to_string(DeviceReader::kTimedReads) + " reads took " + std::to_string(readsMs) + " ms");
        }
        if (mTask) watch();
    }

  private:
    void connect() {
        int connected = -1, counted = -1;
        std::int32_t count = 0, unused1 = 0, unused2 = 0;
        const bool isTried = mContext.attempt("driver.connect", [&] {
            connected = obConnect(kDevice, kApplication);
            counted = obGetDevNum(&count, &unused1, &unused2);
        });
        if (!isTried) return;
        mFindings.tell("driver.connect", connected == 0 && counted == 0 && count > 0,
                       answerText("obConnect", connected) + ", " + answerText("obGetDevNum", counted) + ": " +
                           std::to_string(count));
        if (connected != 0) return;
        checkRecords();
        checkOption();
        if (!mReader && mFindings.mayTry("driver.blocks")) mReader.emplace();
    }

    void checkRecords() {
        Marked<ObDevInfo> info;
        Marked<ObAdvancedSettings> settings;
        int results[] = {-1, -1};
        const bool isTried = mContext.attempt("driver.records", [&] {
            results[0] = obGetDevInfo(kDevice, &info.record);
            results[1] = obGetAdvancedSettings(kDevice, &settings.record);
        });
        if (!isTried) return;
        const bool isIntact = info.isIntact() && settings.isIntact();
        mFindings.tell("driver.records", isIntact && results[0] == 0 && results[1] == 0,
                       intactText(isIntact) + ", " + answerText("obGetDevInfo", results[0]) + ", " +
                           answerText("obGetAdvancedSettings", results[1]) + ", rotation mode " +
                           std::to_string(settings.record.rotationMode));
    }

    void checkOption() {
        std::int32_t before = -1, between = -1, after = -1;
        const bool isTried = mContext.attempt("legacy.option", [&] {
            if (obGetOption(kOptionLegacyCom1, &before) != 0) return;
            std::int32_t other = before == 1 ? 0 : 1, same = before;
            obSetOption(kOptionLegacyCom1, &other);
            obGetOption(kOptionLegacyCom1, &between);
            obSetOption(kOptionLegacyCom1, &same);
            obGetOption(kOptionLegacyCom1, &after);
        });
        if (!isTried) return;
        const bool isSwitch = (before == 0 || before == 1) && between == 1 - before && after == before;
        mFindings.tell(
            "legacy.option", isSwitch,
            std::to_string(before) + ", then " + std::to_string(between) + ", then " + std::to_string(after));
    }

    void watch() {
        const bool isOver = mEnd.isOver();
        if (*mTask == Task::buttons) {
            if (isOver) decideEvents();
        } else if (*mTask == Task::legacyOn || *mTask == Task::legacyOff) {
            watchView(isOver);
        } else if (isOver || (isPushed() && largest(mReader->axes()) <= kReleased)) {
            decideAxis();
        }
        if (!isOver && mTask) return;
        restoreLegacy();
        mTask.reset();
        mContext.end();
    }

    bool isPushed() const { return largest(mReader->peaks()) >= kFirm; }

    void decideEvents() {
        const auto events = mReader->events();
        std::string codes;
        for (const std::int32_t code : events) codes += " " + std::to_string(code);
        if (events.empty()) return mFindings.note("driver.events", "none came");
        mFindings.tell("driver.events", std::ranges::all_of(events, isKnownEvent), "came:" + codes);
    }

    void decideAxis() {
        const AxisRow& row = *std::ranges::find(kAxisRows, *mTask, &AxisRow::task);
        const auto peaks = mReader->peaks();
        mTask.reset();
        if (largest(peaks) < kFirm) return mFindings.note(row.row, "not pushed firmly: " + textOfAxes(peaks));
        const int wanted = peaks[row.axis];
        mFindings.tell(row.row, wanted == largest(peaks) && wanted >= kFirm && wanted <= kFirmest,
                       "largest of tx ty tz rx ry rz: " + textOfAxes(peaks));
    }

    void watchView(bool isOver) {
        ProMatrix now{};
        const bool isOn = *mTask == Task::legacyOn;
        const char* const row = isOn ? "legacy.on" : "legacy.off";
        if (!mHasView || !readView(now)) return mFindings.note(row, "there is no view");
        const bool hasMoved = distance(now, mView) > 0;
        std::int32_t option = -1;
        obGetOption(kOptionLegacyCom1, &option);
        if (isOn != (option == 1)) return mFindings.note(row, "LegacyCOM1 is " + std::to_string(option));
        if (!isPushed()) return;
        // Who moves the view takes a moment; that it stands still shows at the end only.
        const std::string found =
            std::string(hasMoved ? "it moves" : "it stands still") + ", pushed " + textOfAxes(mReader->peaks());
        if (hasMoved || isOver) mFindings.tell(row, hasMoved == isOn, found);
        if (hasMoved) mTask.reset();
    }

    static bool readView(ProMatrix& view) {
        return Context::has({"ProViewMatrixGet"}) && ProViewMatrixGet(nullptr, nullptr, view) == PRO_TK_NO_ERROR;
    }

    void switchLegacyOff() {
        std::int32_t value = -1, off = 0;
        if (obGetOption(kOptionLegacyCom1, &value) != 0 || value != 1) return;
        mIsLegacyOff = obSetOption(kOptionLegacyCom1, &off) == 0;
    }

    void restoreLegacy() {
        std::int32_t on = 1;
        if (mIsLegacyOff && obSetOption(kOptionLegacyCom1, &on) == 0) mIsLegacyOff = false;
    }

    Context& mContext;
    Findings& mFindings;
    std::optional<DeviceReader> mReader;
    std::optional<Task> mTask;
    Deadline mEnd;
    ProMatrix mView{};
    bool mHasView = false;
    bool mIsLegacyOff = false;
};

}  // namespace

std::unique_ptr<Checker> makeDriverChecker(Context& context) { return std::make_unique<DriverChecker>(context); }

}  // namespace probe
