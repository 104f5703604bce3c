// zunVersion: the packed release number, its checked setters and its texts.
#include "zunException.h"
#include "zunFile.h"
#include "zunVersion.h"

namespace
{
    constexpr unsigned int kMajorBase = 2000;
    constexpr int kMajorShift = 24;
    constexpr int kMinorShift = 20;
    constexpr int kRevisionShift = 16;
    constexpr unsigned int kNibbleMask = 0xF;

    unsigned int WithField(unsigned int raw, int shift, unsigned int mask, unsigned int value)
    {
        return (raw & ~(mask << shift)) | ((value & mask) << shift);
    }
}

const zunVersion zunVersion::Invalid(0u);

zunVersion::zunVersion() : m_nRawValue(Invalid.m_nRawValue) {}

zunVersion::zunVersion(unsigned int rawValue) : m_nRawValue(rawValue) {}

zunVersion::zunVersion(zunFile * file, const zunVersion & defaultValue) : m_nRawValue(defaultValue.m_nRawValue)
{
    Read(file);
}

unsigned int zunVersion::GetMajor() const
{
    return GetMajorInternal() + kMajorBase;
}

unsigned char zunVersion::GetMajorInternal() const
{
    return static_cast<unsigned char>(m_nRawValue >> kMajorShift);
}

unsigned char zunVersion::GetMinor() const
{
    return static_cast<unsigned char>((m_nRawValue >> kMinorShift) & kNibbleMask);
}

unsigned char zunVersion::GetRevision() const
{
    return static_cast<unsigned char>((m_nRawValue >> kRevisionShift) & kNibbleMask);
}

unsigned short zunVersion::GetBuild() const
{
    return static_cast<unsigned short>(m_nRawValue & 0xFFFF);
}

void zunVersion::SetMajor(unsigned int major)
{
    if (major < kMajorBase || major > kMajorBase + 255)
    {
        zunFixMe("invalid value");
        return;
    }
    SetMajorInternal(static_cast<unsigned char>(major - kMajorBase));
}

void zunVersion::SetMajorInternal(unsigned char major)
{
    m_nRawValue = WithField(m_nRawValue, kMajorShift, 0xFF, major);
}

void zunVersion::SetMinor(unsigned char minor)
{
    if (minor > kNibbleMask)
    {
        zunFixMe("invalid value");
        return;
    }
    m_nRawValue = WithField(m_nRawValue, kMinorShift, kNibbleMask, minor);
}

void zunVersion::SetRevision(unsigned char revision)
{
    if (revision > kNibbleMask)
    {
        zunFixMe("invalid value");
        return;
    }
    m_nRawValue = WithField(m_nRawValue, kRevisionShift, kNibbleMask, revision);
}

void zunVersion::SetBuild(unsigned short build)
{
    m_nRawValue = WithField(m_nRawValue, 0, 0xFFFF, build);
}

bool zunVersion::IsValid() const
{
    return m_nRawValue != Invalid.m_nRawValue;
}

zunString zunVersion::GetDescription(Description form) const
{
    const unsigned int major = GetMajor();
    const int minor = GetMinor();
    const int revision = GetRevision();
    const int build = GetBuild();

    zunString shortBase;
    if (minor != 0)
        shortBase.Printf("%u.%d", major, minor);
    else
        shortBase.Printf("%u", major);
    zunString mediumBase;
    if (revision != 0)
        mediumBase.Printf("%u.%d.%d", major, minor, revision);
    else
        mediumBase = shortBase;

    zunString text;
    switch (form)
    {
    case Short:
        return shortBase;
    case Medium:
        return mediumBase;
    case Full:
        text.Printf("%u.%d.%d.%d", major, minor, revision, build);
        break;
    case Internal:
        text.Printf("%u.%d.%d.%d", static_cast<unsigned int>(GetMajorInternal()), minor, revision, build);
        break;
    case WithBuild:
        text.Printf("%s build %d", static_cast<const char *>(mediumBase), build);
        break;
    }
    return text;
}

void zunVersion::Read(zunFile * file)
{
    int raw = static_cast<int>(m_nRawValue);
    file->Read_Int32(raw);
    m_nRawValue = static_cast<unsigned int>(raw);
}

void zunVersion::Write(zunFile * file) const
{
    file->Write_Int32(static_cast<int>(m_nRawValue));
}
