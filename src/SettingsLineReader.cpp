// The lines of a settings stream, cut out of large blocks.
#include "SettingsLineReader.h"

#include <cstring>
#include <new>

namespace zunSettingsPrivate
{
    LineReader::LineReader(std::istream & stream) : m_stream(stream), m_block(new (std::nothrow) char[kBlockBytes]) {}

    bool LineReader::Fail()
    {
        m_bEnd = true;
        m_stream.setstate(std::ios::badbit);
        return false;
    }

    bool LineReader::Fill()
    {
        if (m_bEnd)
            return false;
        if (!m_block)
            return Fail();
        // Whole buffers of the stream, taken as they stand: peek refills the
        // stream's buffer (a failing refill sets bad, as in std::getline, and
        // keeps what came before), readsome copies what it holds.
        m_nNext = m_nFilled = 0;
        while (m_nFilled < kBlockBytes)
        {
            if (std::istream::traits_type::eq_int_type(m_stream.peek(), std::istream::traits_type::eof()))
            {
                m_bEnd = true;
                if (!m_stream.bad())
                    m_stream.setstate(std::ios::failbit); // as the last std::getline leaves it
                break;
            }
            const std::streamsize got =
                m_stream.readsome(m_block.get() + m_nFilled, static_cast<std::streamsize>(kBlockBytes - m_nFilled));
            if (got <= 0)
                break;
            m_nFilled += static_cast<std::size_t>(got);
        }
        return m_nFilled > 0;
    }

    bool LineReader::Next(const char *& line, std::size_t & length, bool & crlf)
    {
        try
        {
            return Cut(line, length, crlf);
        }
        catch (const std::bad_alloc &)
        {
            return Fail();
        }
    }

    bool LineReader::Cut(const char *& line, std::size_t & length, bool & crlf)
    {
        m_spanning.clear();
        bool spans = false;
        for (;;)
        {
            if (m_nNext == m_nFilled && !Fill())
            {
                if (!spans || m_stream.bad())
                    return false;         // std::getline drops a line that a failing stream cut short
                line = m_spanning.data(); // a last line without newline
                length = m_spanning.size();
                crlf = false;
                return true;
            }
            const char * start = m_block.get() + m_nNext;
            const std::size_t available = m_nFilled - m_nNext;
            const char * newline = static_cast<const char *>(std::memchr(start, '\n', available));
            if (newline == nullptr)
            {
                m_spanning.append(start, available);
                spans = true;
                m_nNext = m_nFilled;
                continue;
            }
            const std::size_t part = static_cast<std::size_t>(newline - start);
            m_nNext += part + 1;
            if (spans)
            {
                m_spanning.append(start, part);
                line = m_spanning.data();
                length = m_spanning.size();
            }
            else
            {
                line = start;
                length = part;
            }
            crlf = length > 0 && line[length - 1] == '\r';
            if (crlf)
                --length;
            return true;
        }
    }
}
