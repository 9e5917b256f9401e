// CPrinterConfigKeys.h - the key table of PrinterDriver.xml: path, attribute, what a missing item reads as, the accepted range
// and what a value outside of it reads as. A path that begins with "%s" lies below the root of a configuration
// (PrinterDriver.Configuration, or PrinterDriver.ConfigurationStore.NAME). All constants.
//
// The two keys that begin with "Print." are read from the top of the document. They lie outside PrinterDriver on purpose:
// nothing of ours writes them, so in our own files their defaults always apply.
#pragma once

#include <array>
#include <cstdint>
#include <limits>

#include "config/ItemPath.h"
#include "platform/common/Text.h"

namespace morvil::keys {

inline constexpr const WCHAR* kValue = TEXT("value");

// A path that is cut into its names when the program is built: each load looks up some fifty of them.
class KeyPath {
  public:
    constexpr KeyPath(const WCHAR* text)  // NOLINT(google-explicit-constructor): the table below writes texts
        : m_belowRoot(WStringView(text).starts_with(kRootMark)), m_item(m_belowRoot ? text + kRootMark.size() : text) {}

    [[nodiscard]] constexpr bool isBelowRoot() const { return m_belowRoot; }
    // Without the root when it lies below that.
    [[nodiscard]] constexpr const ItemPath& item() const { return m_item; }

  private:
    static constexpr WStringView kRootMark = TEXT("%s.");

    bool m_belowRoot;
    ItemPath m_item;
};

// Elements of one name with a number behind it, in a common parent.
struct ListKey {
    KeyPath parent;
    WStringView name;
};

// T is one of the types that CMvString converts: 32- or 16-bit whole numbers, or float.
template <typename T>
struct NumberKey {
    KeyPath path;
    const WCHAR* attribute = kValue;
    T missing{};
    T low = std::numeric_limits<T>::lowest();
    T high = std::numeric_limits<T>::max();
    T outside{};       // read in place of a value outside low..high; a setter refuses such a value
    int decimals = 2;  // of a written float
};

struct BooleanKey {
    KeyPath path;
    bool missing = false;
};

// Lengths count without the terminator. A text outside of them reads as `missing`; a setter refuses it.
struct TextKey {
    KeyPath path;
    const WCHAR* missing;
    std::size_t shortest = 0;
    std::size_t longest = kPathCharacters - 1;
};

inline constexpr const WCHAR* kActiveRoot = TEXT("PrinterDriver.Configuration");
inline constexpr const WCHAR* kStoredRoot = TEXT("PrinterDriver.ConfigurationStore.%s");

// ---- job ----------------------------------------------------------------------------------------------------------------
// Sizes are millimetres. Two decimals, a hundredth of a millimetre, lie below half a pixel of 1000 dpi.
inline constexpr NumberKey<float> kWidth{.path = TEXT("%s.Print.SizeSettings.Template.Width"), .missing = 100.0F, .outside = 100.0F};
inline constexpr NumberKey<float> kHeight{.path = TEXT("%s.Print.SizeSettings.Template.Height"), .missing = 100.0F, .outside = 100.0F};
// When missing, the template of that name, else of that size, else 0.
inline constexpr NumberKey<std::int32_t> kTemplateIndex{.path = TEXT("%s.Print.SizeSettings.Template.Index"), .low = 0, .high = 0xFFFF};
inline constexpr BooleanKey kTakeFromApplication{.path = TEXT("%s.Print.SizeSettings.Template.TakeFromApplication")};
inline constexpr TextKey kTemplateName{.path = TEXT("%s.Print.SizeSettings.Template.Name"), .missing = TEXT("User-defined Size")};

inline constexpr TextKey kMaterialGroup{.path = TEXT("%s.Print.MaterialSettings.Group"), .missing = TEXT("Standard"), .longest = 49};
inline constexpr TextKey kMaterialName{.path = TEXT("%s.Print.MaterialSettings.Name"), .missing = TEXT("Standard"), .longest = 49};

// Read as it stands: a mode outside of the list makes the whole record invalid.
inline constexpr NumberKey<std::uint16_t> kProcessMode{.path = TEXT("%s.Print.Process.ProcessMode.ID"), .missing = 1000};
inline constexpr KeyPath kMciVersion = TEXT("Print.Process.ProcessMode.MciVersion");

// Missing is a failure of its own (ConfigurationError 10000). An index above 5 reads as 2: 500 dpi.
inline constexpr NumberKey<std::uint16_t> kResolution{
    .path = TEXT("%s.Print.Process.ProcessOption.Resolution"), .attribute = TEXT("index"), .missing = 2, .low = 0, .high = 5, .outside = 2};
inline constexpr NumberKey<std::int16_t> kCutLine{
    .path = TEXT("%s.Print.Process.ProcessOption.Cutline"), .attribute = TEXT("index"), .low = 0, .high = 3};
inline constexpr TextKey kShoulderName{
    .path = TEXT("%s.Print.Process.ProcessOption.Shoulder.Name"), .missing = TEXT(""), .shortest = 1, .longest = 19};
inline constexpr NumberKey<std::int32_t> kShoulderIndex{.path = TEXT("%s.Print.Process.ProcessOption.Shoulder.Index"), .low = 0, .high = 2};
inline constexpr NumberKey<std::uint16_t> kLayers{
    .path = TEXT("%s.Print.Process.ProcessOption.Layers"), .missing = 2, .low = 2, .high = 255, .outside = 2};
// Three decimals: the fallback for inches, and the job file's layer line, need them.
inline constexpr const WCHAR* kZAdjustmentPath = TEXT("%s.Print.Process.ProcessOption.ZAdjustment");
inline constexpr NumberKey<float> kZAdjustmentMillimetres{
    .path = kZAdjustmentPath, .low = 0.0F, .high = 5.0F, .outside = 0.01F, .decimals = 3};
inline constexpr NumberKey<float> kZAdjustmentInches{.path = kZAdjustmentPath, .low = 0.0F, .high = 0.2F, .outside = 0.001F, .decimals = 3};
inline constexpr BooleanKey kRotaryEnabled{.path = TEXT("%s.Print.Process.ProcessOption.Rotary.Enabled")};
inline constexpr NumberKey<float> kRotaryDiameter{
    .path = TEXT("%s.Print.Process.ProcessOption.Rotary.Diameter"), .missing = 123.4F, .outside = 123.4F};
inline constexpr BooleanKey kAutoPosition{.path = TEXT("%s.Print.Process.ProcessOption.Autoposition")};
inline constexpr BooleanKey kVectorJob{.path = TEXT("%s.Print.Process.ProcessOption.VectorJob")};
inline constexpr NumberKey<std::uint32_t> kPpoThreshold{.path = TEXT("Print.Process.ProcessOption.PPOTreshold"), .missing = 50000};

// Colour list: an entry needs all four attributes.
inline constexpr KeyPath kColours = TEXT("%s.Print.Process.Colors");
inline constexpr ListKey kColour{.parent = kColours, .name = TEXT("")};
inline constexpr std::array kColourAttributes{TEXT("red"), TEXT("green"), TEXT("blue"), TEXT("mode")};

// ---- halftone -----------------------------------------------------------------------------------------------------------
inline constexpr BooleanKey kHalftoneEnabled{.path = TEXT("%s.Halftone.Enabled")};
inline constexpr NumberKey<std::int32_t> kHalftoneAlgorithm{
    .path = TEXT("PrinterDriver.Configuration.Halftone.Algorithm"), .low = 0, .high = 5};
inline constexpr NumberKey<std::int32_t> kHalftonePattern{
    .path = TEXT("PrinterDriver.Configuration.Halftone.DevHTInfo.HTPatternSize"), .low = 0, .high = 10000};
// Contrast and brightness are stored with kAdjustmentOffset added.
inline constexpr std::int32_t kAdjustmentOffset = 100;
inline constexpr NumberKey<std::int32_t> kContrast{
    .path = TEXT("PrinterDriver.Configuration.Halftone.ColorAdjustment.caContrast"), .missing = 100, .low = 0, .high = 200, .outside = 100};
inline constexpr NumberKey<std::int32_t> kBrightness{.path = TEXT("PrinterDriver.Configuration.Halftone.ColorAdjustment.caBrightness"),
                                                     .missing = 100,
                                                     .low = 0,
                                                     .high = 200,
                                                     .outside = 100};
inline constexpr NumberKey<std::int32_t> kRedGamma{.path = TEXT("PrinterDriver.Configuration.Halftone.ColorAdjustment.caRedGamma"),
                                                   .missing = 10000,
                                                   .low = 0,
                                                   .high = 65535,
                                                   .outside = 10000};
inline constexpr NumberKey<std::int32_t> kGreenGamma{.path = TEXT("PrinterDriver.Configuration.Halftone.ColorAdjustment.caGreenGamma"),
                                                     .missing = 10000,
                                                     .low = 0,
                                                     .high = 65535,
                                                     .outside = 10000};
inline constexpr NumberKey<std::int32_t> kBlueGamma{.path = TEXT("PrinterDriver.Configuration.Halftone.ColorAdjustment.caBlueGamma"),
                                                    .missing = 10000,
                                                    .low = 0,
                                                    .high = 65535,
                                                    .outside = 10000};

// ---- user interface and job identification ------------------------------------------------------------------------------
// When missing, the ini value Driver_View. The same ini value is the highest view that the setter takes.
inline constexpr NumberKey<std::uint16_t> kDriverView{.path = TEXT("%s.About.View"), .attribute = TEXT("act"), .missing = 2};
inline constexpr BooleanKey kQuickPrint{.path = TEXT("%s.Print.QuickPrint")};
inline constexpr NumberKey<std::int32_t> kJobIndex{.path = TEXT("%s.About.JobIdentification.Index")};
inline constexpr NumberKey<std::int32_t> kJobNumber{.path = TEXT("%s.About.JobIdentification.Number")};
inline constexpr TextKey kJobName{.path = TEXT("%s.About.JobIdentification.Name"), .missing = TEXT("MorvilJob")};
inline constexpr ListKey kJobFormat{.parent = TEXT("PrinterDriver.Configuration.About.JobIdentification"), .name = TEXT("Format_")};

// ---- keys of the whole driver -------------------------------------------------------------------------------------------
inline constexpr NumberKey<std::int32_t> kBezierSupport{.path = TEXT("PrinterDriver.Bezier.Support")};
inline constexpr NumberKey<std::int32_t> kBezierAccuracy{.path = TEXT("PrinterDriver.Bezier.Accuracy"), .low = 0, .high = 0xFFFF};
inline constexpr NumberKey<std::int32_t> kApplicationId{.path = TEXT("PrinterDriver.PrintingApplication.ID")};
inline constexpr TextKey kApplicationName{.path = TEXT("PrinterDriver.PrintingApplication.Name"), .missing = TEXT(""), .longest = 49};
inline constexpr BooleanKey kLoggingEnable{.path = TEXT("PrinterDriver.Logging.Enable")};
inline constexpr NumberKey<std::uint16_t> kLoggingDebugLevel{.path = TEXT("PrinterDriver.Logging.DebugLevel")};
inline constexpr NumberKey<std::uint32_t> kLoggingFileSize{.path = TEXT("PrinterDriver.Logging.FileSize"), .missing = 1'000'000};

inline constexpr KeyPath kFlags = TEXT("PrinterDriver.Flags");
inline constexpr ListKey kFlag{.parent = kFlags, .name = TEXT("FL_")};  // numbered from 1
inline constexpr int kMostFlags = 19;                                   // FL_20 and above are never read
inline constexpr BooleanKey kDiagnosticEnable{.path = TEXT("PrinterDriver.Diagnostic.Enable")};
inline constexpr KeyPath kSignals = TEXT("PrinterDriver.Diagnostic.Signals");
inline constexpr ListKey kSignal{.parent = kSignals, .name = TEXT("FL_")};  // numbered from 0
inline constexpr int kMostSignals = 256;

inline constexpr TextKey kVersion{.path = TEXT("PrinterDriver.Version"), .missing = TEXT("6.0.0.0")};
inline constexpr std::array kBoundingBoxOffsets{
    NumberKey<std::int32_t>{.path = TEXT("PrinterDriver.BoundingBox.Offset.Left")},
    NumberKey<std::int32_t>{.path = TEXT("PrinterDriver.BoundingBox.Offset.Top")},
    NumberKey<std::int32_t>{.path = TEXT("PrinterDriver.BoundingBox.Offset.Right")},
    NumberKey<std::int32_t>{.path = TEXT("PrinterDriver.BoundingBox.Offset.Bottom")},
};

// Colour matching of vectors. Colours are texts: "0x" and eight upper-case digits, 00BBGGRR.
inline constexpr BooleanKey kColourMatchingEnabled{.path = TEXT("PrinterDriver.ColorMatching.Enabled")};
inline constexpr KeyPath kGreyVectors = TEXT("PrinterDriver.ColorMatching.GrayscaledVectors");
inline constexpr const WCHAR* kGreyVectorsAttribute = TEXT("MappTo");
inline constexpr ListKey kColourMatchingItem{.parent = TEXT("PrinterDriver.ColorMatching"), .name = TEXT("Item")};

}  // namespace morvil::keys
