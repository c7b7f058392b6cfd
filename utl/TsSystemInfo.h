#pragma once
/// \class TsSystemInfo
/// The running application's name and version.
///
/// A program (or library) declares its version once, in any of its source files:
///     KORVA_DECLARE_VERSION(2, 1, 0, 17)
/// The numbers land in the ELF section ".korva_version" of the file, where
/// GetApplicationVersion reads them back, for the running executable or for any
/// other file. An executable that declares none reports the suite's version,
/// which KORVAutl itself declares.

#include <cstdint>
#include <string>

namespace korva {
/// The version numbers a program declares, found by their magic number.
struct VersionRecord
{
    std::uint32_t magic;   // kVersionMagic
    std::uint32_t numbers[4];
};
inline constexpr std::uint32_t kVersionMagic = 0x5245564B; // "KVER"
} // namespace korva

#define KORVA_DECLARE_VERSION(major, minor, build, revision)                                             \
    __attribute__((used, section(".korva_version"))) static const korva::VersionRecord korva_declared_version = { \
        korva::kVersionMagic, {major, minor, build, revision}}

class TsSystemInfo
{
public:
    /// How many of the four numbers a version text shows: format 2 ("2.1") is the
    /// short form used in paths and settings, format 4 ("2.1.0.17") the long form.
    enum EVersionFormat
    {
        eVersionMajor = 1,
        eVersionShort = 2,
        eVersionThree = 3,
        eVersionLong = 4
    };

    /// The application's name: the executable's file name without extension,
    /// unless SetApplicationName gave another.
    static std::string GetApplicationName();
    static void SetApplicationName(const char* name);

    /// The running application's version in `format`, e.g. "2.1" for format 2.
    static std::string GetApplicationVersion(EVersionFormat format);
    /// The four numbers of the version declared in `file` (null: the running
    /// executable, falling back to the suite's version). False, and the numbers
    /// untouched, when the file cannot be read or declares no version.
    static bool GetApplicationVersion(int& major, int& minor, int& build, int& revision, const char* file = nullptr);

    /// The full path of the running executable.
    static std::string GetExecutablePath();
};
