// PrintFixture.h - runs the tool's commands in the test's process, on a data root of its own, with the real driver and engine.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "driver/State.h"
#include "engine/EngineState.h"
#include "support/TempHome.h"
#include "tool/Commands.h"

namespace morvil::tool {

struct Outcome {
    int status = -1;
    std::string out;
    std::string err;
    // The lines of standard output.
    [[nodiscard]] std::vector<std::string> lines() const {
        std::vector<std::string> list;
        std::istringstream text(out);
        for (std::string line; std::getline(text, line);) list.push_back(line);
        return list;
    }
};

inline std::string sample(const std::string& name) { return std::string(MORVIL_SAMPLES) + "/" + name; }

class PrintFixture : public testing::Test {
  protected:
    PrintFixture() : m_spool(m_home.folder() / "jobs") { std::filesystem::create_directories(m_spool); }
    ~PrintFixture() override {
        resetState();
        engine::resetEngineState();
    }

    static Outcome run(std::vector<std::string> arguments) {
        std::ostringstream out;
        std::ostringstream err;
        const int status = runTool(arguments, &DrvEnableDriver, {out, err, false});
        return {status, out.str(), err.str()};
    }
    // "print --spool JOBS ARGUMENTS"
    Outcome print(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"print", "--spool", m_spool.string()});
        return run(std::move(arguments));
    }
    // Names of the files in the spool folder, sorted.
    [[nodiscard]] std::vector<std::string> spooled() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_spool)) names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    [[nodiscard]] std::string job(const std::string& name) const { return (m_spool / name).string(); }
    [[nodiscard]] std::filesystem::path configurationFile() const { return m_home.folder() / "ProgramData/Morvil/PrinterDriver/PrinterDriver.xml"; }

    test::TempHome m_home;
    std::filesystem::path m_spool;
};

}  // namespace morvil::tool
