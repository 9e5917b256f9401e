// CXml.h - the store behind PrinterDriver.xml (and, with a path of its own, the colour lists): dotted item paths, each read
// and each write of the file under the system-wide mutex, each write through a file beside it that replaces the old one.
// Owns its document and mutex handle. One thread at a time. Nothing throws.
#pragma once

#include <cstdint>
#include <memory>

#include "config/CMvConfig.h"
#include "config/XmlNode.h"
#include "platform/common/Text.h"

namespace morvil {

class DebugSwitches;
class ParsedDocumentCache;

class CXml {
  public:
    static constexpr std::size_t kValueCharacters = kPathCharacters;

    // On PrinterDriver.xml, or on `path`. Both open the mutex and load the file.
    CXml();
    explicit CXml(const WCHAR* path);
    // As CXml(), for whoever has worked out the folders.
    explicit CXml(const CMvConfig& folders);
    // As CXml(), sharing the parsed document of `cache` while the file's bytes do not change.
    explicit CXml(ParsedDocumentCache& cache);
    ~CXml();
    CXml(const CXml&) = delete;
    CXml& operator=(const CXml&) = delete;

    // Reads the file. False when it is missing, empty or too large, and the document is then empty; false as well when the mutex
    // cannot be had, and the document is then the old one.
    bool reload();
    // Writes the whole document. False when the mutex cannot be had or the file cannot be written, which leaves it as it was.
    bool archive();
    // A new file of nothing but the declaration and an empty element PrinterDriver. Always false.
    bool createDefault();

    // `value` holds kValueCharacters. False when an element or the attribute is missing; `value` is then untouched.
    bool getItem(const WCHAR* path, WCHAR* value, const WCHAR* attribute = TEXT("value"));
    // Makes what is missing of the chain, sets the attribute and writes the file.
    bool putItem(const WCHAR* path, const WCHAR* value, const WCHAR* attribute = TEXT("value"));
    // Takes the element out and writes the file. False when there is none.
    bool removeItem(const WCHAR* path);
    // Between the two, each put and removal writes the file as ever, but leaves it to the end of the outermost pair to hand it
    // to the disk, if anything changed. For whoever changes many items at a time.
    void beginChanges();
    bool endChanges();
    bool readAttribute(const XmlNode* node, WCHAR* value, const WCHAR* attribute = TEXT("value"));

    // The top of the document, for whoever looks for elements himself; null when there is none. Holds until the next reading or
    // change.
    [[nodiscard]] const XmlNode* top() const;

    // Walks the sibling elements of the named path in document order; the current element, or null at the end.
    const XmlNode* first(const WCHAR* path);
    const XmlNode* next();

    [[nodiscard]] bool isLoaded() const;  // a document with at least one element is there
    [[nodiscard]] const WCHAR* path() const;

  private:
    struct Members;

    void open(const WCHAR* path, ParsedDocumentCache* cache);
    bool load(const DebugSwitches& switches);

    std::unique_ptr<Members> m;
};

}  // namespace morvil
