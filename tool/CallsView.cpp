#include "tool/CallsView.h"

#include <string_view>
#include <utility>

#include "engine/EngineState.h"
#include "trace/DeviceText.h"
#include "trace/TextTrace.h"

namespace morvil::tool {

namespace {

// The engine's values by the names that the trace has for them; most have the same.
template <typename Value>
const Value& asTraced(const Value& value) {
    return value;
}
trace::Bits asTraced(engine::ServiceBits bits) { return {bits.value}; }
trace::Colour asTraced(engine::ServiceColour colour) { return {colour.rgb}; }
trace::NoResult asTraced(std::monostate /*none*/) { return {}; }

// Services of objects read what the object holds and change nothing; a driver asks them for every piece of a path.
bool isQuestion(std::string_view service) { return service.find("OBJ_") != std::string_view::npos; }

}  // namespace

CallsView::CallsView(std::function<void(const std::string&)> show) : m_lines(std::move(show)) {
    engine::engineState().serviceTap = [this](const engine::ServiceCall& call) { serviceAnswered(call); };
}

CallsView::~CallsView() { engine::engineState().serviceTap = nullptr; }

trace::Listener CallsView::listener() {
    return {.begins = [] {},
            .callBegins = [this] { m_lines.callBegins(); },
            .deviceTold = [this](const GDIINFO& caps, const DEVINFO& info) { deviceTold(caps, info); },
            .heard = [this](const trace::Event& event) { m_lines.callEnds(trace::toText(event)); }};
}

void CallsView::serviceAnswered(const engine::ServiceCall& call) {
    if (!m_lines.inCall()) return;
    m_service.begin(call.name);
    for (const engine::ServiceArgument& argument : call.arguments) {
        std::visit([&](const auto& value) { m_service.argument(argument.name, asTraced(value)); }, argument.value);
    }
    std::string line = std::visit([&](const auto& result) { return m_service.end(asTraced(result)); }, call.result);
    if (isQuestion(call.name)) return m_lines.addSummed(std::move(line));
    m_lines.add(std::move(line));
}

void CallsView::deviceTold(const GDIINFO& caps, const DEVINFO& info) {
    for (std::string& line : trace::toLines(caps)) m_lines.add(std::move(line));
    m_lines.add(trace::toText(info, m_service.paletteName(info.hpalDefault)));
}

}  // namespace morvil::tool
