#include "config/CXml.h"

#include <algorithm>
#include <array>
#include <new>

#include "config/DebugSwitches.h"
#include "config/ItemPath.h"
#include "config/MvMutex.h"
#include "config/ParsedDocumentCache.h"
#include "config/XmlFile.h"
#include "config/XmlWriter.h"
#include "driver/log/Log.h"
#include "platform/common/FileStream.h"

namespace morvil {

namespace {

constexpr std::size_t kMostPathCharacters = 260;
constexpr std::size_t kMostAttributeCharacters = 19;

struct Pair {
    WStringView name;
    WStringView value;
};
constexpr std::array kDeclaration{Pair{TEXT("version"), TEXT("1.0")}, Pair{TEXT("encoding"), TEXT("UTF-8")}};

// The attribute that a call means: the one it names, or "value" when it names none that can be.
WStringView attributeName(const WCHAR* attribute) {
    const WStringView name = viewOf(attribute);
    return name.empty() || name.size() > kMostAttributeCharacters ? WStringView(TEXT("value")) : name;
}

// A debug switch lengthens the time for which the lock is held.
void sleepAsConfigured(const DebugSwitches& switches, const WCHAR* key) {
    if (const int milliseconds = switches.value(key); milliseconds > 0) Sleep(static_cast<DWORD>(milliseconds));
}

// The file beside `path` that is written first. Of the same length, so that a path that fits still fits. Only the holder of
// the mutex writes it; what a process that was killed left there is overwritten by the next and read by nobody.
WString pathBeside(WStringView path) {
    WString beside(path);
    beside.back() = beside.back() == TEXT('~') ? TEXT('$') : TEXT('~');
    return beside;
}

// When a file must have reached the disk.
enum class Durable : std::uint8_t { Now, Later };

bool writeWhole(const WCHAR* path, WStringView text, Durable durable) {
    FileStream file;
    if (!file.open(path, OpenMode::Create)) return false;
    const bool written = file.writeText(text) && (durable == Durable::Later || file.flushToDisk());
    return file.close() && written;
}

// Nobody ever finds a file that is cut: the text is whole before the file takes the place of the old one.
bool replaceFile(const WString& path, WStringView text, Durable durable) {
    const WString beside = pathBeside(path);
    const DWORD how = MOVEFILE_REPLACE_EXISTING | (durable == Durable::Now ? MOVEFILE_WRITE_THROUGH : 0U);
    if (writeWhole(beside.c_str(), text, durable) && MoveFileExW(beside.c_str(), path.c_str(), how) != FALSE) return true;
    const DWORD error = GetLastError();
    DeleteFileW(beside.c_str());
    debugPrint(TEXT("!!! CXml::archive, Error(%d), can't write (%s)\n"), error, path);
    return false;
}

// Whether a file can be written there: the path fits and can be said whole in the narrow code page, in which it is opened.
bool isUsable(WStringView path) {
    if (path.empty() || path.size() > kMostPathCharacters) return false;
    return std::all_of(path.begin(), path.end(), [](WCHAR unit) { return unit <= 0xFF; });
}

// Null as well for a path without a name.
const XmlNode* elementAt(const XmlDocument& document, const ItemPath& item) {
    return item.empty() ? nullptr : findBelow(&document.root(), item.names());
}

}  // namespace

struct CXml::Members {
    explicit Members(const DebugSwitches& switches) : mutex(kConfigurationMutex, switches) {}

    MvMutex mutex;
    WString path;
    ParsedDocumentCache* cache = nullptr;         // where `document` may be shared with
    std::shared_ptr<const XmlDocument> document;  // null: the file could not be read
    std::shared_ptr<XmlDocument> own;             // the same document, when this object may change it
    std::vector<std::uint8_t> bytes;              // of the file, as read last
    const XmlNode* cursor = nullptr;
    DWORD steps = 0;       // elements that the walk has shown
    int openChanges = 0;   // nested pairs of beginChanges and endChanges
    bool changed = false;  // inside of them

    void take(std::shared_ptr<XmlDocument> fresh) {
        own = std::move(fresh);
        document = own;
        moveTo(document == nullptr ? nullptr : &document->root());
    }

    void moveTo(const XmlNode* node) {
        cursor = node;
        steps = 0;
    }

    // The document to change: a shared one is first replaced by a copy. Null when there is none.
    XmlDocument* writable() {
        if (own == nullptr && document != nullptr) take(cache->copy());
        return own.get();
    }

    // Reads the file into the memory of the old document, when nobody shares that. REQUIRES: the mutex is held.
    bool read() {
        std::shared_ptr<XmlDocument> old = own;
        take(nullptr);
        if (cache != nullptr) {
            document = cache->load();
        } else if (path.size() <= kMostPathCharacters && readFileBytes(path.c_str(), kLargestConfigurationFile, bytes)) {
            take(parseFileBytes(bytes, std::move(old)));
        }
        if (document == nullptr) return false;
        moveTo(&document->root());
        return true;
    }

    [[nodiscard]] const XmlNode* find(const WCHAR* itemPath) const {
        return document == nullptr ? nullptr : elementAt(*document, ItemPath(itemPath));
    }

    XmlNode* reach(const ItemPath& item);
    bool setAttribute(XmlNode& node, WStringView name, WStringView value);
    bool store(bool startAfresh, Durable durable = Durable::Now);
    [[nodiscard]] bool isStorable() const;
};

// The element at the end of the chain, with everything made that is missing; null when no element can be reached.
XmlNode* CXml::Members::reach(const ItemPath& item) {
    XmlDocument* const target = writable();
    if (target == nullptr || item.empty()) return nullptr;
    XmlNode* node = &target->root();
    for (const WStringView name : item.names()) {
        XmlNode* child = findChild(*node, name);
        if (child == nullptr) {
            child = target->addChild(*node, XmlType::Element);
            if (child == nullptr || !target->setText(child->name, name)) return nullptr;
            debugPrint(TEXT("CXml::putItem, new node (%s) created\n"), name);
        }
        node = child;
    }
    return node;
}

// A changed attribute moves to the end of the list.
bool CXml::Members::setAttribute(XmlNode& node, WStringView name, WStringView value) {
    XmlAttribute* const present = findAttribute(node, name);
    if (present == nullptr) {
        debugPrint(TEXT("CXml::putItem, attribute (%s) has been added\n"), name);
        XmlAttribute* const added = own->addAttribute(node, name);
        return added != nullptr && own->setText(added->value, value);
    }
    if (present->value != value && !own->setText(present->value, value)) return false;
    XmlDocument::removeAttribute(node, *present);
    node.attributes.append(*present);
    return true;
}

bool CXml::Members::isStorable() const {
    if (document != nullptr && isUsable(path)) return true;
    debugPrint(TEXT("!!! CXml::archive, invalid document or path (%s)\n"), path);
    return false;
}

// Writes the whole document under the mutex, after removing the old file when told to.
bool CXml::Members::store(bool startAfresh, Durable durable) {
    bool written = false;
    {
        const MvMutexLock lock(mutex);
        if (!lock.held()) {
            debugPrint(TEXT("!!! CXml::archive, no access to mutex\n"));
            return false;
        }
        debugPrint(TEXT(" CXml::archive, got Mutex\n"));
        sleepAsConfigured({}, TEXT("MvXmlSleep2"));
        if (isStorable()) {
            if (startAfresh) DeleteFileW(path.c_str());
            WString text;
            writeXml(document->root(), text, 0, true);
            written = replaceFile(path, text, durable);
        }
    }
    debugPrint(TEXT("CXml::archive finishedd\n"));
    return written;
}

CXml::CXml() {
    debugPrint(TEXT("CXml::CXml 1\n"));
    open(CMvConfig().configurationFile(), nullptr);
}

CXml::CXml(const WCHAR* path) {
    debugPrint(TEXT("CXml::CXml 2\n"));
    open(path, nullptr);
}

CXml::CXml(const CMvConfig& folders) {
    debugPrint(TEXT("CXml::CXml 1\n"));
    open(folders.configurationFile(), nullptr);
}

CXml::CXml(ParsedDocumentCache& cache) {
    debugPrint(TEXT("CXml::CXml 1\n"));
    open(cache.path(), &cache);
}

void CXml::open(const WCHAR* path, ParsedDocumentCache* cache) {
    const DebugSwitches switches;
    m = std::make_unique<Members>(switches);
    m->path = viewOf(path);
    m->cache = cache;
    load(switches);
}

CXml::~CXml() { debugPrint(TEXT("CXml::~CXml\n")); }

bool CXml::reload() { return load(m->cache != nullptr ? m->cache->switches() : DebugSwitches()); }

bool CXml::load(const DebugSwitches& switches) {
    debugPrint(TEXT("CXml::reload"));
    bool done = false;
    try {
        const MvMutexLock lock(m->mutex);
        if (lock.held()) {
            debugPrint(TEXT(" CXml::reload, got Mutex\n"));
            sleepAsConfigured(switches, TEXT("MvXmlSleep1"));
            if (!m->read()) return false;
            done = true;
        } else {
            debugPrint(TEXT("!!! CXml::archive, no access to mutex\n"));  // the text of archive, here as well
        }
    } catch (const std::bad_alloc&) {
        m->take(nullptr);
        return false;
    }
    debugPrint(TEXT("CXml::reload finished\n"));
    return done;
}

bool CXml::archive() {
    const bool inRow = m->openChanges > 0;
    m->changed = m->changed || inRow;
    try {
        return m->store(false, inRow ? Durable::Later : Durable::Now);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

void CXml::beginChanges() { ++m->openChanges; }

// Whoever replaced the file since then has flushed it.
bool CXml::endChanges() {
    if (--m->openChanges > 0 || !m->changed) return true;
    m->changed = false;
    FileStream file(m->path.c_str(), OpenMode::Update);
    return file.flushToDisk();
}

bool CXml::createDefault() {
    try {
        auto fresh = std::make_shared<XmlDocument>();
        XmlNode* const declaration = fresh->addChild(fresh->root(), XmlType::ProcessingInstruction);
        XmlNode* const top = fresh->addChild(fresh->root(), XmlType::Element);
        if (declaration == nullptr || top == nullptr) return false;
        declaration->name = WStringView(TEXT("xml"));
        for (const auto& [name, value] : kDeclaration) {
            XmlAttribute* const attribute = fresh->newAttribute(name);
            if (attribute == nullptr) return false;
            attribute->value = value;
            declaration->attributes.append(*attribute);
        }
        top->name = WStringView(TEXT("PrinterDriver"));
        m->take(std::move(fresh));
        m->store(true);
    } catch (const std::bad_alloc&) {
        m->take(nullptr);
        return false;
    }
    reload();
    return false;
}

bool CXml::getItem(const WCHAR* path, WCHAR* value, const WCHAR* attribute) { return readAttribute(m->find(path), value, attribute); }

bool CXml::putItem(const WCHAR* path, const WCHAR* value, const WCHAR* attribute) {
    if (path == nullptr || value == nullptr || WStringView(path).size() > ItemPath::kMostCharacters) return false;
    try {
        XmlNode* const node = m->reach(ItemPath(path));
        if (node == nullptr) {
            debugPrint(TEXT("CXml::putItem, invalid Item (%s)\n"), path);
            return false;
        }
        if (!m->setAttribute(*node, attributeName(attribute), value)) return false;
    } catch (const std::bad_alloc&) {
        return false;
    }
    return archive();
}

bool CXml::removeItem(const WCHAR* path) {
    debugPrint(TEXT("CXml::removeItem, pItem (%s)\n"), path);
    try {
        XmlDocument* const document = m->writable();
        auto* const node = document == nullptr ? nullptr : const_cast<XmlNode*>(elementAt(*document, ItemPath(path)));
        if (node == nullptr) return false;
        XmlDocument::removeChild(*node->parent, *node);
        m->moveTo(&document->root());  // the cursor may have stood inside
    } catch (const std::bad_alloc&) {
        return false;
    }
    return archive();
}

bool CXml::readAttribute(const XmlNode* node, WCHAR* value, const WCHAR* attribute) {
    if (value == nullptr) return false;
    if (node == nullptr || !node->name) {
        debugPrint(TEXT("CXml::readAttribute, node is emppty\n"));
        return false;
    }
    const WStringView name = attributeName(attribute);
    const XmlAttribute* const found = findAttribute(*node, name);
    if (found == nullptr) {
        debugPrint(TEXT("CXml::readAttribute, AttributeName doesn't exist (%s)\n"), name);
        return false;
    }
    if (!found->value) {
        debugPrint(TEXT("CXml::readAttribute, invalid AttributeName (%s)\n"), name);
        return false;
    }
    const std::size_t length = std::min(found->value->size(), kValueCharacters - 1);
    std::copy_n(found->value->begin(), length, value);
    value[length] = 0;
    return true;
}

const XmlNode* CXml::top() const { return m->document == nullptr ? nullptr : &m->document->root(); }

const XmlNode* CXml::first(const WCHAR* path) {
    m->moveTo(m->find(path));
    if (m->cursor != nullptr) m->steps = 1;
    return m->cursor;
}

const XmlNode* CXml::next() {
    if (m->cursor != nullptr) m->cursor = nextSameElement(*m->cursor);
    if (m->cursor != nullptr) ++m->steps;
    return m->cursor;
}

bool CXml::isLoaded() const {
    if (m->document == nullptr) return false;
    const auto& children = m->document->root().children;
    return std::any_of(children.begin(), children.end(), [](const XmlNode& node) { return node.type == XmlType::Element; });
}

const WCHAR* CXml::path() const { return m->path.c_str(); }

}  // namespace morvil
