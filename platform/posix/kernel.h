// kernel.h - files, private profiles, mutexes, processes, libraries, clock and the debugger channel.
// The .cpp files of this folder say for each group what the substitute promises and what it refuses.
// Paths are Windows paths: drive C: is the user's data root ($MORVIL_HOME), drive Z: the root of the file system.
#pragma once

#include "platform/posix/base_types.h"

// ---- error numbers ----------------------------------------------------------------------------------------------------
#define ERROR_SUCCESS 0U
#define NO_ERROR 0U
#define ERROR_INVALID_FUNCTION 1U
#define ERROR_FILE_NOT_FOUND 2U
#define ERROR_PATH_NOT_FOUND 3U
#define ERROR_TOO_MANY_OPEN_FILES 4U
#define ERROR_ACCESS_DENIED 5U
#define ERROR_INVALID_HANDLE 6U
#define ERROR_NOT_ENOUGH_MEMORY 8U
#define ERROR_NOT_SAME_DEVICE 17U
#define ERROR_NO_MORE_FILES 18U
#define ERROR_WRITE_PROTECT 19U
#define ERROR_WRITE_FAULT 29U
#define ERROR_GEN_FAILURE 31U
#define ERROR_SHARING_VIOLATION 32U
#define ERROR_HANDLE_EOF 38U
#define ERROR_BAD_NETPATH 53U
#define ERROR_FILE_EXISTS 80U
#define ERROR_INVALID_PARAMETER 87U
#define ERROR_DISK_FULL 112U
#define ERROR_CALL_NOT_IMPLEMENTED 120U
#define ERROR_INSUFFICIENT_BUFFER 122U
#define ERROR_INVALID_NAME 123U
#define ERROR_INVALID_LEVEL 124U
#define ERROR_MOD_NOT_FOUND 126U
#define ERROR_PROC_NOT_FOUND 127U
#define ERROR_NEGATIVE_SEEK 131U
#define ERROR_DIR_NOT_EMPTY 145U
#define ERROR_ALREADY_EXISTS 183U
#define ERROR_BAD_EXE_FORMAT 193U
#define ERROR_FILENAME_EXCED_RANGE 206U
#define ERROR_MORE_DATA 234U
#define ERROR_DIRECTORY 267U
#define ERROR_NOT_OWNER 288U
#define ERROR_IO_DEVICE 1117U
#define ERROR_NONE_MAPPED 1332U
#define ERROR_ALLOTTED_SPACE_EXCEEDED 1344U
#define ERROR_INVALID_PRINTER_NAME 1801U
#define ERROR_RESOURCE_DATA_NOT_FOUND 1812U

DWORD GetLastError();
void SetLastError(DWORD error);

// ---- memory -----------------------------------------------------------------------------------------------------------
#define LMEM_FIXED 0x0000U
#define LMEM_ZEROINIT 0x0040U
#define LPTR (LMEM_FIXED | LMEM_ZEROINIT)

HLOCAL LocalAlloc(UINT flags, SIZE_T bytes);
HLOCAL LocalFree(HLOCAL block);

// ---- files ------------------------------------------------------------------------------------------------------------
#define GENERIC_READ 0x80000000U
#define GENERIC_WRITE 0x40000000U
#define DELETE 0x00010000U
#define FILE_APPEND_DATA 0x0004U
#define FILE_SHARE_READ 0x1U
#define FILE_SHARE_WRITE 0x2U
#define FILE_SHARE_DELETE 0x4U
#define CREATE_NEW 1U
#define CREATE_ALWAYS 2U
#define OPEN_EXISTING 3U
#define OPEN_ALWAYS 4U
#define TRUNCATE_EXISTING 5U
#define FILE_ATTRIBUTE_READONLY 0x1U
#define FILE_ATTRIBUTE_DIRECTORY 0x10U
#define FILE_ATTRIBUTE_NORMAL 0x80U
#define FILE_FLAG_DELETE_ON_CLOSE 0x04000000U
#define INVALID_FILE_ATTRIBUTES 0xFFFFFFFFU
#define FILE_BEGIN 0U
#define FILE_CURRENT 1U
#define FILE_END 2U
#define MOVEFILE_REPLACE_EXISTING 0x1U
#define MOVEFILE_WRITE_THROUGH 0x8U

struct SECURITY_ATTRIBUTES {
    DWORD nLength;
    LPVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
};
struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};
struct WIN32_FIND_DATAW {
    DWORD dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    DWORD nFileSizeHigh;
    DWORD nFileSizeLow;
    DWORD dwReserved0;
    DWORD dwReserved1;
    WCHAR cFileName[MAX_PATH];
    WCHAR cAlternateFileName[14];
};
struct OVERLAPPED;

HANDLE CreateFileW(LPCWSTR path, DWORD access, DWORD share, SECURITY_ATTRIBUTES* security, DWORD disposition, DWORD flags,
                   HANDLE templateFile);
BOOL CloseHandle(HANDLE handle);
BOOL ReadFile(HANDLE file, LPVOID buffer, DWORD bytes, LPDWORD bytesRead, OVERLAPPED* overlapped);
BOOL WriteFile(HANDLE file, LPCVOID buffer, DWORD bytes, LPDWORD bytesWritten, OVERLAPPED* overlapped);
BOOL SetFilePointerEx(HANDLE file, LARGE_INTEGER distance, LARGE_INTEGER* newPosition, DWORD method);
BOOL SetEndOfFile(HANDLE file);
BOOL GetFileSizeEx(HANDLE file, LARGE_INTEGER* size);
BOOL FlushFileBuffers(HANDLE file);
BOOL DeleteFileW(LPCWSTR path);
BOOL MoveFileExW(LPCWSTR from, LPCWSTR to, DWORD flags);
BOOL CreateDirectoryW(LPCWSTR path, SECURITY_ATTRIBUTES* security);
BOOL RemoveDirectoryW(LPCWSTR path);
DWORD GetFileAttributesW(LPCWSTR path);
BOOL SetFileAttributesW(LPCWSTR path, DWORD attributes);
HANDLE FindFirstFileW(LPCWSTR pattern, WIN32_FIND_DATAW* found);
BOOL FindNextFileW(HANDLE search, WIN32_FIND_DATAW* found);
BOOL FindClose(HANDLE search);
#define IS_TEXT_UNICODE_STATISTICS 0x2
#define IS_TEXT_UNICODE_SIGNATURE 0x8
#define IS_TEXT_UNICODE_REVERSE_SIGNATURE 0x80
#define IS_TEXT_UNICODE_ODD_LENGTH 0x200
// True when the bytes look like UTF-16: the platform's heuristics, reduced to byte-order mark and the share of zero high bytes.
BOOL IsTextUnicode(const void* buffer, INT bytes, INT* result);

// ---- private profile (ini) files --------------------------------------------------------------------------------------
UINT GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT defaultValue, LPCWSTR file);
DWORD GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR defaultValue, LPWSTR out, DWORD outCharacters, LPCWSTR file);
BOOL WritePrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR value, LPCWSTR file);

// ---- named mutexes ----------------------------------------------------------------------------------------------------
#define SYNCHRONIZE 0x00100000U
#define MUTEX_MODIFY_STATE 0x0001U
#define MUTEX_ALL_ACCESS 0x001F0001U
#define WAIT_OBJECT_0 0U
#define WAIT_ABANDONED 0x80U
#define WAIT_TIMEOUT 258U
#define WAIT_FAILED 0xFFFFFFFFU
#define INFINITE 0xFFFFFFFFU

HANDLE CreateMutexW(SECURITY_ATTRIBUTES* security, BOOL initialOwner, LPCWSTR name);
HANDLE OpenMutexW(DWORD access, BOOL inherit, LPCWSTR name);
DWORD WaitForSingleObject(HANDLE handle, DWORD milliseconds);
BOOL ReleaseMutex(HANDLE mutex);

// ---- processes, libraries, system -------------------------------------------------------------------------------------
#define PROCESS_QUERY_INFORMATION 0x0400U
#define PROCESS_VM_READ 0x0010U
#define PROCESSOR_ARCHITECTURE_INTEL 0
#define PROCESSOR_ARCHITECTURE_IA64 6
#define PROCESSOR_ARCHITECTURE_AMD64 9
#define DLL_PROCESS_DETACH 0U
#define DLL_PROCESS_ATTACH 1U
#define DLL_THREAD_ATTACH 2U
#define DLL_THREAD_DETACH 3U

struct OSVERSIONINFOW {
    DWORD dwOSVersionInfoSize;
    DWORD dwMajorVersion;
    DWORD dwMinorVersion;
    DWORD dwBuildNumber;
    DWORD dwPlatformId;
    WCHAR szCSDVersion[128];
};
struct SYSTEM_INFO {
    WORD wProcessorArchitecture;
    WORD wReserved;
    DWORD dwPageSize;
    LPVOID lpMinimumApplicationAddress;
    LPVOID lpMaximumApplicationAddress;
    DWORD_PTR dwActiveProcessorMask;
    DWORD dwNumberOfProcessors;
    DWORD dwProcessorType;
    DWORD dwAllocationGranularity;
    WORD wProcessorLevel;
    WORD wProcessorRevision;
};
struct SYSTEMTIME {
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};
struct VS_FIXEDFILEINFO {
    DWORD dwSignature;
    DWORD dwStrucVersion;
    DWORD dwFileVersionMS;
    DWORD dwFileVersionLS;
    DWORD dwProductVersionMS;
    DWORD dwProductVersionLS;
    DWORD dwFileFlagsMask;
    DWORD dwFileFlags;
    DWORD dwFileOS;
    DWORD dwFileType;
    DWORD dwFileSubtype;
    DWORD dwFileDateMS;
    DWORD dwFileDateLS;
};

DWORD GetCurrentProcessId();
DWORD GetCurrentThreadId();
HANDLE GetCurrentProcess();
HANDLE OpenProcess(DWORD access, BOOL inherit, DWORD processId);
BOOL EnumProcessModules(HANDLE process, HMODULE* modules, DWORD bytes, LPDWORD needed);
DWORD GetModuleBaseNameW(HANDLE process, HMODULE module, LPWSTR out, DWORD outCharacters);
BOOL GetUserNameW(LPWSTR out, LPDWORD characters);
BOOL GetVersionExW(OSVERSIONINFOW* version);
void GetSystemInfo(SYSTEM_INFO* info);
void GetNativeSystemInfo(SYSTEM_INFO* info);
UINT GetSystemDirectoryW(LPWSTR out, UINT characters);
HMODULE GetModuleHandleW(LPCWSTR name);
// A library is looked up as the Windows path says; "NAME.dll" stands for "libNAME.so" or "NAME.dll" of that folder.
HMODULE LoadLibraryW(LPCWSTR name);
BOOL FreeLibrary(HMODULE library);
FARPROC GetProcAddress(HMODULE library, LPCSTR name);
DWORD GetFileVersionInfoSizeW(LPCWSTR file, LPDWORD handle);
BOOL GetFileVersionInfoW(LPCWSTR file, DWORD handle, DWORD bytes, LPVOID data);
BOOL VerQueryValueW(LPCVOID data, LPCWSTR block, LPVOID* value, UINT* bytes);
void Sleep(DWORD milliseconds);
DWORD GetTickCount();
void GetLocalTime(SYSTEMTIME* time);
void GetSystemTime(SYSTEMTIME* time);
void OutputDebugStringW(LPCWSTR text);

// ---- shell ------------------------------------------------------------------------------------------------------------
#define CSIDL_COMMON_APPDATA 0x0023
#define CSIDL_PROGRAM_FILES 0x0026
#define CSIDL_FLAG_CREATE 0x8000
#define CSIDL_FLAG_DONT_VERIFY 0x4000
#define SHGFP_TYPE_CURRENT 0U
#define S_OK 0
#define E_INVALIDARG (static_cast<HRESULT>(0x80070057U))
constexpr bool SUCCEEDED(HRESULT result) { return result >= 0; }
constexpr bool FAILED(HRESULT result) { return result < 0; }

HRESULT SHGetFolderPathW(HWND owner, int folder, HANDLE token, DWORD flags, LPWSTR path);
