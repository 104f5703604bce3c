// The line records of a settings file: building them from lines, merging
// them into sections, and writing them back.
#include "SettingsRecords.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdint>
#include <cstring>
#include <new>
#include <ostream>
#include <string_view>

#include "platform/Text.h"
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
        constexpr std::size_t kIndexFrom = 8;

        bool IsSpace(char c)
        {
            // Printable ASCII is never white space in any locale; the runtime
            // is asked about the rest.
            const unsigned char byte = static_cast<unsigned char>(c);
            return (byte < 0x21 || byte > 0x7E) && std::isspace(byte) != 0;
        }

        bool StartsWith(const char * text, std::size_t length, const std::string & prefix)
        {
            if (length < prefix.size())
                return false;
            for (std::size_t i = 0; i < prefix.size(); ++i) // shorter than a call of memcmp
                if (text[i] != prefix[i])
                    return false;
            return true;
        }

        // The first index of a grammar text in `text`, or npos. The grammar
        // texts are single characters, whose search is a memchr.
        std::size_t Find(const char * text, std::size_t length, const std::string & grammar)
        {
            if (grammar.size() != 1)
                return std::string_view(text, length).find(grammar);
            const void * found = std::memchr(text, grammar[0], length);
            return found != nullptr ? static_cast<std::size_t>(static_cast<const char *>(found) - text)
                                    : std::string::npos;
        }

        bool IsCommentCharacter(char c)
        {
            for (char comment : g_commentCharacters)
                if (c == comment)
                    return true;
            return false;
        }

        // Places texts in the bytes behind a record, each with a terminator.
        class TextPlacer
        {
        public:
            explicit TextPlacer(Data * record, std::size_t recordSize)
                : m_pNext(reinterpret_cast<char *>(record) + recordSize)
            {
            }
            static std::size_t BytesFor(std::size_t length) { return length != 0 ? length + 1 : 0; }
            void Place(RecordText & target, const char * text, std::size_t length)
            {
                if (length == 0)
                    return; // the empty text needs no bytes
                std::memcpy(m_pNext, text, length);
                m_pNext[length] = 0;
                target.Refer(m_pNext, length);
                m_pNext += length + 1;
            }

        private:
            char * m_pNext;
        };

        bool EndsInCR(const RecordText & text)
        {
            return !text.empty() && text.data()[text.size() - 1] == '\r';
        }

        std::ostream & Put(std::ostream & stream, const char * text, std::size_t length)
        {
            return stream.write(text, static_cast<std::streamsize>(length));
        }

        std::ostream & Put(std::ostream & stream, const RecordText & text)
        {
            return Put(stream, text.data(), text.size());
        }

        std::ostream & Put(std::ostream & stream, const std::string & text)
        {
            return Put(stream, text.data(), text.size());
        }

        // Each record is preceded by 8 bytes that tell where its block came
        // from; records need no alignment above 8.
        enum : std::uint64_t
        {
            FromHeap = 0x48656170,
            FromArena = 0x4172656E,
        };
        constexpr std::size_t kRecordPrefix = 8;
    }

    bool SameName(const char * a, std::size_t aLength, const char * b, std::size_t bLength)
    {
        if (aLength != bLength)
            return false;
        std::size_t i = 0;
        while (i < aLength && a[i] == b[i])
            ++i;
        if (i == aLength)
            return true;
        const std::int32_t * lower = zunPlatform::LowerByteTable();
        for (; i < aLength; ++i)
        {
            if (a[i] != b[i] && lower[static_cast<unsigned char>(a[i])] != lower[static_cast<unsigned char>(b[i])])
                return false;
        }
        return true;
    }

    DataType ClassifyLine(const char * line, std::size_t length, std::size_t & position)
    {
        if (StartsWith(line, length, g_sectionOpen) &&
            (position = Find(line, length, g_sectionClose)) != std::string::npos)
            return TypeSection;
        // The first comment character counts only where it stands at index 0.
        if (length > 0 && IsCommentCharacter(line[0]))
            return TypeOther;
        if ((position = Find(line, length, g_keyValueSeparator)) != std::string::npos)
            return TypeKeyValue;
        return TypeOther;
    }

    // ---- Data

    Data::~Data() = default;

    void * Data::operator new(std::size_t size, RecordArena * arena, std::size_t textBytes) noexcept
    {
        void * block = nullptr;
        if (textBytes > SIZE_MAX / 2 || size > SIZE_MAX / 4)
            return nullptr;
        const std::size_t bytes = kRecordPrefix + size + textBytes;
        if (arena != nullptr)
            block = arena->Allocate(bytes, 8);
        else if (bytes > UINT_MAX || !zunMemAlloc(block, static_cast<unsigned int>(bytes), false))
            block = nullptr;
        if (block == nullptr)
            return nullptr;
        *static_cast<std::uint64_t *>(block) = arena != nullptr ? FromArena : FromHeap;
        return static_cast<char *>(block) + kRecordPrefix;
    }

    void Data::operator delete(void * record) noexcept
    {
        if (record == nullptr)
            return;
        void * block = static_cast<char *>(record) - kRecordPrefix;
        if (*static_cast<std::uint64_t *>(block) == FromHeap)
            zunMemFree(block);
    }

    std::ostream & Data::WriteLineEnd(std::ostream & stream, bool textEndsInCR) const
    {
        return m_crlf || textEndsInCR ? stream.write("\r\n", 2) : stream.put('\n');
    }

    // ---- Other

    std::ostream & Other::Write(std::ostream & stream) const
    {
        Put(stream, m_text);
        return WriteLineEnd(stream, EndsInCR(m_text));
    }

    std::unique_ptr<Other> Other::FromLine(const char * line, std::size_t length, bool crlf,
                                           RecordArena * arena) noexcept
    {
        std::unique_ptr<Other> record(new (arena, TextPlacer::BytesFor(length)) Other);
        if (!record)
            return nullptr;
        TextPlacer(record.get(), sizeof(Other)).Place(record->m_text, line, length);
        record->m_crlf = crlf;
        return record;
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
        // The last byte in front of the line end: of the trailing text, else
        // of an unquoted value.
        return WriteLineEnd(stream, m_trailing.empty() ? m_quote == 0 && EndsInCR(m_value) : EndsInCR(m_trailing));
    }

    namespace
    {
        // Where the parts of a value text stand, by the value rule.
        struct ValueParts
        {
            const char * value;
            std::size_t valueLength;
            const char * trailing;
            std::size_t trailingLength;
            char quote;

            ValueParts(const char * text, std::size_t length)
            {
                std::size_t start = 0;
                while (start < length && IsSpace(text[start]))
                    ++start;
                const char open = start < length ? text[start] : '\0';
                const char * close = nullptr;
                if (open == '"' || open == '\'')
                    close = static_cast<const char *>(std::memchr(text + start + 1, open, length - start - 1));
                if (close != nullptr) // no escapes: the next same quote closes
                {
                    value = text + start + 1;
                    valueLength = static_cast<std::size_t>(close - value);
                    trailing = close + 1;
                    trailingLength = static_cast<std::size_t>(text + length - trailing);
                    quote = open;
                }
                else // unquoted, or a quote that never closes: all the rest, as it stands
                {
                    value = text + start;
                    valueLength = length - start;
                    trailing = text + length;
                    trailingLength = 0;
                    quote = 0;
                }
            }
        };
    }

    bool KeyValue::ParseValue(const char * text, std::size_t length, RecordArena * arena, bool * valueChanged) noexcept
    {
        const ValueParts parts(text, length);
        RecordText value, trailing;
        if (!value.Assign(parts.value, parts.valueLength, arena) ||
            !trailing.Assign(parts.trailing, parts.trailingLength, arena))
            return false;
        if (valueChanged != nullptr)
            *valueChanged = m_value.View() != value.View();
        m_value.Swap(value);
        m_trailing.Swap(trailing);
        m_quote = parts.quote;
        return true;
    }

    std::unique_ptr<KeyValue> KeyValue::FromLine(const char * line, std::size_t length, std::size_t separator,
                                                 bool crlf, RecordArena * arena) noexcept
    {
        // A key that opens with white space is no key at all; otherwise only
        // its end is trimmed.
        std::size_t keyEnd = 0;
        if (separator > 0 && !IsSpace(line[0]))
        {
            keyEnd = separator;
            while (keyEnd > 0 && IsSpace(line[keyEnd - 1]))
                --keyEnd;
        }
        const std::size_t valueStart = separator + g_keyValueSeparator.size();
        const ValueParts parts(line + valueStart, length - valueStart);

        const std::size_t textBytes = TextPlacer::BytesFor(keyEnd) + TextPlacer::BytesFor(parts.valueLength) +
                                      TextPlacer::BytesFor(parts.trailingLength);
        std::unique_ptr<KeyValue> record(new (arena, textBytes) KeyValue);
        if (!record)
            return nullptr;
        TextPlacer texts(record.get(), sizeof(KeyValue));
        texts.Place(record->m_text, line, keyEnd);
        texts.Place(record->m_value, parts.value, parts.valueLength);
        texts.Place(record->m_trailing, parts.trailing, parts.trailingLength);
        record->m_quote = parts.quote;
        record->m_crlf = crlf;
        return record;
    }

    // ---- RecordList

    bool RecordList::UseIndex() const
    {
        if (!m_index.IsBuilt() && m_records.size() >= kIndexFrom)
        {
            for (const std::unique_ptr<Data> & record : m_records)
            {
                if (record->m_type == m_keyedType && !m_index.Insert(record.get()))
                    break; // no memory for the index: scan instead
            }
        }
        return m_index.IsBuilt();
    }

    Data * RecordList::Scan(const char * text, std::size_t length) const
    {
        for (const std::unique_ptr<Data> & record : m_records)
        {
            if (record->m_type == m_keyedType && SameName(record->m_text.data(), record->m_text.size(), text, length))
                return record.get();
        }
        return nullptr;
    }

    Data * RecordList::FindKeyed(const char * text, std::size_t length) const
    {
        return UseIndex() ? m_index.Find(text, length).record : Scan(text, length);
    }

    void RecordList::Append(std::unique_ptr<Data> record)
    {
        m_records.push_back(std::move(record));
        Data * added = m_records.back().get();
        if (m_index.IsBuilt() && added->m_type == m_keyedType)
            m_index.Insert(added);
    }

    Data * RecordList::FindOrAppend(std::unique_ptr<Data> & record)
    {
        const RecordText & text = record->m_text;
        if (!UseIndex())
        {
            if (Data * found = Scan(text.data(), text.size()))
                return found;
            m_records.push_back(std::move(record));
            return nullptr;
        }
        const NameIndex::Lookup lookup = m_index.Find(text.data(), text.size());
        if (lookup.record != nullptr)
            return lookup.record;
        m_records.push_back(std::move(record)); // leaves `record` alone if it throws
        m_index.Insert(m_records.back().get(), lookup);
        return nullptr;
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
        WriteLineEnd(stream, EndsInCR(m_trailing));
        return m_children.Write(stream);
    }

    void Section::Add(std::unique_ptr<Data> record, RecordArena * arena)
    {
        switch (record->m_type)
        {
        case TypeKeyValue:
            if (Data * existing = m_children.FindOrAppend(record))
            {
                // A repeated key keeps its first place and takes the last value.
                const RecordText & value = static_cast<KeyValue &>(*record).m_value;
                if (!static_cast<KeyValue *>(existing)->ParseValue(value.data(), value.size(), arena))
                    throw std::bad_alloc();
            }
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

    std::unique_ptr<Section> Section::FromLine(const char * line, std::size_t length, std::size_t close, bool crlf,
                                               RecordArena * arena) noexcept
    {
        const std::size_t nameStart = g_sectionOpen.size();
        const std::size_t nameLength = close - nameStart;
        const std::size_t trailingStart = close + g_sectionClose.size();
        const std::size_t trailingLength = length - trailingStart;
        std::unique_ptr<Section> record(
            new (arena, TextPlacer::BytesFor(nameLength) + TextPlacer::BytesFor(trailingLength)) Section);
        if (!record)
            return nullptr;
        TextPlacer texts(record.get(), sizeof(Section));
        texts.Place(record->m_text, line + nameStart, nameLength);
        texts.Place(record->m_trailing, line + trailingStart, trailingLength);
        record->m_crlf = crlf;
        return record;
    }
}
