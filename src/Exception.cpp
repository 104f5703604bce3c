// The exception type and the soft-failure hook.
#include "zunException.h"

#include <cstdio>
#include <cstring>

unsigned int zunException::ms_nExceptionInstances = 0;

namespace
{
    // The copy of one text: at most 1023 bytes, zero-filled behind the text's
    // end. The 1024th byte is not taken from the source; it would hold
    // whatever the memory held, and we make it a terminator so a text of 1023
    // characters or more arrives cut rather than open.
    void CopyText(char (&dst)[1024], const char (&src)[1024])
    {
        std::size_t i = 0;
        for (; i < sizeof(dst) - 1 && src[i] != 0; ++i)
            dst[i] = src[i];
        std::memset(dst + i, 0, sizeof(dst) - i);
    }
}

zunException::zunException()
    : m_pszFileAndLine(nullptr), m_pszFunction(nullptr), m_szDebugDescription{}, m_szDescription{}
{
    ++ms_nExceptionInstances;
}

zunException::zunException(const char * fileAndLine, const char * function)
    : m_pszFileAndLine(fileAndLine), m_pszFunction(function), m_szDebugDescription{}, m_szDescription{}
{
    ++ms_nExceptionInstances;
}

zunException::zunException(const zunException & other)
    : m_pszFileAndLine(other.m_pszFileAndLine), m_pszFunction(other.m_pszFunction)
{
    CopyText(m_szDebugDescription, other.m_szDebugDescription);
    CopyText(m_szDescription, other.m_szDescription);
    ++ms_nExceptionInstances;
}

zunException::~zunException()
{
    --ms_nExceptionInstances;
}

zunException & zunException::operator=(const zunException & other)
{
    // memcpy of a text onto itself is undefined; a self-assignment changes nothing.
    if (&other == this)
        return *this;
    m_pszFileAndLine = other.m_pszFileAndLine;
    m_pszFunction = other.m_pszFunction;
    std::memcpy(m_szDebugDescription, other.m_szDebugDescription, sizeof(m_szDebugDescription));
    std::memcpy(m_szDescription, other.m_szDescription, sizeof(m_szDescription));
    return *this;
}

zunException & zunException::SetDebugDescription(const char * format, ...)
{
    va_list args;
    va_start(args, format);
    // A negative result of the formatter is ignored: the array keeps what it left.
    std::vsnprintf(m_szDebugDescription, sizeof(m_szDebugDescription), format, args);
    va_end(args);
    m_szDebugDescription[sizeof(m_szDebugDescription) - 1] = 0;
    return *this;
}

zunException & zunException::SetDescription(const char * format, ...)
{
    va_list args;
    va_start(args, format);
    SetDescription(format, args);
    va_end(args);
    return *this;
}

zunException & zunException::SetDescription(const char * format, va_list & args)
{
    if (format == nullptr)
    {
        m_szDescription[0] = 0;
        return *this;
    }
    // The description is bounded one byte tighter than the debug description.
    std::vsnprintf(m_szDescription, sizeof(m_szDescription) - 1, format, args);
    m_szDescription[sizeof(m_szDescription) - 1] = 0;
    return *this;
}

bool zunException::IsAnyBeingHandled()
{
    return ms_nExceptionInstances > 0;
}

void zunFixMe(const char *, ...) {}
