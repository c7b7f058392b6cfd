// The records between a process and its break window companion: every message
// survives encoding and decoding, texts are cut at a character boundary, and
// records of another version or shape are refused.

#include <KORVAutlwin/progress/BreakWire.h>

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

namespace {

using Wire = BreakWire;

// Everything a message says, for comparing two.
std::string Show(const Wire::Message& m)
{
    const BreakStartInfo& s = m.start;
    std::ostringstream out;
    out << std::hex << m.type << std::dec << " #" << m.sequence << " " << m.argument << " " << m.first << " "
        << m.second << " '" << m.text << "' start " << s.delay << " " << s.mainWindow.x() << "," << s.mainWindow.y()
        << "," << s.mainWindow.width() << "," << s.mainWindow.height() << " " << s.allowBreak << s.showSpin
        << s.showGauge << " " << s.infoText << "|" << s.stopQuestion << "|" << s.stopTitle << "|" << s.stopButton;
    return out.str();
}

Wire::Message RoundTrip(Wire::Message message, std::uint32_t sequence = 0, std::size_t* size = nullptr)
{
    message.sequence = sequence ? sequence : message.sequence;
    Wire::Buffer buffer;
    const std::size_t encoded = Wire::Encode(message, buffer);
    if (size)
        *size = encoded;
    Wire::Message decoded;
    EXPECT_EQ(Wire::Decode(buffer.data(), encoded, decoded), Wire::eDecoded);
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
    BreakStartInfo spinning = SampleStart();
    spinning.showSpin = true;
    spinning.allowBreak = spinning.showGauge = false;
    spinning.mainWindow = QRect();  // no main window
    const struct { Wire::Message message; std::size_t size; } rows[] = {
        {Wire::Make(Wire::eFinish, 7), 16},
        {Wire::Make(Wire::eSpinStep, 8), 16},
        {Wire::Make(Wire::eSpinRest, 9), 16},
        {Wire::Make(Wire::eShowWindow, 10, 1), 16},
        {Wire::Make(Wire::eShowWindow, 11, 0), 16},
        {Wire::Make(Wire::eReady), 16},
        {Wire::Make(Wire::eAcknowledge, 0xFFFFFFFFu), 16},
        {Wire::Make(Wire::eStopConfirmed, 0, 42), 16},
        {Wire::Make(Wire::ePressStop, 12), 16},
        {Wire::MakeGaugeValue(-0.125f), 20},
        {Wire::MakeGaugeRange(-3.5f, 1e6f), 24},
        {Wire::MakeTitle("Phase 2 – Ausgleich"), 16 + Wire::kTextSize},
        {Wire::MakeStart(SampleStart()), Wire::kStartRecordSize},
        {Wire::MakeStart(spinning), Wire::kStartRecordSize},
    };
    std::uint32_t sequence = 13;
    for (const auto& row : rows) {
        SCOPED_TRACE(Show(row.message));
        Wire::Message expected = row.message;
        expected.sequence = expected.sequence ? expected.sequence : sequence;
        std::size_t size = 0;
        EXPECT_EQ(Show(RoundTrip(row.message, expected.sequence, &size)), Show(expected));
        EXPECT_EQ(size, row.size);
        EXPECT_EQ(Wire::RecordSize(row.message.type), row.size);
        ++sequence;
    }
    // A start's delay is its argument, whatever the message said.
    Wire::Message start = Wire::MakeStart(SampleStart());
    start.argument = 1;
    EXPECT_EQ(RoundTrip(start).argument, 2500u);
}

TEST(BreakWireTest, LongTextsAreCutAtACharacterBoundary)
{
    const std::size_t limit = Wire::kTextSize - 1;
    // Characters of every length, placed so that each byte of them meets the limit once.
    for (const std::string character : {"é", "€", "𝄞"}) {
        for (std::size_t shift = 0; shift < character.size(); ++shift) {
            std::string text(shift, 'a');
            while (text.size() < limit + 8)
                text += character;
            SCOPED_TRACE(character + " shifted by " + std::to_string(shift));
            const std::string title = RoundTrip(Wire::MakeTitle(text)).text;
            EXPECT_LE(title.size(), limit);
            EXPECT_GT(title.size(), limit - character.size());
            EXPECT_TRUE(IsUtf8(title));
            EXPECT_EQ(text.compare(0, title.size(), title), 0) << "a prefix of the text";

            BreakStartInfo info = SampleStart();
            info.stopQuestion = text;
            const BreakStartInfo got = RoundTrip(Wire::MakeStart(info)).start;
            EXPECT_EQ(got.stopQuestion, title);
            EXPECT_EQ(got.stopTitle, "Modell") << "the next field is intact";
        }
    }
    const std::string exact(limit, 'x');
    EXPECT_EQ(RoundTrip(Wire::MakeTitle(exact)).text, exact);
    EXPECT_EQ(RoundTrip(Wire::MakeTitle(exact + "y")).text, exact);
    EXPECT_EQ(Wire::CutText(std::string("ab\0cd", 5), 10), "ab") << "a C text ends at its NUL";
    EXPECT_EQ(Wire::CutText("€", 2), "");
    EXPECT_EQ(RoundTrip(Wire::MakeTitle("")).text, "");
}

TEST(BreakWireTest, RecordsOfAnotherVersionOrShapeAreRefusedAndChangeNothing)
{
    Wire::Buffer buffer;
    const std::size_t size = Wire::Encode(Wire::MakeGaugeValue(0.5f), buffer);
    Wire::Message untouched = Wire::MakeTitle("unchanged");
    auto decode = [&](const Wire::Buffer& record, std::size_t length) {
        return Wire::Decode(record.data(), length, untouched);
    };
    auto withWord = [&](std::size_t at, std::uint32_t word) {
        Wire::Buffer changed = buffer;
        std::memcpy(changed.data() + at, &word, 4);
        return changed;
    };
    EXPECT_EQ(buffer, withWord(0, Wire::kMagic | Wire::kVersion));
    for (const std::uint32_t version : {0u, Wire::kVersion + 1, 0xFFu})
        EXPECT_EQ(decode(withWord(0, Wire::kMagic | version), size), Wire::eWrongVersion) << version;
    EXPECT_EQ(decode(withWord(0, (Wire::kMagic ^ 0x01000000u) | Wire::kVersion), size), Wire::eMalformed);
    EXPECT_EQ(decode(withWord(4, 0x409), size), Wire::eMalformed) << "unknown type";
    for (const std::size_t length : {size - 1, size + 4, std::size_t(8)})
        EXPECT_EQ(decode(buffer, length), Wire::eMalformed) << length;
    EXPECT_EQ(Wire::Decode(nullptr, 0, untouched), Wire::eMalformed);
    EXPECT_EQ(Wire::RecordSize(0x409), 0u);
    EXPECT_EQ(Wire::Encode(Wire::Make(static_cast<Wire::EType>(0x409)), buffer), 0u);
    EXPECT_EQ(Show(untouched), Show(Wire::MakeTitle("unchanged"))) << "a refused record leaves the message alone";

    // A title record whose field lacks its NUL decodes to the field, no further.
    Wire::Buffer title;
    const std::size_t titleSize = Wire::Encode(Wire::MakeTitle(""), title);
    std::memset(title.data() + Wire::kHeaderSize, 'z', Wire::kTextSize);
    ASSERT_EQ(Wire::Decode(title.data(), titleSize, untouched), Wire::eDecoded);
    EXPECT_EQ(untouched.text, std::string(Wire::kTextSize, 'z'));
}
