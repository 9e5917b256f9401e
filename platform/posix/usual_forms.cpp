#include "platform/posix/usual_forms.h"

#include <array>

#include "platform/posix/HostState.h"

namespace morvil {

namespace {

struct Form {
    const WCHAR* name;
    LONG width;  // thousandths of a millimetre
    LONG height;
};

// Position n holds the form with the paper number n + 1 of a device mode.
constexpr std::array<Form, 118> kForms{{
    {TEXT("Letter"), 215900, 279400},
    {TEXT("Letter Small"), 215900, 279400},
    {TEXT("Tabloid"), 279400, 431800},
    {TEXT("Ledger"), 431800, 279400},
    {TEXT("Legal"), 215900, 355600},
    {TEXT("Statement"), 139700, 215900},
    {TEXT("Executive"), 184150, 266700},
    {TEXT("A3"), 297000, 420000},
    {TEXT("A4"), 210000, 297000},
    {TEXT("A4 Small"), 210000, 297000},
    {TEXT("A5"), 148000, 210000},
    {TEXT("B4 (JIS)"), 257000, 364000},
    {TEXT("B5 (JIS)"), 182000, 257000},
    {TEXT("Folio"), 215900, 330200},
    {TEXT("Quarto"), 215000, 275000},
    {TEXT("10x14"), 254000, 355600},
    {TEXT("11x17"), 279400, 431800},
    {TEXT("Note"), 215900, 279400},
    {TEXT("Envelope #9"), 98425, 225425},
    {TEXT("Envelope #10"), 104775, 241300},
    {TEXT("Envelope #11"), 114300, 263525},
    {TEXT("Envelope #12"), 120650, 279400},
    {TEXT("Envelope #14"), 127000, 292100},
    {TEXT("C size sheet"), 431800, 558800},
    {TEXT("D size sheet"), 558800, 863600},
    {TEXT("E size sheet"), 863600, 1117600},
    {TEXT("Envelope DL"), 110000, 220000},
    {TEXT("Envelope C5"), 162000, 229000},
    {TEXT("Envelope C3"), 324000, 458000},
    {TEXT("Envelope C4"), 229000, 324000},
    {TEXT("Envelope C6"), 114000, 162000},
    {TEXT("Envelope C65"), 114000, 229000},
    {TEXT("Envelope B4"), 250000, 353000},
    {TEXT("Envelope B5"), 176000, 250000},
    {TEXT("Envelope B6"), 176000, 125000},
    {TEXT("Envelope"), 110000, 230000},
    {TEXT("Envelope Monarch"), 98425, 190500},
    {TEXT("6 3/4 Envelope"), 92075, 165100},
    {TEXT("US Std Fanfold"), 377825, 279400},
    {TEXT("German Std Fanfold"), 215900, 304800},
    {TEXT("German Legal Fanfold"), 215900, 330200},
    {TEXT("B4 (ISO)"), 250000, 353000},
    {TEXT("Japanese Postcard"), 100000, 148000},
    {TEXT("9x11"), 228600, 279400},
    {TEXT("10x11"), 254000, 279400},
    {TEXT("15x11"), 381000, 279400},
    {TEXT("Envelope Invite"), 220000, 220000},
    {TEXT("Reserved48"), 1, 1},
    {TEXT("Reserved49"), 1, 1},
    {TEXT("Letter Extra"), 241300, 304800},
    {TEXT("Legal Extra"), 241300, 381000},
    {TEXT("Tabloid Extra"), 296926, 457200},
    {TEXT("A4 Extra"), 235458, 322326},
    {TEXT("Letter Transverse"), 215900, 279400},
    {TEXT("A4 Transverse"), 210000, 297000},
    {TEXT("Letter Extra Transverse"), 241300, 304800},
    {TEXT("Super A"), 227000, 356000},
    {TEXT("Super B"), 305000, 487000},
    {TEXT("Letter Plus"), 215900, 322326},
    {TEXT("A4 Plus"), 210000, 330000},
    {TEXT("A5 Transverse"), 148000, 210000},
    {TEXT("B5 (JIS) Transverse"), 182000, 257000},
    {TEXT("A3 Extra"), 322000, 445000},
    {TEXT("A5 Extra"), 174000, 235000},
    {TEXT("B5 (ISO) Extra"), 201000, 276000},
    {TEXT("A2"), 420000, 594000},
    {TEXT("A3 Transverse"), 297000, 420000},
    {TEXT("A3 Extra Transverse"), 322000, 445000},
    {TEXT("Japanese Double Postcard"), 200000, 148000},
    {TEXT("A6"), 105000, 148000},
    {TEXT("Japanese Envelope Kaku #2"), 240000, 332000},
    {TEXT("Japanese Envelope Kaku #3"), 216000, 277000},
    {TEXT("Japanese Envelope Chou #3"), 120000, 235000},
    {TEXT("Japanese Envelope Chou #4"), 90000, 205000},
    {TEXT("Letter Rotated"), 279400, 215900},
    {TEXT("A3 Rotated"), 420000, 297000},
    {TEXT("A4 Rotated"), 297000, 210000},
    {TEXT("A5 Rotated"), 210000, 148000},
    {TEXT("B4 (JIS) Rotated"), 364000, 257000},
    {TEXT("B5 (JIS) Rotated"), 257000, 182000},
    {TEXT("Japanese Postcard Rotated"), 148000, 100000},
    {TEXT("Double Japan Postcard Rotated"), 148000, 200000},
    {TEXT("A6 Rotated"), 148000, 105000},
    {TEXT("Japan Envelope Kaku #2 Rotated"), 332000, 240000},
    {TEXT("Japan Envelope Kaku #3 Rotated"), 277000, 216000},
    {TEXT("Japan Envelope Chou #3 Rotated"), 235000, 120000},
    {TEXT("Japan Envelope Chou #4 Rotated"), 205000, 90000},
    {TEXT("B6 (JIS)"), 128000, 182000},
    {TEXT("B6 (JIS) Rotated"), 182000, 128000},
    {TEXT("12x11"), 304800, 279400},
    {TEXT("Japan Envelope You #4"), 105000, 235000},
    {TEXT("Japan Envelope You #4 Rotated"), 235000, 105000},
    {TEXT("PRC 16K"), 146000, 215000},
    {TEXT("PRC 32K"), 97000, 151000},
    {TEXT("PRC 32K(Big)"), 97000, 151000},
    {TEXT("PRC Envelope #1"), 102000, 165000},
    {TEXT("PRC Envelope #2"), 102000, 176000},
    {TEXT("PRC Envelope #3"), 125000, 176000},
    {TEXT("PRC Envelope #4"), 110000, 208000},
    {TEXT("PRC Envelope #5"), 110000, 220000},
    {TEXT("PRC Envelope #6"), 120000, 230000},
    {TEXT("PRC Envelope #7"), 160000, 230000},
    {TEXT("PRC Envelope #8"), 120000, 309000},
    {TEXT("PRC Envelope #9"), 229000, 324000},
    {TEXT("PRC Envelope #10"), 324000, 458000},
    {TEXT("PRC 16K Rotated"), 215000, 146000},
    {TEXT("PRC 32K Rotated"), 151000, 97000},
    {TEXT("PRC 32K(Big) Rotated"), 151000, 97000},
    {TEXT("PRC Envelope #1 Rotated"), 165000, 102000},
    {TEXT("PRC Envelope #2 Rotated"), 176000, 102000},
    {TEXT("PRC Envelope #3 Rotated"), 176000, 125000},
    {TEXT("PRC Envelope #4 Rotated"), 208000, 110000},
    {TEXT("PRC Envelope #5 Rotated"), 220000, 110000},
    {TEXT("PRC Envelope #6 Rotated"), 230000, 120000},
    {TEXT("PRC Envelope #7 Rotated"), 230000, 160000},
    {TEXT("PRC Envelope #8 Rotated"), 309000, 120000},
    {TEXT("PRC Envelope #9 Rotated"), 324000, 229000},
    {TEXT("PRC Envelope #10 Rotated"), 458000, 324000},
}};

}  // namespace

std::vector<SpoolerForm> usualForms() {
    std::vector<SpoolerForm> forms;
    forms.reserve(kForms.size());
    for (const Form& form : kForms) forms.push_back({form.name, {form.width, form.height}});
    return forms;
}

}  // namespace morvil
