// zunSimpleSettings.h - typed values in settings text files that keep their comments.
//
//   auto opened = zunSimpleSettingsManager::Get().OpenSettings(zunPath("/home/me/.app/app.ini"));
//   if (opened.second == zunSimpleSettingsManager::NoError)
//   {
//       zunSimpleSettings & settings = *opened.first;
//       int width = settings.GetInt("View", "Width", 800);
//       settings.SetDouble("View", "Zoom", 1.5);
//   }   // letting the pointer go writes the file back
//
// The file. An INI-like text of lines: "[name]" headers, "key=value" lines,
// and everything else (comments starting with ";" or "#" at the start of the
// line, blank lines, unknown lines) kept as it stands. A rewrite gives every
// line back in its place, comments, order, case and quotes included; it drops
// only repeated headers (their lines join the first section of that name),
// earlier values of repeated keys, blanks around "=" and any key that began
// with white space. Texts are bytes as they stand in the file, never
// transcoded. Each line keeps its own line end (LF or CR LF); a line added by
// a setter takes the line end of the line it is appended behind.
//
// Rules a caller must know:
//  - Sections and keys match ignoring case (byte by byte through tolower in
//    the current C locale). Keys in front of the first header are kept
//    through rewrites but are not reachable here.
//  - A value gets its type only when read: bool is "1"/"0" written and "1",
//    "0", "true" or "false" (any case) read; int "%d"; unsigned int "%u";
//    double "%.16lf" written and "%lf" read, each through the C runtime in its
//    current numeric locale. Numbers are read as sscanf reads them: leading
//    blanks skipped, text behind the number ignored ("12abc" is 12), and a
//    negative text read as unsigned wraps.
//  - Getters give the default when the section or key is missing or the text
//    does not parse, and report through `status` when it is not null; a
//    missing section leaves *status as it was, so preset it to tell that case.
//  - Only one open object per path at a time (AlreadyOpen otherwise). A
//    managed object stays in memory after close: opening the path again gives
//    its content, not the file's. Unmanaged objects read the file each time.
//  - Save never fails towards the caller: a file that will not open or write
//    is passed over without a word. Nothing here throws.
//  - Null section or key pointers are safe: a null section acts as a missing
//    section (RemoveSection excepted, where it means all), a null key as a
//    missing key, and setters store nothing for either.
//  - No lock: the manager and its objects belong to one thread at a time.
#ifndef ZUN_SIMPLE_SETTINGS_H
#define ZUN_SIMPLE_SETTINGS_H

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <utility>

#include "zunConfig.h"
#include "zunFlags.h"
#include "zunPath.h"
#include "zunString.h"
#include "zunStringList.h"

// X11's headers define BadValue as a macro; the status below keeps its name
// whatever was included first.
#pragma push_macro("BadValue")
#undef BadValue

/// The values of one settings file by section and key.
class ZUN_API zunSimpleSettings
{
public:
    /// What a getter found; the getters write it through an optional pointer.
    enum SettingStatus : std::int32_t
    {
        Found = 0,    ///< key present and value usable
        NoKey = 2,    ///< the section is there, the key is not
        BadValue = 3, ///< the key is there and its text does not parse
    };

    /// The interface has no state: copying copies nothing.
    ///@{
    zunSimpleSettings() = default;
    zunSimpleSettings(const zunSimpleSettings &) = default;
    zunSimpleSettings & operator=(const zunSimpleSettings &) = default;
    ///@}
    virtual ~zunSimpleSettings();

    // ---- Setters. Each finds the section (or appends a new one at the end
    // of the file) and the key (or appends it at the end of the section),
    // stores the text, and saves at once when the object was opened with
    // WriteThrough and the stored text changed. The numeric setters keep the
    // quotes and the text behind the value that the line had.

    /// "1" for true, "0" for false.
    virtual void SetBool(const char * section, const char * key, bool value) = 0;
    /// The text of "%d".
    virtual void SetInt(const char * section, const char * key, int value) = 0;
    /// The text of "%u".
    virtual void SetUInt(const char * section, const char * key, unsigned int value) = 0;
    /// The text of "%.16lf": 0.5 is stored as 0.5000000000000000.
    virtual void SetDouble(const char * section, const char * key, double value) = 0;
    /// The text read as a value of the file: blanks in front skipped, and a
    /// text opening with a quote has its quotes and the text behind them
    /// stored apart ("'a b' tail" stores a b, quoted, with " tail" behind).
    /// Null stores the empty value with no quote and nothing behind. Only a
    /// change of the bare value counts as a change for WriteThrough.
    virtual void SetString(const char * section, const char * key, const char * value) = 0;

    // ---- Getters (see the rules above for defaults and status).

    /// "0"/"false" false, "1"/"true" true (either word in any case), anything
    /// else BadValue.
    virtual bool GetBool(const char * section, const char * key, bool defaultValue,
                         SettingStatus * status = nullptr) = 0;
    /// The value as sscanf reads it with "%d", "%u" or "%lf" (text behind the
    /// number ignored); BadValue and the default when no number is there.
    ///@{
    virtual int GetInt(const char * section, const char * key, int defaultValue, SettingStatus * status = nullptr) = 0;
    virtual unsigned int GetUInt(const char * section, const char * key, unsigned int defaultValue,
                                 SettingStatus * status = nullptr) = 0;
    virtual double GetDouble(const char * section, const char * key, double defaultValue,
                             SettingStatus * status = nullptr) = 0;
    ///@}
    /// The stored value without its quotes (up to a zero byte, if the file
    /// holds one); the empty value is Found. A missing section or key gives
    /// the default text (null: the null string).
    virtual zunString GetString(const char * section, const char * key, const char * defaultValue,
                                SettingStatus * status = nullptr) = 0;

    // ---- The layout of the file.

    /// The names of the sections in file order; the empty name is left out.
    virtual zunStringListT<char> GetSections() = 0;
    /// The keys of the section in file order, the empty key left out; empty
    /// for a missing section.
    virtual zunStringListT<char> GetKeys(const char * section) = 0;
    /// Deletes every section of that name with its lines; null deletes the
    /// whole file's content, comments and keys in front of the first header
    /// included. Saves with WriteThrough, whether or not something went.
    virtual void RemoveSection(const char * section) = 0;
    /// Deletes the key's lines from the section. Never saves, not even with
    /// WriteThrough: the removal reaches the file with the next saved change.
    virtual void RemoveKey(const char * section, const char * key) = 0;
    /// True if a section of that name exists (null: false).
    virtual bool HasSection(const char * section) = 0;
    /// True if the section holds the key; false for a missing section.
    virtual bool HasKey(const char * section, const char * key) = 0;

    /// Writes the whole file back (truncating it); silent about failure.
    virtual void Save() = 0;
    /// Writes the file's text to standard output.
    virtual void Dump() = 0;
};

#pragma pop_macro("BadValue")

class SimpleSettingsImp;

/// Opens settings files by path and keeps them for the life of the process.
class ZUN_API zunSimpleSettingsManager
{
public:
    /// How an object is opened; a set of these is read as a 32-bit mask.
    enum OpenModeFlag
    {
        WriteThrough = 1, ///< every change is saved at once; closing does not save
        Unmanaged = 2,    ///< not kept: read from the file now, deleted at close
    };

    /// The result of OpenSettings.
    enum Error
    {
        NoError = 0,
        AlreadyOpen = 1, ///< the path is open now
        CannotOpen = 2,  ///< the file neither opened nor could be created (a folder, no permission, ...)
        OutOfMemory = 3, ///< the object could not be allocated
        ReadFailed = 4,  ///< reading the file failed (its memory ran out)
        Unhandled = 5,   ///< any other result of loading; reported through zunFixMe("not handled")
    };

    /// An open object; letting it go closes it: without WriteThrough it is
    /// saved, and an Unmanaged object is deleted.
    typedef std::unique_ptr<zunSimpleSettings, std::function<void(zunSimpleSettings *)>> SettingsPointer;

    /// The one manager of the process, made at first use and destroyed at
    /// library unload. Its destruction deletes the kept objects and writes
    /// nothing.
    static zunSimpleSettingsManager & Get();

    /// Opens the settings file at `path`, creating an empty file when there
    /// is none. A path kept from an earlier open gives the kept object with
    /// the content it had at its close, and the file is not read again
    /// (Unmanaged then has no effect). On any failure the pointer is null.
    std::pair<SettingsPointer, Error>
    OpenSettings(const zunPath & path, const zunFlags<OpenModeFlag, 2> & flags = zunFlags<OpenModeFlag, 2>());

    zunSimpleSettingsManager(const zunSimpleSettingsManager &) = delete;
    zunSimpleSettingsManager & operator=(const zunSimpleSettingsManager &) = delete;

private:
    zunSimpleSettingsManager();
    ~zunSimpleSettingsManager();

    typedef std::map<zunPath, std::unique_ptr<SimpleSettingsImp>> KeptSettings;
    KeptSettings * m_pKept; ///< by path, ordered by zunPath::operator<
};

#endif // ZUN_SIMPLE_SETTINGS_H
