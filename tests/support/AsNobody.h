#pragma once

#include <unistd.h>

/// While one lives, permissions keep this process from things, even where the tests run as root,
/// whom they keep from nothing. Folders and files have to be open to everybody else, then.
class AsNobody
{
public:
    AsNobody()
        : m_isRoot(geteuid() == 0)
        , m_done(!m_isRoot || setresuid(Nobody, Nobody, 0) == 0)
    {}
    ~AsNobody() { m_done = m_done && (!m_isRoot || setresuid(0, 0, 0) == 0); }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;

    /// False where root can't become anybody else.
    explicit operator bool() const { return m_done; }

private:
    static constexpr uid_t Nobody = 65534;

    const bool m_isRoot;
    bool m_done;
};
