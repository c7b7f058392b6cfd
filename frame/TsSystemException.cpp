#include <KORVAutlwin/frame/TsSystemException.h>

#include <KORVAutl/LanguageString.h>

namespace {

struct FaultString
{
    unsigned int code;
    unsigned int stringId;
};

constexpr FaultString kFaultStrings[] = {
    {TsSystemException::eGuardPage, 13314},
    {TsSystemException::eDatatypeMisalignment, 13295},
    {TsSystemException::eBreakpoint, 13296},
    {TsSystemException::eSingleStep, 13297},
    {TsSystemException::eAccessViolation, 13294},
    {TsSystemException::eInPageError, 13309},
    {TsSystemException::eInvalidHandle, 13315},
    {TsSystemException::eIllegalInstruction, 13310},
    {TsSystemException::eNoncontinuableException, 13311},
    {TsSystemException::eInvalidDisposition, 13313},
    {TsSystemException::eArrayBoundsExceeded, 13298},
    {TsSystemException::eFloatDenormalOperand, 13299},
    {TsSystemException::eFloatDivideByZero, 13300},
    {TsSystemException::eFloatInexactResult, 13301},
    {TsSystemException::eFloatInvalidOperation, 13302},
    {TsSystemException::eFloatOverflow, 13303},
    {TsSystemException::eFloatStackCheck, 13304},
    {TsSystemException::eFloatUnderflow, 13305},
    {TsSystemException::eIntegerDivideByZero, 13306},
    {TsSystemException::eIntegerOverflow, 13307},
    {TsSystemException::ePrivilegedInstruction, 13308},
    {TsSystemException::eStackOverflow, 13312},
};

constexpr unsigned int kLeadIn = 13293;
constexpr unsigned int kUnknownFault = 13316;

} // namespace

TsSystemException::TsSystemException(unsigned int code) : Exception(GetText(code)), mCode(code) {}

TsSystemException::TsSystemException(unsigned int code, const std::string& text) : Exception(text), mCode(code) {}

TsSystemException::~TsSystemException() = default;

unsigned int TsSystemException::GetStringId(unsigned int code)
{
    for (const FaultString& entry : kFaultStrings)
        if (entry.code == code)
            return entry.stringId;
    return 0;
}

std::string TsSystemException::GetText(unsigned int code)
{
    const unsigned int id = GetStringId(code);
    if (id == 0)
        return LanguageString::Get(kUnknownFault);
    std::string text = LanguageString::Get(kLeadIn);
    text += LanguageString::Get(id);
    return text;
}

void TsSETranslator(unsigned int code, void*)
{
    throw TsSystemException(code);
}
