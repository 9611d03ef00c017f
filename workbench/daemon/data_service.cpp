#include "workbench/daemon/data_service.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "workbench/pipes/numbers.h"

namespace workbench {
namespace {

constexpr long long kMaxId = std::numeric_limits<std::uint32_t>::max();

// Arguments of a request behind the operation's name; each is asked for by its position.
class Arguments {
  public:
    explicit Arguments(Fields fields) : mFields(std::move(fields)) {}

    std::size_t count() const { return mFields.size() - 1; }
    const std::string& text(std::size_t position) const { return mFields[position + 1]; }
    std::int32_t number(std::size_t position) const { return parseNumber<std::int32_t>(text(position)); }
    std::string joined() const { return joinFields(Fields(mFields.begin() + 1, mFields.end()), ' '); }

  private:
    Fields mFields;  // the operation's name first
};

std::string connect(Device& device, const Arguments& arguments) {
    if (arguments.number(1) < 0) throw std::runtime_error("no such device");
    const auto process = static_cast<std::uint32_t>(parseNumber(arguments.text(0), 0, kMaxId));
    return std::to_string(device.connect(process, arguments.text(2)));
}

std::string disconnect(Device& device, const Arguments& arguments) {
    device.disconnect(arguments.number(0));
    return {};
}

// The first device can be read also while none is attached: it rests then.
void requireDevice(Device& device, int index) {
    if (index < 0 || index >= std::max(device.deviceCount(), 1)) throw std::runtime_error("no such device");
}

std::string readDeviceData(Device& device, const Arguments& arguments) {
    requireDevice(device, arguments.number(1));
    const Reading reading = device.read(arguments.number(0));
    if (reading.isHeld) return std::string(kHeld);
    Fields fields{reading.event.isFailing ? "-1" : "0"};
    for (const std::int16_t axis : reading.axes) fields.push_back(std::to_string(axis));
    fields.push_back(std::to_string(reading.event.code));
    for (const std::int32_t extra : reading.extras) fields.push_back(std::to_string(extra));
    return joinFields(fields);
}

std::string getAdvancedSettings(Device& device, const Arguments& arguments) {
    requireDevice(device, arguments.number(1));
    const AdvancedSettings settings = device.advancedSettings();
    return joinFields({std::to_string(settings.rotationMode), std::to_string(settings.contextFlag)});
}

void requireLegacyCom1(int option) {
    if (option != kOptionLegacyCom1) throw std::runtime_error("unknown option " + std::to_string(option));
}

std::string getOption(Device& device, const Arguments& arguments) {
    requireLegacyCom1(arguments.number(1));
    return std::to_string(device.legacy());
}

std::string setOption(Device& device, const Arguments& arguments) {
    requireLegacyCom1(arguments.number(1));
    device.setLegacy(static_cast<std::int32_t>(parseNumber(arguments.text(2), 0, 1)));
    return {};
}

std::string getDevInfo(Device& device, const Arguments& arguments) { return device.deviceName(arguments.number(1)); }

std::string getDevNum(Device& device, const Arguments&) { return std::to_string(device.deviceCount()); }

std::string setDllLogFlags(Device& device, const Arguments& arguments) {
    device.setDllLog(arguments.joined());
    return {};
}

std::string setAppMode(Device& device, const Arguments& arguments) {
    device.reportMode(arguments.number(0), {.application = arguments.text(1), .mode = arguments.text(2)});
    return {};
}

struct Service {
    std::size_t argumentCount;
    bool hasSession;   // the first argument is the session's number
    bool isReleasing;  // done also when it is told to fail: a caller that is told so can do no more about it
    std::string (*run)(Device&, const Arguments&);
};

// In the order of kOperationNames.
constexpr std::array<Service, kOperationNames.size()> kServices = {{
    {3, false, false, connect},
    {1, true, true, disconnect},
    {2, true, false, readDeviceData},
    {2, true, false, getAdvancedSettings},
    {2, true, false, getOption},
    {2, true, false, getDevInfo},
    {1, true, false, getDevNum},
    {3, true, false, setOption},
    {13, false, false, setDllLogFlags},
    {3, true, false, setAppMode},
}};

// What the library is to suffer before the operation returns.
Fields sufferings(const CallFault& fault) {
    Fields lines;
    if (fault.hangMs > 0) lines.push_back(std::string(kHang) + std::to_string(fault.hangMs));
    if (fault.isPumping) lines.emplace_back(kPump);
    return lines;
}

}  // namespace

Reply answerDriver(Device& device, const std::string& request) {
    Fields fields = splitFields(request);
    const auto name = std::ranges::find(kOperationNames, fields.front());
    if (name == kOperationNames.end()) throw std::runtime_error("unknown operation \"" + fields.front() + '"');
    const auto index = static_cast<std::size_t>(name - kOperationNames.begin());
    const Service& service = kServices[index];
    const Arguments arguments(std::move(fields));
    if (arguments.count() != service.argumentCount) throw std::runtime_error("wrong number of arguments");
    if (service.hasSession) device.requireSession(arguments.number(0));
    const CallFault fault = device.countCall(static_cast<Operation>(index));

    Reply reply{.isOk = !fault.code, .error = fault.code ? "told to fail" : "", .lines = sufferings(fault)};
    if (fault.code && !service.isReleasing) return reply;
    const std::string line = service.run(device, arguments);
    if (reply.isOk && !line.empty()) reply.lines.push_back(line);
    return reply;
}

}  // namespace workbench
