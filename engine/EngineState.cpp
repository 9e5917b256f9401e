// EngineState.cpp - the engine's process state and its devices.
#include "engine/EngineState.h"

#include <utility>

namespace morvil::engine {

EngineState& engineState() {
    static EngineState state;
    return state;
}

void resetEngineState() {
    EngineState& state = engineState();
    state.contexts.clear();
    // A surface takes itself out of the maps while it is destroyed, so the owners' map is emptied from outside.
    std::exchange(state.ownedSurfaces, {}).clear();
    state.palettes.clear();
    state.devices.clear();
    state.abortRequested = nullptr;
    state.serviceTap = nullptr;
    state.maximumSurfaceBytes = EngineState{}.maximumSurfaceBytes;
}

std::uintptr_t newHandle() {
    // A step of four keeps handles apart from small error values such as 1 or 3 and lets a log tell neighbours.
    constexpr std::uintptr_t kStep = 4;
    constexpr std::uintptr_t kFirst = 0x01050000;
    EngineState& state = engineState();
    state.lastHandle = state.lastHandle == 0 ? kFirst : state.lastHandle + kStep;
    return state.lastHandle;
}

HDEV registerDevice(Device device) {
    const auto handle = reinterpret_cast<HDEV>(newHandle());
    engineState().devices.emplace(handle, std::move(device));
    return handle;
}

void unregisterDevice(HDEV handle) { engineState().devices.erase(handle); }

Device* deviceOf(HDEV handle) {
    const auto found = engineState().devices.find(handle);
    return found == engineState().devices.end() ? nullptr : &found->second;
}

}  // namespace morvil::engine
