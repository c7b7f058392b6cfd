#pragma once
/// \class TsSystemException
/// A processor fault caught and turned into an exception. Its type tells a
/// fault from an ordinary failure; its code is the fault code of the table below.

#include <KORVAutl/Exception.h>

#include <string>

class TsSystemException : public Exception
{
public:
    /// Fault codes. The numbers are those the suite has always logged and shown.
    enum EFaultCode : unsigned int
    {
        eGuardPage = 0x80000001,
        eDatatypeMisalignment = 0x80000002,
        eBreakpoint = 0x80000003,
        eSingleStep = 0x80000004,
        eAccessViolation = 0xC0000005,
        eInPageError = 0xC0000006,
        eInvalidHandle = 0xC0000008,
        eIllegalInstruction = 0xC000001D,
        eNoncontinuableException = 0xC0000025,
        eInvalidDisposition = 0xC0000026,
        eArrayBoundsExceeded = 0xC000008C,
        eFloatDenormalOperand = 0xC000008D,
        eFloatDivideByZero = 0xC000008E,
        eFloatInexactResult = 0xC000008F,
        eFloatInvalidOperation = 0xC0000090,
        eFloatOverflow = 0xC0000091,
        eFloatStackCheck = 0xC0000092,
        eFloatUnderflow = 0xC0000093,
        eIntegerDivideByZero = 0xC0000094,
        eIntegerOverflow = 0xC0000095,
        ePrivilegedInstruction = 0xC0000096,
        eStackOverflow = 0xC00000FD
    };

    /// The exception for fault `code`, with the text GetText(code).
    explicit TsSystemException(unsigned int code);
    /// The exception for fault `code` with a text of the caller's.
    TsSystemException(unsigned int code, const std::string& text);
    ~TsSystemException() override;

    /// The fault code.
    unsigned int GetCode() const { return mCode; }

    /// The text of fault `code`: language string 13293 followed by the code's own
    /// string; string 13316 alone for a code not in the table.
    static std::string GetText(unsigned int code);
    /// The language string of fault `code` (13294 ... 13315), 0 for a code not in the table.
    static unsigned int GetStringId(unsigned int code);

private:
    unsigned int mCode;
};

/// Throws TsSystemException for fault `code` (with the table's text). `info` is
/// the platform's fault record and is not looked at.
[[noreturn]] void TsSETranslator(unsigned int code, void* info);
