#include "tembrakey/provider/devices.h"

#include <algorithm>
#include <vector>

#include "tembrakey/io/failure.h"
#include "tembrakey/provider/buffers.h"
#include "tembrakey/provider/results.h"
#include "tembrakey/text/text.h"

namespace tembra::tool {

DeviceSet allDevices(const Session &session) {
    DeviceSet set(session, session->DeviceGetAllDevices());
    if (!set)
        refuseNull("DeviceGetAllDevices", tr("out of memory"));
    return set;
}

std::string serialNumber(const Device &device) {
    return readText("DeviceGetSerialNumber", device.session()->DeviceGetSerialNumber, device.get());
}

std::string label(const Device &device) {
    return readText("DeviceGetLabel", device.session()->DeviceGetLabel, device.get());
}

std::string displayName(const Device &device) {
    const std::string name = label(device);
    const std::string serial = serialNumber(device);
    return name.empty() ? serial : name + " (" + serial + ")";
}

namespace {

bool isIndex(const std::string &text) {
    return text.size() <= 4 &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

} // namespace

Device chooseDevice(const Session &session, const std::string &wanted) {
    const DeviceSet set = allDevices(session);
    const int count = session->DeviceGetDeviceCount(set.get());
    std::vector<int> matching;
    for (int i = 0; i < count; ++i) {
        const Device device(session, session->DeviceGetDevice(set.get(), i));
        if (wanted.empty() || serialNumber(device) == wanted)
            matching.push_back(i);
    }
    if (matching.empty() && !wanted.empty() && isIndex(wanted) && std::stoi(wanted) < count)
        matching.push_back(std::stoi(wanted));
    if (matching.empty())
        throw Failure(ExitCode::notFound,
                      wanted.empty()
                          ? tr("no token connected") + traceOf("DeviceGetAllDevices", false)
                          : tr("no device {1} (see list)", {wanted}));
    if (matching.size() > 1)
        throw Failure(ExitCode::notFound,
                      tr("more than one device: choose one with --device INDEX (see list)"));
    return Device(session, session->DeviceGetDevice(set.get(), matching.front()));
}

} // namespace tembra::tool
