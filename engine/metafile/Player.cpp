// Player.cpp - which function plays which record, and the walk through the file.
#include "engine/metafile/Player.h"

#include <array>

#include "engine/metafile/RecordTypes.h"
#include "engine/text/FontLibrary.h"

namespace morvil::engine {

// By record type; null for records that nothing is done for.
struct Player::HandlerTable {
    std::array<Handler, emr::kLastType + 1> handlers{};

    constexpr HandlerTable() {
        using namespace emr;
        const auto set = [this](ULONG type, Handler handler) { handlers[type] = handler; };

        // Nothing to see: the header, comments, hints for other devices, colour management.
        for (const ULONG type :
             {kHEADER, kEOF, kGDICOMMENT, kSETMAPPERFLAGS, kREALIZEPALETTE, kSETICMMODE, kSETCOLORSPACE, kPIXELFORMAT, kSETICMPROFILEA,
              kSETICMPROFILEW, kCOLORMATCHTOTARGETW, kFORCEUFIMAPPING, kSETLINKEDUFIS, kCOLORCORRECTPALETTE}) {
            set(type, &Player::ignore);
        }

        set(kSETWINDOWEXTEX, &Player::setWindowExtent);
        set(kSETWINDOWORGEX, &Player::setWindowOrigin);
        set(kSETVIEWPORTEXTEX, &Player::setViewportExtent);
        set(kSETVIEWPORTORGEX, &Player::setViewportOrigin);
        set(kSCALEWINDOWEXTEX, &Player::scaleWindowExtent);
        set(kSCALEVIEWPORTEXTEX, &Player::scaleViewportExtent);
        set(kSETMAPMODE, &Player::setMapMode);
        set(kSETWORLDTRANSFORM, &Player::setWorldTransform);
        set(kMODIFYWORLDTRANSFORM, &Player::modifyWorldTransform);
        set(kSETLAYOUT, &Player::setLayout);
        set(kSETBKMODE, &Player::setBackgroundMode);
        set(kSETBKCOLOR, &Player::setBackgroundColour);
        set(kSETTEXTCOLOR, &Player::setTextColour);
        set(kSETTEXTALIGN, &Player::setTextAlign);
        set(kSETTEXTJUSTIFICATION, &Player::setTextJustification);
        set(kSETPOLYFILLMODE, &Player::setPolyFillMode);
        set(kSETROP2, &Player::setRop2);
        set(kSETSTRETCHBLTMODE, &Player::setStretchMode);
        set(kSETARCDIRECTION, &Player::setArcDirection);
        set(kSETMITERLIMIT, &Player::setMiterLimit);
        set(kSETBRUSHORGEX, &Player::setBrushOrigin);
        set(kSAVEDC, &Player::saveState);
        set(kRESTOREDC, &Player::restoreState);

        set(kSELECTOBJECT, &Player::selectObject);
        set(kDELETEOBJECT, &Player::deleteObject);
        set(kCREATEPEN, &Player::createPen);
        set(kEXTCREATEPEN, &Player::createExtendedPen);
        set(kCREATEBRUSHINDIRECT, &Player::createBrush);
        set(kCREATEMONOBRUSH, &Player::createMonochromeBrush);
        set(kCREATEDIBPATTERNBRUSHPT, &Player::createPatternBrush);
        set(kEXTCREATEFONTINDIRECTW, &Player::createFont);
        set(kCREATEPALETTE, &Player::createPalette);
        set(kSELECTPALETTE, &Player::selectPalette);
        set(kSETPALETTEENTRIES, &Player::setPaletteEntries);
        set(kRESIZEPALETTE, &Player::resizePalette);
        set(kCREATECOLORSPACE, &Player::createColourSpace);
        set(kCREATECOLORSPACEW, &Player::createColourSpace);
        set(kDELETECOLORSPACE, &Player::deleteColourSpace);

        set(kMOVETOEX, &Player::moveTo);
        set(kLINETO, &Player::lineTo);
        set(kPOLYLINE, &Player::polyline);
        set(kPOLYLINE16, &Player::polyline);
        set(kPOLYGON, &Player::polygon);
        set(kPOLYGON16, &Player::polygon);
        set(kPOLYBEZIER, &Player::polyBezier);
        set(kPOLYBEZIER16, &Player::polyBezier);
        set(kPOLYLINETO, &Player::polylineTo);
        set(kPOLYLINETO16, &Player::polylineTo);
        set(kPOLYBEZIERTO, &Player::polyBezierTo);
        set(kPOLYBEZIERTO16, &Player::polyBezierTo);
        set(kPOLYPOLYLINE, &Player::polyPolyline);
        set(kPOLYPOLYLINE16, &Player::polyPolyline);
        set(kPOLYPOLYGON, &Player::polyPolygon);
        set(kPOLYPOLYGON16, &Player::polyPolygon);
        set(kPOLYDRAW, &Player::polyDraw);
        set(kPOLYDRAW16, &Player::polyDraw);
        set(kSETPIXELV, &Player::setPixel);

        set(kRECTANGLE, &Player::rectangle);
        set(kROUNDRECT, &Player::roundRectangle);
        set(kELLIPSE, &Player::ellipse);
        set(kARC, &Player::arc);
        set(kARCTO, &Player::arcTo);
        set(kCHORD, &Player::chord);
        set(kPIE, &Player::pie);
        set(kANGLEARC, &Player::angleArc);

        set(kBEGINPATH, &Player::beginPath);
        set(kENDPATH, &Player::endPath);
        set(kCLOSEFIGURE, &Player::closeFigure);
        set(kABORTPATH, &Player::abortPath);
        set(kFILLPATH, &Player::fillPath);
        set(kSTROKEPATH, &Player::strokePath);
        set(kSTROKEANDFILLPATH, &Player::strokeAndFillPath);
        set(kFLATTENPATH, &Player::flattenPath);
        set(kWIDENPATH, &Player::widenPath);
        set(kSELECTCLIPPATH, &Player::selectClipPath);

        set(kINTERSECTCLIPRECT, &Player::intersectClipRectangle);
        set(kEXCLUDECLIPRECT, &Player::excludeClipRectangle);
        set(kOFFSETCLIPRGN, &Player::offsetClip);
        set(kEXTSELECTCLIPRGN, &Player::selectClipRegion);
        set(kSETMETARGN, &Player::setMetaRegion);
        set(kFILLRGN, &Player::fillRegion);
        set(kFRAMERGN, &Player::frameRegion);
        set(kINVERTRGN, &Player::invertRegion);
        set(kPAINTRGN, &Player::paintRegion);

        set(kBITBLT, &Player::bitBlt);
        set(kSTRETCHBLT, &Player::stretchBlt);
        set(kMASKBLT, &Player::maskBlt);
        set(kPLGBLT, &Player::parallelogramBlt);
        set(kSETDIBITSTODEVICE, &Player::setBitsToDevice);
        set(kSTRETCHDIBITS, &Player::stretchBits);
        set(kALPHABLEND, &Player::alphaBlend);
        set(kTRANSPARENTBLT, &Player::transparentBlt);
        set(kGRADIENTFILL, &Player::gradientFill);

        set(kEXTTEXTOUTA, &Player::textNarrow);
        set(kEXTTEXTOUTW, &Player::textWide);
        set(kPOLYTEXTOUTA, &Player::polyTextNarrow);
        set(kPOLYTEXTOUTW, &Player::polyTextWide);
        set(kSMALLTEXTOUT, &Player::smallText);
    }
};

namespace {

constexpr std::int64_t kComputedPages = 64;  // pixels computed one by one, at most, in pages
constexpr std::int64_t kComputedAtLeast = std::int64_t{1} << 24;

// Carries the reference device's pixels onto the page: the frame, edges included, fills the target, edges included.
Matrix frameToTarget(const MetafileHeader& header, const RECTL& target) {
    const auto axis = [](LONG pixels, LONG millimetres, LONG frameFirst, LONG frameLast, LONG targetFirst, LONG targetLast, double& scale,
                         double& shift) {
        const double hundredthsPerPixel = 100.0 * millimetres / pixels;
        const double pagePixelsPerHundredth =
            (static_cast<double>(targetLast) - targetFirst + 1.0) / (static_cast<double>(frameLast) - frameFirst + 1.0);
        scale = hundredthsPerPixel * pagePixelsPerHundredth;
        shift = targetFirst - frameFirst * pagePixelsPerHundredth;
    };
    Matrix matrix;
    axis(header.devicePixels.cx, header.deviceMillimetres.cx, header.frame.left, header.frame.right, target.left, target.right, matrix.m11,
         matrix.dx);
    axis(header.devicePixels.cy, header.deviceMillimetres.cy, header.frame.top, header.frame.bottom, target.top, target.bottom, matrix.m22,
         matrix.dy);
    return matrix;
}

template <class Object>
std::shared_ptr<const Object> stock(const ObjectTable& objects, ULONG index) {
    return std::get<std::shared_ptr<const Object>>(objects.find(0x80000000U | index));
}

}  // namespace

Player::Player(const Metafile& metafile, const RECTL& target, Canvas& canvas, FontLibrary& fonts)
    : m_metafile(metafile),
      m_canvas(canvas),
      m_fonts(fonts),
      m_device{metafile.header().devicePixels, metafile.header().deviceMillimetres},
      m_target(target),
      m_deviceToPage(frameToTarget(metafile.header(), target)),
      m_state(m_device),
      m_computedPixelsLeft(0) {
    constexpr ULONG kWhiteBrush = 0;
    constexpr ULONG kBlackPen = 7;
    constexpr ULONG kSystemFont = 13;
    m_state.pen = stock<PenObject>(m_objects, kBlackPen);
    m_state.brush = stock<BrushObject>(m_objects, kWhiteBrush);
    m_state.font = stock<FontObject>(m_objects, kSystemFont);
    m_state.palette = defaultPalette();
    const SIZEL page = canvas.pageSize();
    m_computedPixelsLeft = kComputedPages * page.cx * page.cy + kComputedAtLeast;
}

void Player::run() {
    const auto file = m_metafile.bytes();
    std::size_t position = 0;
    const ULONG records = m_metafile.header().records;
    for (ULONG number = 1; number <= records && m_canvas.ok(); ++number) {
        const std::size_t size = Record(file.subspan(position, 8)).u32(4);
        const Record record(file.subspan(position, size));
        try {
            play(record);
        } catch (const DamagedRecord& damaged) {
            if (!m_damage) {
                m_damage = MetafileError{position, "record " + std::to_string(number) + " (" + recordName(record.type()) + ") at byte " +
                                                       std::to_string(position) + ": " + damaged.what()};
            }
        }
        position += size;
    }
    m_canvas.setClip(std::nullopt);
}

void Player::play(const Record& record) {
    static constexpr HandlerTable kTable;
    const ULONG type = record.type();
    const Handler handler = type <= emr::kLastType ? kTable.handlers[type] : nullptr;
    if (handler == nullptr) {
        ++m_skipped[type];
    } else {
        (this->*handler)(record);
    }
}

MetafilePage::MetafilePage(std::shared_ptr<const Metafile> metafile, RECTL target)
    : m_metafile(std::move(metafile)), m_target(target), m_fonts(std::make_unique<FontLibrary>()) {}

MetafilePage::~MetafilePage() = default;

void MetafilePage::play(Canvas& canvas) {
    Player player(*m_metafile, m_target, canvas, *m_fonts);
    player.run();
    if (!m_played) {
        m_skipped = player.skipped();
        m_damage = player.damage();
    }
    m_played = true;
}

}  // namespace morvil::engine
