// EscapeRunner.cpp - one escape on an instance of its own.
#include <optional>

#include "engine/Escape.h"
#include "engine/document/DeviceInstance.h"

namespace morvil::engine {

namespace {

EscapeReport sendThrough(const DriverTable& driver, const EscapeRequest& request) {
    DeviceInstance instance(driver, request.printerName, {});
    if (!instance.enable()) return {.status = PrintStatus::DriverRefused, .reason = instance.reason()};
    if (!instance.enableSurface()) return {.status = PrintStatus::SurfaceFailed, .reason = instance.reason()};
    if (driver.escape == nullptr) return {};
    EscapeReport report;
    report.output.resize(request.outputBytes);
    std::vector<std::uint8_t> input = request.input;
    report.result = driver.escape(instance.surface(), request.code, static_cast<ULONG>(input.size()), input.empty() ? nullptr : input.data(),
                                  static_cast<ULONG>(report.output.size()), report.output.empty() ? nullptr : report.output.data());
    return report;
}

}  // namespace

EscapeReport sendEscape(const EscapeRequest& request) {
    const std::optional<DriverTable> driver = enableDriver(request.enableDriver);
    if (!driver) return {.status = PrintStatus::DriverRefused, .reason = "the driver could not be enabled (DrvEnableDriver)"};
    EscapeReport report = sendThrough(*driver, request);
    driver->disableDriver();
    return report;
}

}  // namespace morvil::engine
