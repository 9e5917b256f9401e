#include "driver/State.h"

#include <utility>

#include "driver/log/Log.h"

namespace morvil {

namespace {

// Logging must still be on while the writer closes, and off before the record that says so is gone.
class StateHolder {
  public:
    StateHolder() { followLogging(); }
    ~StateHolder() {
        release();
        logState().settings = nullptr;
    }
    StateHolder(const StateHolder&) = delete;
    StateHolder& operator=(const StateHolder&) = delete;

    void release() {
        m_state.spoolFile.reset();
        m_state.path.reset();
        if (m_state.impersonationToken == nullptr) return;
        RevertToSelf();
        CloseHandle(std::exchange(m_state.impersonationToken, nullptr));
    }
    void followLogging() { logState().settings = &m_state.configuration.logging; }
    State& get() { return m_state; }

  private:
    State m_state;
};

StateHolder& holder() {
    static StateHolder instance;
    return instance;
}

}  // namespace

State& state() { return holder().get(); }

void resetState() {
    holder().release();
    state() = State{};
    holder().followLogging();
}

cColorTable& processColourTable() {
    if (!state().colourTable) state().colourTable = std::make_unique<cColorTable>();
    return *state().colourTable;
}

CxImage& halftoneImage() {
    if (!state().halftoneImage) state().halftoneImage = std::make_unique<CxImage>();
    return *state().halftoneImage;
}

CSizeTemplate& sizeTemplateReader() {
    if (state().sizeTemplates) return *state().sizeTemplates;
    const WCHAR* const iniName = state().configuration.files.templateIni;
    state().sizeTemplates = iniName[0] != 0 ? std::make_unique<CSizeTemplate>(iniName) : std::make_unique<CSizeTemplate>();
    return *state().sizeTemplates;
}

}  // namespace morvil
