#include "ArtGsf.h"

#include <KORVAutl/Log.h>

#include <mutex>

namespace korva {

namespace {

// libgsf reports damaged compound files through GLib's log, on stderr by
// default; a damaged art file is an ordinary event here and goes to our log.
void LogGsfMessage(const gchar* domain, GLogLevelFlags, const gchar* message, gpointer)
{
    Log::WriteMessage("ArtInfo", domain ? domain : "libgsf", message ? message : "", Log::eRoutine);
}

} // namespace

void InitArtGsf()
{
    static std::once_flag once;
    std::call_once(once, [] {
        gsf_init();
        for (const char* domain : {"libgsf", "libgsf:msole"})
            g_log_set_handler(domain, static_cast<GLogLevelFlags>(G_LOG_LEVEL_MASK), LogGsfMessage, nullptr);
    });
}

} // namespace korva
