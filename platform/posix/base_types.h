// base_types.h - scalar types, handles and plain geometry records with the sizes they have on 64-bit Windows.
// LONG and ULONG are 32 bits wide, WCHAR is a UTF-16 code unit; text literals are written TEXT("...").
#pragma once

#include <cstddef>
#include <cstdint>

using BYTE = std::uint8_t;
using UCHAR = std::uint8_t;
using CHAR = char;
using WORD = std::uint16_t;
using USHORT = std::uint16_t;
using SHORT = std::int16_t;
using DWORD = std::uint32_t;
using UINT = std::uint32_t;
using INT = std::int32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using DWORDLONG = std::uint64_t;
using BOOL = std::int32_t;
using BOOLEAN = std::uint8_t;
using FLOAT = float;
using WCHAR = char16_t;
using LONG_PTR = std::int64_t;
using ULONG_PTR = std::uint64_t;
using UINT_PTR = std::uint64_t;
using INT_PTR = std::int64_t;
using SIZE_T = std::uint64_t;
using DWORD_PTR = std::uint64_t;
using HRESULT = std::int32_t;
using COLORREF = DWORD;
using LPARAM = LONG_PTR;

using PVOID = void*;
using LPVOID = void*;
using LPCVOID = const void*;
using PWSTR = WCHAR*;
using LPWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;
using LPSTR = char*;
using LPCSTR = const char*;
using LPBYTE = BYTE*;
using PBYTE = BYTE*;
using LPDWORD = DWORD*;
using PDWORD = DWORD*;
using LPBOOL = BOOL*;

#define VOID void
#define TRUE 1
#define FALSE 0
#define CONST const
#define MAX_PATH 260
#define WINAPI
#define APIENTRY
#define CALLBACK
#define TEXT(literal) u##literal

// Each handle kind is a type of its own, as with STRICT on Windows, so that they cannot be mixed up.
#define MORVIL_DECLARE_HANDLE(name) \
    struct name##__ {               \
        int unused;                 \
    };                              \
    using name = name##__*

using HANDLE = void*;
using HGDIOBJ = void*;
using HLOCAL = void*;
MORVIL_DECLARE_HANDLE(HINSTANCE);
using HMODULE = HINSTANCE;
MORVIL_DECLARE_HANDLE(HWND);
MORVIL_DECLARE_HANDLE(HDC);
MORVIL_DECLARE_HANDLE(HBITMAP);
MORVIL_DECLARE_HANDLE(HPALETTE);

// A function of unknown signature, as returned by GetProcAddress.
using FARPROC = INT_PTR (*)();

#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))

struct POINT {
    LONG x;
    LONG y;
};
struct POINTL {
    LONG x;
    LONG y;
};
struct SIZE {
    LONG cx;
    LONG cy;
};
struct SIZEL {
    LONG cx;
    LONG cy;
};
struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};
struct RECTL {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

union LARGE_INTEGER {
    struct {
        DWORD LowPart;
        LONG HighPart;
    } u;
    LONGLONG QuadPart;
};

constexpr WORD LOWORD(DWORD value) { return static_cast<WORD>(value & 0xFFFFU); }
constexpr WORD HIWORD(DWORD value) { return static_cast<WORD>(value >> 16); }
constexpr COLORREF RGB(unsigned red, unsigned green, unsigned blue) {
    return (red & 0xFFU) | ((green & 0xFFU) << 8) | ((blue & 0xFFU) << 16);
}
constexpr BYTE GetRValue(COLORREF colour) { return static_cast<BYTE>(colour & 0xFFU); }
constexpr BYTE GetGValue(COLORREF colour) { return static_cast<BYTE>((colour >> 8) & 0xFFU); }
constexpr BYTE GetBValue(COLORREF colour) { return static_cast<BYTE>((colour >> 16) & 0xFFU); }
