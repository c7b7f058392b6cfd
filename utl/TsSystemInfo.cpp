#include <KORVAutl/TsSystemInfo.h>

#include <KORVAutl/TsFileUtl.h>

#include <KORVAutlwin/platform/FaultSignals.h>

#include <elf.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <mutex>
#include <vector>

// The suite's own version, reported by executables that declare none.
KORVA_DECLARE_VERSION(KORVA_VERSION_MAJOR, KORVA_VERSION_MINOR, KORVA_VERSION_PATCH, KORVA_VERSION_TWEAK);

namespace {

std::mutex gNameMutex;
std::string gApplicationName;

// Reads `size` bytes at `offset`; false on a short read.
bool ReadAt(int fd, std::uint64_t offset, void* buffer, std::size_t size)
{
    return pread(fd, buffer, size, static_cast<off_t>(offset)) == static_cast<ssize_t>(size);
}

// Finds the section ".korva_version" of a 64-bit little-endian ELF file.
bool ReadVersionRecord(const char* path, korva::VersionRecord& record)
{
    const int fd = open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    bool found = false;
    Elf64_Ehdr header;
    if (ReadAt(fd, 0, &header, sizeof header) && std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 &&
        header.e_ident[EI_CLASS] == ELFCLASS64 && header.e_ident[EI_DATA] == ELFDATA2LSB &&
        header.e_shentsize == sizeof(Elf64_Shdr) && header.e_shstrndx < header.e_shnum) {
        std::vector<Elf64_Shdr> sections(header.e_shnum);
        if (ReadAt(fd, header.e_shoff, sections.data(), sections.size() * sizeof(Elf64_Shdr))) {
            const Elf64_Shdr& names = sections[header.e_shstrndx];
            std::vector<char> nameTable(names.sh_size + 1, '\0');
            if (names.sh_size < (1u << 24) && ReadAt(fd, names.sh_offset, nameTable.data(), names.sh_size)) {
                for (const Elf64_Shdr& section : sections) {
                    if (section.sh_name >= names.sh_size ||
                        std::strcmp(&nameTable[section.sh_name], ".korva_version") != 0)
                        continue;
                    found = section.sh_type == SHT_PROGBITS && section.sh_size >= sizeof record &&
                            ReadAt(fd, section.sh_offset, &record, sizeof record) &&
                            record.magic == korva::kVersionMagic;
                    break;
                }
            }
        }
    }
    close(fd);
    return found;
}

} // namespace

std::string TsSystemInfo::GetExecutablePath()
{
    char buffer[4096];
    return std::string(buffer, korva::ReadExecutablePath(buffer, sizeof buffer));
}

std::string TsSystemInfo::GetApplicationName()
{
    {
        std::lock_guard<std::mutex> lock(gNameMutex);
        if (!gApplicationName.empty())
            return gApplicationName;
    }
    std::string name = TsGetFileName(GetExecutablePath().c_str());
    const std::string extension = TsGetFileExtension(name.c_str());
    if (!extension.empty())
        name.resize(name.size() - extension.size() - 1);
    return name;
}

void TsSystemInfo::SetApplicationName(const char* name)
{
    std::lock_guard<std::mutex> lock(gNameMutex);
    gApplicationName = name ? name : "";
}

bool TsSystemInfo::GetApplicationVersion(int& major, int& minor, int& build, int& revision, const char* file)
{
    korva::VersionRecord record{};
    bool found = false;
    if (file) {
        found = ReadVersionRecord(file, record);
    } else {
        found = ReadVersionRecord("/proc/self/exe", record);
        if (!found) {
            record = korva_declared_version;
            found = true;
        }
    }
    if (!found)
        return false;
    major = static_cast<int>(record.numbers[0]);
    minor = static_cast<int>(record.numbers[1]);
    build = static_cast<int>(record.numbers[2]);
    revision = static_cast<int>(record.numbers[3]);
    return true;
}

std::string TsSystemInfo::GetApplicationVersion(EVersionFormat format)
{
    int numbers[4] = {0, 0, 0, 0};
    GetApplicationVersion(numbers[0], numbers[1], numbers[2], numbers[3]);
    const int count = format < eVersionMajor ? 1 : format > eVersionLong ? 4 : static_cast<int>(format);
    std::string text;
    for (int i = 0; i < count; ++i) {
        if (i)
            text += '.';
        text += std::to_string(numbers[i]);
    }
    return text;
}
