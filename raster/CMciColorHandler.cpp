#include "raster/CMciColorHandler.h"

#include <array>

#include "driver/log/Log.h"

namespace morvil {

namespace {

constexpr const WCHAR* kLanguage = TEXT("en");
constexpr DWORD kLastFilter = 3;

CMciColor greyColour(const WCHAR* id, const WCHAR* name, std::uint16_t level) {
    CMciColor colour;
    copyText(colour.id, viewOf(id));
    copyText(colour.name, viewOf(name));
    copyText(colour.version, TEXT("1.0"));
    colour.red = colour.green = colour.blue = level;
    return colour;
}

}  // namespace

CMciColorHandler::Announcement::Announcement() { debugPrint(TEXT("CMciColorHandler::CMciColorHandler (1)\n")); }

CMciColorHandler::CMciColorHandler() : m_gaspen(m_folders.coloursGaspen()), m_customer(m_folders.coloursCustomer()) {
    m_system.setLanguage(kLanguage);
    m_system.add(greyColour(TEXT("232.232.232"), TEXT("border"), 232));
    m_system.add(greyColour(TEXT("255.255.255"), TEXT("white"), 255));
    for (CMciColorsBase* const list : {&m_gaspen, &m_customer}) {
        list->setLanguage(kLanguage);
        list->load();
    }
    debugPrint(TEXT("CMciColorHandler::CMciColorHandler (1) finished\n"));
}

CMciColorHandler::~CMciColorHandler() {
    debugPrint(TEXT("CMciColorHandler::~CMciColorHandler\n"));
    debugPrint(TEXT("CMciColorHandler::~CMciColorHandler finished\n"));
}

void CMciColorHandler::setMciVersion(DWORD version) {
    const DWORD filter = version <= kLastFilter ? version : 0;
    for (CMciColorsBase* const list : {&m_gaspen, &m_customer}) {
        list->setFilter(filter);
        list->load();
    }
}

// The system list comes before the customer's here, but behind it in getNext().
const CMciColor* CMciColorHandler::getFirst() {
    for (CMciColorsBase* const list : {&m_gaspen, &m_system, &m_customer}) list->reset();
    for (CMciColorsBase* const list : {&m_gaspen, &m_system, &m_customer}) {
        if (const CMciColor* const colour = list->getNext()) return colour;
    }
    return nullptr;
}

const CMciColor* CMciColorHandler::getNext() {
    if (const CMciColor* const colour = m_gaspen.getNext()) return colour;
    logMorvil(1, kInformation, TEXT("CMciColorHandler::getNext, switch to ColorsSystem count=%d"), m_system.getCount(), kLogEnd);
    if (const CMciColor* const colour = m_customer.getNext()) return colour;
    return m_system.getNext();
}

std::size_t CMciColorHandler::getCount() const { return m_gaspen.getCount() + m_customer.getCount() + m_system.getCount(); }

const CMciColor* CMciColorHandler::operator[](std::size_t index) const {
    for (const CMciColorsBase* const list : {&m_gaspen, &m_customer, &m_system}) {
        if (index < list->getCount()) return list->getAt(index);
        index -= list->getCount();
    }
    debugPrint(TEXT("CMciColorHandler::operator [], invalid index\n"));
    return nullptr;
}

}  // namespace morvil
