// SettingsRecords.h - the line records of a settings file and their grammar.
//
// Internal. A settings file is kept as a sequence of line records, not as a
// table of keys, so that a rewrite gives back every comment, blank and
// unknown line in its place:
//
//   ; global note            Other            (top level)
//   top=1                    KeyValue         (top level, never merged)
//   [View] first             Section "View", trailing " first"
//   Width = 800              KeyValue         (child of View)
//   ; note                   Other            (child of View)
//
// Texts are bytes taken from the file as they stand, never transcoded. Names
// and keys match ignoring case: equal lengths, then each byte lowered by
// tolower in the current C locale (bytes are passed as unsigned char, so
// bytes above 0x7F are well defined and, in the "C" locale, unchanged).
//
// Line ends. Each record remembers whether its line ended in CR LF and is
// written back with the same end, so files with CR LF, LF or mixed line ends
// come back byte for byte. A carriage return counts as part of the line end
// only directly in front of the newline; anywhere else, a last line without
// newline included, it is text. This is what a text stream does on the
// platforms that translate line ends, so values never carry a stray '\r'.
// A line whose text ends in a carriage return (a last line without newline,
// or a repeated key's value) is written with CR LF whatever its line end
// was: a bare newline behind that carriage return would read back as a CR LF
// line end and cost the text its carriage return.
//
// Memory. A record read from a file lives in the file's arena with its texts
// in the same block, so a line costs one pointer bump; records and texts made
// later take heap blocks of their own. An exhausted heap gives a null record or a false result, which
// the reader turns into its exception and the setters into "nothing changed".
#ifndef ZUN_SETTINGS_RECORDS_H
#define ZUN_SETTINGS_RECORDS_H

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "SettingsArena.h"
#include "SettingsIndex.h"
#include "SettingsText.h"
#include "zunConfig.h"

namespace zunSettingsPrivate
{
    /// What a record is. 32 bits wide, and any 32-bit value is a valid
    /// (if unknown) type, so a stray value is reported and never undefined.
    enum DataType : std::int32_t
    {
        TypeKeyValue = 0,
        TypeSection = 1,
        TypeOther = 2,
    };

    /// The four texts of the grammar, made at library load.
    ZUN_API extern const std::string g_sectionOpen;       ///< "["
    ZUN_API extern const std::string g_sectionClose;      ///< "]"
    ZUN_API extern const std::string g_keyValueSeparator; ///< "="
    ZUN_API extern const std::string g_commentCharacters; ///< "#;"

    /// The base of the three records.
    struct ZUN_API Data
    {
        virtual ~Data();
        /// Writes the record as text, its line end included; gives the stream.
        virtual std::ostream & Write(std::ostream & stream) const = 0;

        /// A record lives in a zunMemAlloc block, or in `arena` when one is
        /// given (null: the heap). Null when memory is exhausted: `new` then
        /// gives null and constructs nothing. `delete` gives a heap block
        /// back and leaves an arena's block to its arena, which must outlive
        /// the record.
        static void * operator new(std::size_t size) noexcept { return operator new(size, nullptr, 0); }
        static void * operator new(std::size_t size, RecordArena * arena) noexcept
        {
            return operator new(size, arena, 0);
        }
        /// The same with `textBytes` more behind the record, where its
        /// texts can stand (see RecordText::Refer).
        static void * operator new(std::size_t size, RecordArena * arena, std::size_t textBytes) noexcept;
        static void operator delete(void * record) noexcept;
        static void operator delete(void * record, RecordArena *) noexcept { operator delete(record); }
        static void operator delete(void * record, RecordArena *, std::size_t) noexcept { operator delete(record); }

        DataType m_type;
        bool m_crlf;       ///< the line ended in CR LF; written back so
        RecordText m_text; ///< KeyValue: the key. Section: the name. Other: the whole line.

    protected:
        explicit Data(DataType type) : m_type(type), m_crlf(false) {}
        /// The line end of this record; CR LF when the text written in front
        /// of it ends in a carriage return.
        std::ostream & WriteLineEnd(std::ostream & stream, bool textEndsInCR) const;
    };

    /// A comment, a blank line or a line of no other kind, kept whole.
    struct ZUN_API Other : Data
    {
        Other() : Data(TypeOther) {}
        std::ostream & Write(std::ostream & stream) const override;

        /// The record of `line`, in `arena` (null: the heap), its text in
        /// the record's block; null when memory is exhausted.
        static std::unique_ptr<Other> FromLine(const char * line, std::size_t length, bool crlf,
                                               RecordArena * arena) noexcept;
    };

    /// key=value, the value possibly in quotes with text behind them.
    struct ZUN_API KeyValue : Data
    {
        KeyValue() : Data(TypeKeyValue), m_quote(0) {}
        std::ostream & Write(std::ostream & stream) const override;

        /// Sets m_value, m_trailing and m_quote from a value text: leading
        /// white space skipped; a value that opens with " or ' runs to the next
        /// same quote (no escapes) and the rest is the trailing text; without
        /// a closing quote, or without an opening one, the value is all the
        /// rest, trailing blanks and comment-like text included. The texts go
        /// to `arena` (null: the heap). All or nothing: false, with the record
        /// as it was, when memory is exhausted. `valueChanged`, when given,
        /// tells whether m_value differs from what it was.
        bool ParseValue(const char * text, std::size_t length, RecordArena * arena,
                        bool * valueChanged = nullptr) noexcept;

        /// The record of a line whose first "=" stands at `separator`: the
        /// key is the text in front of it, emptied when it starts with white
        /// space and otherwise cut of trailing white space; the value is
        /// parsed from the rest. In `arena` (null: the heap), the texts in
        /// the record's block; null when memory is exhausted.
        static std::unique_ptr<KeyValue> FromLine(const char * line, std::size_t length, std::size_t separator,
                                                  bool crlf, RecordArena * arena) noexcept;

        char m_quote;          ///< '"' or '\'', 0 for none
        RecordText m_value;    ///< without its quotes
        RecordText m_trailing; ///< the text behind a closing quote
    };

    /// A sequence of owned records with a case-insensitive lookup of the
    /// records of one type by their text. Lookups in a long sequence go
    /// through an index built on demand; it answers as a front-to-back scan
    /// would: the first record of that text.
    class ZUN_API RecordList
    {
    public:
        using Records = std::vector<std::unique_ptr<Data>>;

        /// `keyedType`: the type of the records that FindKeyed sees.
        explicit RecordList(DataType keyedType) : m_keyedType(keyedType) {}
        RecordList(const RecordList &) = delete;
        RecordList & operator=(const RecordList &) = delete;

        const Records & GetRecords() const { return m_records; }
        std::size_t Size() const { return m_records.size(); }
        bool IsEmpty() const { return m_records.empty(); }

        /// The first record of the keyed type whose text equals `text`
        /// ignoring case, or null.
        Data * FindKeyed(const char * text, std::size_t length) const;
        Data * FindKeyed(const RecordText & text) const { return FindKeyed(text.data(), text.size()); }

        /// Appends `record`. On std::bad_alloc the record is deleted and the
        /// list is as it was.
        void Append(std::unique_ptr<Data> record);
        /// For a record of the keyed type: the first record of its text if
        /// there is one, `record` staying with the caller; otherwise appends
        /// `record` and gives null. On std::bad_alloc `record` stays with the
        /// caller and the list is as it was.
        Data * FindOrAppend(std::unique_ptr<Data> & record);
        /// Deletes every record of the keyed type with that text (ignoring
        /// case), keeping the order of the rest; the number deleted.
        std::size_t RemoveKeyed(const char * text, std::size_t length);
        /// Deletes all records.
        void Clear();

        /// Writes every record in order; gives the stream.
        std::ostream & Write(std::ostream & stream) const;

    private:
        // Builds the index once the list is long enough; true when it is there.
        bool UseIndex() const;
        Data * Scan(const char * text, std::size_t length) const;

        Records m_records;
        DataType m_keyedType;
        mutable NameIndex m_index;
    };

    /// [name]trailing, owning the records of the lines behind it.
    struct ZUN_API Section : Data
    {
        Section() : Data(TypeSection), m_children(TypeKeyValue) {}
        std::ostream & Write(std::ostream & stream) const override;

        /// Adds a child record. A KeyValue whose key is there already (ignoring
        /// case) is not added: its bare m_value goes through ParseValue, into
        /// `arena`, into the existing record, which keeps its place, its key
        /// and its line end. An Other is appended. A Section, or a record of
        /// another type, is reported through zunFixMe and dropped. The record
        /// is owned on every path; std::bad_alloc may leave from here, with
        /// the record deleted and the section as it was.
        void Add(std::unique_ptr<Data> record, RecordArena * arena);

        /// The record of a header line that opens with "[" and whose first
        /// "]" stands at `close`: the name lies between the "[" and the "]",
        /// untrimmed; the trailing text is all behind the "]". In `arena`
        /// (null: the heap), the texts in the record's block; null when
        /// memory is exhausted.
        static std::unique_ptr<Section> FromLine(const char * line, std::size_t length, std::size_t close, bool crlf,
                                                 RecordArena * arena) noexcept;

        RecordText m_trailing; ///< the text behind "]"
        RecordList m_children; ///< never Section records
    };

    /// The kind of a line, the first rule that fits deciding: "[" at index 0
    /// and "]" anywhere: a section header; a comment character at index 0:
    /// Other; "=" anywhere: KeyValue; anything else (the empty line too):
    /// Other. `position` receives the index of the first "]" of a header or
    /// of the first "=" of a KeyValue.
    ZUN_API DataType ClassifyLine(const char * line, std::size_t length, std::size_t & position);
    inline DataType ClassifyLine(const std::string & line)
    {
        std::size_t position = 0;
        return ClassifyLine(line.data(), line.size(), position);
    }

    /// Equal lengths and equal bytes after tolower on each side.
    ZUN_API bool SameName(const char * a, std::size_t aLength, const char * b, std::size_t bLength);
}

#endif // ZUN_SETTINGS_RECORDS_H
