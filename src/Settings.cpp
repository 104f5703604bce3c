// Settings files: reading the line records of a file, and the settings
// objects over them.
#include <fstream>
#include <new>
#include <string>

#include "SettingsLineReader.h"
#include "SimpleSettingsImp.h"
#include "ThrowSite.h"

using namespace zunSettingsPrivate;

#define ZUN_SETTINGS_READ_SIGNATURE                                                                                    \
    "void __cdecl SimpleSettingsImp::Read(class std::basic_ifstream<char,struct std::char_traits<char> > &) "          \
    "throw(struct zunException)"

namespace
{
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

SimpleSettingsImp::SimpleSettingsImp() : m_openMode(0), m_items(TypeSection) {}

SimpleSettingsImp::~SimpleSettingsImp() = default;

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
