// SPDX-License-Identifier: MIT
#include "support/Utf8Locale.h"

#ifndef _WIN32

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <langinfo.h>
#include <locale.h>
#include <string>
#include <string_view>
#include <strings.h>

namespace {

bool isUtf8()
{
    const char* const encoding = nl_langinfo(CODESET);
    return strcasecmp(encoding, "UTF-8") == 0 || strcasecmp(encoding, "utf8") == 0;
}

bool namesUtf8(const char* name)
{
    return strcasestr(name, "utf-8") != nullptr || strcasestr(name, "utf8") != nullptr;
}

bool askEnvironment()
{
    if (const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr)) {
        const bool shown = namesUtf8(nl_langinfo_l(CODESET, locale));
        freelocale(locale);
        return shown;
    }
    for (const char* variable : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* const name = std::getenv(variable);
        if (name != nullptr && *name != '\0') {
            return namesUtf8(name);
        }
    }
    return false;
}

} // namespace

bool support::environmentShowsUtf8()
{
    static const bool shown = askEnvironment();
    return shown;
}

void support::chooseUtf8Locale()
{
    static_cast<void>(environmentShowsUtf8()); // before the environment says otherwise
    if (std::setlocale(LC_ALL, "") != nullptr && isUtf8()) {
        return;
    }
    // "de_DE.ISO-8859-15" and "de_DE@euro" are both "de_DE".
    const char* const current = std::setlocale(LC_CTYPE, nullptr);
    const std::string_view name = current != nullptr ? current : "C";
    const std::string utf8 = std::string(name.substr(0, name.find_first_of(".@"))) + ".UTF-8";
    for (const std::string& candidate : {utf8, std::string("C.UTF-8")}) {
        if (std::setlocale(LC_CTYPE, candidate.c_str()) != nullptr && isUtf8()) {
            // LC_ALL, where it is set, counts for more than LC_CTYPE.
            const char* const all = std::getenv("LC_ALL");
            setenv(all != nullptr && *all != '\0' ? "LC_ALL" : "LC_CTYPE", candidate.c_str(), 1);
            return;
        }
    }
}

#else

void support::chooseUtf8Locale() {}

bool support::environmentShowsUtf8()
{
    return true;
}

#endif
