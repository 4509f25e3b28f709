// Security attributes for new files: all rights for the user of this process, none for anyone else, nothing inherited.
#pragma once

#include "Packages/OS/Windows/Windows.h"

class ClOwnerAccess {
  public:
    ClOwnerAccess();
    ClOwnerAccess(const ClOwnerAccess&) = delete;
    ClOwnerAccess& operator=(const ClOwnerAccess&) = delete;
    // For CreateFileW; valid while this object lives. Null, with the system's last error set, if they couldn't be
    // built.
    SECURITY_ATTRIBUTES* Attributes() { return m_isMade ? &m_attributes : nullptr; }

  private:
    bool Make();

    // A user with room for the longest SID, and a list with room for one entry for it.
    union {
        TOKEN_USER m_user;
        BYTE m_userRoom[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
    };
    union {
        ACL m_list;
        BYTE m_listRoom[sizeof(ACL) + sizeof(ACCESS_ALLOWED_ACE) + SECURITY_MAX_SID_SIZE];
    };
    SECURITY_DESCRIPTOR m_descriptor;
    SECURITY_ATTRIBUTES m_attributes;
    bool m_isMade;
};
