#include <KORVAutl/LanguageString.h>

#include <KORVAutl/ResourceModule.h>

#include <atomic>

namespace {
std::atomic<const korva::ResourceModule*> gCurrentModule{nullptr};

const korva::ResourceModule& Current()
{
    const korva::ResourceModule* module = gCurrentModule.load(std::memory_order_acquire);
    return module ? *module : korva::EnglishResourceModule();
}
} // namespace

const char* LanguageString::Get(unsigned int id)
{
    if (const char* text = Current().FindString(id))
        return text;
    if (const char* text = korva::EnglishResourceModule().FindString(id))
        return text;
    return "";
}

bool LanguageString::Has(unsigned int id)
{
    return Current().FindString(id) || korva::EnglishResourceModule().FindString(id);
}

const korva::ResourceModule* LanguageString::GetModule()
{
    return &Current();
}

const korva::ResourceModule* LanguageString::SetModule(const korva::ResourceModule* module)
{
    const korva::ResourceModule* previous = &Current();
    gCurrentModule.store(module, std::memory_order_release);
    return previous;
}
