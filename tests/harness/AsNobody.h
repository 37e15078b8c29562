// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <unistd.h>

/// While one lives, permissions keep this process from things, even where the tests run as root,
/// whom they keep from nothing. Folders and files have to be open to everybody else, then.
class AsNobody
{
public:
    AsNobody() { become(Nobody); }
    ~AsNobody() { become(0); }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;

private:
    static constexpr uid_t Nobody = 65534;

    void become(uid_t user) const
    {
        if (m_isRoot && setresuid(user, user, 0) != 0) {
            std::abort();
        }
    }

    const bool m_isRoot = geteuid() == 0;
};
