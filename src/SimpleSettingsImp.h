// SimpleSettingsImp.h - the one implementation of the settings interface.
//
// Internal. It owns the top-level sequence of line records of one settings
// file: the keys and comments in front of the first section header, then
// the sections with the lines behind each header.
#ifndef ZUN_SIMPLE_SETTINGS_IMP_H
#define ZUN_SIMPLE_SETTINGS_IMP_H

#include <cstddef>
#include <iosfwd>
#include <new>

#include "SettingsRecords.h"
#include "zunConfig.h"
#include "zunPath.h"
#include "zunSimpleSettings.h"

class ZUN_API SimpleSettingsImp : public zunSimpleSettings
{
public:
    /// What Load gives.
    enum LoadResult
    {
        Loaded = 0,
        CannotCreate = 1, ///< no file there, and none could be made
        CannotRead = 2,   ///< the file is there and will not open for reading
        ReadThrew = 3,    ///< reading threw; the model is empty
    };

    SimpleSettingsImp();
    ~SimpleSettingsImp() override;
    SimpleSettingsImp(const SimpleSettingsImp &) = delete;
    SimpleSettingsImp & operator=(const SimpleSettingsImp &) = delete;

    /// Objects live in zunMemAlloc blocks, so tests can make them fail; the
    /// nothrow form gives null when the heap is exhausted.
    static void * operator new(std::size_t size);
    static void * operator new(std::size_t size, const std::nothrow_t &) noexcept;
    static void operator delete(void * block) noexcept;
    static void operator delete(void * block, const std::nothrow_t &) noexcept { operator delete(block); }

    /// Takes `path` and reads its file, or makes an empty file when none is
    /// there (a folder counts as none, and then cannot be made).
    LoadResult Load(const zunPath & path);

    /// Appends the records of the stream's lines to m_items, line by line
    /// until the stream fails, so a last line without newline is read too. A
    /// repeated section header continues the first section of that name
    /// (ignoring case) and is dropped with its trailing text; keys repeated
    /// in a section update the first. Throws zunException, with no
    /// description, when a record cannot be allocated or stored; m_items may
    /// then hold part of the file.
    void Read(std::ifstream & stream);
    /// Writes every record in order; gives the stream.
    std::ostream & Write(std::ostream & stream) const;

    void SetBool(const char * section, const char * key, bool value) override;
    void SetInt(const char * section, const char * key, int value) override;
    void SetUInt(const char * section, const char * key, unsigned int value) override;
    void SetDouble(const char * section, const char * key, double value) override;
    void SetString(const char * section, const char * key, const char * value) override;
    bool GetBool(const char * section, const char * key, bool defaultValue, SettingStatus * status) override;
    int GetInt(const char * section, const char * key, int defaultValue, SettingStatus * status) override;
    unsigned int GetUInt(const char * section, const char * key, unsigned int defaultValue,
                         SettingStatus * status) override;
    double GetDouble(const char * section, const char * key, double defaultValue, SettingStatus * status) override;
    zunString GetString(const char * section, const char * key, const char * defaultValue,
                        SettingStatus * status) override;
    zunStringListT<char> GetSections() override;
    zunStringListT<char> GetKeys(const char * section) override;
    void RemoveSection(const char * section) override;
    void RemoveKey(const char * section, const char * key) override;
    bool HasSection(const char * section) override;
    bool HasKey(const char * section, const char * key) override;
    void Save() override;
    void Dump() override;

    zunPath m_path;
    unsigned int m_openMode; ///< 0 closed, 1 saved at close, 2 saved at each change
    /// The records read from the file live here; it goes after m_items.
    zunSettingsPrivate::RecordArena m_arena;
    zunSettingsPrivate::RecordList m_items; ///< the top-level sequence; keyed by section names
    /// Set when the manager went while the object was open: the object is
    /// no longer kept, and its closing deletes it.
    bool m_bOrphaned;

private:
    /// The first section of that name, or null (null name: null).
    zunSettingsPrivate::Section * FindSection(const char * name) const;
    /// The key's record for a getter, or null. A missing key sets `status` to
    /// NoKey, a key found sets Found; a missing section leaves it alone.
    const zunSettingsPrivate::KeyValue * Lookup(const char * section, const char * key, SettingStatus * status) const;
    /// Stores `text` under the key: bare, or through the value parsing with
    /// `parse`. Saves when the value changed and every change is saved.
    void Store(const char * section, const char * key, const char * text, bool parse);
    /// Saves when every change is saved.
    void Changed();
};

#endif // ZUN_SIMPLE_SETTINGS_IMP_H
