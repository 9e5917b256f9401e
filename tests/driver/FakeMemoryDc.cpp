#include "driver/FakeMemoryDc.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <utility>

#include "driver/FakeEngine.h"

namespace morvil::test {

namespace {

constexpr DWORD kRefused = 1400;
FakeMemoryDc* theContexts = nullptr;
const auto kStock = reinterpret_cast<HBITMAP>(std::uintptr_t{0x5700});

std::size_t rowBytes(LONG width, int bits) { return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bits) + 31) / 32 * 4; }

// What a handle stands for: a section, or a surface of the fake engine.
std::optional<FakeBitmap> read(HBITMAP handle) {
    const FakeMemoryDc& fake = fakeMemoryDc();
    if (const auto section = fake.sections.find(handle); section != fake.sections.end()) return *section->second;
    const auto& surfaces = fakeEngine().surfaces;
    const auto surface = surfaces.find(reinterpret_cast<HSURF>(handle));
    if (surface == surfaces.end()) return std::nullopt;
    static constexpr WORD kBits[] = {0, 1, 4, 8, 16, 24, 32};
    const SURFOBJ& object = surface->second->object;
    FakeBitmap bitmap;
    bitmap.header.biWidth = object.sizlBitmap.cx;
    bitmap.header.biHeight = object.sizlBitmap.cy;
    bitmap.header.biPlanes = 1;
    bitmap.header.biBitCount = kBits[object.iBitmapFormat];
    bitmap.header.biSizeImage = static_cast<DWORD>(rowBytes(object.sizlBitmap.cx, bitmap.header.biBitCount) * static_cast<std::size_t>(object.sizlBitmap.cy));
    bitmap.palette = fake.surfacePalette;
    bitmap.bits = surface->second->bits;
    return bitmap;
}

}  // namespace

FakeMemoryDc& fakeMemoryDc() {
    if (theContexts == nullptr) throw std::logic_error("no memory contexts in this test");
    return *theContexts;
}

FakeMemoryDc::FakeMemoryDc() { theContexts = this; }
FakeMemoryDc::~FakeMemoryDc() { theContexts = nullptr; }

bool FakeMemoryDc::refuses(const char* call) {
    const int number = ++calls[call];
    if (failingCall != call || failingNumber != number) return false;
    SetLastError(kRefused);
    return true;
}

}  // namespace morvil::test

using namespace morvil::test;

HDC CreateCompatibleDC(HDC /*like*/) {
    FakeMemoryDc& fake = fakeMemoryDc();
    if (fake.refuses("CreateCompatibleDC")) return nullptr;
    const auto handle = reinterpret_cast<HDC>(std::uintptr_t{0x9000} + static_cast<std::uintptr_t>(fake.calls["CreateCompatibleDC"]));
    fake.contexts[handle] = {};
    return handle;
}

BOOL DeleteDC(HDC dc) { return fakeMemoryDc().contexts.erase(dc) != 0 ? TRUE : FALSE; }

HBITMAP CreateDIBSection(HDC dc, const BITMAPINFO* info, UINT /*usage*/, void** bits, HANDLE /*section*/, DWORD /*offset*/) {
    FakeMemoryDc& fake = fakeMemoryDc();
    *bits = nullptr;
    if (fake.refuses("CreateDIBSection") || !fake.contexts.contains(dc) || info->bmiHeader.biSizeImage == 0) return nullptr;
    auto section = std::make_unique<FakeBitmap>();
    section->header = info->bmiHeader;
    section->palette.assign(info->bmiColors, info->bmiColors + (info->bmiHeader.biBitCount > 8 ? 0 : 1 << info->bmiHeader.biBitCount));
    section->bits.assign(info->bmiHeader.biSizeImage, 0);
    *bits = section->bits.data();
    const auto handle = reinterpret_cast<HBITMAP>(section.get());
    fake.sections[handle] = std::move(section);
    return handle;
}

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) {
    FakeMemoryDc& fake = fakeMemoryDc();
    const auto bitmap = static_cast<HBITMAP>(object);
    if (fake.refuses("SelectObject") || !fake.contexts.contains(dc) || (bitmap != kStock && !fake.sections.contains(bitmap))) return nullptr;
    HBITMAP& selected = fake.contexts[dc].selected;
    const HBITMAP previous = selected == nullptr ? kStock : selected;
    selected = bitmap == kStock ? nullptr : bitmap;
    return previous;
}

// As the system does, refuses to delete what a context still holds.
BOOL DeleteObject(HGDIOBJ object) {
    FakeMemoryDc& fake = fakeMemoryDc();
    const auto bitmap = static_cast<HBITMAP>(object);
    const bool held = std::any_of(fake.contexts.begin(), fake.contexts.end(), [bitmap](const auto& entry) { return entry.second.selected == bitmap; });
    return !held && fake.sections.erase(bitmap) != 0 ? TRUE : FALSE;
}

int SetStretchBltMode(HDC dc, int mode) { return std::exchange(fakeMemoryDc().contexts.at(dc).mode, mode); }

BOOL SetColorAdjustment(HDC dc, const COLORADJUSTMENT* adjustment) {
    if (fakeMemoryDc().refuses("SetColorAdjustment")) return FALSE;
    fakeMemoryDc().contexts.at(dc).adjustment = *adjustment;
    return TRUE;
}

// Whatever was asked, each byte of the source arrives inverted, so that a test sees that the result was taken.
BOOL StretchBlt(HDC to, int x, int y, int width, int height, HDC from, int sourceX, int sourceY, int sourceWidth, int sourceHeight, DWORD rop) {
    FakeMemoryDc& fake = fakeMemoryDc();
    const FakeMemoryDc::Context& target = fake.contexts.at(to);
    fake.stretches.push_back({to, from, x, y, width, height, sourceX, sourceY, sourceWidth, sourceHeight, rop, target.mode, target.adjustment});
    if (fake.refuses("StretchBlt")) return FALSE;
    const FakeBitmap& source = *fake.sections.at(fake.contexts.at(from).selected);
    std::transform(source.bits.begin(), source.bits.end(), fake.sections.at(target.selected)->bits.begin(),
                   [](std::uint8_t bits) { return static_cast<std::uint8_t>(~bits); });
    return TRUE;
}

int GetDIBits(HDC dc, HBITMAP bitmap, UINT start, UINT lines, LPVOID bits, BITMAPINFO* info, UINT /*usage*/) {
    FakeMemoryDc& fake = fakeMemoryDc();
    const auto found = read(bitmap);
    if (fake.refuses("GetDIBits") || !fake.contexts.contains(dc) || !found || info->bmiHeader.biSize != sizeof(BITMAPINFOHEADER)) return 0;
    if (info->bmiHeader.biBitCount == 0) {
        info->bmiHeader = found->header;
        info->bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
        return found->header.biHeight;
    }
    std::copy(found->palette.begin(), found->palette.end(), info->bmiColors);
    if (bits == nullptr) return found->header.biHeight;
    const std::size_t row = rowBytes(found->header.biWidth, found->header.biBitCount);
    std::memcpy(bits, found->bits.data() + start * row, std::min<std::size_t>(lines * row, found->bits.size() - start * row));
    return static_cast<int>(lines);
}
