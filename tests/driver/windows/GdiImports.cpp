// The entries through which the driver's objects call the memory device contexts of the system's graphics library, here those
// of FakeMemoryDc. Compiled, as that is, with the declarations that the library itself would see.
#include "platform/platform.h"

extern "C" {
void* __imp_CreateCompatibleDC = reinterpret_cast<void*>(&CreateCompatibleDC);
void* __imp_CreateDIBSection = reinterpret_cast<void*>(&CreateDIBSection);
void* __imp_DeleteDC = reinterpret_cast<void*>(&DeleteDC);
void* __imp_DeleteObject = reinterpret_cast<void*>(&DeleteObject);
void* __imp_GetDIBits = reinterpret_cast<void*>(&GetDIBits);
void* __imp_SelectObject = reinterpret_cast<void*>(&SelectObject);
void* __imp_SetColorAdjustment = reinterpret_cast<void*>(&SetColorAdjustment);
void* __imp_SetStretchBltMode = reinterpret_cast<void*>(&SetStretchBltMode);
void* __imp_StretchBlt = reinterpret_cast<void*>(&StretchBlt);
}
