// Sizes and offsets of the records of the spooler and of the system, and the widths of plain numbers, as 64-bit Windows lays them out.
// The same numbers hold on both hosts.
#include <gtest/gtest.h>

#include "platform/platform.h"
#include "support/Layout.h"

using morvil::test::expectLayout;

TEST(Layout, PRINTER_INFO_2W) {
    expectLayout("PRINTER_INFO_2W", sizeof(PRINTER_INFO_2W), 136,
                 {
                     MEMBER(PRINTER_INFO_2W, pServerName, 0, 8),
                     MEMBER(PRINTER_INFO_2W, pPrinterName, 8, 8),
                     MEMBER(PRINTER_INFO_2W, pShareName, 16, 8),
                     MEMBER(PRINTER_INFO_2W, pPortName, 24, 8),
                     MEMBER(PRINTER_INFO_2W, pDriverName, 32, 8),
                     MEMBER(PRINTER_INFO_2W, pComment, 40, 8),
                     MEMBER(PRINTER_INFO_2W, pLocation, 48, 8),
                     MEMBER(PRINTER_INFO_2W, pDevMode, 56, 8),
                     MEMBER(PRINTER_INFO_2W, pSepFile, 64, 8),
                     MEMBER(PRINTER_INFO_2W, pPrintProcessor, 72, 8),
                     MEMBER(PRINTER_INFO_2W, pDatatype, 80, 8),
                     MEMBER(PRINTER_INFO_2W, pParameters, 88, 8),
                     MEMBER(PRINTER_INFO_2W, pSecurityDescriptor, 96, 8),
                     MEMBER(PRINTER_INFO_2W, Attributes, 104, 4),
                     MEMBER(PRINTER_INFO_2W, Priority, 108, 4),
                     MEMBER(PRINTER_INFO_2W, DefaultPriority, 112, 4),
                     MEMBER(PRINTER_INFO_2W, StartTime, 116, 4),
                     MEMBER(PRINTER_INFO_2W, UntilTime, 120, 4),
                     MEMBER(PRINTER_INFO_2W, Status, 124, 4),
                     MEMBER(PRINTER_INFO_2W, cJobs, 128, 4),
                     MEMBER(PRINTER_INFO_2W, AveragePPM, 132, 4),
                 });
}

TEST(Layout, DRIVER_INFO_2W) {
    expectLayout("DRIVER_INFO_2W", sizeof(DRIVER_INFO_2W), 48,
                 {
                     MEMBER(DRIVER_INFO_2W, cVersion, 0, 4),
                     MEMBER(DRIVER_INFO_2W, pName, 8, 8),
                     MEMBER(DRIVER_INFO_2W, pEnvironment, 16, 8),
                     MEMBER(DRIVER_INFO_2W, pDriverPath, 24, 8),
                     MEMBER(DRIVER_INFO_2W, pDataFile, 32, 8),
                     MEMBER(DRIVER_INFO_2W, pConfigFile, 40, 8),
                 });
}

TEST(Layout, FORM_INFO_1W) {
    expectLayout("FORM_INFO_1W", sizeof(FORM_INFO_1W), 40,
                 {
                     MEMBER(FORM_INFO_1W, Flags, 0, 4),
                     MEMBER(FORM_INFO_1W, pName, 8, 8),
                     MEMBER(FORM_INFO_1W, Size, 16, 8),
                     MEMBER(FORM_INFO_1W, ImageableArea, 24, 16),
                 });
}

TEST(Layout, WIN32_FIND_DATAW) {
    expectLayout("WIN32_FIND_DATAW", sizeof(WIN32_FIND_DATAW), 592,
                 {
                     MEMBER(WIN32_FIND_DATAW, dwFileAttributes, 0, 4),
                     MEMBER(WIN32_FIND_DATAW, ftCreationTime, 4, 8),
                     MEMBER(WIN32_FIND_DATAW, ftLastAccessTime, 12, 8),
                     MEMBER(WIN32_FIND_DATAW, ftLastWriteTime, 20, 8),
                     MEMBER(WIN32_FIND_DATAW, nFileSizeHigh, 28, 4),
                     MEMBER(WIN32_FIND_DATAW, nFileSizeLow, 32, 4),
                     MEMBER(WIN32_FIND_DATAW, dwReserved0, 36, 4),
                     MEMBER(WIN32_FIND_DATAW, dwReserved1, 40, 4),
                     MEMBER(WIN32_FIND_DATAW, cFileName, 44, 520),
                     MEMBER(WIN32_FIND_DATAW, cAlternateFileName, 564, 28),
                 });
}

TEST(Layout, OSVERSIONINFOW) {
    expectLayout("OSVERSIONINFOW", sizeof(OSVERSIONINFOW), 276,
                 {
                     MEMBER(OSVERSIONINFOW, dwOSVersionInfoSize, 0, 4),
                     MEMBER(OSVERSIONINFOW, dwMajorVersion, 4, 4),
                     MEMBER(OSVERSIONINFOW, dwMinorVersion, 8, 4),
                     MEMBER(OSVERSIONINFOW, dwBuildNumber, 12, 4),
                     MEMBER(OSVERSIONINFOW, dwPlatformId, 16, 4),
                     MEMBER(OSVERSIONINFOW, szCSDVersion, 20, 256),
                 });
}

TEST(Layout, SYSTEM_INFO) {
    expectLayout("SYSTEM_INFO", sizeof(SYSTEM_INFO), 48,
                 {
                     MEMBER(SYSTEM_INFO, wProcessorArchitecture, 0, 2),
                     MEMBER(SYSTEM_INFO, wReserved, 2, 2),
                     MEMBER(SYSTEM_INFO, dwPageSize, 4, 4),
                     MEMBER(SYSTEM_INFO, lpMinimumApplicationAddress, 8, 8),
                     MEMBER(SYSTEM_INFO, lpMaximumApplicationAddress, 16, 8),
                     MEMBER(SYSTEM_INFO, dwActiveProcessorMask, 24, 8),
                     MEMBER(SYSTEM_INFO, dwNumberOfProcessors, 32, 4),
                     MEMBER(SYSTEM_INFO, dwProcessorType, 36, 4),
                     MEMBER(SYSTEM_INFO, dwAllocationGranularity, 40, 4),
                     MEMBER(SYSTEM_INFO, wProcessorLevel, 44, 2),
                     MEMBER(SYSTEM_INFO, wProcessorRevision, 46, 2),
                 });
}

TEST(Layout, SYSTEMTIME) {
    expectLayout("SYSTEMTIME", sizeof(SYSTEMTIME), 16,
                 {
                     MEMBER(SYSTEMTIME, wYear, 0, 2),
                     MEMBER(SYSTEMTIME, wMonth, 2, 2),
                     MEMBER(SYSTEMTIME, wDayOfWeek, 4, 2),
                     MEMBER(SYSTEMTIME, wDay, 6, 2),
                     MEMBER(SYSTEMTIME, wHour, 8, 2),
                     MEMBER(SYSTEMTIME, wMinute, 10, 2),
                     MEMBER(SYSTEMTIME, wSecond, 12, 2),
                     MEMBER(SYSTEMTIME, wMilliseconds, 14, 2),
                 });
}

TEST(Layout, VS_FIXEDFILEINFO) {
    expectLayout("VS_FIXEDFILEINFO", sizeof(VS_FIXEDFILEINFO), 52,
                 {
                     MEMBER(VS_FIXEDFILEINFO, dwSignature, 0, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwStrucVersion, 4, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileVersionMS, 8, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileVersionLS, 12, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwProductVersionMS, 16, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwProductVersionLS, 20, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileFlagsMask, 24, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileFlags, 28, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileOS, 32, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileType, 36, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileSubtype, 40, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileDateMS, 44, 4),
                     MEMBER(VS_FIXEDFILEINFO, dwFileDateLS, 48, 4),
                 });
}

TEST(Layout, SECURITY_DESCRIPTOR) {
    expectLayout("SECURITY_DESCRIPTOR", sizeof(SECURITY_DESCRIPTOR), 40,
                 {
                     MEMBER(SECURITY_DESCRIPTOR, Revision, 0, 1),
                     MEMBER(SECURITY_DESCRIPTOR, Sbz1, 1, 1),
                     MEMBER(SECURITY_DESCRIPTOR, Control, 2, 2),
                     MEMBER(SECURITY_DESCRIPTOR, Owner, 8, 8),
                     MEMBER(SECURITY_DESCRIPTOR, Group, 16, 8),
                     MEMBER(SECURITY_DESCRIPTOR, Sacl, 24, 8),
                     MEMBER(SECURITY_DESCRIPTOR, Dacl, 32, 8),
                 });
}

TEST(Layout, ACL) {
    expectLayout("ACL", sizeof(ACL), 8,
                 {
                     MEMBER(ACL, AclRevision, 0, 1),
                     MEMBER(ACL, Sbz1, 1, 1),
                     MEMBER(ACL, AclSize, 2, 2),
                     MEMBER(ACL, AceCount, 4, 2),
                     MEMBER(ACL, Sbz2, 6, 2),
                 });
}

TEST(Layout, ACE_HEADER) {
    expectLayout("ACE_HEADER", sizeof(ACE_HEADER), 4,
                 {
                     MEMBER(ACE_HEADER, AceType, 0, 1),
                     MEMBER(ACE_HEADER, AceFlags, 1, 1),
                     MEMBER(ACE_HEADER, AceSize, 2, 2),
                 });
}

TEST(Layout, ACL_SIZE_INFORMATION) {
    expectLayout("ACL_SIZE_INFORMATION", sizeof(ACL_SIZE_INFORMATION), 12,
                 {
                     MEMBER(ACL_SIZE_INFORMATION, AceCount, 0, 4),
                     MEMBER(ACL_SIZE_INFORMATION, AclBytesInUse, 4, 4),
                     MEMBER(ACL_SIZE_INFORMATION, AclBytesFree, 8, 4),
                 });
}

TEST(Layout, TOKEN_USER) {
    expectLayout("TOKEN_USER", sizeof(TOKEN_USER), 16,
                 {
                     MEMBER(TOKEN_USER, User, 0, 16),
                 });
}

TEST(Layout, SID_AND_ATTRIBUTES) {
    expectLayout("SID_AND_ATTRIBUTES", sizeof(SID_AND_ATTRIBUTES), 16,
                 {
                     MEMBER(SID_AND_ATTRIBUTES, Sid, 0, 8),
                     MEMBER(SID_AND_ATTRIBUTES, Attributes, 8, 4),
                 });
}

TEST(Layout, scalars) {
    EXPECT_EQ(sizeof(LONG), 4U);
    EXPECT_EQ(sizeof(ULONG), 4U);
    EXPECT_EQ(sizeof(DWORD), 4U);
    EXPECT_EQ(sizeof(WCHAR), 2U);
    EXPECT_EQ(sizeof(BOOL), 4U);
    EXPECT_EQ(sizeof(HANDLE), 8U);
    EXPECT_EQ(sizeof(LARGE_INTEGER), 8U);
}
