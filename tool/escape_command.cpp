// escape_command.cpp - sends one of the driver's escapes, to load or probe a stored configuration or to ask what is supported.
#include <charconv>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>

#include "engine/Escape.h"
#include "tool/Commands.h"
#include "tool/ConfigurationItem.h"
#include "tool/Host.h"

namespace morvil::tool {

namespace {

constexpr ULONG kQuerySupport = 8;
constexpr ULONG kSetCopyCount = 17;
constexpr std::size_t kLongestText = 1'000'000;

using Bytes = std::vector<std::uint8_t>;

// These two take a 32-bit number, the others text.
bool takesNumber(ULONG code) { return code == kQuerySupport || code == kSetCopyCount; }

std::optional<std::uint32_t> numberOf(const std::string& text) {
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

Bytes bytesOf(std::uint32_t number) {
    return {static_cast<std::uint8_t>(number), static_cast<std::uint8_t>(number >> 8), static_cast<std::uint8_t>(number >> 16),
            static_cast<std::uint8_t>(number >> 24)};
}

// One byte a character, as the driver reads names; nothing when a character has none.
std::optional<Bytes> latinBytes(const std::string& text) {
    Bytes bytes;
    for (const WCHAR character : fromUtf8(text)) {
        if (character > 0xFF) return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(character));
    }
    return bytes;
}

std::optional<Bytes> inputOf(ULONG code, const std::string& text) {
    if (!takesNumber(code) || text.empty()) return latinBytes(text);
    const auto number = numberOf(text);
    return number ? std::optional(bytesOf(*number)) : std::nullopt;
}

std::uint32_t answerOf(const Bytes& output) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < output.size(); ++i) value |= std::uint32_t{output[i]} << 8 * i;
    return value;
}

void print(const EscapeOptions& options, const engine::EscapeReport& report, std::ostream& out) {
    const bool answered = !report.output.empty() && report.result != 0;
    if (options.json) {
        nlohmann::ordered_json json{{"code", options.code}, {"result", report.result}};
        if (answered) json["answer"] = answerOf(report.output);
        out << json.dump(2) << "\n";
        return;
    }
    out << report.result << "\n";
    if (answered) out << "answer " << answerOf(report.output) << "\n";
}

int fail(const Streams& streams, const std::string& text, int status) {
    streams.err << "morvil escape: " << text << "\n";
    return status;
}

}  // namespace

int runEscape(const EscapeOptions& options, engine::EnableDriverFunction driver, const Streams& streams) {
    if (options.text.size() > kLongestText) return fail(streams, "TEXT has more than " + std::to_string(kLongestText) + " bytes", kUsage);
    auto input = inputOf(options.code, options.text);
    if (!input) return fail(streams, takesNumber(options.code) ? "this code takes a number, not \"" + options.text + "\"" : "TEXT holds characters beyond Latin-1", kUsage);
    useHome(options.home);
    if (std::string reason; !ensureConfiguration(reason)) return fail(streams, reason, kSystemFailed);
    const engine::EscapeReport report = engine::sendEscape({.enableDriver = driver,
                                                            .printerName = kPrinterName,
                                                            .code = options.code,
                                                            .input = std::move(*input),
                                                            .outputBytes = options.code == kSetCopyCount ? std::size_t{4} : 0});
    if (report.status != engine::PrintStatus::Done) return fail(streams, report.reason, kSystemFailed);
    print(options, report, streams.out);
    return report.result != 0 ? kDone : kWrong;
}

}  // namespace morvil::tool
