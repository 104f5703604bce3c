// zunVersion.h - a release number packed into one 32-bit raw value.
//
// From the most significant bit: 8 bits of internal major (the public major
// less 2000), 4 bits of minor, 4 bits of revision, 16 bits of build. The
// public major is therefore 2000 to 2255. Raw value 0 is the one invalid
// version, and the default.
//
//   zunVersion v(0x15120123);                        // 2021.1.2 build 291
//   v.GetDescription(zunVersion::Medium);            // "2021.1.2"
//   v.SetMinor(16);                                  // refused: zunFixMe, unchanged
//
// The rules a caller must know:
//  - SetMajor accepts 2000 to 2255, SetMinor and SetRevision 0 to 15; any
//    other value reports zunFixMe("invalid value") and changes nothing. The
//    raw, internal-major and build setters take what they are given.
//  - Comparisons compare raw values, so major outranks minor, minor outranks
//    revision and revision outranks build.
//  - File form: the raw value as one 32-bit integer. A read stopped by a
//    chunk's limit keeps the value, hence the default of the reading constructor.
#ifndef ZUN_VERSION_H
#define ZUN_VERSION_H

#include "zunConfig.h"
#include "zunString.h"

struct zunFile;

/// A release number, major.minor.revision and build, packed into one 32-bit
/// raw value; 0 is invalid.
struct ZUN_API zunVersion
{
    /// Forms of GetDescription. A number outside the list gives "".
    enum Description : int
    {
        Short = 0,    ///< major, and ".minor" when the minor is not 0: "2021.1"
        Medium = 1,   ///< Short, or major.minor.revision when the revision is not 0: "2021.1.2"
        Full = 2,     ///< "2021.1.2.291", zeros written
        Internal = 3, ///< the same with the internal major: "21.1.2.291"
        WithBuild = 4 ///< Medium, " build ", the build: "2021.1.2 build 291"
    };

    /// Raw value 0.
    static const zunVersion Invalid;

    /// A copy of Invalid.
    zunVersion();
    /// Takes the raw value as it stands.
    zunVersion(unsigned int rawValue);
    /// `defaultValue`, then Read(file).
    zunVersion(zunFile * file, const zunVersion & defaultValue);

    /// The packed 32 bits; any value is taken as it stands.
    ///@{
    unsigned int GetRawValue() const { return m_nRawValue; }
    void SetRawValue(unsigned int rawValue) { m_nRawValue = rawValue; }
    ///@}

    /// The internal major plus 2000.
    unsigned int GetMajor() const;
    /// The fields as stored: internal major 0..255 (the top 8 bits), minor and
    /// revision 0..15 (4 bits each), build 0..65535 (the low 16 bits).
    ///@{
    unsigned char GetMajorInternal() const;
    unsigned char GetMinor() const;
    unsigned char GetRevision() const;
    unsigned short GetBuild() const;
    ///@}

    /// 2000 to 2255, stored less 2000; anything else is refused.
    void SetMajor(unsigned int major);
    /// Stores the top 8 bits as given, 0 to 255 (public major 2000 to 2255).
    void SetMajorInternal(unsigned char major);
    /// 0 to 15; anything else is refused.
    void SetMinor(unsigned char minor);
    /// 0 to 15; anything else is refused.
    void SetRevision(unsigned char revision);
    /// Stores the low 16 bits as given.
    void SetBuild(unsigned short build);

    /// The raw value differs from Invalid's.
    bool IsValid() const;

    /// Compare the raw values: major outranks minor, minor revision, revision build.
    ///@{
    bool operator==(const zunVersion & other) const { return m_nRawValue == other.m_nRawValue; }
    bool operator!=(const zunVersion & other) const { return m_nRawValue != other.m_nRawValue; }
    bool operator<(const zunVersion & other) const { return m_nRawValue < other.m_nRawValue; }
    bool operator<=(const zunVersion & other) const { return m_nRawValue <= other.m_nRawValue; }
    bool operator>(const zunVersion & other) const { return m_nRawValue > other.m_nRawValue; }
    bool operator>=(const zunVersion & other) const { return m_nRawValue >= other.m_nRawValue; }
    ///@}

    /// The text of one of the Description forms.
    zunString GetDescription(Description form) const;

    /// Reads the raw value as a 32-bit integer; a read stopped at the stream's
    /// limit keeps the value.
    void Read(zunFile * file);
    /// Writes the raw value as a 32-bit integer; throws zunException when the
    /// bytes don't go out.
    void Write(zunFile * file) const;

private:
    unsigned int m_nRawValue;
};

#endif // ZUN_VERSION_H
