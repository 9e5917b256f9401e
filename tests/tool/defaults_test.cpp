// The settings that the Windows package brings are those that the driver makes itself on a new machine.
#include <fstream>

#include "tool/PrintFixture.h"

namespace morvil::tool {
namespace {

namespace fs = std::filesystem;

std::string read(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

using PackagedDefaults = PrintFixture;

TEST_F(PackagedDefaults, are_what_a_new_machine_gets) {
    ASSERT_EQ(run({"escape", "8", "8"}).status, kDone);
    const fs::path packaged = fs::path(MORVIL_SAMPLES) / "../packaging/defaults";
    const fs::path made = m_home.folder() / "ProgramData/Morvil";
    for (const char* const file : {"morvil.ini", "Plotkeeper/0.0.0/pk.ini", "PrinterDriver/PrinterDriver.xml"}) {
        ASSERT_FALSE(read(made / file).empty()) << file;
        EXPECT_EQ(read(made / file), read(packaged / file)) << file;
    }
}

}  // namespace
}  // namespace morvil::tool
