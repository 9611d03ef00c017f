#include "config/cnfg.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <random>
#include <tuple>

#include "tests/unit/plain_reader.h"
#include "tests/unit/scratch.h"

namespace {

class Reader : public testing::Test {
  protected:
    std::string write(const std::string& bytes) const {
        const std::string path = folder.file("test.ini");
        writeFile(path, bytes);
        return path;
    }
    ScratchFolder folder;
};

struct LookUp {
    std::string file;
    std::string section;
    std::string key;
    int status;
    std::string value;
};

TEST_F(Reader, LooksKeysUp) {
    const LookUp cases[] = {
        {"[S]\nk=v\n", "S", "k", 0, "v"},
        {"[S]\nkey = value  # note\n", "S", "key", 0, "value"},
        {"[S]\n\tmaxSize                 = 5000\n", "S", "maxSize", 0, "5000"},
        {"[S]\n  k = a b \t \n", "S", "k", 0, "a b"},
        {"[S]\nk\t=\t=v=w\n", "S", "k", 0, "v=w"},  // separators in a row are skipped, later ones are not
        {"[S]\nk\tv w\n", "S", "k", 0, "v w"},      // a tab separates, too
        {"[S]\ntwo words = v\n", "S", "two words", 0, "v"},
        {"[S]\nk = v#w\n", "S", "k", 0, "v"},  // "#" starts a comment even inside a value
        {"[S]\nk=#v\n", "S", "k", 0, ""},
        {"[S]\nk\n", "S", "k", 0, ""},
        {"[S]\nk=\n", "S", "k", 0, ""},
        {"[S]\nk=v", "S", "k", 0, "v"},  // no line end
        {"[S]\r\nk = v\r\n", "S", "k", 0, "v"},
        {"[S]\r\nj = 1\r\nk\r\n", "S", "k", 0, ""},  // the carriage return is not part of the key
        {"[S]\n# comment\nk=v\n", "S", "k", 0, "v"},
        {"[S]\na=1\nk=v\nk=w\n", "S", "k", 0, "v"},  // the first counts
        {"x=1\n[T]\nk=t\n[S]\nk=s\n", "S", "k", 0, "s"},
        {"  [S]  # note\nk=v\n", "S", "k", 0, "v"},
        {"[S] k=w\nk=v\n", "S", "k", 0, "v"},
        {"[S\nk=w\n[S]\nk=v\n", "S", "k", 0, "v"},  // a header without "]" is none
        {"[S]\nk=v\n", "S", "K", 3, ""},
        {"[S]\nkey=v\n", "S", "ke", 3, ""},
        {"[LOGGING]\nk=v\n", "logging", "k", 2, ""},
        {"[LOGGING]\nk=v\n", "LOG", "k", 2, ""},
        {"[ S ]\nk=v\n", "S", "k", 2, ""},
        {"[S]\na=1\n\nk=v\n", "S", "k", 3, ""},  // an empty line ends the section
        {"[S]\na=1\n \t\nk=v\n", "S", "k", 3, ""},
        {"[S]\na=1\n  # indented comment\nk=v\n", "S", "k", 3, ""},
        {"[S]\na=1\n[T]\nk=v\n", "S", "k", 3, ""},
        {"[S]\na=1\n[broken\nk=v\n", "S", "k", 3, ""},
        {"[S]\n=v\nk=w\n", "S", "k", 3, ""},  // no key, so the section ends
        {"[S]\n", "S", "k", 3, ""},
        {"", "S", "k", 2, ""},
        {"[]\nk=v\n", "S", "k", 2, ""},
        {std::string("[S]\nk=a\0b\n\0\xff=1\n", 16), "S", "k", 0, std::string("a\0b", 3)},
        {std::string("\0\0[S]\nk=v\n", 10), "S", "k", 2, ""},
        {"[S]\nk=" + std::string(10'000'000, 'x') + "\n", "S", "k", 0, std::string(10'000'000, 'x')},
        {std::string(10'000'000, '\n') + "[S]\nk=v\n", "S", "k", 0, "v"},
    };
    for (const auto& c : cases) {
        Cnfg file(write(c.file));
        std::string_view value = "untouched";
        EXPECT_EQ(file.readParameter(c.section, c.key, value), c.status) << c.file.substr(0, 100);
        EXPECT_TRUE(value == c.value) << c.file.substr(0, 100) << " gives " << value.substr(0, 100);
        const std::string expected[] = {
            "OK", "", "Section '" + c.section + "' not found!",
            "Parameter '" + c.key + "' in section '" + c.section + "' not found! (" + folder.file("test.ini") + ")"};
        EXPECT_EQ(file.errorText(), expected[c.status]);
    }
}

TEST_F(Reader, AnswersInAnyOrderAndGoesOnFromTheCurrentPlace) {
    Cnfg file(write("[A]\na=1\nb=2\nc=3\n\n[B]\nb=9\n"));
    std::string_view value;
    EXPECT_EQ(file.readParameter("B", "b", value), 0);
    EXPECT_EQ(file.readParameter("A", "c", value), 0);
    EXPECT_EQ(file.readParameter("A", "a", value), 0);
    EXPECT_EQ(file.readParameter("", "c", value), 0);
    EXPECT_EQ(value, "3");
    EXPECT_EQ(file.readParameter("", "a", value), 3);  // behind it
    EXPECT_EQ(file.errorText(), "Parameter 'a' in section 'A' not found! (" + folder.file("test.ini") + ")");
    EXPECT_EQ(file.readParameter("A", "a", value), 0);
    EXPECT_EQ(value, "1");
    EXPECT_EQ(file.positionOnSection("B"), 0);
    EXPECT_EQ(file.readParameter("A", "none", value), 3);
    EXPECT_EQ(file.errorText(), "Parameter 'none' in section 'A' not found! (" + folder.file("test.ini") + ")");
}

TEST_F(Reader, StepsThroughASectionToItsEnd) {
    Cnfg file(write("[A]\n#c\na=1\n\ta2 = x\nb\n\nc=3\n[B]\n"));
    std::string_view key, value;
    ASSERT_EQ(file.positionOnSection("A"), 0);
    for (const auto& [wantedKey, wantedValue] : {std::pair{"a", "1"}, {"a2", "x"}, {"b", ""}}) {
        ASSERT_EQ(file.nextParameter(key, value), 0);
        EXPECT_EQ(key, wantedKey);
        EXPECT_EQ(value, wantedValue);
    }
    EXPECT_EQ(file.nextParameter(key, value), 4);
    EXPECT_TRUE(key.empty() && value.empty());
    EXPECT_EQ(file.errorText(), "No further parameter in section 'A'!");
    ASSERT_EQ(file.positionOnSection("B"), 0);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(file.nextParameter(key, value), 4);
    EXPECT_EQ(file.positionOnSection("A"), 0);  // rewinds from the file's end
}

// The same, line by line and with every line read anew for each question.
class PlainCnfg {
  public:
    explicit PlainCnfg(const std::string& text) : mLines(plain::linesOf(text)) {}

    int positionOnSection(const std::string& section) {
        for (mAt = 0; mAt < mLines.size();) {
            if (plain::isHeaderOf(mLines[mAt++], section)) return 0;
        }
        return 2;
    }
    int nextParameter(std::string& key, std::string& value) {
        key = value = "";
        while (mAt < mLines.size() && (mLines[mAt].starts_with('#') || mLines[mAt].starts_with('\r'))) ++mAt;
        if (mAt == mLines.size()) return 4;
        std::tie(key, value) = plain::entryOf(mLines[mAt++]);
        return key.empty() ? 4 : 0;
    }
    int readParameter(const std::string& section, const std::string& wanted, std::string& value) {
        value = "";
        if (!section.empty() && positionOnSection(section) != 0) return 2;
        for (std::string key; nextParameter(key, value) == 0;) {
            if (key == wanted) return 0;
        }
        value = "";
        return 3;
    }

  private:
    std::vector<std::string> mLines;
    std::size_t mAt = 0;
};

TEST_F(Reader, EqualsThePlainReadingOnRandomFiles) {
    std::mt19937 random(17);
    const char* const kPieces[] = {"[A]\n",       "[B]\n", "a",    "b",      "=",    "\t",  " ",
                                   "#",           "\n",    "\n\n", "\r",     "\r\n", "x\n", "a=1\n",
                                   "b = 2 # c\n", "[",     "]",    "#[A]\n", " [A]", "\x80"};
    const char* const kNames[] = {"A", "B", "", "a", "b", "C"};
    const auto name = [&] { return kNames[random() % std::size(kNames)]; };
    for (int round = 0; round < 1000; ++round) {
        std::string text;
        for (auto count = random() % 40; count > 0; --count) text += kPieces[random() % std::size(kPieces)];
        const std::string path = write(text);
        Cnfg file(path);
        std::ifstream asText(path);  // with the system's line ends
        PlainCnfg plain(std::string{std::istreambuf_iterator<char>(asText), {}});
        asText.close();
        for (int step = 0; step < 30; ++step) {
            std::string_view key, value;
            std::string plainKey, plainValue;
            const std::string section = name(), wanted = name();
            const auto kind = random() % 6;
            if (kind == 0) {
                EXPECT_EQ(file.positionOnSection(section), plain.positionOnSection(section)) << text;
            } else if (kind == 1) {
                EXPECT_EQ(file.nextParameter(key, value), plain.nextParameter(plainKey, plainValue)) << text;
            } else {
                EXPECT_EQ(file.readParameter(section, wanted, value), plain.readParameter(section, wanted, plainValue))
                    << text;
            }
            ASSERT_EQ(key, plainKey) << text;
            ASSERT_EQ(value, plainValue) << text;
        }
    }
}

TEST_F(Reader, FilesThatCannotBeRead) {
    for (const auto& path : {folder.file("missing.ini"), folder.path(), std::string()}) {
        Cnfg file(path);
        std::string_view key, value = "untouched";
        EXPECT_FALSE(file.isOpen()) << path;
        EXPECT_EQ(file.errorText(), "File '" + path + "' not found!");
        EXPECT_EQ(file.readParameter("S", "k", value), 1);
        EXPECT_EQ(value, "");
        EXPECT_EQ(file.readParameter("", "k", value), 1);
        EXPECT_EQ(file.positionOnSection("S"), 1);
        EXPECT_EQ(file.nextParameter(key, value), 1);
        EXPECT_EQ(file.errorText(), "File '" + path + "' not found!");
    }
}

}  // namespace
