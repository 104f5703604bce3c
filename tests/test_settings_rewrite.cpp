// What a rewrite of a settings file keeps, over many generated files.
//
// Each generated line is built from known parts (a key, blanks around the
// separator, a quoted value with text behind it, ...), so the test knows what
// the line must become without parsing it. A small model of the merge rules
// then says what the rewritten file holds, byte for byte: repeated headers
// and earlier values of repeated keys go, blanks around "=" go, a key that
// began with white space goes, a missing last newline is added (CR LF behind
// a line that ends in a carriage return); every other byte stays. A second
// rewrite must change nothing. Through the settings interface, a setter
// changes its own line (or adds its own) and nothing else.
#include <gtest/gtest.h>

#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "SettingsTestFiles.h"
#include "SimpleSettingsImp.h"
#include "zunSimpleSettings.h"

namespace
{
    const std::string kWhite = " \t\v\f\r";

    // What one record must be after reading, in the terms of the format.
    struct Expected
    {
        enum Kind
        {
            KeyValue,
            Section,
            Other
        } kind = Other;
        std::string text; // key, name or whole line
        std::string value, trailing;
        char quote = 0;
        bool crlf = false;
        std::vector<Expected> children;
    };

    std::string Fold(std::string text)
    {
        for (char & c : text)
            if (c >= 'A' && c <= 'Z')
                c = static_cast<char>(c - 'A' + 'a');
        return text;
    }

    // The value rule, as the format states it.
    void ParseValue(const std::string & text, Expected & record)
    {
        record.quote = 0;
        record.trailing.clear();
        const std::size_t start = text.find_first_not_of(kWhite + "\n");
        if (start == std::string::npos)
        {
            record.value.clear();
            return;
        }
        const char open = text[start];
        const std::size_t close = (open == '"' || open == '\'') ? text.find(open, start + 1) : std::string::npos;
        if (close == std::string::npos)
        {
            record.value = text.substr(start);
            return;
        }
        record.quote = open;
        record.value = text.substr(start + 1, close - start - 1);
        record.trailing = text.substr(close + 1);
    }

    std::string Write(const std::vector<Expected> & records)
    {
        std::string out;
        for (const Expected & r : records)
        {
            switch (r.kind)
            {
            case Expected::Other:
                out += r.text;
                break;
            case Expected::Section:
                out += "[" + r.text + "]" + r.trailing;
                break;
            case Expected::KeyValue:
                out += r.text + "=";
                if (r.quote)
                    out += r.quote;
                out += r.value;
                if (r.quote)
                    out += r.quote;
                out += r.trailing;
                break;
            }
            // A line whose text ends in a carriage return gets CR LF.
            out += r.crlf || (!out.empty() && out.back() == '\r') ? "\r\n" : "\n";
            if (r.kind == Expected::Section)
                out += Write(r.children);
        }
        return out;
    }

    class Generator
    {
    public:
        explicit Generator(unsigned int seed) : m_random(seed) {}

        // A file's bytes, and the records it must read as.
        void File(std::string & bytes, std::vector<Expected> & model)
        {
            bytes.clear();
            model.clear();
            Expected * current = nullptr;
            const int lines = Below(70);
            const bool allCrLf = Chance(20);
            for (int i = 0; i < lines; ++i)
            {
                Expected record;
                std::string raw = Line(record);
                const bool last = i + 1 == lines;
                record.crlf = allCrLf || Chance(25);
                if (last && !raw.empty() && Chance(30))
                    record.crlf = false; // and no newline at all
                else
                    raw += record.crlf ? "\r\n" : "\n";
                bytes += raw;
                Apply(record, model, current);
            }
        }

    private:
        int Below(int n) { return static_cast<int>(m_random() % static_cast<unsigned int>(n)); }
        bool Chance(int percent) { return Below(100) < percent; }

        char AnyByte()
        {
            static const std::string common = "abcdefXYZ019 _.-=[]#;'\"\t";
            const int pick = Below(100);
            if (pick < 80)
                return common[Below(static_cast<int>(common.size()))];
            if (pick < 94)
                return static_cast<char>(0x80 + Below(128)); // bytes above 0x7F
            static const char rare[] = {'\r', '\v', '\f', '\0', '\x01', '\x7F'};
            return rare[Below(sizeof rare)];
        }

        // Random text without the bytes in `banned` (a newline never).
        std::string Text(const std::string & banned, int maxLength = 24)
        {
            int length = Below(maxLength + 1);
            if (Chance(2))
                length = 2000 + Below(30000); // a long line
            std::string text;
            while (static_cast<int>(text.size()) < length)
            {
                const char c = AnyByte();
                if (banned.find(c) == std::string::npos)
                    text += c;
            }
            return text;
        }

        std::string White(int maxLength)
        {
            std::string text;
            for (int n = Below(maxLength + 1); n > 0; --n)
                text += kWhite[Below(static_cast<int>(kWhite.size()))];
            return text;
        }

        std::string MixCase(std::string text)
        {
            for (char & c : text)
                if (Chance(40) && ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z')))
                    c ^= 0x20;
            return text;
        }

        std::string Pick(const std::vector<std::string> & pool) { return pool[Below(static_cast<int>(pool.size()))]; }

        // One line without its line end, never ending in a carriage return
        // (that one would belong to the line end), and what it must read as.
        std::string Line(Expected & record)
        {
            for (;;)
            {
                std::string raw = Candidate(record);
                if (raw.empty() || raw.back() != '\r')
                    return raw;
                record = Expected();
            }
        }

        std::string Candidate(Expected & record)
        {
            const int kind = Below(100);
            if (kind < 12) // a comment
            {
                record.kind = Expected::Other;
                record.text = std::string(1, "#;"[Below(2)]) + Text("");
                return record.text;
            }
            if (kind < 20) // blank or white
            {
                record.kind = Expected::Other;
                record.text = Chance(50) ? "" : White(4);
                return record.text;
            }
            if (kind < 28) // a line of no kind: no separator and no header
            {
                record.kind = Expected::Other;
                record.text = Text("=");
                if (!record.text.empty() && record.text[0] == '[' && record.text.find(']') != std::string::npos)
                    record.text.insert(0, "x");
                return record.text;
            }
            if (kind < 45) // a section header
            {
                record.kind = Expected::Section;
                record.text = Chance(80)
                                  ? MixCase(Pick({"View", "Colors", "a", "", "Sect\xC3\xA9", "x[y", "k=v", " s "}))
                                  : Text("]");
                record.trailing = Chance(50) ? "" : Text("");
                return "[" + record.text + "]" + record.trailing;
            }
            // key = value
            record.kind = Expected::KeyValue;
            std::string keyPart;
            const int keyKind = Below(100);
            if (keyKind < 15)
            {
                keyPart = White(2);
                keyPart.insert(0, 1, " \t\v\f"[Below(4)]);
                keyPart += Text("=");
                record.text = ""; // a key that opens with white space is lost
            }
            else if (keyKind < 22)
            {
                record.text = "";
            }
            else
            {
                keyPart =
                    MixCase(Pick({"Width", "k", "a#b", "a;b", "sp ace", "\xC3\xA9t\xC3\xA9", "x]y", "Key1", "q'"}));
                record.text = keyPart;
            }
            std::string raw = keyPart + White(3) + "=" + White(3);
            const int valueKind = Below(100);
            if (valueKind < 45) // plain, blanks and comment-like text behind kept
            {
                record.value = Chance(15) ? "" : std::string(1, "v1#;[]=x"[Below(8)]) + Text("");
                raw += record.value;
            }
            else if (valueKind < 85) // quoted, text behind the quote kept
            {
                record.quote = "'\""[Below(2)];
                record.value = Text(std::string(1, record.quote));
                record.trailing = Chance(40) ? "" : Text("");
                raw += record.quote + record.value + record.quote + record.trailing;
            }
            else // a quote that never closes stays in the value
            {
                const char quote = "'\""[Below(2)];
                record.value = quote + Text(std::string(1, quote));
                raw += record.value;
            }
            return raw;
        }

        // The reading rules on one record.
        static void Apply(Expected & record, std::vector<Expected> & model, Expected *& current)
        {
            if (record.kind == Expected::Section)
            {
                for (Expected & item : model)
                {
                    if (item.kind == Expected::Section && Fold(item.text) == Fold(record.text))
                    {
                        current = &item;
                        return;
                    }
                }
                model.push_back(record);
                current = &model.back();
                return;
            }
            if (current == nullptr)
            {
                model.push_back(record);
                return;
            }
            if (record.kind == Expected::KeyValue)
            {
                for (Expected & child : current->children)
                {
                    if (child.kind == Expected::KeyValue && Fold(child.text) == Fold(record.text))
                    {
                        ParseValue(record.value, child);
                        return;
                    }
                }
            }
            current->children.push_back(record);
        }

        std::mt19937 m_random;
    };

    // Reads `file` and gives what writing it back gives.
    std::string Rewrite(const std::string & file)
    {
        SimpleSettingsImp imp;
        std::ifstream stream(file);
        imp.Read(stream);
        std::ostringstream out;
        imp.Write(out);
        return out.str();
    }
}

TEST(SettingsRewrite, ChangesExactlyWhatTheRulesSay)
{
    settingsTest::TemporaryFolder folder;
    std::string bytes;
    std::vector<Expected> model;
    for (unsigned int seed = 1; seed <= 600; ++seed)
    {
        // Fresh files: rewriting one file in place makes the file system
        // flush it each time, which only slows the test.
        const std::string first = folder.File(std::to_string(seed) + "a.ini");
        const std::string second = folder.File(std::to_string(seed) + "b.ini");
        Generator(seed).File(bytes, model);
        settingsTest::WriteBytes(first, bytes);
        const std::string once = Rewrite(first);
        ASSERT_EQ(once, Write(model)) << "seed " << seed;
        settingsTest::WriteBytes(second, once);
        ASSERT_EQ(Rewrite(second), once) << "a second rewrite changed the file, seed " << seed;
    }
}

TEST(SettingsRewrite, FileInTheWrittenFormComesBackUnchanged)
{
    // A file free of what a rewrite drops is a fixed point from the start.
    settingsTest::TemporaryFolder folder;
    const std::string file = folder.File("clean.ini");
    const std::string bytes = "# settings\n"
                              "version=3\n"
                              "\n"
                              "[Window] ; main\n"
                              "Title=\"Kelp \xE2\x80\x94 main\"  # shown\n"
                              "Left='10'px\n"
                              "Path=C:\\Models\\ship.obj\n"
                              "Ratio=0.5000000000000000\n"
                              "\n"
                              "; recent files\n"
                              "[Recent]\r\n"
                              "1=a.obj\r\n"
                              "2='b c.obj'\r\n"
                              "tail without end";
    settingsTest::WriteBytes(file, bytes);
    EXPECT_EQ(Rewrite(file), bytes + "\n");
}

namespace
{
    std::string Upper(std::string text)
    {
        for (char & c : text)
            if (c >= 'a' && c <= 'z')
                c = static_cast<char>(c - 'a' + 'A');
        return text;
    }

    bool HasZeroByte(const std::string & text)
    {
        return text.find('\0') != std::string::npos;
    }

    // The line end of the model's last line: a line added behind it takes it.
    bool LastCrLf(const std::vector<Expected> & records, bool otherwise)
    {
        if (records.empty())
            return otherwise;
        const Expected & last = records.back();
        return last.kind == Expected::Section ? LastCrLf(last.children, last.crlf) : last.crlf;
    }
}

TEST(SettingsRewrite, SettersChangeTheirOwnLinesAndNothingElse)
{
    settingsTest::TemporaryFolder folder;
    std::string bytes;
    std::vector<Expected> model;
    const zunFlags<zunSimpleSettingsManager::OpenModeFlag, 2> unmanaged(zunSimpleSettingsManager::Unmanaged);
    for (unsigned int seed = 1; seed <= 300; ++seed)
    {
        const std::string file = folder.File(std::to_string(seed) + ".ini");
        Generator(seed).File(bytes, model);
        settingsTest::WriteBytes(file, bytes);
        auto opened = zunSimpleSettingsManager::Get().OpenSettings(zunPath(file.c_str()), unmanaged);
        ASSERT_EQ(opened.second, zunSimpleSettingsManager::NoError);
        zunSimpleSettings & settings = *opened.first;

        // The sections in file order, as texts up to a zero byte, empty ones left out.
        std::vector<std::string> names;
        for (const Expected & record : model)
            if (record.kind == Expected::Section && record.text.c_str()[0] != 0)
                names.emplace_back(record.text.c_str());
        std::vector<std::string> listed;
        for (const char * name : settings.GetSections())
            listed.emplace_back(name);
        ASSERT_EQ(listed, names) << "seed " << seed;

        // The first key of each section gets a new value, through names in
        // another case; its quotes and the text behind them go.
        const std::string value = "v" + std::to_string(seed);
        for (Expected & section : model)
        {
            if (section.kind != Expected::Section || HasZeroByte(section.text))
                continue;
            for (Expected & child : section.children)
            {
                if (child.kind != Expected::KeyValue || HasZeroByte(child.text))
                    continue;
                settings.SetString(Upper(section.text).c_str(), Upper(child.text).c_str(), value.c_str());
                child.value = value;
                child.quote = 0;
                child.trailing.clear();
                break;
            }
        }
        // And a new section with a new key goes to the end.
        settings.SetInt("zz new section", "key", static_cast<int>(seed));
        Expected added;
        added.kind = Expected::Section;
        added.text = "zz new section";
        added.crlf = LastCrLf(model, false);
        Expected key;
        key.kind = Expected::KeyValue;
        key.text = "key";
        key.value = std::to_string(seed);
        key.crlf = added.crlf;
        added.children.push_back(key);
        model.push_back(added);

        opened.first.reset();
        ASSERT_EQ(settingsTest::ReadBytes(file), Write(model)) << "seed " << seed;
    }
}
