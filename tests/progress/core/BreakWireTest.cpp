// The records between a process and its break window companion: every message
// survives encoding and decoding, texts are cut at a character boundary, and
// records of another version or shape are refused.

#include <KORVAutlwin/progress/BreakWire.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

BreakWire::Message RoundTrip(const BreakWire::Message& message, std::size_t* size = nullptr)
{
    BreakWire::Buffer buffer;
    const std::size_t encoded = BreakWire::Encode(message, buffer);
    if (size)
        *size = encoded;
    BreakWire::Message decoded;
    EXPECT_EQ(BreakWire::Decode(buffer.data(), encoded, decoded), BreakWire::eDecoded);
    return decoded;
}

// Whether `text` is well-formed UTF-8 (enough for the cuts made here).
bool IsUtf8(const std::string& text)
{
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<unsigned char>(text[i]);
        const std::size_t length = lead < 0x80 ? 1 : (lead >> 5) == 6 ? 2 : (lead >> 4) == 14 ? 3 : (lead >> 3) == 30 ? 4 : 0;
        if (length == 0 || i + length > text.size())
            return false;
        for (std::size_t k = 1; k < length; ++k)
            if ((static_cast<unsigned char>(text[i + k]) & 0xC0) != 0x80)
                return false;
        i += length;
    }
    return true;
}

BreakStartInfo SampleStart()
{
    BreakStartInfo info;
    info.delay = 2500;
    info.mainWindow = QRect(-40, 25, 1024, 768);
    info.allowBreak = true;
    info.showSpin = false;
    info.showGauge = true;
    info.infoText = "Kalibrierung läuft";
    info.stopQuestion = "Wirklich abbrechen?";
    info.stopTitle = "Modell";
    info.stopButton = "Halt";
    return info;
}

} // namespace

TEST(BreakWireTest, EveryMessageSurvivesTheWireWithItsFixedSize)
{
    struct Case
    {
        BreakWire::Message message;
        std::size_t size;
    };
    std::vector<Case> cases = {
        {BreakWire::Make(BreakWire::eFinish, 7), 16},
        {BreakWire::Make(BreakWire::eSpinStep, 8), 16},
        {BreakWire::Make(BreakWire::eSpinRest, 9), 16},
        {BreakWire::Make(BreakWire::eShowWindow, 10, 1), 16},
        {BreakWire::Make(BreakWire::eShowWindow, 11, 0), 16},
        {BreakWire::Make(BreakWire::eReady), 16},
        {BreakWire::Make(BreakWire::eAcknowledge, 0xFFFFFFFFu), 16},
        {BreakWire::Make(BreakWire::eStopConfirmed, 0, 42), 16},
        {BreakWire::Make(BreakWire::ePressStop, 12), 16},
        {BreakWire::MakeGaugeValue(-0.125f), 20},
        {BreakWire::MakeGaugeRange(-3.5f, 1e6f), 24},
        {BreakWire::MakeTitle("Phase 2 – Ausgleich"), 16 + BreakWire::kTextSize},
    };
    cases[9].message.sequence = 13;
    cases[10].message.sequence = 14;
    cases[11].message.sequence = 15;

    for (const Case& entry : cases) {
        SCOPED_TRACE(entry.message.type);
        std::size_t size = 0;
        const BreakWire::Message decoded = RoundTrip(entry.message, &size);
        EXPECT_EQ(size, entry.size);
        EXPECT_EQ(BreakWire::RecordSize(entry.message.type), entry.size);
        EXPECT_EQ(decoded.type, entry.message.type);
        EXPECT_EQ(decoded.sequence, entry.message.sequence);
        EXPECT_EQ(decoded.argument, entry.message.argument);
        EXPECT_EQ(decoded.first, entry.message.first);
        EXPECT_EQ(decoded.second, entry.message.second);
        EXPECT_EQ(decoded.text, entry.message.text);
    }
}

TEST(BreakWireTest, StartCarriesTheWholeStartInfo)
{
    for (const bool spin : {false, true}) {
        BreakStartInfo info = SampleStart();
        info.showSpin = spin;
        info.allowBreak = !spin;
        info.showGauge = !spin;
        if (spin)
            info.mainWindow = QRect();  // no main window
        BreakWire::Message message = BreakWire::MakeStart(info);
        message.sequence = 5;
        message.argument = 1;  // the delay of the info wins

        std::size_t size = 0;
        const BreakWire::Message decoded = RoundTrip(message, &size);
        EXPECT_EQ(size, BreakWire::kStartRecordSize);
        EXPECT_EQ(decoded.type, BreakWire::eStart);
        EXPECT_EQ(decoded.sequence, 5u);
        EXPECT_EQ(decoded.argument, 2500u);
        const BreakStartInfo& got = decoded.start;
        EXPECT_EQ(got.delay, 2500u);
        EXPECT_EQ(got.mainWindow, info.mainWindow);
        EXPECT_EQ(got.mainWindow.isEmpty(), spin);
        EXPECT_EQ(got.allowBreak, info.allowBreak);
        EXPECT_EQ(got.showSpin, info.showSpin);
        EXPECT_EQ(got.showGauge, info.showGauge);
        EXPECT_EQ(got.infoText, info.infoText);
        EXPECT_EQ(got.stopQuestion, info.stopQuestion);
        EXPECT_EQ(got.stopTitle, info.stopTitle);
        EXPECT_EQ(got.stopButton, info.stopButton);
    }
}

TEST(BreakWireTest, LongTextsAreCutAtACharacterBoundary)
{
    const std::size_t limit = BreakWire::kTextSize - 1;
    // Characters of every length, placed so that each byte of them meets the limit once.
    for (const std::string& character : {std::string("é"), std::string("€"), std::string("𝄞")}) {
        for (std::size_t shift = 0; shift < character.size(); ++shift) {
            std::string text(shift, 'a');
            while (text.size() < limit + 8)
                text += character;
            SCOPED_TRACE(character + " shifted by " + std::to_string(shift));

            const std::string title = RoundTrip(BreakWire::MakeTitle(text)).text;
            EXPECT_LE(title.size(), limit);
            EXPECT_GT(title.size(), limit - character.size());
            EXPECT_TRUE(IsUtf8(title));
            EXPECT_EQ(text.compare(0, title.size(), title), 0) << "a prefix of the text";

            BreakStartInfo info = SampleStart();
            info.stopQuestion = text;
            EXPECT_EQ(RoundTrip(BreakWire::MakeStart(info)).start.stopQuestion, title);
            EXPECT_EQ(RoundTrip(BreakWire::MakeStart(info)).start.stopTitle, "Modell") << "the next field is intact";
        }
    }

    const std::string exact(limit, 'x');
    EXPECT_EQ(RoundTrip(BreakWire::MakeTitle(exact)).text, exact);
    EXPECT_EQ(RoundTrip(BreakWire::MakeTitle(exact + "y")).text, exact);
    EXPECT_EQ(BreakWire::CutText(std::string("ab\0cd", 5), 10), "ab") << "a C text ends at its NUL";
    EXPECT_EQ(BreakWire::CutText("€", 2), "");
    EXPECT_EQ(RoundTrip(BreakWire::MakeTitle("")).text, "");
}

TEST(BreakWireTest, RecordsOfAnotherVersionOrShapeAreRefused)
{
    BreakWire::Buffer buffer;
    const std::size_t size = BreakWire::Encode(BreakWire::MakeGaugeValue(0.5f), buffer);
    BreakWire::Message untouched = BreakWire::MakeTitle("unchanged");

    std::uint32_t magic = 0;
    std::memcpy(&magic, buffer.data(), 4);
    EXPECT_EQ(magic, BreakWire::kMagic | BreakWire::kVersion);
    for (const std::uint32_t version : {0u, BreakWire::kVersion + 1, 0xFFu}) {
        BreakWire::Buffer other = buffer;
        const std::uint32_t word = BreakWire::kMagic | version;
        std::memcpy(other.data(), &word, 4);
        EXPECT_EQ(BreakWire::Decode(other.data(), size, untouched), BreakWire::eWrongVersion) << version;
    }

    BreakWire::Buffer foreign = buffer;
    foreign[3] ^= 0x01;  // not this protocol at all
    EXPECT_EQ(BreakWire::Decode(foreign.data(), size, untouched), BreakWire::eMalformed);
    EXPECT_EQ(BreakWire::Decode(buffer.data(), size - 1, untouched), BreakWire::eMalformed);
    EXPECT_EQ(BreakWire::Decode(buffer.data(), size + 4, untouched), BreakWire::eMalformed);
    EXPECT_EQ(BreakWire::Decode(buffer.data(), 8, untouched), BreakWire::eMalformed);
    EXPECT_EQ(BreakWire::Decode(nullptr, 0, untouched), BreakWire::eMalformed);

    BreakWire::Buffer unknown = buffer;
    const std::uint32_t type = 0x409;
    std::memcpy(unknown.data() + 4, &type, 4);
    EXPECT_EQ(BreakWire::Decode(unknown.data(), size, untouched), BreakWire::eMalformed);
    EXPECT_EQ(BreakWire::RecordSize(0x409), 0u);
    EXPECT_EQ(BreakWire::Encode(BreakWire::Make(static_cast<BreakWire::EType>(0x409)), unknown), 0u);

    // A title record whose field lacks its NUL decodes to the field, no further.
    BreakWire::Buffer title;
    const std::size_t titleSize = BreakWire::Encode(BreakWire::MakeTitle(""), title);
    std::memset(title.data() + BreakWire::kHeaderSize, 'z', BreakWire::kTextSize);
    BreakWire::Message decoded;
    ASSERT_EQ(BreakWire::Decode(title.data(), titleSize, decoded), BreakWire::eDecoded);
    EXPECT_EQ(decoded.text, std::string(BreakWire::kTextSize, 'z'));

    EXPECT_EQ(untouched.type, BreakWire::eSetTitle);
    EXPECT_EQ(untouched.text, "unchanged") << "a refused record leaves the message alone";
}
