// The settings reader over arbitrary bytes as a settings file: it reads every
// input without complaint, and what it writes back reads again to the same
// records, which write the same text once more. (A line whose text ends in a
// carriage return is written with CR LF whatever it ended with, so the
// records are compared with the line ends they are written with.)
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>

#include "FuzzCheck.h"
#include "SimpleSettingsImp.h"

using namespace zunSettingsPrivate;

namespace
{
    // One file per process, rewritten for every input: in memory where the
    // system has a memory file system, since a disk flushes a truncated file.
    struct Scratch
    {
        const std::string path = std::string(access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp") +
                                 "/zun_fuzz_settings_" + std::to_string(getpid()) + ".ini";
        ~Scratch() { unlink(path.c_str()); }
    };

    const std::string & ScratchFile()
    {
        static const Scratch scratch;
        return scratch.path;
    }

    void Append(std::string & out, const RecordText & text)
    {
        out += std::to_string(text.size());
        out += ':';
        out.append(text.data(), text.size());
    }

    bool EndsInCarriageReturn(const RecordText & text)
    {
        return !text.empty() && text.data()[text.size() - 1] == '\r';
    }

    // The line end a record is written with: its own, or CR LF behind a text
    // that ends in a carriage return.
    bool WrittenWithCrLf(const Data & record)
    {
        if (record.m_crlf)
            return true;
        if (record.m_type == TypeSection)
            return EndsInCarriageReturn(static_cast<const Section &>(record).m_trailing);
        if (record.m_type == TypeKeyValue)
        {
            const auto & keyValue = static_cast<const KeyValue &>(record);
            return keyValue.m_trailing.empty() ? keyValue.m_quote == 0 && EndsInCarriageReturn(keyValue.m_value)
                                               : EndsInCarriageReturn(keyValue.m_trailing);
        }
        return EndsInCarriageReturn(record.m_text);
    }

    // Every field of every record, in order, as one comparable text; the line
    // end as it is written.
    void Describe(std::string & out, const RecordList & records)
    {
        for (const auto & record : records.GetRecords())
        {
            out += static_cast<char>('0' + record->m_type);
            out += WrittenWithCrLf(*record) ? 'r' : 'n';
            Append(out, record->m_text);
            if (record->m_type == TypeKeyValue)
            {
                const auto & keyValue = static_cast<const KeyValue &>(*record);
                out += keyValue.m_quote == 0 ? '0' : keyValue.m_quote;
                Append(out, keyValue.m_value);
                Append(out, keyValue.m_trailing);
            }
            else if (record->m_type == TypeSection)
            {
                const auto & section = static_cast<const Section &>(*record);
                Append(out, section.m_trailing);
                out += '{';
                Describe(out, section.m_children);
                out += '}';
            }
        }
    }

    struct Reading
    {
        std::string records;
        std::string written;
    };

    Reading ReadAndWrite(const std::string & bytes)
    {
        std::ofstream(ScratchFile(), std::ios::binary | std::ios::trunc)
            .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        SimpleSettingsImp imp;
        std::ifstream stream(ScratchFile());
        imp.Read(stream);
        Reading result;
        Describe(result.records, imp.m_items);
        std::ostringstream out;
        imp.Write(out);
        result.written = out.str();
        return result;
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t * data, std::size_t size)
{
    const Reading first = ReadAndWrite(std::string(reinterpret_cast<const char *>(data), size));
    const Reading second = ReadAndWrite(first.written);
    FUZZ_CHECK(second.records == first.records);
    FUZZ_CHECK(second.written == first.written);
    return 0;
}
