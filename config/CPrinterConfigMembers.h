// CPrinterConfigMembers.h - what a CPrinterConfig owns: the folders, the store behind the file and the root that the getters
// and setters work on. For the sources of CPrinterConfig alone.
#pragma once

#include "config/CPrinterConfig.h"
#include "config/CPrinterConfigItems.h"
#include "config/SizeTemplates.h"

namespace morvil {

struct CPrinterConfig::Members {
    enum class Load : std::uint8_t { Ready, Missing, Unavailable };

    CMvConfig folders;
    std::unique_ptr<CXml> store;
    WString rootText = keys::kActiveRoot;
    ItemPath root{rootText.c_str()};
    CSizeTemplate* templates = nullptr;           // the process's reader, or
    std::unique_ptr<CSizeTemplate> ownTemplates;  // one that lives as long as this object

    CSizeTemplate& sizeTemplates();
    // The index of the template that bears the name, else of the one that has the size; 0 when there is none.
    int templateIndexFor(const WString& name, const SizeTemplate& size);

    // Opens the store at the first call, which reads the file.
    CXml& opened();
    // Reads the file: opening the store is the first load, every other one a reload.
    Load load();
    // Whether the document in memory is that of the file, so that writing it back loses nothing.
    bool writable();
    ConfigurationItems items() { return {opened(), root}; }
    // Lets `change` put and remove items, each of which writes the file, and hands it to the disk at the end. False when the
    // store cannot be had, or one of both fails.
    template <typename Change>
    bool write(Change change) {
        if (!writable()) return false;
        ItemChanges changes(*store);
        ConfigurationItems target = items();
        const bool done = change(target);
        return changes.end() && done;
    }
    [[nodiscard]] bool active() const { return root.text() == keys::kActiveRoot; }

    // ((hour * 256 + minute) * 256 + second) * 256 + milliseconds, local time.
    static DWORD timeStampNow();

    // The integers that come from ini files instead of the document: read at the first use after each load.
    struct IniValues {
        int useInch;              // pk.ini, section UserSetup: other than 0 selects inches
        int jobApplicationFlags;  // pk.ini, section UserSetup, key Flags
        int driverView;           // main ini, section Driver: the view shown at first, and the highest that can be chosen
    };
    std::optional<IniValues> iniValues;
    const IniValues& ini();
};

}  // namespace morvil
