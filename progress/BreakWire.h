#pragma once
/// \class BreakWire
/// The records that travel between a process and its break window companion
/// (apps/breakwin) over their two SOCK_SEQPACKET sockets, one record per packet:
/// on the command socket the protocol messages go one way and their
/// acknowledgements (and first of all "ready") come back; on the report socket
/// the companion tells what nobody asked for: a confirmed stop, the gauge's width.
///
/// Every record starts with the same 16 bytes, four 32-bit words in host order
/// (both ends run on the same machine, from the same build):
///
///   magic     0x4B425700 | kVersion ("KBW" and the version in the low byte)
///   type      the message number, EType
///   sequence  numbered by the sender; an acknowledgement repeats the number it answers
///   argument  the delay of a start, 1/0 of a show, the start's sequence in a stop confirmed,
///             the gauge's width, and in an acknowledgement the number of reports
///             written before it (modulo 2^32)
///
/// and has one fixed size per type, what follows the header being:
///
///   eFinish, eSpinStep, eSpinRest, eShowWindow,
///   eReady, eAcknowledge, eStopConfirmed,
///   eGaugeWidth, ePressStop                            nothing (16 bytes)
///   eGaugeValue    one float                              (20 bytes)
///   eGaugeRange    two floats, low and high               (24 bytes)
///   eSetTitle      one text field                         (16 + kTextSize bytes)
///   eStart         the whole BreakStartInfo               (kStartRecordSize bytes):
///                  x, y, width, height of the main window (int32 each), the
///                  switches (bit 0 allowBreak, 1 showSpin, 2 showGauge), one
///                  reserved word, then four text fields: info text, stop
///                  question, stop title, stop button. The delay is the argument.
///
/// A text field holds UTF-8 up to its first NUL; a longer text is cut at a
/// character boundary so that at least one NUL remains, and the rest of the
/// field is zero. A record of another version, of an unknown type or of the
/// wrong size is refused; either end then ends the connection.

#include <KORVAutlwin/progress/BreakStartInfo.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

class BreakWire
{
public:
    static constexpr std::uint32_t kVersion = 2;
    static constexpr std::uint32_t kMagicMask = 0xFFFFFF00u;
    static constexpr std::uint32_t kMagic = 0x4B425700u;
    static constexpr std::size_t kHeaderSize = 16;
    /// Bytes of one text field, its terminating NUL included.
    static constexpr std::size_t kTextSize = 512;
    static constexpr std::size_t kStartRecordSize = kHeaderSize + 6 * 4 + 4 * kTextSize;
    static constexpr std::size_t kMaxRecordSize = kStartRecordSize;

    enum EType : std::uint32_t
    {
        // The break window protocol, main process to companion; each is acknowledged.
        eFinish = 0x401,
        eSpinStep = 0x402,
        eSpinRest = 0x403,
        eSetTitle = 0x404,
        eGaugeValue = 0x405,
        eGaugeRange = 0x406,
        eShowWindow = 0x407,
        eStart = 0x408,
        // Companion to main process.
        eReady = 0x480,          // the companion is up and listens; its first record
        eAcknowledge = 0x481,    // the record `sequence` was handled, after `argument` reports
        eStopConfirmed = 0x482,  // report: the user confirmed the stop of the client started by `argument`
        eGaugeWidth = 0x483,     // report: the gauge's bar is `argument` pixels wide (0: no gauge)
        // Main process to companion, for tests only: behave as if the user had
        // confirmed the stop of the client being served. Acknowledged.
        ePressStop = 0x4F0
    };

    /// What a record says, decoded. Only the fields of its type are used.
    struct Message
    {
        EType type = eAcknowledge;
        std::uint32_t sequence = 0;
        std::uint32_t argument = 0;  // delay, show flag, the start's sequence, a width or a count
        float first = 0.0f;          // gauge value, range low
        float second = 0.0f;         // range high
        std::string text;            // title
        BreakStartInfo start;        // eStart; its delay is `argument`
    };

    enum EDecode
    {
        eDecoded,      // `message` holds the record
        eWrongVersion, // a record of this protocol in another version
        eMalformed     // not a record of this protocol, an unknown type or the wrong size
    };

    using Buffer = std::array<unsigned char, kMaxRecordSize>;

    BreakWire() = delete;

    /// The size of a record of `type`, 0 for a type that does not exist.
    static std::size_t RecordSize(std::uint32_t type);
    /// Writes the record of `message` to the front of `out` and returns its size;
    /// for eStart the argument is taken from message.start.delay. 0 for an unknown type.
    static std::size_t Encode(const Message& message, Buffer& out);
    /// Reads one record of `size` bytes; `message` is changed only when the result is eDecoded.
    static EDecode Decode(const void* data, std::size_t size, Message& message);

    /// `text` cut to at most `capacity` bytes without splitting a UTF-8 character.
    static std::string CutText(const std::string& text, std::size_t capacity);

    // Shorthands for the records without payload and for the protocol messages.
    static Message Make(EType type, std::uint32_t sequence = 0, std::uint32_t argument = 0);
    static Message MakeTitle(const std::string& title);
    static Message MakeGaugeValue(float value);
    static Message MakeGaugeRange(float low, float high);
    static Message MakeStart(const BreakStartInfo& info);
};
