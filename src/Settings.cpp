// Settings files: reading the line records of a file, and the settings
// objects over them.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <new>
#include <string>

#include "SettingsLineReader.h"
#include "SimpleSettingsImp.h"
#include "ThrowSite.h"
#include "zunFileDisk.h"
#include "zunMem.h"

using namespace zunSettingsPrivate;

#define ZUN_SETTINGS_READ_SIGNATURE                                                                                    \
    "void __cdecl SimpleSettingsImp::Read(class std::basic_ifstream<char,struct std::char_traits<char> > &) "          \
    "throw(struct zunException)"

namespace
{
    // Makes an empty file at `path`, refusing one that is there already (a
    // folder included).
    // A missing file is made empty through the disk stream, which logs why a
    // create failed; the stream is closed again at once.
    bool CreateEmptyFile(const zunPath & path)
    {
        try
        {
            return zunFileDisk::Create(path, zunFileDisk::ReadWrite, zunFileDisk::CreateNew,
                                       zunFlags<zunFileDisk::Flag, 2>()) != nullptr;
        }
        catch (const zunException &)
        {
            return false; // a new file that cannot seek: not a file to keep settings in
        }
    }

    // The three steps of storing a record; each is false when memory ran out,
    // whatever part of the step it was.
    bool AddSection(RecordList & items, std::unique_ptr<Section> section, Section *& current) noexcept
    {
        if (!section)
            return false;
        std::unique_ptr<Data> record(std::move(section));
        try
        {
            Data * same = items.FindOrAppend(record);
            // A repeated header goes, and its lines go on into the first.
            current = static_cast<Section *>(same != nullptr ? same : items.GetRecords().back().get());
        }
        catch (const std::bad_alloc &)
        {
            return false;
        }
        return true;
    }

    bool AddRecord(RecordList & items, std::unique_ptr<Data> record, RecordArena * arena, Section * current) noexcept
    {
        if (!record)
            return false;
        try
        {
            if (current != nullptr)
                current->Add(std::move(record), arena);
            else
                items.Append(std::move(record)); // top-level keys are never merged
        }
        catch (const std::bad_alloc &)
        {
            return false;
        }
        return true;
    }
}

// ---- SimpleSettingsImp

zunSimpleSettings::~zunSimpleSettings() = default;

SimpleSettingsImp::SimpleSettingsImp() : m_openMode(0), m_items(TypeSection), m_bOrphaned(false) {}

SimpleSettingsImp::~SimpleSettingsImp() = default;

void * SimpleSettingsImp::operator new(std::size_t size)
{
    if (void * block = operator new(size, std::nothrow))
        return block;
    throw std::bad_alloc();
}

void * SimpleSettingsImp::operator new(std::size_t size, const std::nothrow_t &) noexcept
{
    void * block = nullptr;
    return zunMemAlloc(block, static_cast<unsigned int>(size), false) ? block : nullptr;
}

void SimpleSettingsImp::operator delete(void * block) noexcept
{
    zunMemFree(block);
}

SimpleSettingsImp::LoadResult SimpleSettingsImp::Load(const zunPath & path)
{
    m_path = path;
    if (!m_path.ExistsAs(zunPath::File))
        return CreateEmptyFile(m_path) ? Loaded : CannotCreate;
    std::ifstream stream(static_cast<const char *>(m_path.OSRepresentation8()));
    if (!stream.is_open())
        return CannotRead;
    try
    {
        Read(stream);
    }
    catch (...)
    {
        m_items.Clear();
        m_arena.Release();
        return ReadThrew;
    }
    return Loaded;
}

void SimpleSettingsImp::Read(std::ifstream & stream)
{
    // The lines as std::getline gives them, up to each newline until the
    // stream fails, a last line without newline included.
    LineReader lines(stream);
    Section * current = nullptr;
    const char * line = nullptr;
    std::size_t length = 0;
    bool crlf = false;
    while (lines.Next(line, length, crlf))
    {
        std::size_t position = 0;
        switch (ClassifyLine(line, length, position))
        {
        case TypeSection:
            if (!AddSection(m_items, Section::FromLine(line, length, position, crlf, &m_arena), current))
                throw ZUN_EXCEPTION(ZUN_SETTINGS_READ_SIGNATURE);
            break;
        case TypeKeyValue:
            if (!AddRecord(m_items, KeyValue::FromLine(line, length, position, crlf, &m_arena), &m_arena, current))
                throw ZUN_EXCEPTION(ZUN_SETTINGS_READ_SIGNATURE);
            break;
        case TypeOther:
            if (!AddRecord(m_items, Other::FromLine(line, length, crlf, &m_arena), &m_arena, current))
                throw ZUN_EXCEPTION(ZUN_SETTINGS_READ_SIGNATURE);
            break;
        default:
            zunFixMe("unsupported type");
            break;
        }
    }
}

std::ostream & SimpleSettingsImp::Write(std::ostream & stream) const
{
    return m_items.Write(stream);
}

// ---- The interface

Section * SimpleSettingsImp::FindSection(const char * name) const
{
    return name != nullptr ? static_cast<Section *>(m_items.FindKeyed(name, std::strlen(name))) : nullptr;
}

const KeyValue * SimpleSettingsImp::Lookup(const char * section, const char * key, SettingStatus * status) const
{
    const Section * found = FindSection(section);
    if (found == nullptr)
        return nullptr; // the status is left for the caller to tell this case
    const Data * record = key != nullptr ? found->m_children.FindKeyed(key, std::strlen(key)) : nullptr;
    if (status != nullptr)
        *status = record != nullptr ? Found : NoKey;
    return static_cast<const KeyValue *>(record);
}

void SimpleSettingsImp::Changed()
{
    if (m_openMode == 2)
        Save();
}

namespace
{
    // A record of the heap with the text `name`; null when memory ran out.
    template <typename Record> std::unique_ptr<Record> NewRecord(const char * name)
    {
        std::unique_ptr<Record> record(new Record);
        if (record && !record->m_text.Assign(name, std::strlen(name), nullptr))
            record.reset();
        return record;
    }

    // The value of a record made by a setter.
    bool SetNewValue(KeyValue & record, const char * text, bool parse)
    {
        const std::size_t length = std::strlen(text);
        return parse ? record.ParseValue(text, length, nullptr) : record.m_value.Assign(text, length, nullptr);
    }

    // The line end of the last line of a sequence of records, or LF when
    // there is none: new lines follow the file's habit.
    bool EndsInCrLf(const RecordList & records, bool otherwise)
    {
        if (records.IsEmpty())
            return otherwise;
        const Data & last = *records.GetRecords().back();
        if (last.m_type == TypeSection)
            return EndsInCrLf(static_cast<const Section &>(last).m_children, last.m_crlf);
        return last.m_crlf;
    }
}

void SimpleSettingsImp::Store(const char * section, const char * key, const char * text, bool parse)
{
    if (section == nullptr || key == nullptr)
        return; // nowhere to store
    if (text == nullptr)
        text = "";
    Section * found = FindSection(section);
    if (found != nullptr)
    {
        if (Data * record = found->m_children.FindKeyed(key, std::strlen(key)))
        {
            KeyValue & keyValue = static_cast<KeyValue &>(*record);
            bool changed = false;
            if (parse)
            {
                if (!keyValue.ParseValue(text, std::strlen(text), nullptr, &changed))
                    return;
            }
            else if (keyValue.m_value != text)
            {
                if (!keyValue.m_value.Assign(text, std::strlen(text), nullptr))
                    return;
                changed = true;
            }
            if (changed)
                Changed();
            return;
        }
    }

    // A new key, in a new section if need be; all or nothing.
    std::unique_ptr<KeyValue> keyValue = NewRecord<KeyValue>(key);
    if (!keyValue || !SetNewValue(*keyValue, text, parse))
        return;
    std::unique_ptr<Section> added;
    if (found == nullptr)
    {
        added = NewRecord<Section>(section);
        if (!added)
            return;
        added->m_crlf = EndsInCrLf(m_items, false);
        found = added.get();
    }
    keyValue->m_crlf = EndsInCrLf(found->m_children, found->m_crlf);
    try
    {
        found->m_children.Append(std::move(keyValue));
        if (added)
            m_items.Append(std::move(added));
    }
    catch (const std::bad_alloc &)
    {
        return; // the new records went with it: the file is as it was
    }
    Changed();
}

void SimpleSettingsImp::SetBool(const char * section, const char * key, bool value)
{
    Store(section, key, value ? "1" : "0", false);
}

void SimpleSettingsImp::SetInt(const char * section, const char * key, int value)
{
    char text[16];
    std::snprintf(text, sizeof(text), "%d", value);
    Store(section, key, text, false);
}

void SimpleSettingsImp::SetUInt(const char * section, const char * key, unsigned int value)
{
    char text[16];
    std::snprintf(text, sizeof(text), "%u", value);
    Store(section, key, text, false);
}

void SimpleSettingsImp::SetDouble(const char * section, const char * key, double value)
{
    // The largest double takes 309 digits before the point, 16 behind it.
    char text[400];
    std::snprintf(text, sizeof(text), "%.16lf", value);
    Store(section, key, text, false);
}

void SimpleSettingsImp::SetString(const char * section, const char * key, const char * value)
{
    Store(section, key, value, true);
}

bool SimpleSettingsImp::GetBool(const char * section, const char * key, bool defaultValue, SettingStatus * status)
{
    const KeyValue * found = Lookup(section, key, status);
    if (found == nullptr)
        return defaultValue;
    const RecordText & value = found->m_value;
    if (value == "0" || SameName(value.data(), value.size(), "false", 5))
        return false;
    if (value == "1" || SameName(value.data(), value.size(), "true", 4))
        return true;
    if (status != nullptr)
        *status = BadValue;
    return defaultValue;
}

namespace
{
    // One number read by sscanf from a value; the default and BadValue when
    // none is there.
    template <typename T>
    T Scan(const KeyValue * found, const char * format, T defaultValue, zunSimpleSettings::SettingStatus * status)
    {
        if (found == nullptr)
            return defaultValue;
        T value;
        if (std::sscanf(found->m_value.c_str(), format, &value) == 1)
            return value;
        if (status != nullptr)
            *status = zunSimpleSettings::BadValue;
        return defaultValue;
    }
}

int SimpleSettingsImp::GetInt(const char * section, const char * key, int defaultValue, SettingStatus * status)
{
    return Scan(Lookup(section, key, status), "%d", defaultValue, status);
}

unsigned int SimpleSettingsImp::GetUInt(const char * section, const char * key, unsigned int defaultValue,
                                        SettingStatus * status)
{
    return Scan(Lookup(section, key, status), "%u", defaultValue, status);
}

double SimpleSettingsImp::GetDouble(const char * section, const char * key, double defaultValue, SettingStatus * status)
{
    return Scan(Lookup(section, key, status), "%lf", defaultValue, status);
}

zunString SimpleSettingsImp::GetString(const char * section, const char * key, const char * defaultValue,
                                       SettingStatus * status)
{
    const KeyValue * found = Lookup(section, key, status);
    return zunString(found != nullptr ? found->m_value.c_str() : defaultValue);
}

zunStringListT<char> SimpleSettingsImp::GetSections()
{
    zunStringListT<char> names;
    for (const std::unique_ptr<Data> & record : m_items.GetRecords())
    {
        if (record->m_type == TypeSection && !record->m_text.empty())
            names.Insert(zunString(record->m_text.c_str()), 0xFFFFFFFFu);
    }
    return names;
}

zunStringListT<char> SimpleSettingsImp::GetKeys(const char * section)
{
    zunStringListT<char> keys;
    if (const Section * found = FindSection(section))
    {
        for (const std::unique_ptr<Data> & record : found->m_children.GetRecords())
        {
            if (record->m_type == TypeKeyValue && !record->m_text.empty())
                keys.Insert(zunString(record->m_text.c_str()), 0xFFFFFFFFu);
        }
    }
    return keys;
}

void SimpleSettingsImp::RemoveSection(const char * section)
{
    if (section == nullptr)
        m_items.Clear(); // all of it: top-level keys and comments too
    else
        m_items.RemoveKeyed(section, std::strlen(section));
    Changed();
}

void SimpleSettingsImp::RemoveKey(const char * section, const char * key)
{
    // No save here, even when every change is saved: the removal reaches the
    // file with the next change that is.
    Section * found = FindSection(section);
    if (found != nullptr && key != nullptr)
        found->m_children.RemoveKeyed(key, std::strlen(key));
}

bool SimpleSettingsImp::HasSection(const char * section)
{
    return FindSection(section) != nullptr;
}

bool SimpleSettingsImp::HasKey(const char * section, const char * key)
{
    // Only a section that is there is asked; a missing one (which the
    // interface leaves undefined) holds no key.
    const Section * found = FindSection(section);
    return found != nullptr && key != nullptr && found->m_children.FindKeyed(key, std::strlen(key)) != nullptr;
}

void SimpleSettingsImp::Save()
{
    try
    {
        std::ofstream stream(static_cast<const char *>(m_path.OSRepresentation8()), std::ios::out | std::ios::trunc);
        if (stream.is_open())
            Write(stream);
    }
    catch (...)
    {
        // Saving never fails towards the caller.
    }
}

void SimpleSettingsImp::Dump()
{
    std::ostream stream(std::cout.rdbuf());
    Write(stream);
}
