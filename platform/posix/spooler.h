// spooler.h - the print spooler's queries. Away from Windows printers and forms come from a small registry that the host
// program fills (see spooler.cpp); a fresh process has one printer, the engraver, and the platform's usual forms.
#pragma once

#include "platform/posix/base_types.h"

#define PRINTER_ATTRIBUTE_DIRECT 0x2U
#define PRINTER_ATTRIBUTE_LOCAL 0x40U

struct DEVMODEW;
struct PRINTER_DEFAULTSW;

struct PRINTER_INFO_2W {
    LPWSTR pServerName;
    LPWSTR pPrinterName;
    LPWSTR pShareName;
    LPWSTR pPortName;
    LPWSTR pDriverName;
    LPWSTR pComment;
    LPWSTR pLocation;
    DEVMODEW* pDevMode;
    LPWSTR pSepFile;
    LPWSTR pPrintProcessor;
    LPWSTR pDatatype;
    LPWSTR pParameters;
    PVOID pSecurityDescriptor;
    DWORD Attributes;
    DWORD Priority;
    DWORD DefaultPriority;
    DWORD StartTime;
    DWORD UntilTime;
    DWORD Status;
    DWORD cJobs;
    DWORD AveragePPM;
};
struct DRIVER_INFO_2W {
    DWORD cVersion;
    LPWSTR pName;
    LPWSTR pEnvironment;
    LPWSTR pDriverPath;
    LPWSTR pDataFile;
    LPWSTR pConfigFile;
};
struct FORM_INFO_1W {
    DWORD Flags;
    LPWSTR pName;
    SIZEL Size;
    RECTL ImageableArea;
};

BOOL OpenPrinterW(LPWSTR name, HANDLE* printer, PRINTER_DEFAULTSW* defaults);
BOOL ClosePrinter(HANDLE printer);
BOOL GetPrinterW(HANDLE printer, DWORD level, LPBYTE out, DWORD bytes, LPDWORD needed);
BOOL GetPrinterDriverW(HANDLE printer, LPWSTR environment, DWORD level, LPBYTE out, DWORD bytes, LPDWORD needed);
BOOL EnumFormsW(HANDLE printer, DWORD level, LPBYTE out, DWORD bytes, LPDWORD needed, LPDWORD returned);
