// security.h - tokens, accounts and access lists.
// Away from Windows a token is a user id, a SID the text form of one, and an access list the mode bits of a folder; the
// functions keep the calling conventions so that the driver's steps and their failures are the same.
#pragma once

#include "platform/posix/base_types.h"

#define TOKEN_DUPLICATE 0x0002U
#define TOKEN_IMPERSONATE 0x0004U
#define TOKEN_QUERY 0x0008U
#define READ_CONTROL 0x00020000U
#define DACL_SECURITY_INFORMATION 0x4U
#define SDDL_REVISION_1 1U

using PSID = void*;
using PSECURITY_DESCRIPTOR = void*;

struct SID_AND_ATTRIBUTES {
    PSID Sid;
    DWORD Attributes;
};
struct TOKEN_USER {
    SID_AND_ATTRIBUTES User;
};
struct ACL {
    BYTE AclRevision;
    BYTE Sbz1;
    WORD AclSize;
    WORD AceCount;
    WORD Sbz2;
};
using PACL = ACL*;
struct SECURITY_DESCRIPTOR {
    BYTE Revision;
    BYTE Sbz1;
    WORD Control;
    PSID Owner;
    PSID Group;
    PACL Sacl;
    PACL Dacl;
};
struct ACL_SIZE_INFORMATION {
    DWORD AceCount;
    DWORD AclBytesInUse;
    DWORD AclBytesFree;
};
#define SECURITY_DESCRIPTOR_REVISION 1U
#define ACL_REVISION 2U
#define MAXDWORD 0xFFFFFFFFU
enum TOKEN_INFORMATION_CLASS { TokenUser = 1 };
enum ACL_INFORMATION_CLASS { AclSizeInformation = 2 };
enum SID_NAME_USE { SidTypeUser = 1, SidTypeUnknown = 8 };

BOOL OpenProcessToken(HANDLE process, DWORD access, HANDLE* token);
BOOL ImpersonateLoggedOnUser(HANDLE token);
BOOL RevertToSelf();
BOOL GetTokenInformation(HANDLE token, TOKEN_INFORMATION_CLASS kind, LPVOID out, DWORD bytes, LPDWORD needed);
BOOL LookupAccountSidW(LPCWSTR system, PSID sid, LPWSTR name, LPDWORD nameCharacters, LPWSTR domain, LPDWORD domainCharacters,
                       SID_NAME_USE* use);

BOOL GetFileSecurityW(LPCWSTR path, DWORD what, PSECURITY_DESCRIPTOR out, DWORD bytes, LPDWORD needed);
BOOL SetFileSecurityW(LPCWSTR path, DWORD what, PSECURITY_DESCRIPTOR descriptor);
BOOL InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision);
BOOL GetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, LPBOOL present, PACL* list, LPBOOL defaulted);
BOOL SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, BOOL present, PACL list, BOOL defaulted);
BOOL InitializeAcl(PACL list, DWORD bytes, DWORD revision);
BOOL GetAclInformation(PACL list, LPVOID out, DWORD bytes, ACL_INFORMATION_CLASS kind);
BOOL GetAce(PACL list, DWORD index, LPVOID* entry);
BOOL AddAce(PACL list, DWORD revision, DWORD index, LPVOID entries, DWORD bytes);
BOOL ConvertStringSecurityDescriptorToSecurityDescriptorW(LPCWSTR text, DWORD revision, PSECURITY_DESCRIPTOR* descriptor, ULONG* bytes);
// Header of an access list entry; AceSize counts the whole entry.
struct ACE_HEADER {
    BYTE AceType;
    BYTE AceFlags;
    WORD AceSize;
};
