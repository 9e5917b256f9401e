// Metafile.cpp - checks a metafile's header and chain of records, and takes what the header and the comments tell about it.
#include "engine/Metafile.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "engine/metafile/Record.h"
#include "engine/metafile/RecordTypes.h"
#include "platform/common/Text.h"

namespace morvil::engine {

namespace {

constexpr std::uint32_t kSignature = 0x464D4520;       // " EMF"
constexpr std::uint32_t kPlusIdentifier = 0x2B464D45;  // "EMF+"
constexpr std::uint16_t kPlusHeader = 0x4001;
constexpr std::uint16_t kPlusDual = 1;  // flag of the plus header: the plain records draw the whole picture as well
constexpr std::size_t kSmallestHeader = 88;

// Whether a record of this type draws, wherever it stands.
bool draws(ULONG type) {
    using namespace emr;
    static constexpr std::pair<ULONG, ULONG> kDrawing[] = {
        {kPOLYBEZIER, kPOLYPOLYGON},    {kSETPIXELV, kSETPIXELV},       {kANGLEARC, kPIE},          {kEXTFLOODFILL, kPOLYDRAW},
        {kFILLPATH, kSTROKEPATH},       {kFILLRGN, kPAINTRGN},          {kBITBLT, kSTRETCHDIBITS},  {kEXTTEXTOUTA, kPOLYDRAW16},
        {kPOLYTEXTOUTA, kPOLYTEXTOUTW}, {kSMALLTEXTOUT, kSMALLTEXTOUT}, {kALPHABLEND, kALPHABLEND}, {kTRANSPARENTBLT, kGRADIENTFILL}};
    return std::ranges::any_of(kDrawing, [type](const auto& range) { return range.first <= type && type <= range.second; });
}

// What the comments say about the plus-form of drawing.
struct PlusFinding {
    bool present = false;
    bool dual = false;

    void look(const Record& record) {
        constexpr std::size_t kIdentifier = 12;
        constexpr std::size_t kFirstPlusRecord = 16;
        if (record.size() < kFirstPlusRecord || record.u32(kIdentifier) != kPlusIdentifier) return;
        present = true;
        const bool startsWithHeader = record.size() >= kFirstPlusRecord + 4 && record.u16(kFirstPlusRecord) == kPlusHeader;
        if (startsWithHeader && (record.u16(kFirstPlusRecord + 2) & kPlusDual) != 0) dual = true;
    }
};

std::string brokenLink(std::size_t number, std::size_t position, const std::string& what) {
    return "record " + std::to_string(number) + " at byte " + std::to_string(position) + ": " + what;
}

// Application and title, which the file holds as texts that each end with a zero character.
std::string readDescription(const Record& header) {
    constexpr std::size_t kCharacters = 60;
    constexpr std::size_t kOffset = 64;
    const std::size_t count = header.u32(kCharacters);
    const std::size_t offset = header.u32(kOffset);
    if (count == 0 || offset < kSmallestHeader || offset > header.size() || count > (header.size() - offset) / 2) return {};
    WString text;
    for (std::size_t i = 0; i < count; ++i) {
        const auto character = static_cast<WCHAR>(header.u16(offset + 2 * i));
        if (character != 0) {
            text += character;
        } else if (!text.empty() && !text.ends_with(TEXT('\n'))) {
            text += TEXT('\n');
        }
    }
    while (text.ends_with(TEXT('\n'))) text.pop_back();
    std::string result;
    for (const char character : toUtf8(text)) result += character == '\n' ? std::string(", ") : std::string(1, character);
    return result;
}

std::optional<MetafileError> readHeader(const Record& record, MetafileHeader& header) {
    if (record.type() != emr::kHEADER) return MetafileError{0, "not an enhanced metafile: the first record is no header"};
    if (record.size() < kSmallestHeader) {
        return MetafileError{4, "the header has " + std::to_string(record.size()) + " bytes, at least 88 are needed"};
    }
    if (record.u32(40) != kSignature) return MetafileError{40, "not an enhanced metafile: the signature is missing"};
    header.bounds = record.rect(8);
    header.frame = record.rect(24);
    header.devicePixels = {record.i32(72), record.i32(76)};
    header.deviceMillimetres = {record.i32(80), record.i32(84)};
    if (header.frame.right < header.frame.left || header.frame.bottom < header.frame.top) {
        return MetafileError{24, "the picture's frame is empty"};
    }
    if (header.devicePixels.cx <= 0 || header.devicePixels.cy <= 0) return MetafileError{72, "the reference device has no pixels"};
    if (header.deviceMillimetres.cx <= 0 || header.deviceMillimetres.cy <= 0) return MetafileError{80, "the reference device has no size"};
    header.description = readDescription(record);
    return std::nullopt;
}

double millimetres(LONG from, LONG to) { return (static_cast<double>(to) - from + 1.0) / 100.0; }

}  // namespace

double MetafileHeader::widthMillimetres() const { return millimetres(frame.left, frame.right); }
double MetafileHeader::heightMillimetres() const { return millimetres(frame.top, frame.bottom); }

std::shared_ptr<Metafile> Metafile::parse(std::vector<std::uint8_t> bytes, MetafileError& error) {
    constexpr std::size_t kSmallestRecord = 8;
    const auto refuse = [&error](MetafileError reason) {
        error = std::move(reason);
        return nullptr;
    };
    if (bytes.empty()) return refuse({0, "the file is empty"});

    auto metafile = std::make_shared<Metafile>();
    MetafileHeader& header = metafile->m_header;
    const std::span<const std::uint8_t> file(bytes);
    PlusFinding plus;
    bool drawing = false;
    bool ended = false;
    std::size_t position = 0;
    std::size_t number = 0;
    while (!ended) {
        ++number;
        const std::size_t left = file.size() - position;
        if (left < kSmallestRecord) return refuse({position, brokenLink(number, position, "the file ends before the end record")});
        const std::size_t size = Record(file.subspan(position, kSmallestRecord)).u32(4);
        if (number == 1 && Record(file).type() != emr::kHEADER)
            return refuse({0, "not an enhanced metafile: the first record is no header"});
        if (size < kSmallestRecord || size % 4 != 0)
            return refuse({position, brokenLink(number, position, "size " + std::to_string(size))});
        if (size > left) {
            return refuse(
                {position,
                 brokenLink(number, position, "size " + std::to_string(size) + ", but only " + std::to_string(left) + " bytes are left")});
        }
        const Record record(file.subspan(position, size));
        if (number == 1) {
            if (auto reason = readHeader(record, header)) return refuse(std::move(*reason));
        }
        if (record.type() == emr::kGDICOMMENT) plus.look(record);
        drawing = drawing || draws(record.type());
        ended = record.type() == emr::kEOF;
        position += size;
    }
    header.records = static_cast<ULONG>(number);
    header.hasPlus = plus.present;
    header.plusOnly = plus.present && !plus.dual && !drawing;
    metafile->m_bytes = std::move(bytes);
    return metafile;
}

}  // namespace morvil::engine
