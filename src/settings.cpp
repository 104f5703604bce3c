// Settings files: reading the line records of a file, and the settings
// objects over them.
#include <fstream>
#include <new>
#include <string>

#include "SimpleSettingsImp.h"
#include "ThrowSite.h"

using namespace zunSettingsPrivate;

#define ZUN_SETTINGS_READ_SIGNATURE                                                                                    \
    "void __cdecl SimpleSettingsImp::Read(class std::basic_ifstream<char,struct std::char_traits<char> > &) "          \
    "throw(struct zunException)"

namespace
{
    // A carriage return right in front of the newline belongs to the line end;
    // std::getline leaves it in the line. At the end of the stream there was
    // no newline, so a carriage return there is text.
    bool TakeCarriageReturn(const std::istream & stream, std::string & line)
    {
        if (stream.eof() || line.empty() || line.back() != '\r')
            return false;
        line.pop_back();
        return true;
    }

    // The three steps of storing a record; each is false when memory ran out,
    // whatever part of the step it was.
    bool AddSection(RecordList & items, const std::string & line, bool crlf, Section *& current) noexcept
    {
        std::unique_ptr<Section> section = Section::FromLine(line, crlf);
        if (!section)
            return false;
        if (Data * same = items.FindKeyed(section->m_text))
        {
            current = static_cast<Section *>(same); // the repeated header goes
            return true;
        }
        Section * added = section.get();
        try
        {
            items.Append(std::move(section));
        }
        catch (const std::bad_alloc &)
        {
            return false;
        }
        current = added;
        return true;
    }

    bool AddRecord(RecordList & items, std::unique_ptr<Data> record, Section * current) noexcept
    {
        if (!record)
            return false;
        try
        {
            if (current != nullptr)
                current->Add(std::move(record));
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
    Section * current = nullptr;
    std::string line;
    while (std::getline(stream, line))
    {
        const bool crlf = TakeCarriageReturn(stream, line);
        switch (ClassifyLine(line))
        {
        case TypeSection:
            if (!AddSection(m_items, line, crlf, current))
                throw ZUN_EXCEPTION(ZUN_SETTINGS_READ_SIGNATURE);
            break;
        case TypeKeyValue:
            if (!AddRecord(m_items, KeyValue::FromLine(line, line.find(g_keyValueSeparator), crlf), current))
                throw ZUN_EXCEPTION(ZUN_SETTINGS_READ_SIGNATURE);
            break;
        case TypeOther:
            if (!AddRecord(m_items, Other::FromLine(line, crlf), current))
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
