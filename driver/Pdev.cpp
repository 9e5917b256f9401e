#include "driver/Pdev.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "platform/common/LocalBlock.h"

namespace morvil {

namespace {

constexpr std::array<char, 4> kMagic{'P', 'l', 'o', 't'};
constexpr std::array<char, 4> kTrailer{'P', 'D', 'E', 'V'};

}  // namespace

void PdevRelease::operator()(PDEV* pdev) const noexcept {
    if (pdev->hPalette != nullptr) EngDeletePalette(pdev->hPalette);
    LocalFree(pdev);
}

PdevOwner allocatePdev() {
    LocalBlock<PDEV> block(1);
    if (!block) return {};
    PdevOwner pdev(block.release());
    std::copy(kMagic.begin(), kMagic.end(), pdev->magic);
    std::copy(kTrailer.begin(), kTrailer.end(), pdev->trailer);
    pdev->size = sizeof(PDEV);
    return pdev;
}

bool isInstance(DHPDEV dhpdev) {
    if (dhpdev == nullptr) return false;
    const PDEV& pdev = *pdevOf(dhpdev);
    return std::memcmp(pdev.magic, kMagic.data(), kMagic.size()) == 0 && pdev.size == sizeof(PDEV) &&
           std::memcmp(pdev.trailer, kTrailer.data(), kTrailer.size()) == 0;
}

PDEV* validInstance(SURFOBJ* pso) {
    if (pso == nullptr || !isInstance(pso->dhpdev)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    PDEV* const pdev = pdevOf(pso->dhpdev);
    pdev->pso = pso;
    if (EngCheckAbort(pso) != FALSE) pdev->flags |= kJobAborted;
    return (pdev->flags & kJobAborted) == 0 ? pdev : nullptr;
}

}  // namespace morvil
