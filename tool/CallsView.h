// CallsView.h - the calls between engine and driver as lines: what the engine asks of the driver (trace::Recorder tells), below it
// what the driver told of its device and what it asked of the engine's services meanwhile (the engine tells). Listens to the
// engine while it lives; one at a time.
#pragma once

#include "engine/ServiceTap.h"
#include "trace/CallLines.h"
#include "trace/Recorder.h"
#include "trace/ServiceText.h"

namespace morvil::tool {

class CallsView {
  public:
    explicit CallsView(std::function<void(const std::string&)> show);
    ~CallsView();
    CallsView(const CallsView&) = delete;
    CallsView& operator=(const CallsView&) = delete;

    // For the recorder before the driver; valid while the view lives.
    [[nodiscard]] trace::Listener listener();

  private:
    void serviceAnswered(const engine::ServiceCall& call);
    void deviceTold(const GDIINFO& caps, const DEVINFO& info);

    trace::CallLines m_lines;
    trace::ServiceText m_service;
};

}  // namespace morvil::tool
