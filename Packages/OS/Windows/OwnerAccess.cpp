#include "Packages/OS/Windows/OwnerAccess.h"

ClOwnerAccess::ClOwnerAccess() : m_isMade(Make()) {}

bool ClOwnerAccess::Make() {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return false;
    DWORD size = 0;
    const BOOL isKnown = GetTokenInformation(token, TokenUser, &m_user, sizeof m_userRoom, &size);
    CloseHandle(token);
    PSID user = m_user.User.Sid;
    m_attributes = {sizeof m_attributes, &m_descriptor, FALSE};
    return isKnown && InitializeAcl(&m_list, sizeof m_listRoom, ACL_REVISION) &&
           AddAccessAllowedAce(&m_list, ACL_REVISION, FILE_ALL_ACCESS, user) &&
           InitializeSecurityDescriptor(&m_descriptor, SECURITY_DESCRIPTOR_REVISION) &&
           // By default an administrator's files belong to all administrators.
           SetSecurityDescriptorOwner(&m_descriptor, user, FALSE) &&
           SetSecurityDescriptorDacl(&m_descriptor, TRUE, &m_list, FALSE) &&
           SetSecurityDescriptorControl(&m_descriptor, SE_DACL_PROTECTED, SE_DACL_PROTECTED);
}
