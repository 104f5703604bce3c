// The settings text format: how each line becomes a record, how records of
// the same section and key merge, and what a rewrite gives back, byte for
// byte. Line ends, memory exhaustion and the lookup index are covered too.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "MemTesting.h"
#include "SettingsLineReader.h"
#include "SettingsTestFiles.h"
#include "SimpleSettingsImp.h"
#include "zunException.h"

using namespace zunSettingsPrivate;

namespace
{
    // A settings model read from the bytes of a file.
    struct Loaded
    {
        SimpleSettingsImp imp;

        explicit Loaded(const std::string & bytes)
        {
            settingsTest::TemporaryFolder folder;
            const std::string file = folder.File("s.ini");
            settingsTest::WriteBytes(file, bytes);
            std::ifstream stream(file);
            imp.Read(stream);
        }

        const RecordList::Records & Items() const { return imp.m_items.GetRecords(); }
        const Data & Item(std::size_t i) const { return *Items().at(i); }
        const Section & SectionAt(std::size_t i) const { return dynamic_cast<const Section &>(Item(i)); }
        const KeyValue & KeyAt(std::size_t i) const { return dynamic_cast<const KeyValue &>(Item(i)); }

        std::string Written() const
        {
            std::ostringstream out;
            imp.Write(out);
            return out.str();
        }
    };

    const KeyValue & ChildKey(const Section & section, std::size_t i)
    {
        return dynamic_cast<const KeyValue &>(*section.m_children.GetRecords().at(i));
    }

    const Data & Child(const Section & section, std::size_t i)
    {
        return *section.m_children.GetRecords().at(i);
    }

    // The record of a single line at top level.
    struct OneLine : Loaded
    {
        explicit OneLine(const std::string & line) : Loaded(line + "\n") { EXPECT_EQ(Items().size(), 1u); }
        DataType Type() const { return Item(0).m_type; }
    };

    void ExpectKeyValue(const Data & record, const std::string & key, const std::string & value, char quote,
                        const std::string & trailing)
    {
        ASSERT_EQ(record.m_type, TypeKeyValue);
        const KeyValue & kv = dynamic_cast<const KeyValue &>(record);
        EXPECT_EQ(kv.m_text, key);
        EXPECT_EQ(kv.m_value, value);
        EXPECT_EQ(kv.m_quote, quote);
        EXPECT_EQ(kv.m_trailing, trailing);
    }

    // One line read as a key: its fields, and the line written back.
    void ExpectKeyLine(const std::string & line, const std::string & key, const std::string & value, char quote,
                       const std::string & trailing, const std::string & written)
    {
        const OneLine read(line);
        ExpectKeyValue(read.Item(0), key, value, quote, trailing);
        EXPECT_EQ(read.Written(), written + "\n");
    }

    // One line read as a section header, written back as it was.
    void ExpectHeaderLine(const std::string & line, const std::string & name, const std::string & trailing)
    {
        const OneLine read(line);
        ASSERT_EQ(read.Type(), TypeSection);
        EXPECT_EQ(read.SectionAt(0).m_text, name);
        EXPECT_EQ(read.SectionAt(0).m_trailing, trailing);
        EXPECT_EQ(read.Written(), line + "\n");
    }

    void ExpectOther(const Data & record, const std::string & text)
    {
        ASSERT_EQ(record.m_type, TypeOther);
        EXPECT_NE(dynamic_cast<const Other *>(&record), nullptr);
        EXPECT_EQ(record.m_text, text);
    }
}

// ---------------------------------------------------------------------------
// The grammar

TEST(SettingsGrammar, FourTextsMadeAtLoad)
{
    EXPECT_EQ(g_sectionOpen, "[");
    EXPECT_EQ(g_sectionClose, "]");
    EXPECT_EQ(g_keyValueSeparator, "=");
    EXPECT_EQ(g_commentCharacters, "#;");
}

TEST(SettingsGrammar, RecordTypesHaveTheirNumbers)
{
    EXPECT_EQ(TypeKeyValue, 0);
    EXPECT_EQ(TypeSection, 1);
    EXPECT_EQ(TypeOther, 2);
    EXPECT_EQ(sizeof(DataType), 4u);
    EXPECT_EQ(KeyValue().m_type, TypeKeyValue);
    EXPECT_EQ(Section().m_type, TypeSection);
    EXPECT_EQ(Other().m_type, TypeOther);
}

TEST(SettingsGrammar, ClassificationTakesTheFirstRuleThatFits)
{
    EXPECT_EQ(ClassifyLine("[a]"), TypeSection);
    EXPECT_EQ(ClassifyLine("[a=b]"), TypeSection); // a header before a key
    EXPECT_EQ(ClassifyLine("[a;]"), TypeSection);  // a header before a comment
    EXPECT_EQ(ClassifyLine("[a"), TypeOther);      // no closing bracket
    EXPECT_EQ(ClassifyLine("[a=1"), TypeKeyValue); // ...but a separator
    EXPECT_EQ(ClassifyLine("x]["), TypeOther);     // "[" only counts at index 0
    EXPECT_EQ(ClassifyLine(";k=v"), TypeOther);    // a comment before a key
    EXPECT_EQ(ClassifyLine("#k=v"), TypeOther);
    EXPECT_EQ(ClassifyLine("a#b=c"), TypeKeyValue); // comment characters count at index 0 only
    EXPECT_EQ(ClassifyLine(" ;k=v"), TypeKeyValue);
    EXPECT_EQ(ClassifyLine(" ;note"), TypeOther);
    EXPECT_EQ(ClassifyLine("k=v"), TypeKeyValue);
    EXPECT_EQ(ClassifyLine("plain text"), TypeOther);
    EXPECT_EQ(ClassifyLine(""), TypeOther);
    EXPECT_EQ(ClassifyLine(std::string("\0=1", 3)), TypeKeyValue);
}

// ---------------------------------------------------------------------------
// The worked example, row by row

TEST(SettingsFormat, WorkedExampleRowByRow)
{
    const Loaded file(settingsTest::kWorkedExample);

    ASSERT_EQ(file.Items().size(), 3u);
    ExpectOther(file.Item(0), "; global note");
    ExpectKeyValue(file.Item(1), "top", "1", 0, "");
    const Section & view = file.SectionAt(2);
    EXPECT_EQ(view.m_text, "View");
    EXPECT_EQ(view.m_trailing, " first");

    ASSERT_EQ(view.m_children.Size(), 7u);
    ExpectKeyValue(Child(view, 0), "Width", "1024", 0, ""); // updated by the line below "[view]"
    ExpectKeyValue(Child(view, 1), "", "600", 0, "");       // a leading blank loses the key
    ExpectKeyValue(Child(view, 2), "Title", "My App", '\'', " ; shown");
    ExpectKeyValue(Child(view, 3), "Path", "'C:\\x", 0, "");
    ExpectOther(Child(view, 4), "; note");
    ExpectOther(Child(view, 5), "");
    ExpectOther(Child(view, 6), "noequals"); // "[view]" went, its lines went on into View

    EXPECT_EQ(file.Written(), settingsTest::kWorkedExampleWritten);
}

// ---------------------------------------------------------------------------
// Edge cases of single lines

TEST(SettingsFormat, EmptyFileGivesNothingAndWritesNothing)
{
    const Loaded file("");
    EXPECT_TRUE(file.Items().empty());
    EXPECT_EQ(file.Written(), "");
}

TEST(SettingsFormat, HeaderWithoutClosingBracketIsOtherOrKeyValue)
{
    ExpectOther(OneLine("[a").Item(0), "[a");
    ExpectKeyValue(OneLine("[a=1").Item(0), "[a", "1", 0, "");
}

TEST(SettingsFormat, NameRunsToTheFirstClosingBracket)
{
    ExpectHeaderLine("[a]]", "a", "]");
}

TEST(SettingsFormat, EmptyBracketsMakeTheEmptyName)
{
    ExpectHeaderLine("[]", "", "");
}

TEST(SettingsFormat, NameIsNotTrimmed)
{
    ExpectHeaderLine("[ a b ]  # x", " a b ", "  # x");
}

TEST(SettingsFormat, BlankBeforeBracketIsNoHeader)
{
    ExpectOther(OneLine(" [a]").Item(0), " [a]");
    // With a separator it is a key that began with a blank: the key is lost.
    ExpectKeyValue(OneLine(" [a]=1").Item(0), "", "1", 0, "");
}

TEST(SettingsFormat, FirstSeparatorSplits)
{
    ExpectKeyLine("a=b=c", "a", "b=c", 0, "", "a=b=c");
}

TEST(SettingsFormat, SeparatorAtIndexZeroGivesTheEmptyKey)
{
    ExpectKeyLine("=x", "", "x", 0, "", "=x");
}

TEST(SettingsFormat, EmptyValueWritesBackAsItWas)
{
    ExpectKeyLine("k=", "k", "", 0, "", "k=");
    ExpectKeyValue(OneLine("k=  \t").Item(0), "k", "", 0, ""); // only blanks behind the separator
}

TEST(SettingsFormat, CommentCharacterCountsOnlyAtIndexZero)
{
    const OneLine line("a#b=c");
    ExpectKeyValue(line.Item(0), "a#b", "c", 0, "");
    ExpectKeyValue(OneLine("a;b=c").Item(0), "a;b", "c", 0, "");
}

TEST(SettingsFormat, BlankBeforeCommentMakesAKeyThatLosesItsKey)
{
    ExpectKeyLine(" ; note=x", "", "x", 0, "", "=x");
    ExpectOther(OneLine("\t# note").Item(0), "\t# note"); // no separator: kept whole
}

TEST(SettingsFormat, AnyLeadingWhiteSpaceClearsTheKey)
{
    for (const char * line : {" k=v", "\tk=v", "\vk=v", "\fk=v", "\rk=v"})
        ExpectKeyValue(OneLine(line).Item(0), "", "v", 0, "");
}

TEST(SettingsFormat, KeyLosesTrailingWhiteSpaceOnly)
{
    ExpectKeyLine("a b \t=v", "a b", "v", 0, "", "a b=v");
}

TEST(SettingsFormat, WhiteSpaceAroundTheSeparatorIsNotKept)
{
    ExpectKeyLine("Width \t =  \t800", "Width", "800", 0, "", "Width=800");
}

TEST(SettingsFormat, TextBehindClosingQuoteIsKept)
{
    ExpectKeyLine("k='v'tail", "k", "v", '\'', "tail", "k='v'tail");
}

TEST(SettingsFormat, DoubleQuotesWorkAlike)
{
    ExpectKeyLine("k= \"a 'b' c\"  ; x ", "k", "a 'b' c", '"', "  ; x ", "k=\"a 'b' c\"  ; x ");
}

TEST(SettingsFormat, QuotesHaveNoEscapes)
{
    ExpectKeyLine(R"(k="a\"b")", "k", "a\\", '"', "b\"", R"(k="a\"b")");
    ExpectKeyValue(OneLine("k=''").Item(0), "k", "", '\'', "");
}

TEST(SettingsFormat, UnquotedValueKeepsWhatStandsBehindIt)
{
    ExpectKeyLine("k=v ; note", "k", "v ; note", 0, "", "k=v ; note");
    ExpectKeyValue(OneLine("k=v  ").Item(0), "k", "v  ", 0, "");     // trailing blanks too
    ExpectKeyValue(OneLine("k=v 'q'").Item(0), "k", "v 'q'", 0, ""); // quotes inside are text
}

TEST(SettingsFormat, UnclosedQuoteStaysInTheValue)
{
    ExpectKeyLine("k='v", "k", "'v", 0, "", "k='v");
    ExpectKeyValue(OneLine("k= \"v'").Item(0), "k", "\"v'", 0, "");
}

TEST(SettingsFormat, LineWithoutNewlineAtTheEndIsRead)
{
    const Loaded file("a=1\n[s]\nb=2");
    ASSERT_EQ(file.Items().size(), 2u);
    ExpectKeyValue(Child(file.SectionAt(1), 0), "b", "2", 0, "");
    EXPECT_EQ(file.Written(), "a=1\n[s]\nb=2\n"); // the writer ends every line
}

TEST(SettingsFormat, NulAndHighBytesAreKeptAsText)
{
    const std::string bytes("k\xC3\xA9=\xFF\0v\n;\x80\0\n", 12);
    const Loaded file(bytes);
    ASSERT_EQ(file.Items().size(), 2u);
    ExpectKeyValue(file.Item(0), "k\xC3\xA9", std::string("\xFF\0v", 3), 0, "");
    ExpectOther(file.Item(1), std::string(";\x80\0", 3));
    EXPECT_EQ(file.Written(), bytes);
}

TEST(SettingsFormat, LongLinesAreKeptWhole)
{
    const std::string value(1 << 20, 'x');
    const std::string bytes = "[s]\nk=" + value + "\n#" + value + "\n";
    const Loaded file(bytes);
    EXPECT_EQ(ChildKey(file.SectionAt(0), 0).m_value, value);
    EXPECT_EQ(file.Written(), bytes);
}

// ---------------------------------------------------------------------------
// Sections and merging

TEST(SettingsFormat, SectionsThatDifferInCaseMergeIntoTheFirst)
{
    const Loaded file("[Colors] # one\nred=1\n[other]\nx=1\n[COLORS] # two\nblue=2\n");
    ASSERT_EQ(file.Items().size(), 2u);
    const Section & colors = file.SectionAt(0);
    EXPECT_EQ(colors.m_text, "Colors");
    EXPECT_EQ(colors.m_trailing, " # one");
    ASSERT_EQ(colors.m_children.Size(), 2u);
    ExpectKeyValue(Child(colors, 1), "blue", "2", 0, "");
    EXPECT_EQ(file.Written(), "[Colors] # one\nred=1\nblue=2\n[other]\nx=1\n");
}

TEST(SettingsFormat, NamesCompareByteForByteAboveAscii)
{
    // In the "C" locale tolower changes A to Z only.
    const Loaded file("[\xC4]\na=1\n[\xE4]\nb=2\n[\xC3\x84]\n[\xC3\xA4]\n");
    EXPECT_EQ(file.Items().size(), 4u);
}

TEST(SettingsFormat, CommentAboveAHeaderBelongsToTheSectionBefore)
{
    const Loaded file("# top\n[a]\nk=1\n# about b\n\n[b]\n");
    ASSERT_EQ(file.Items().size(), 3u);
    const Section & a = file.SectionAt(1);
    ASSERT_EQ(a.m_children.Size(), 3u);
    ExpectOther(Child(a, 1), "# about b");
    ExpectOther(Child(a, 2), "");
    EXPECT_TRUE(file.SectionAt(2).m_children.IsEmpty());
}

TEST(SettingsFormat, RepeatedKeyKeepsItsPlaceAndTakesTheLastValue)
{
    const Loaded file("[s]\nKey='old' tail\nother=1\nKEY = new\nkey=newer\n");
    const Section & s = file.SectionAt(0);
    ASSERT_EQ(s.m_children.Size(), 2u);
    // The key's text stays as first written; quote and trailing text come
    // from parsing the bare value of the last line.
    ExpectKeyValue(Child(s, 0), "Key", "newer", 0, "");
    EXPECT_EQ(file.Written(), "[s]\nKey=newer\nother=1\n");
}

TEST(SettingsFormat, RepeatedKeyParsesItsBareValueAgain)
{
    // The last line's value is "'a' b" without its double quotes; parsed
    // again, it opens with a single quote.
    const Loaded file("[s]\nk=1\nk=\"'a' b\"  tail\n");
    ExpectKeyValue(Child(file.SectionAt(0), 0), "k", "a", '\'', " b");
    EXPECT_EQ(file.Written(), "[s]\nk='a' b\n");

    // A quoted value loses its quotes when it repeats a key.
    const Loaded quoted("[s]\nk=1\nk='x y' z\n");
    ExpectKeyValue(Child(quoted.SectionAt(0), 0), "k", "x y", 0, "");
}

TEST(SettingsFormat, RepeatedKeyKeepsTheFirstLineEnd)
{
    const Loaded file("[s]\r\nk=1\r\nk=2\n");
    EXPECT_EQ(file.Written(), "[s]\r\nk=2\r\n");
}

TEST(SettingsFormat, EmptyKeysMergeLikeAnyOther)
{
    const Loaded file("[s]\n a=1\n=2\n\tb=3\n");
    const Section & s = file.SectionAt(0);
    ASSERT_EQ(s.m_children.Size(), 1u);
    ExpectKeyValue(Child(s, 0), "", "3", 0, "");
}

TEST(SettingsFormat, TopLevelKeysAreNeverMerged)
{
    const Loaded file("k=1\nK=2\nk=3\n[s]\n");
    ASSERT_EQ(file.Items().size(), 4u);
    EXPECT_EQ(file.Written(), "k=1\nK=2\nk=3\n[s]\n");
}

TEST(SettingsFormat, SectionAcceptsNoSectionAndNoUnknownRecord)
{
    Section section;
    section.Add(std::unique_ptr<Data>(new Section), nullptr);
    EXPECT_TRUE(section.m_children.IsEmpty());

    struct Odd : Data
    {
        Odd() : Data(static_cast<DataType>(7)) {}
        std::ostream & Write(std::ostream & stream) const override { return stream; }
    };
    section.Add(std::unique_ptr<Data>(new Odd), nullptr);
    EXPECT_TRUE(section.m_children.IsEmpty());
}

// ---------------------------------------------------------------------------
// Line ends

TEST(SettingsLineEnds, CrLfFileComesBackUnchanged)
{
    const std::string bytes = "; note\r\ntop=1\r\n[View] first\r\nWidth=800\r\nTitle='a' b\r\n\r\n[Other]\r\nx\r\n";
    const Loaded file(bytes);
    EXPECT_EQ(file.Written(), bytes);
    // The carriage return is the line end's, not the text's.
    ExpectKeyValue(file.Item(1), "top", "1", 0, "");
    EXPECT_EQ(file.SectionAt(2).m_trailing, " first");
    ExpectKeyValue(Child(file.SectionAt(2), 1), "Title", "a", '\'', " b");
    ExpectOther(Child(file.SectionAt(2), 2), "");
    EXPECT_TRUE(file.Item(1).m_crlf);
}

TEST(SettingsLineEnds, MixedLineEndsComeBackLineByLine)
{
    const std::string bytes = "a=1\r\nb=2\n[s]\n[t]\r\nc\r\nd\n";
    EXPECT_EQ(Loaded(bytes).Written(), bytes);
}

TEST(SettingsLineEnds, CarriageReturnElsewhereIsText)
{
    // In the middle of a line.
    ExpectKeyValue(OneLine("k=a\rb").Item(0), "k", "a\rb", 0, "");
    // Doubled in front of the newline: one belongs to the line end.
    const Loaded doubled("k=v\r\r\n");
    ExpectKeyValue(doubled.Item(0), "k", "v\r", 0, "");
    EXPECT_EQ(doubled.Written(), "k=v\r\r\n");
    // At the end of a file without newline.
    const Loaded last("k=v\r");
    ExpectKeyValue(last.Item(0), "k", "v\r", 0, "");
    EXPECT_FALSE(last.Item(0).m_crlf);
    // A line of a lone carriage return is an empty line.
    const Loaded blank("\r\n");
    ExpectOther(blank.Item(0), "");
    EXPECT_EQ(blank.Written(), "\r\n");
}

TEST(SettingsLineEnds, TextEndingInCarriageReturnIsWrittenWithCrLf)
{
    // A bare newline behind the text's carriage return would read back as a
    // CR LF line end and cost the text its carriage return.
    for (const std::string bytes : {"k=v\r", "; note\r", "[s] x\r", "k='v' x\r", "k='v\r"})
    {
        const Loaded once(bytes);
        const std::string written = once.Written();
        EXPECT_EQ(written, bytes + "\r\n");
        const Loaded twice(written);
        EXPECT_EQ(twice.Written(), written) << bytes;
    }
    // A quoted value ends in its quote: its own line end stays.
    EXPECT_EQ(Loaded("k='v\r'").Written(), "k='v\r'\n");

    // A repeated key hands its value, carriage return and all, to the first
    // record, whose line ended in a bare newline.
    const Loaded merged("[]\n=\n=x\r\r\n");
    ASSERT_EQ(merged.SectionAt(0).m_children.Size(), 1u);
    ExpectKeyValue(Child(merged.SectionAt(0), 0), "", "x\r", 0, "");
    EXPECT_EQ(merged.Written(), "[]\n=x\r\r\n");
    EXPECT_EQ(Loaded(merged.Written()).Written(), merged.Written());
    // Without the last newline both carriage returns are text.
    const Loaded bare("[]\n=\n=x\r\r");
    EXPECT_EQ(bare.Written(), "[]\n=x\r\r\r\n");
    EXPECT_EQ(Loaded(bare.Written()).Written(), bare.Written());
}

// ---------------------------------------------------------------------------
// Exhausted memory while reading

namespace
{
    // The lines of the source holding a text, 1-based.
    std::vector<int> SourceLinesWith(const std::string & file, const std::string & text)
    {
        std::ifstream source(std::string(ZUN_TEST_SOURCE_DIR) + "/../" + file);
        std::vector<int> lines;
        std::string line;
        for (int number = 1; std::getline(source, line); ++number)
            if (line.find(text) != std::string::npos)
                lines.push_back(number);
        return lines;
    }

    const char kReadSignature[] = "void __cdecl SimpleSettingsImp::Read(class std::basic_ifstream<char,struct "
                                  "std::char_traits<char> > &) throw(struct zunException)";

    // While alive, each record read takes a chunk of memory of its own, so
    // that the nth record is the nth heap request.
    struct ChunkPerRecord
    {
        const std::size_t first = RecordArena::ms_nFirstChunkBytes;
        const std::size_t largest = RecordArena::ms_nLargestChunkBytes;
        ChunkPerRecord() { RecordArena::ms_nFirstChunkBytes = RecordArena::ms_nLargestChunkBytes = 1; }
        ~ChunkPerRecord()
        {
            RecordArena::ms_nFirstChunkBytes = first;
            RecordArena::ms_nLargestChunkBytes = largest;
        }
    };

    // Reads `bytes` with the `nth` heap request failing; the exception.
    zunException ReadFailing(const std::string & bytes, unsigned int nth)
    {
        settingsTest::TemporaryFolder folder;
        settingsTest::WriteBytes(folder.File("s.ini"), bytes);
        std::ifstream stream(folder.File("s.ini"));
        SimpleSettingsImp imp;
        ChunkPerRecord chunks;
        zunMemTesting::FailAllocation(nth);
        try
        {
            imp.Read(stream);
        }
        catch (const zunException & e)
        {
            zunMemTesting::Reset();
            return e;
        }
        zunMemTesting::Reset();
        ADD_FAILURE() << "no exception";
        return zunException();
    }

    std::string SiteOf(unsigned int kind)
    {
        const std::vector<int> sites =
            SourceLinesWith("src/Settings.cpp", "throw ZUN_EXCEPTION(ZUN_SETTINGS_READ_SIGNATURE)");
        EXPECT_EQ(sites.size(), 3u); // Section, KeyValue, Other, in this order
        return sites.size() == 3 ? "src/Settings.cpp:" + std::to_string(sites.at(kind)) : "";
    }
}

TEST(SettingsReadFailure, EachRecordKindThrowsFromItsOwnSite)
{
    // One request per record: its texts stand in its block.
    const std::string file = "[s]\nk=v\n; note\n";
    const unsigned int kinds[] = {0, 1, 2};
    for (unsigned int nth = 1; nth <= 3; ++nth)
    {
        const zunException e = ReadFailing(file, nth);
        EXPECT_EQ(std::string(e.GetFileAndLine()), SiteOf(kinds[nth - 1])) << "request " << nth;
        EXPECT_STREQ(e.GetFunction(), kReadSignature);
        EXPECT_STREQ(e.GetDebugDescription(), "");
        EXPECT_STREQ(e.GetDescription(), "");
    }
}

TEST(SettingsReadFailure, RecordsReadBeforeTheFailureStayAndNothingLeaks)
{
    settingsTest::TemporaryFolder folder;
    settingsTest::WriteBytes(folder.File("s.ini"), "a=1\n[s]\nb=2\nc=3\n");
    std::ifstream stream(folder.File("s.ini"));
    SimpleSettingsImp imp;
    {
        ChunkPerRecord chunks;
        zunMemTesting::FailAllocation(4);
        EXPECT_THROW(imp.Read(stream), zunException);
        zunMemTesting::Reset();
    }
    std::ostringstream out;
    imp.Write(out);
    EXPECT_EQ(out.str(), "a=1\n[s]\nb=2\n");
}

TEST(SettingsReadFailure, RepeatedHeaderNeedsMemoryAndThrowsAsASection)
{
    // The repeated header is built before it is found to be a repeat.
    EXPECT_EQ(std::string(ReadFailing("[s]\n[S]\n", 2).GetFileAndLine()), SiteOf(0));
}

TEST(SettingsReadFailure, FullChunkOfTheArenaThrowsAtTheRecordThatNeedsTheNext)
{
    // With chunks of their usual size the records share them; the record
    // that finds its chunk full and the heap empty throws.
    std::string bytes;
    for (int i = 0; i < 5000; ++i)
        bytes += "; comment line " + std::to_string(i) + "\n";
    settingsTest::TemporaryFolder folder;
    settingsTest::WriteBytes(folder.File("s.ini"), bytes);
    std::ifstream stream(folder.File("s.ini"));
    SimpleSettingsImp imp;
    zunMemTesting::FailAllocation(2);
    try
    {
        imp.Read(stream);
        ADD_FAILURE() << "no exception";
    }
    catch (const zunException & e)
    {
        EXPECT_EQ(std::string(e.GetFileAndLine()), SiteOf(2));
    }
    zunMemTesting::Reset();
    EXPECT_GT(imp.m_items.Size(), 100u);
    EXPECT_LT(imp.m_items.Size(), 5000u);
}

TEST(SettingsRecords, HeapAndArenaRecordsLiveSideBySide)
{
    RecordArena arena;
    RecordList list(TypeKeyValue);
    list.Append(KeyValue::FromLine("a=1", 3, 1, false, &arena));
    list.Append(KeyValue::FromLine("b=2", 3, 1, false, nullptr));
    list.Append(Other::FromLine("; x", 3, true, &arena));
    ASSERT_EQ(list.Size(), 3u);
    for (const auto & record : list.GetRecords())
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(record.get()) % alignof(KeyValue), 0u);
    EXPECT_EQ(list.RemoveKeyed("B", 1), 1u); // a heap record goes back to the heap
    EXPECT_EQ(list.RemoveKeyed("a", 1), 1u); // an arena record stays in the arena
    list.Clear();
}

// ---------------------------------------------------------------------------
// The lookup of names in long lists

TEST(SettingsLookup, ManyKeysAndSectionsMergeAsInShortFiles)
{
    std::string bytes;
    for (int s = 0; s < 300; ++s)
    {
        bytes += "[Section" + std::to_string(s) + "]\n";
        for (int k = 0; k < 40; ++k)
            bytes += "Key" + std::to_string(k) + "=" + std::to_string(s * 100 + k) + "\n";
    }
    // Every section and key again, in other case, with new values.
    for (int s = 299; s >= 0; --s)
    {
        bytes += "[SECTION" + std::to_string(s) + "]\n";
        for (int k = 39; k >= 0; --k)
            bytes += "kEY" + std::to_string(k) + "=new" + std::to_string(s * 100 + k) + "\n";
    }
    const Loaded file(bytes);
    ASSERT_EQ(file.Items().size(), 300u);
    for (int s = 0; s < 300; ++s)
    {
        const Section & section = file.SectionAt(s);
        EXPECT_EQ(section.m_text, "Section" + std::to_string(s));
        ASSERT_EQ(section.m_children.Size(), 40u);
        for (int k = 0; k < 40; ++k)
            ExpectKeyValue(Child(section, k), "Key" + std::to_string(k), "new" + std::to_string(s * 100 + k), 0, "");
    }
}

TEST(SettingsLookup, IndexedListAnswersAsAScanWould)
{
    // Random appends and removals on a list large enough to be indexed,
    // checked against a plain scan after each step.
    std::mt19937 random(7);
    RecordList list(TypeKeyValue);
    std::vector<std::string> names;
    names.reserve(60);
    for (int i = 0; i < 60; ++i)
        names.push_back("k" + std::to_string(i));
    auto scan = [&](const std::string & name) -> const Data *
    {
        for (const auto & record : list.GetRecords())
            if (record->m_type == TypeKeyValue &&
                SameName(record->m_text.data(), record->m_text.size(), name.data(), name.size()))
                return record.get();
        return nullptr;
    };
    for (int step = 0; step < 4000; ++step)
    {
        std::string name = names[random() % names.size()];
        if (random() % 2)
            std::transform(name.begin(), name.end(), name.begin(), ::toupper);
        switch (random() % 3)
        {
        case 0:
        {
            std::unique_ptr<KeyValue> record(new KeyValue);
            record->m_text.Assign(name.data(), name.size(), nullptr);
            list.Append(std::move(record));
            break;
        }
        case 1:
        {
            std::unique_ptr<Other> record(new Other);
            record->m_text.Assign(name.data(), name.size(), nullptr); // not a keyed record: never found
            list.Append(std::move(record));
            break;
        }
        default:
            list.RemoveKeyed(name.data(), name.size());
            break;
        }
        for (const std::string & probe : {names[random() % names.size()], name})
            ASSERT_EQ(list.FindKeyed(probe.data(), probe.size()), scan(probe)) << "step " << step;
    }
}

// ---------------------------------------------------------------------------
// Lines cut out of blocks

namespace
{
    struct CutLine
    {
        std::string text;
        bool crlf;
        bool operator==(const CutLine & other) const { return text == other.text && crlf == other.crlf; }
    };

    std::vector<CutLine> CutAll(std::istream & stream)
    {
        LineReader reader(stream);
        std::vector<CutLine> lines;
        const char * line = nullptr;
        std::size_t length = 0;
        bool crlf = false;
        while (reader.Next(line, length, crlf))
            lines.push_back(CutLine{std::string(line, length), crlf});
        return lines;
    }

    std::vector<CutLine> CutAll(const std::string & bytes)
    {
        std::istringstream stream(bytes);
        return CutAll(stream);
    }

    // What std::getline gives, with a carriage return in front of a newline
    // taken out of the line.
    std::vector<CutLine> GetLines(const std::string & bytes)
    {
        std::istringstream stream(bytes);
        std::vector<CutLine> lines;
        std::string line;
        while (std::getline(stream, line))
        {
            const bool crlf = !stream.eof() && !line.empty() && line.back() == '\r';
            if (crlf)
                line.pop_back();
            lines.push_back(CutLine{line, crlf});
        }
        return lines;
    }
}

TEST(SettingsLines, AsStdGetlineGivesThem)
{
    for (const std::string bytes : {"", "\n", "a", "a\n", "a\nb", "\n\n", "a\r\nb\r", "\r\n\r", "x\r\r\n", "\r"})
        EXPECT_EQ(CutAll(bytes), GetLines(bytes)) << bytes;
}

TEST(SettingsLines, LinesAcrossBlockBordersComeWhole)
{
    // Every position of a line end around the 64 KiB borders of the blocks.
    const std::size_t block = 64 * 1024;
    for (std::size_t shift = 0; shift < 4; ++shift)
    {
        for (const char * end : {"\n", "\r\n"})
        {
            std::string bytes(block - 2 + shift, 'a');
            bytes += end;
            bytes += std::string(block + 5, 'b') + "\r\n" + std::string(3 * block, 'c') + "\nd";
            const std::vector<CutLine> lines = CutAll(bytes);
            EXPECT_EQ(lines, GetLines(bytes)) << shift << " " << end;
        }
    }
}

TEST(SettingsLines, StreamEndsAsStdGetlineLeavesIt)
{
    std::istringstream stream("a\nb");
    CutAll(stream);
    EXPECT_TRUE(stream.eof());
    EXPECT_TRUE(stream.fail());
    EXPECT_FALSE(stream.bad());
}

TEST(SettingsLines, FailingStreamIsLeftBadAfterTheLinesBefore)
{
    // A buffer whose second refill fails, as a read error does.
    struct Failing : std::streambuf
    {
        std::string first = std::string(100, 'x') + "\nrest";
        int calls = 0;
        int_type underflow() override
        {
            if (++calls > 1)
                throw std::ios_base::failure("read error");
            setg(first.data(), first.data(), first.data() + first.size());
            return traits_type::to_int_type(first[0]);
        }
    } buffer;
    std::istream stream(&buffer);
    const std::vector<CutLine> lines = CutAll(stream);
    EXPECT_TRUE(stream.bad());
    ASSERT_EQ(lines.size(), 1u); // "rest" was cut short by the failure
    EXPECT_EQ(lines[0].text, std::string(100, 'x'));
}

// ---------------------------------------------------------------------------
// Record texts

TEST(SettingsRecords, ValueParsedAgainIsAllOrNothing)
{
    KeyValue record;
    ASSERT_TRUE(record.ParseValue("'old' tail", 10, nullptr));
    // The second text's block fails: the record keeps all it had.
    zunMemTesting::FailAllocation(2);
    EXPECT_FALSE(record.ParseValue("'new' more", 10, nullptr));
    zunMemTesting::Reset();
    EXPECT_EQ(record.m_value, "old");
    EXPECT_EQ(record.m_trailing, " tail");
    EXPECT_EQ(record.m_quote, '\'');
    EXPECT_TRUE(record.ParseValue("'new' more", 10, nullptr));
    EXPECT_EQ(record.m_value, "new");
    EXPECT_EQ(record.m_trailing, " more");
}

TEST(SettingsRecords, TextsAreTerminatedAndMayHoldZeroBytes)
{
    RecordArena arena;
    RecordText heap, inArena;
    ASSERT_TRUE(heap.Assign("a\0b", 3, nullptr));
    ASSERT_TRUE(inArena.Assign("xyz", 3, &arena));
    EXPECT_EQ(heap.size(), 3u);
    EXPECT_EQ(heap.View(), std::string_view("a\0b", 3));
    EXPECT_EQ(heap.c_str()[3], '\0');
    EXPECT_STREQ(inArena.c_str(), "xyz");
    ASSERT_TRUE(heap.Assign(heap.data() + 2, 1, nullptr)); // from its own block
    EXPECT_EQ(heap, "b");
    heap.Clear();
    EXPECT_TRUE(heap.empty());
    EXPECT_STREQ(heap.c_str(), "");
}
