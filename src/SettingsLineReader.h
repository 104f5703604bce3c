// SettingsLineReader.h - the lines of a text stream, read in large blocks.
//
// Internal. Gives the lines of a stream as std::getline would, one after
// the other up to each newline, a last line without newline included, but
// takes the stream's buffer in blocks of up to 64 KiB and hands out each
// line where it stands in the block, so a line costs no copy and no stream
// call. When the stream runs out it is left as std::getline leaves it:
// end-of-file and fail set, or bad if reading failed; the lines before a
// failure are given, a line that the failure cut short is not.
#ifndef ZUN_SETTINGS_LINE_READER_H
#define ZUN_SETTINGS_LINE_READER_H

#include <cstddef>
#include <istream>
#include <memory>
#include <string>

#include "zunConfig.h"

namespace zunSettingsPrivate
{
    class ZUN_API LineReader
    {
    public:
        explicit LineReader(std::istream & stream);

        /// The next line without its newline, valid until the next call;
        /// false when there is none. A carriage return right in front of the
        /// newline belongs to the line end: it is left out and `crlf` is
        /// set. At the end of the stream there was no newline, so a carriage
        /// return there is text. When the heap has no room for the block or
        /// for a line that spans blocks, the stream is set bad and the
        /// result is false, as std::getline does.
        bool Next(const char *& line, std::size_t & length, bool & crlf);

    private:
        bool Cut(const char *& line, std::size_t & length, bool & crlf);
        bool Fill();
        bool Fail();

        static constexpr std::size_t kBlockBytes = 64 * 1024;

        std::istream & m_stream;
        std::unique_ptr<char[]> m_block;
        std::size_t m_nNext = 0;   ///< first byte of the block not handed out
        std::size_t m_nFilled = 0; ///< bytes read into the block
        bool m_bEnd = false;       ///< the stream has nothing more
        std::string m_spanning;    ///< a line that began in an earlier block
    };
}

#endif // ZUN_SETTINGS_LINE_READER_H
