#include <KORVAutlwin/progress/BreakWire.h>

#include <cstring>

namespace {

constexpr std::size_t kFloatRecordSize = BreakWire::kHeaderSize + 4;
constexpr std::size_t kRangeRecordSize = BreakWire::kHeaderSize + 8;
constexpr std::size_t kTitleRecordSize = BreakWire::kHeaderSize + BreakWire::kTextSize;
// Offsets inside the start record.
constexpr std::size_t kGeometryOffset = BreakWire::kHeaderSize;
constexpr std::size_t kSwitchesOffset = kGeometryOffset + 16;
constexpr std::size_t kStartTextsOffset = kSwitchesOffset + 8;

constexpr std::uint32_t kAllowBreakBit = 1u;
constexpr std::uint32_t kShowSpinBit = 2u;
constexpr std::uint32_t kShowGaugeBit = 4u;

template <typename T>
void Put(unsigned char* at, T value)
{
    static_assert(sizeof(T) == 4);
    std::memcpy(at, &value, sizeof value);
}

template <typename T>
T Get(const unsigned char* at)
{
    static_assert(sizeof(T) == 4);
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

void PutText(unsigned char* at, const std::string& text)
{
    const std::string cut = BreakWire::CutText(text, BreakWire::kTextSize - 1);
    std::memcpy(at, cut.data(), cut.size());
    std::memset(at + cut.size(), 0, BreakWire::kTextSize - cut.size());
}

std::string GetText(const unsigned char* at)
{
    const void* end = std::memchr(at, 0, BreakWire::kTextSize);
    const std::size_t length =
        end ? static_cast<std::size_t>(static_cast<const unsigned char*>(end) - at) : BreakWire::kTextSize;
    return std::string(reinterpret_cast<const char*>(at), length);
}

} // namespace

std::size_t BreakWire::RecordSize(std::uint32_t type)
{
    switch (type) {
    case eFinish:
    case eSpinStep:
    case eSpinRest:
    case eShowWindow:
    case eReady:
    case eAcknowledge:
    case eStopConfirmed:
    case eGaugeWidth:
    case ePressStop:
        return kHeaderSize;
    case eGaugeValue:
        return kFloatRecordSize;
    case eGaugeRange:
        return kRangeRecordSize;
    case eSetTitle:
        return kTitleRecordSize;
    case eStart:
        return kStartRecordSize;
    default:
        return 0;
    }
}

std::size_t BreakWire::Encode(const Message& message, Buffer& out)
{
    const std::size_t size = RecordSize(message.type);
    if (size == 0)
        return 0;
    unsigned char* record = out.data();
    Put<std::uint32_t>(record, kMagic | kVersion);
    Put<std::uint32_t>(record + 4, message.type);
    Put<std::uint32_t>(record + 8, message.sequence);
    Put<std::uint32_t>(record + 12, message.type == eStart ? message.start.delay : message.argument);
    switch (message.type) {
    case eGaugeValue:
        Put<float>(record + kHeaderSize, message.first);
        break;
    case eGaugeRange:
        Put<float>(record + kHeaderSize, message.first);
        Put<float>(record + kHeaderSize + 4, message.second);
        break;
    case eSetTitle:
        PutText(record + kHeaderSize, message.text);
        break;
    case eStart: {
        const BreakStartInfo& info = message.start;
        Put<std::int32_t>(record + kGeometryOffset, info.mainWindow.x());
        Put<std::int32_t>(record + kGeometryOffset + 4, info.mainWindow.y());
        Put<std::int32_t>(record + kGeometryOffset + 8, info.mainWindow.width());
        Put<std::int32_t>(record + kGeometryOffset + 12, info.mainWindow.height());
        const std::uint32_t switches = (info.allowBreak ? kAllowBreakBit : 0u) | (info.showSpin ? kShowSpinBit : 0u) |
                                       (info.showGauge ? kShowGaugeBit : 0u);
        Put<std::uint32_t>(record + kSwitchesOffset, switches);
        Put<std::uint32_t>(record + kSwitchesOffset + 4, 0u);
        const std::string* texts[] = {&info.infoText, &info.stopQuestion, &info.stopTitle, &info.stopButton};
        for (std::size_t i = 0; i < 4; ++i)
            PutText(record + kStartTextsOffset + i * kTextSize, *texts[i]);
        break;
    }
    default:
        break;
    }
    return size;
}

BreakWire::EDecode BreakWire::Decode(const void* data, std::size_t size, Message& message)
{
    if (!data || size < kHeaderSize)
        return eMalformed;
    const auto* record = static_cast<const unsigned char*>(data);
    const auto magic = Get<std::uint32_t>(record);
    if ((magic & kMagicMask) != kMagic)
        return eMalformed;
    if ((magic & ~kMagicMask) != kVersion)
        return eWrongVersion;
    const auto type = Get<std::uint32_t>(record + 4);
    const std::size_t expected = RecordSize(type);
    if (expected == 0 || size != expected)
        return eMalformed;

    Message decoded;
    decoded.type = static_cast<EType>(type);
    decoded.sequence = Get<std::uint32_t>(record + 8);
    decoded.argument = Get<std::uint32_t>(record + 12);
    switch (decoded.type) {
    case eGaugeValue:
        decoded.first = Get<float>(record + kHeaderSize);
        break;
    case eGaugeRange:
        decoded.first = Get<float>(record + kHeaderSize);
        decoded.second = Get<float>(record + kHeaderSize + 4);
        break;
    case eSetTitle:
        decoded.text = GetText(record + kHeaderSize);
        break;
    case eStart: {
        BreakStartInfo& info = decoded.start;
        info.delay = decoded.argument;
        info.mainWindow = QRect(Get<std::int32_t>(record + kGeometryOffset), Get<std::int32_t>(record + kGeometryOffset + 4),
                                Get<std::int32_t>(record + kGeometryOffset + 8),
                                Get<std::int32_t>(record + kGeometryOffset + 12));
        const auto switches = Get<std::uint32_t>(record + kSwitchesOffset);
        info.allowBreak = (switches & kAllowBreakBit) != 0;
        info.showSpin = (switches & kShowSpinBit) != 0;
        info.showGauge = (switches & kShowGaugeBit) != 0;
        std::string* texts[] = {&info.infoText, &info.stopQuestion, &info.stopTitle, &info.stopButton};
        for (std::size_t i = 0; i < 4; ++i)
            *texts[i] = GetText(record + kStartTextsOffset + i * kTextSize);
        break;
    }
    default:
        break;
    }
    message = std::move(decoded);
    return eDecoded;
}

std::string BreakWire::CutText(const std::string& text, std::size_t capacity)
{
    // Up to the first NUL, as a C text would end there anyway.
    std::size_t length = text.find('\0');
    if (length == std::string::npos)
        length = text.size();
    if (length <= capacity)
        return text.substr(0, length);
    std::size_t cut = capacity;
    // Step back over continuation bytes so that the cut lands on a character's first byte.
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0u) == 0x80u)
        --cut;
    return text.substr(0, cut);
}

BreakWire::Message BreakWire::Make(EType type, std::uint32_t sequence, std::uint32_t argument)
{
    Message message;
    message.type = type;
    message.sequence = sequence;
    message.argument = argument;
    return message;
}

BreakWire::Message BreakWire::MakeTitle(const std::string& title)
{
    Message message = Make(eSetTitle);
    message.text = title;
    return message;
}

BreakWire::Message BreakWire::MakeGaugeValue(float value)
{
    Message message = Make(eGaugeValue);
    message.first = value;
    return message;
}

BreakWire::Message BreakWire::MakeGaugeRange(float low, float high)
{
    Message message = Make(eGaugeRange);
    message.first = low;
    message.second = high;
    return message;
}

BreakWire::Message BreakWire::MakeStart(const BreakStartInfo& info)
{
    Message message = Make(eStart, 0, info.delay);
    message.start = info;
    return message;
}
