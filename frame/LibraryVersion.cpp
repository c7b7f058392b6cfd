// The library's version, readable from the file by TsSystemInfo::GetApplicationVersion.
#include <KORVAutl/TsSystemInfo.h>

KORVA_DECLARE_VERSION(KORVA_VERSION_MAJOR, KORVA_VERSION_MINOR, KORVA_VERSION_PATCH, KORVA_VERSION_TWEAK);
