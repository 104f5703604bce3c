// The line records of a settings file: building them from lines, merging
// them into sections, and writing them back.
#include "SettingsRecords.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstring>
#include <ostream>

#include "zunException.h"
#include "zunMem.h"

namespace zunSettingsPrivate
{
    const std::string g_sectionOpen("[");
    const std::string g_sectionClose("]");
    const std::string g_keyValueSeparator("=");
    const std::string g_commentCharacters("#;");

    namespace
    {
        // Below this many records a scan is cheaper than building an index.
        constexpr std::size_t kIndexFrom = 16;

        bool IsSpace(char c)
        {
            return std::isspace(static_cast<unsigned char>(c)) != 0;
        }

        std::ostream & Put(std::ostream & stream, const std::string & text)
        {
            return stream.write(text.data(), static_cast<std::streamsize>(text.size()));
        }
    }

    bool SameName(const char * a, std::size_t aLength, const char * b, std::size_t bLength)
    {
        if (aLength != bLength)
            return false;
        for (std::size_t i = 0; i < aLength; ++i)
        {
            if (a[i] != b[i] &&
                std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
                return false;
        }
        return true;
    }

    DataType ClassifyLine(const std::string & line)
    {
        if (line.compare(0, g_sectionOpen.size(), g_sectionOpen) == 0 && line.find(g_sectionClose) != std::string::npos)
            return TypeSection;
        // The first comment character counts only where it stands at index 0.
        if (!line.empty() && g_commentCharacters.find(line[0]) != std::string::npos)
            return TypeOther;
        if (line.find(g_keyValueSeparator) != std::string::npos)
            return TypeKeyValue;
        return TypeOther;
    }

    // ---- Data

    Data::~Data() = default;

    void * Data::operator new(std::size_t size) noexcept
    {
        void * block = nullptr;
        if (size > UINT_MAX || !zunMemAlloc(block, static_cast<unsigned int>(size), false))
            return nullptr;
        return block;
    }

    void Data::operator delete(void * block) noexcept
    {
        zunMemFree(block);
    }

    std::ostream & Data::WriteLineEnd(std::ostream & stream) const
    {
        return m_crlf ? stream.write("\r\n", 2) : stream.put('\n');
    }

    // ---- Other

    std::ostream & Other::Write(std::ostream & stream) const
    {
        Put(stream, m_text);
        return WriteLineEnd(stream);
    }

    std::unique_ptr<Other> Other::FromLine(const std::string & line, bool crlf) noexcept
    {
        try
        {
            std::unique_ptr<Other> record(new Other);
            if (record)
            {
                record->m_text = line;
                record->m_crlf = crlf;
            }
            return record;
        }
        catch (...)
        {
            return nullptr;
        }
    }

    // ---- KeyValue

    std::ostream & KeyValue::Write(std::ostream & stream) const
    {
        Put(stream, m_text);
        Put(stream, g_keyValueSeparator);
        if (m_quote != 0)
            stream.put(m_quote);
        Put(stream, m_value);
        if (m_quote != 0)
            stream.put(m_quote);
        Put(stream, m_trailing);
        return WriteLineEnd(stream);
    }

    void KeyValue::ParseValue(const char * text, std::size_t length)
    {
        std::size_t start = 0;
        while (start < length && IsSpace(text[start]))
            ++start;

        std::string value, trailing;
        char quote = 0;
        const char open = start < length ? text[start] : 0;
        const void * close = nullptr;
        if (open == '"' || open == '\'')
            close = std::memchr(text + start + 1, open, length - start - 1); // no escapes
        if (close != nullptr)
        {
            const char * end = static_cast<const char *>(close);
            quote = open;
            value.assign(text + start + 1, end);
            trailing.assign(end + 1, text + length);
        }
        else
        {
            // Unquoted, or a quote that never closes: all the rest, as it stands.
            value.assign(text + start, length - start);
        }
        m_value.swap(value);
        m_trailing.swap(trailing);
        m_quote = quote;
    }

    std::unique_ptr<KeyValue> KeyValue::FromLine(const std::string & line, std::size_t separator, bool crlf) noexcept
    {
        try
        {
            std::unique_ptr<KeyValue> record(new KeyValue);
            if (!record)
                return nullptr;
            // A key that opens with white space is no key at all; otherwise
            // only its end is trimmed.
            if (separator > 0 && !IsSpace(line[0]))
            {
                std::size_t end = separator;
                while (end > 0 && IsSpace(line[end - 1]))
                    --end;
                record->m_text.assign(line, 0, end);
            }
            const std::size_t valueStart = separator + g_keyValueSeparator.size();
            record->ParseValue(line.data() + valueStart, line.size() - valueStart);
            record->m_crlf = crlf;
            return record;
        }
        catch (...)
        {
            return nullptr;
        }
    }

    // ---- RecordList

    Data * RecordList::FindKeyed(const char * text, std::size_t length) const
    {
        if (!m_index.IsBuilt() && m_records.size() >= kIndexFrom)
        {
            for (const std::unique_ptr<Data> & record : m_records)
            {
                if (record->m_type == m_keyedType && !m_index.Insert(record.get()))
                    break; // no memory for the index: scan instead
            }
        }
        if (m_index.IsBuilt())
            return m_index.Find(text, length);
        for (const std::unique_ptr<Data> & record : m_records)
        {
            if (record->m_type == m_keyedType && SameName(record->m_text.data(), record->m_text.size(), text, length))
                return record.get();
        }
        return nullptr;
    }

    void RecordList::Append(std::unique_ptr<Data> record)
    {
        m_records.push_back(std::move(record));
        Data * added = m_records.back().get();
        if (m_index.IsBuilt() && added->m_type == m_keyedType)
            m_index.Insert(added);
    }

    std::size_t RecordList::RemoveKeyed(const char * text, std::size_t length)
    {
        // Out of the index first: its probe reads the records, and remove_if
        // deletes them as it goes. Every record of that text leaves the list.
        m_index.Erase(text, length);
        const auto kept = std::remove_if(m_records.begin(), m_records.end(),
                                         [&](const std::unique_ptr<Data> & r) {
                                             return r->m_type == m_keyedType &&
                                                    SameName(r->m_text.data(), r->m_text.size(), text, length);
                                         });
        const std::size_t count = static_cast<std::size_t>(m_records.end() - kept);
        m_records.erase(kept, m_records.end());
        return count;
    }

    void RecordList::Clear()
    {
        m_index.Clear();
        m_records.clear();
    }

    std::ostream & RecordList::Write(std::ostream & stream) const
    {
        for (const std::unique_ptr<Data> & record : m_records)
            record->Write(stream);
        return stream;
    }

    // ---- Section

    std::ostream & Section::Write(std::ostream & stream) const
    {
        Put(stream, g_sectionOpen);
        Put(stream, m_text);
        Put(stream, g_sectionClose);
        Put(stream, m_trailing);
        WriteLineEnd(stream);
        return m_children.Write(stream);
    }

    void Section::Add(std::unique_ptr<Data> record)
    {
        switch (record->m_type)
        {
        case TypeKeyValue:
            if (Data * existing = m_children.FindKeyed(record->m_text))
            {
                // A repeated key keeps its first place and takes the last value.
                const std::string & value = static_cast<KeyValue &>(*record).m_value;
                static_cast<KeyValue *>(existing)->ParseValue(value.data(), value.size());
                return;
            }
            m_children.Append(std::move(record));
            return;
        case TypeOther:
            m_children.Append(std::move(record));
            return;
        case TypeSection:
            zunFixMe("not supported");
            zunFixMe("unknown type");
            return;
        default:
            zunFixMe("unknown type");
            return;
        }
    }

    std::unique_ptr<Section> Section::FromLine(const std::string & line, bool crlf) noexcept
    {
        try
        {
            std::unique_ptr<Section> record(new Section);
            if (!record)
                return nullptr;
            const std::size_t open = line.find(g_sectionOpen);
            const std::size_t close = line.find(g_sectionClose);
            const std::size_t nameStart = open + g_sectionOpen.size();
            record->m_text.assign(line, nameStart, close - nameStart);
            record->m_trailing.assign(line, close + g_sectionClose.size(), std::string::npos);
            record->m_crlf = crlf;
            return record;
        }
        catch (...)
        {
            return nullptr;
        }
    }
}
