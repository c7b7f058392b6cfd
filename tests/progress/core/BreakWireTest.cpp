// The records between a process and its break window companion.

#include <KORVAutlwin/progress/BreakWire.h>

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>

namespace {

using Wire = BreakWire;

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

Wire::Message RoundTrip(const Wire::Message& message, std::size_t* size = nullptr)
{
    Wire::Buffer buffer;
    const std::size_t encoded = Wire::Encode(message, buffer);
    if (size)
        *size = encoded;
    Wire::Message decoded;
    EXPECT_EQ(Wire::Decode(buffer.data(), encoded, decoded), Wire::eDecoded);
    return decoded;
}

BreakStartInfo SampleStart(bool spin = false)
{
    // A spinning client here has neither stop button, gauge nor main window.
    return {2500, spin ? QRect() : QRect(-40, 25, 1024, 768), !spin, spin, !spin, "Kalibrierung läuft",
            "Wirklich abbrechen?", "Modell", "Halt"};
}

} // namespace

TEST(BreakWireTest, EveryMessageSurvivesTheWireWithItsFixedSize)
{
    auto numbered = [](Wire::Message message, std::uint32_t sequence) {
        message.sequence = sequence;
        return message;
    };
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
        {numbered(Wire::MakeGaugeValue(-0.125f), 13), 20},
        {numbered(Wire::MakeGaugeRange(-3.5f, 1e6f), 14), 24},
        {numbered(Wire::MakeTitle("Phase 2 – Ausgleich"), 15), 16 + Wire::kTextSize},
        {numbered(Wire::MakeStart(SampleStart()), 16), Wire::kStartRecordSize},
        {numbered(Wire::MakeStart(SampleStart(true)), 17), Wire::kStartRecordSize},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(Show(row.message));
        std::size_t size = 0;
        EXPECT_EQ(Show(RoundTrip(row.message, &size)), Show(row.message));
        EXPECT_EQ(std::make_pair(size, Wire::RecordSize(row.message.type)), std::make_pair(row.size, row.size));
    }
    // A start's delay is its argument, whatever the message said.
    Wire::Message start = Wire::MakeStart(SampleStart());
    start.argument = 1;
    EXPECT_EQ(RoundTrip(start).argument, 2500u);
}

TEST(BreakWireTest, LongTextsAreCutAtACharacterBoundaryAndRecordsOfAnotherVersionOrShapeAreRefused)
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
            EXPECT_EQ(title, text.substr(0, shift + (limit - shift) / character.size() * character.size()));
            BreakStartInfo info = SampleStart();
            info.stopQuestion = text;
            const BreakStartInfo got = RoundTrip(Wire::MakeStart(info)).start;
            EXPECT_EQ(got.stopQuestion + "|" + got.stopTitle, title + "|Modell") << "the next field is intact";
        }
    }
    const std::string exact(limit, 'x');
    EXPECT_EQ(RoundTrip(Wire::MakeTitle(exact)).text, exact);
    EXPECT_EQ(RoundTrip(Wire::MakeTitle(exact + "y")).text, exact);
    EXPECT_EQ(Wire::CutText(std::string("ab\0cd", 5), 10), "ab") << "a C text ends at its NUL";
    EXPECT_EQ(Wire::CutText("€", 2), "");

    Wire::Buffer buffer;
    const std::size_t size = Wire::Encode(Wire::MakeGaugeValue(0.5f), buffer);
    Wire::Message untouched = Wire::MakeTitle("unchanged");
    auto withWord = [&](std::size_t at, std::uint32_t word) {
        Wire::Buffer changed = buffer;
        std::memcpy(changed.data() + at, &word, 4);
        return changed;
    };
    auto decode = [&](const Wire::Buffer& record, std::size_t length = 0) {
        return Wire::Decode(record.data(), length ? length : size, untouched);
    };
    EXPECT_EQ(buffer, withWord(0, Wire::kMagic | Wire::kVersion));
    for (const std::uint32_t version : {0u, Wire::kVersion + 1, 0xFFu})
        EXPECT_EQ(decode(withWord(0, Wire::kMagic | version)), Wire::eWrongVersion) << version;
    EXPECT_EQ(decode(withWord(0, (Wire::kMagic ^ 0x01000000u) | Wire::kVersion)), Wire::eMalformed);
    EXPECT_EQ(decode(withWord(4, 0x409)), Wire::eMalformed) << "unknown type";
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
