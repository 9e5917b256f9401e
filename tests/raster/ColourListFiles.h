// ColourListFiles.h - writes colour list files for tests.
#pragma once

#include <string>

#include "config/CMvConfig.h"
#include "raster/Workspace.h"

namespace morvil::test {

inline std::string nameXml(const std::string& language, const std::string& value) {
    return "<Name Lang=\"" + language + "\" value=\"" + value + "\"/>";
}

// `more`: further attributes, e.g. R"(Version="1.1")".
inline std::string colourXml(const std::string& id, int red, int green, int blue, const std::string& more = "",
                             const std::string& names = "") {
    return "<Color ID=\"" + id + "\" Red=\"" + std::to_string(red) + "\" Green=\"" + std::to_string(green) + "\" Blue=\"" +
           std::to_string(blue) + "\" " + more + ">" + names + "</Color>\r\n";
}

inline std::string listXml(const std::string& version, const std::string& colours) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<MciColors Version=\"" + version + "\">\r\n<Colors>\r\n" + colours +
           "</Colors>\r\n</MciColors>\r\n";
}

// In the job application's folder; without the catalogue file there, both lists come from the common files folder.
inline void writeCatalogue(const std::string& bytes) {
    Workspace::writeFile(WString(CMvConfig().jobApplicationFolder()) + TEXT("\\ColorsGaspen.xml"), bytes);
}
inline void writeCustomer(const std::string& bytes) {
    Workspace::writeFile(WString(CMvConfig().jobApplicationFolder()) + TEXT("\\ColorsCustomer.xml"), bytes);
}

}  // namespace morvil::test
