// An audit trail's file reaches AuditTrail from outside, and may have been
// edited by hand. A file it refuses is never written over; a file it takes is
// written back signed, and reads back as the same trail.

#include <KORVAutl/AuditTrail.h>
#include <KORVAutl/Exception.h>
#include <KORVAutl/SafeFileWriter.h>

#include "FuzzCheck.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::string path = [] {
        char folder[] = "/tmp/fuzz-audit-XXXXXX";
        return std::string(mkdtemp(folder)) + "/trail.xml";
    }();
    const std::string input(reinterpret_cast<const char*>(data), size);
    Check(SafeFileWriter::Write(path, input));
    AuditTrail trail(path.c_str(), nullptr);
    try {
        trail.Load();
    } catch (const Exception&) {
        bool refused = false;
        try {
            trail.Save();
        } catch (const Exception&) {
            refused = true;
        }
        std::string after;
        Check(refused && korva::ReadWholeFile(path.c_str(), after) == 0 && after == input);
        return 0;
    }
    const bool empty = trail.IsEmpty();
    trail.Save();
    Check(AuditTrail::VerifySignature(path) == AuditTrail::eSignatureValid);
    AuditTrail again(path.c_str(), nullptr);
    again.Load();
    Check(again.IsEmpty() == empty && again.GetProjectName() == trail.GetProjectName());
    ::unlink(AuditTrail::SignatureFileName(path).c_str());
    return 0;
}
