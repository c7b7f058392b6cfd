#include <KORVAutlwin/audit/AuditTrailStyleSheet.h>

#include <KORVAutl/FNClass.h>
#include <KORVAutl/LanguageString.h>
#include <KORVAutl/ResourceModule.h>
#include <KORVAutl/SafeFileWriter.h>
#include <KORVAutl/TsFileUtl.h>
#include <KORVAutl/TsString.h>
#include <KORVAutlwin/platform/Registry.h>

#include <unistd.h>

std::string AuditTrailStyleSheet::PathBeside(const char* xmlPath)
{
    FNClass path(xmlPath ? xmlPath : "");
    path.SetNameAndExt(GetXSLFileName());
    return path.Merge();
}

unsigned int AuditTrailStyleSheet::ResourceForVersion(const char* ieValue)
{
    double version = 0;
    if (ieValue && TsString::ToFloat(ieValue, version) && version >= 5.5)
        return kStyleSheetResource;
    return kPlainStyleSheetResource;
}

std::string AuditTrailStyleSheet::ReadBrowserVersion()
{
    HKEY key = nullptr;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Internet Explorer\\Version Vector\\", 0, KEY_READ,
                      &key) != ERROR_SUCCESS)
        return {};
    char text[64] = {};
    DWORD size = sizeof(text) - 1;
    DWORD type = 0;
    const bool read = RegQueryValueExA(key, "IE", nullptr, &type, reinterpret_cast<BYTE*>(text), &size) ==
                          ERROR_SUCCESS &&
                      type == REG_SZ;
    RegCloseKey(key);
    return read ? std::string(text) : std::string();
}

bool AuditTrailStyleSheet::Place(const char* xmlPath, const std::string& appDataDirectory)
{
    const std::string target = PathBeside(xmlPath);
    // A site's own style sheet wins over ours.
    if (!appDataDirectory.empty()) {
        const std::string own = TsPathAppend(appDataDirectory.c_str(), GetXSLFileName());
        if (access(own.c_str(), R_OK) == 0 && TsCopyFile(own.c_str(), target.c_str(), false))
            return true;
    }
    const unsigned int id = ResourceForVersion(ReadBrowserVersion().c_str());
    std::size_t size = 0;
    const char* data = LanguageString::GetModule()->FindResource(id, "HTML", &size);
    if (!data)
        data = korva::EnglishResourceModule().FindResource(id, "HTML", &size);
    return data && SafeFileWriter::Write(target, std::string(data, size), nullptr);
}
